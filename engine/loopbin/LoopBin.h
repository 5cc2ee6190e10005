#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "engine/loopbin/BinFile.h"
#include "seam/Limits.h"

namespace marnoth {

/// The files of the Loop Bin in the order of their display, at most 16. A value; one thread at a time.
class LoopBin {
public:
    std::int32_t size() const { return size_; }
    bool isFull() const { return size_ == kBinFiles; }
    bool has(std::int32_t bin) const { return bin >= 0 && bin < size_; }
    BinFile& operator[](std::int32_t bin) { return files_[static_cast<std::size_t>(bin)]; }
    const BinFile& operator[](std::int32_t bin) const { return files_[static_cast<std::size_t>(bin)]; }
    const BinFile* begin() const { return files_.data(); }
    const BinFile* end() const { return files_.data() + size_; }

    /// The place of the file with this path, -1 when there is none.
    std::int32_t find(const std::wstring& path) const;
    /// Puts a file behind the others. There must be room.
    void add(BinFile file);
    /// Takes a file out; those behind it move up.
    void remove(std::int32_t bin);

private:
    std::array<BinFile, kBinFiles> files_;
    std::int32_t size_ = 0;
};

}  // namespace marnoth
