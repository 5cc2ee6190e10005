#include "shellkit/media/WaveWriter.h"

#include <utility>

namespace marnoth {

namespace {

/// A RIFF file's sizes have 32 bits; the headers take less than the rest.
constexpr std::int64_t kMostDataBytes = 0xFFFFFFFFLL - 1024;

struct FormatBody {
    std::uint16_t tag = WAVE_FORMAT_IEEE_FLOAT;
    std::uint16_t channels;
    std::uint32_t rate;
    std::uint32_t bytesPerSecond;
    std::uint16_t blockAlign;
    std::uint16_t bits = 32;
};
static_assert(sizeof(FormatBody) == 16);

}  // namespace

WaveWriter::WaveWriter(std::unique_ptr<OutputFile> output, std::uint32_t rate, std::uint32_t channels)
    : output_(std::move(output)), rate_(rate), channels_(channels) {
    stream_.open(output_->takeBytes());
    begin();
}

WaveWriter::WaveWriter(const std::filesystem::path& path, std::uint32_t rate, std::uint32_t channels)
    : WaveWriter(std::make_unique<OutputFile>(path), rate, channels) {}

void WaveWriter::begin() {
    riff_.fccType = fourCC("WAVE");
    need(stream_.createChunk(riff_, RiffCreate::riff) == kRiffOk);

    ChunkInfo format;
    format.ckid = fourCC("fmt ");
    need(stream_.createChunk(format) == kRiffOk);
    const std::uint32_t blockAlign = channels_ * 4;
    const FormatBody body{.channels = static_cast<std::uint16_t>(channels_),
                          .rate = rate_,
                          .bytesPerSecond = rate_ * blockAlign,
                          .blockAlign = static_cast<std::uint16_t>(blockAlign)};
    const std::uint16_t extraBytes = 0;
    need(stream_.write(&body, sizeof body) && stream_.write(&extraBytes, sizeof extraBytes));
    need(stream_.ascend(format) == kRiffOk);

    ChunkInfo fact;
    fact.ckid = fourCC("fact");
    need(stream_.createChunk(fact) == kRiffOk);
    factOffset_ = stream_.position();
    const std::uint32_t frames = 0;
    need(stream_.write(&frames, sizeof frames) && stream_.ascend(fact) == kRiffOk);

    data_.ckid = fourCC("data");
    need(stream_.createChunk(data_) == kRiffOk);
}

void WaveWriter::write(std::span<const float> interleaved) {
    const std::int64_t bytes = static_cast<std::int64_t>(interleaved.size_bytes());
    if (dataBytes_ + bytes > kMostDataBytes)
        output_->fail("it would be longer than a WAV file can be (4 GiB)");
    need(stream_.write(interleaved.data(), bytes));
    dataBytes_ += bytes;
}

void WaveWriter::finish() {
    need(stream_.ascend(data_) == kRiffOk && stream_.ascend(riff_) == kRiffOk);
    const auto count = static_cast<std::uint32_t>(frames());
    need(stream_.seek(factOffset_) == kRiffOk && stream_.write(&count, sizeof count));
    need(stream_.close() == kRiffOk);
    output_->finish();
}

void WaveWriter::need(bool ok) const {
    if (!ok) output_->fail("writing failed");
}

}  // namespace marnoth
