#pragma once

#include "sample/AcidWave.h"
#include "support/WaveFile.h"

namespace marnoth::test {

/// A file on disk with a reader that has been asked to open it.
struct OpenedWave {
    explicit OpenedWave(const WaveFile& content, bool lenient = false)
        : OpenedWave(content.bytes(), lenient) {}
    explicit OpenedWave(const Bytes& content, bool lenient = false) : file(".wav") {
        WaveFile::writeBytes(file.path(), content);
        reader->lenient = lenient;
        result = reader->Open(file.c_str());
    }

    CAcidWave* operator->() const { return reader.get(); }
    CAcidWave& operator*() const { return *reader; }

    std::vector<std::uint32_t> starts() const {
        std::vector<std::uint32_t> all;
        for (int i = 0; i < reader->GetSegmentCount(); ++i) all.push_back(reader->GetSegment(i).start);
        return all;
    }
    std::vector<std::uint32_t> lengths() const {
        std::vector<std::uint32_t> all;
        for (int i = 0; i < reader->GetSegmentCount(); ++i) all.push_back(reader->GetSegment(i).length);
        return all;
    }

    TempPath file;
    std::unique_ptr<CAcidWave> reader = std::make_unique<CAcidWave>();
    HRESULT result = E_FAIL;
};

}  // namespace marnoth::test
