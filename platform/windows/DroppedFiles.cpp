#include "platform/windows/DroppedFiles.h"

#include <shlobj.h>

#include <cstring>

#include "platform/text/Text.h"
#include "platform/windows/LockedMemory.h"

namespace marnoth {

namespace {

FORMATETC fileListFormat() {
    return {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
}

/// What a data object hands over.
class Medium {
public:
    explicit Medium(IDataObject& data) {
        FORMATETC format = fileListFormat();
        isThere_ = SUCCEEDED(data.GetData(&format, &medium_));
    }
    ~Medium() {
        if (isThere_) ReleaseStgMedium(&medium_);
    }
    Medium(const Medium&) = delete;
    Medium& operator=(const Medium&) = delete;

    bool isMemory() const { return isThere_ && medium_.tymed == TYMED_HGLOBAL; }
    HGLOBAL memory() const { return medium_.hGlobal; }

private:
    STGMEDIUM medium_{};
    bool isThere_ = false;
};

/// Names of `Unit`, each ended by a 0, up to an empty one.
template <class Unit>
std::vector<std::basic_string<Unit>> namesIn(std::span<const std::byte> bytes) {
    std::basic_string<Unit> all(bytes.size() / sizeof(Unit), Unit{});
    std::memcpy(all.data(), bytes.data(), all.size() * sizeof(Unit));
    std::vector<std::basic_string<Unit>> names;
    std::size_t begin = 0;
    while (begin < all.size() && all[begin] != Unit{}) {
        names.emplace_back(all, begin, all.find(Unit{}, begin) - begin);
        begin += names.back().size() + 1;
    }
    return names;
}

}  // namespace

bool hasFiles(IDataObject* data) {
    FORMATETC format = fileListFormat();
    return data && data->QueryGetData(&format) == S_OK;
}

std::optional<std::vector<std::wstring>> readDroppedFiles(IDataObject* data) {
    if (!data) return {};
    const Medium medium(*data);
    if (!medium.isMemory()) return {};
    return parseFileList(LockedMemory(medium.memory()).bytes());
}

std::vector<std::wstring> parseFileList(std::span<const std::byte> block) {
    DROPFILES header{};
    if (block.size() < sizeof header) return {};
    std::memcpy(&header, block.data(), sizeof header);
    if (header.pFiles > block.size()) return {};
    const std::span<const std::byte> list = block.subspan(header.pFiles);
    if (header.fWide) return namesIn<wchar_t>(list);
    std::vector<std::wstring> wide;
    for (const std::string& name : namesIn<char>(list)) wide.push_back(wideFromSystem(name));
    return wide;
}

}  // namespace marnoth
