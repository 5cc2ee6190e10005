#include <png.h>

#include "shellkit/media/PngFile.h"

namespace marnoth {

std::vector<std::byte> encodePng(const Bitmap& picture) {
    static_assert(sizeof(Color) == 3, "pixels lie as the library takes them");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width());
    image.height = static_cast<png_uint_32>(picture.height());
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::byte> bytes(size);
    const bool done =
        png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.row(0).data(), 0, nullptr) != 0;
    bytes.resize(done ? size : 0);
    return bytes;
}

}  // namespace marnoth
