#include "shellkit/media/PngFile.h"

#include <memory>

#include "platform/bytes/ByteStream.h"

namespace marnoth {

void writePng(OutputFile& output, const Bitmap& picture) {
    const std::vector<std::byte> bytes = encodePng(picture);
    if (bytes.empty()) output.fail("the picture can't be put into PNG");
    const std::unique_ptr<ByteStream> file = output.takeBytes();
    const bool written = file->write(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    if (!file->close() || !written) output.fail("writing failed");
    output.finish();
}

void writePng(const std::filesystem::path& path, const Bitmap& picture) {
    OutputFile output(path);
    writePng(output, picture);
}

}  // namespace marnoth
