#include "editor/skin/SkinFiles.h"

#include <cstdint>

namespace {

/// As cmake/EmbedFiles.cmake lays it out.
struct EmbeddedFile {
    char name[16];
    std::uint32_t offset;
    std::uint32_t size;
};

}  // namespace

extern "C" {
extern const std::uint32_t marnoth_skin_count;
extern const EmbeddedFile marnoth_skin_index[];
extern const std::byte marnoth_skin_bytes[];
}

namespace marnoth {

std::vector<SkinFile> skinFiles() {
    std::vector<SkinFile> files;
    for (const EmbeddedFile& file : std::span(marnoth_skin_index, marnoth_skin_count))
        files.push_back({file.name, {marnoth_skin_bytes + file.offset, file.size}});
    return files;
}

}  // namespace marnoth
