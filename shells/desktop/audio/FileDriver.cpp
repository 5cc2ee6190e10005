#include "shells/desktop/audio/FileDriver.h"

#include <array>
#include <iostream>

namespace marnoth {

FileDriver::FileDriver(const AudioWish& wish, AudioClient& client) : file_(wish.device), client_(client) {
    clock_.emplace(wish, static_cast<AudioClient&>(*this));
}

FileDriver::~FileDriver() {
    clock_.reset();
    if (const std::string failure = recorder_.stop(); !failure.empty())
        std::cerr << "marnoth: " << failure << std::endl;
}

void FileDriver::look() {
    if (recorder_.hasFailed() && trouble_.empty()) trouble_ = recorder_.stop() + ".";
}

bool FileDriver::prepare(std::uint32_t rate, std::int32_t mostFrames) {
    left_.assign(static_cast<std::size_t>(mostFrames), 0.0f);
    right_ = left_;
    if (!client_.prepare(rate, mostFrames)) return false;
    recorder_.start(file_, rate);
    return true;
}

void FileDriver::midi(std::int32_t frame, std::uint8_t status, std::uint8_t data1, std::uint8_t data2) {
    client_.midi(frame, status, data1, data2);
}

void FileDriver::render(std::int32_t frames, OutputPointers /*outputs*/) {
    const std::array<float*, 2> mix{left_.data(), right_.data()};
    client_.render(frames, mix);
    const auto count = static_cast<std::size_t>(frames);
    recorder_.take({left_.data(), count}, {right_.data(), count});
}

}  // namespace marnoth
