#include "shellkit/files/OpenProject.h"

#include "project/ProjectName.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kProjectForm = fourCC("marn");
constexpr std::uint32_t kWaveForm = fourCC("WAVE");
constexpr std::int64_t kWrapperBytes = 24;

/// The form type of the RIFF chunk at an offset; 0 when there is none. The position is behind the form type.
std::uint32_t formAt(RiffStream& stream, std::int64_t offset) {
    ChunkInfo outer;
    const bool there = stream.seek(offset) == kRiffOk && stream.descend(outer) == kRiffOk;
    return there && outer.ckid == kRiffId ? outer.fccType : 0;
}

}  // namespace

bool openProject(RiffStream& stream, const std::string& file) {
    if (stream.open(pathFromUtf8(file), FileMode::read) != kRiffOk) return false;
    for (const std::int64_t offset : {std::int64_t{0}, kWrapperBytes})
        if (formAt(stream, offset) == kProjectForm && stream.seek(offset) == kRiffOk) return true;
    stream.close();
    return false;
}

bool isProject(const std::string& file) {
    RiffStream stream;
    if (openProject(stream, file)) return true;
    const bool isWave =
        stream.open(pathFromUtf8(file), FileMode::read) == kRiffOk && formAt(stream, 0) == kWaveForm;
    return hasProjectExtension(file) && !isWave;
}

}  // namespace marnoth
