#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

namespace marnoth::fuzz {

/// A file that has a name and no disk beneath it. The name has no extension.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
        if (descriptor_ < 0) std::abort();
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void fill(std::span<const std::uint8_t> bytes) {
        if (ftruncate(descriptor_, 0) != 0) std::abort();
        const auto count = static_cast<ssize_t>(bytes.size());
        if (count > 0 && pwrite(descriptor_, bytes.data(), bytes.size(), 0) != count) std::abort();
    }

    const char* name() const { return name_.c_str(); }

private:
    int descriptor_;
    std::string name_;
};

}  // namespace marnoth::fuzz
