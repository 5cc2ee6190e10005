#include "engine/loopbin/LoopBin.h"

#include <algorithm>
#include <utility>

namespace marnoth {

std::int32_t LoopBin::find(const std::wstring& path) const {
    const BinFile* const found =
        std::find_if(begin(), end(), [&](const BinFile& file) { return file.names->path == path; });
    return found != end() ? static_cast<std::int32_t>(found - begin()) : -1;
}

void LoopBin::add(BinFile file) {
    (*this)[size_++] = std::move(file);
}

void LoopBin::remove(std::int32_t bin) {
    BinFile* const first = &(*this)[bin];
    std::rotate(first, first + 1, files_.data() + size_);
    (*this)[--size_] = BinFile{};
}

}  // namespace marnoth
