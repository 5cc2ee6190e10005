#pragma once

#include <atomic>
#include <cstdint>

#include "platform/com/Unknown.h"
#include "seam/KvxInterfaces.h"

namespace marnoth {

/// What a key service says when no key is chosen: nothing is transposed. Without a key service the key counts
/// as 0.
inline constexpr std::uint32_t kNoProjectKey = 0xFFFFFFFF;

/// The number of a key, 0 to 11 counted from A, by which loops with a root note are in tune: theirs count
/// from A too, but three higher.
constexpr std::uint32_t keyOfLoops(std::uint32_t keyFromA) {
    return (keyFromA + 3) % 12;
}

/// The project's key: one for the whole project, which may change.
class KeyService : public Implements<CUnknown, IKvxProjectKeyMap> {
public:
    /// 0 to 11, as the instrument gets it; `kNoProjectKey` for none.
    explicit KeyService(std::uint32_t key) : Implements(nullptr), key_(key) {}

    /// Holds from the next block on. Any thread.
    void setKey(std::uint32_t key) { key_ = key; }

    HRESULT reserved3() override { return E_NOTIMPL; }
    HRESULT reserved4() override { return E_NOTIMPL; }
    HRESULT reserved5() override { return E_NOTIMPL; }
    /// The same key at any time.
    HRESULT GetKeyAt(const SynthTimeValue* when, std::uint32_t* key) override;

private:
    IUnknown* FindInterface(REFIID iid) override;

    std::atomic<std::uint32_t> key_;
};

}  // namespace marnoth
