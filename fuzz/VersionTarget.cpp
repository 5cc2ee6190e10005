#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "platform/com/PersistStream.h"
#include "platform/graph/Graph.h"
#include "support/FaultyStream.h"

namespace marnoth::fuzz {
namespace {

/// Remembers where it was asked to read on.
class Persistent final : public CPersistStream {
public:
    HRESULT QueryInterface(REFIID, void** out) override { return *out = nullptr, E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetClassID(CLSID*) override { return E_NOTIMPL; }

    std::optional<std::uint64_t> readFrom;

protected:
    HRESULT WriteToStream(IStream*) override { return S_OK; }
    HRESULT ReadFromStream(IStream* stream) override {
        readFrom = static_cast<test::FaultyStream*>(stream)->position;
        return S_OK;
    }
};

struct Word {
    std::int64_t version;
    std::size_t bytes;
};

/// The word by its description: a minus sign or none, digits, one unit that ends it, twelve units at most.
/// A number out of range counts as the nearest in it.
std::optional<Word> expectedWord(const std::vector<std::uint8_t>& bytes) {
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size() && units.size() < 12; i += 2)
        units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    const std::size_t first = units.starts_with(u'-') ? 1 : 0;
    const std::size_t end = units.find_first_not_of(u"0123456789", first);
    if (end == units.npos || end == first) return {};
    if (std::u16string(u" \t\r\n").find(units[end]) == std::u16string::npos && units[end] != 0) return {};
    std::int64_t number = 0;
    for (std::size_t i = first; i < end; ++i) number = number * 10 + (units[i] - u'0');
    using Limits = std::numeric_limits<std::int32_t>;
    const auto version = std::clamp<std::int64_t>(first ? -number : number, Limits::min(), Limits::max());
    return Word{version, 2 * (end + 1)};
}

}  // namespace
}  // namespace marnoth::fuzz

/// The version word in front of an instrument's state.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace marnoth;
    using namespace marnoth::fuzz;
    test::FaultyStream stream({data, data + size});
    Persistent object;
    const HRESULT result = object.Load(&stream);
    const std::optional<Word> word = expectedWord(stream.bytes);
    require((result == S_OK) == word.has_value(), "a word is taken when it is one");
    require(object.readFrom.has_value() == word.has_value(), "what follows is read behind a word alone");
    if (!word) return require(result == VFW_E_INVALID_FILE_FORMAT, "anything else isn't the format"), 0;
    require(object.LoadedVersion() == word->version, "the version is the number");
    require(object.readFrom == word->bytes, "reading goes on right behind the word");
    return 0;
}
