#include "shellkit/media/WaveWriter.h"

#include <utility>

namespace marnoth {

WaveWriter::WaveWriter(std::unique_ptr<OutputFile> output, const WaveOptions& options)
    : output_(std::move(output)), options_(options), stream_(output_->takeBytes(), options) {
    need(stream_.begin());
}

WaveWriter::WaveWriter(const std::filesystem::path& path, const WaveOptions& options)
    : WaveWriter(std::make_unique<OutputFile>(path), options) {}

void WaveWriter::write(std::span<const float> interleaved) {
    if (!stream_.fits(static_cast<std::int64_t>(interleaved.size() / options_.channels)))
        output_->fail("it would be longer than a WAV file of unknown length can be (4 GiB)");
    need(stream_.write(interleaved));
}

void WaveWriter::finish() {
    need(stream_.finish());
    output_->finish();
}

void WaveWriter::need(bool ok) const {
    if (!ok) output_->fail("writing failed");
}

}  // namespace marnoth
