#include "page/StoredPicture.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <ostream>

#include "support/TestData.h"

namespace marnoth {

void PrintTo(const Color& color, std::ostream* out) {
    *out << int{color.red} << ',' << int{color.green} << ',' << int{color.blue};
}

}  // namespace marnoth

namespace marnoth::test {
namespace {

namespace fs = std::filesystem;

/// Nothing when there is no such picture.
std::optional<Bitmap> readPicture(const fs::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) return {};
    image.format = PNG_FORMAT_RGB;
    Bitmap picture(static_cast<int>(image.width), static_cast<int>(image.height));
    if (!png_image_finish_read(&image, nullptr, picture.row(0).data(), 0, nullptr)) return {};
    return picture;
}

/// As small as pictures of the page get: their shading repeats itself from row to row, so that filters only
/// hide that.
void writeRows(png_structp png, png_infop info, std::FILE* file, const Bitmap& picture) {
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width()),
                 static_cast<png_uint_32>(picture.height()), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    constexpr int kMost = 9;
    png_set_compression_level(png, kMost);
    png_set_compression_mem_level(png, kMost);
    png_write_info(png, info);
    for (int y = 0; y < picture.height(); ++y)
        png_write_row(png, reinterpret_cast<png_const_bytep>(picture.row(y).data()));
    png_write_end(png, info);
}

/// The library ends the program where it can't write.
void writePicture(const fs::path& path, const Bitmap& picture) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
    ASSERT_TRUE(file) << path << " can't be written";
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    writeRows(png, info, file.get(), picture);
    png_destroy_write_struct(&png, &info);
}

/// Where two pictures of one size differ: red on white.
struct Difference {
    Difference(const Bitmap& shown, const Bitmap& stored) : picture(shown.width(), shown.height()) {
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x) compare(shown.at(x, y), stored.at(x, y), {x, y});
    }

    void compare(const Color& shown, const Color& stored, Point at) {
        const bool same = shown == stored;
        picture.at(at.x, at.y) = same ? Color{255, 255, 255} : Color{200, 0, 0};
        if (same) return;
        if (count++ == 0) first = at;
    }

    Bitmap picture;
    int count = 0;
    Point first;
};

bool keepsPictures() {
    const char* wish = std::getenv("MARNOTH_KEEP_PICTURES");
    return wish && std::string(wish) == "1";
}

/// Where the pictures of a failure go.
fs::path failureFile(const std::string& name) {
    const fs::path folder = fs::temp_directory_path() / "marnoth-pictures";
    fs::create_directories(folder);
    return folder / name;
}

std::string described(const Difference& difference, const Bitmap& shown, const Bitmap& stored) {
    const Point at = difference.first;
    return std::to_string(difference.count) + " pixels differ, the first at " + std::to_string(at.x) + ", " +
           std::to_string(at.y) + ": " + testing::PrintToString(shown.at(at.x, at.y)) + " in place of " +
           testing::PrintToString(stored.at(at.x, at.y));
}

}  // namespace

void expectPicture(const Bitmap& shown, const std::string& name) {
    const fs::path path = testData(MARNOTH_PICTURES) / (name + ".png");
    if (keepsPictures()) {
        writePicture(path, shown);
        std::cout << "stored " << path << std::endl;
        return;
    }
    const std::optional<Bitmap> stored = readPicture(path);
    if (stored && *stored == shown) return;
    const fs::path actual = failureFile(name + ".png");
    writePicture(actual, shown);
    ASSERT_TRUE(stored) << path << " can't be read\n  shown: " << actual;
    ASSERT_EQ(shown.width(), stored->width()) << "shown: " << actual;
    ASSERT_EQ(shown.height(), stored->height()) << "shown: " << actual;
    const Difference difference(shown, *stored);
    const fs::path marked = failureFile(name + "-difference.png");
    writePicture(marked, difference.picture);
    ADD_FAILURE() << name << ": " << described(difference, shown, *stored) << "\n  shown: " << actual
                  << "\n  where: " << marked;
}

}  // namespace marnoth::test
