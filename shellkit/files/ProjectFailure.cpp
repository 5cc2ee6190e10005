#include "shellkit/files/ProjectFailure.h"

#include <filesystem>

#include "project/Project.h"
#include "seam/Limits.h"
#include "shellkit/files/OpenProject.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kWaveForm = fourCC("WAVE");
constexpr std::int32_t kMostFiles = 16;

std::string quoted(const char (&chunk)[5]) {
    return "\"" + std::string(chunk) + "\"";
}

/// Goes through the chunks of a form, in the order of a reader, up to the first that isn't there.
class FormWalk {
public:
    explicit FormWalk(RiffStream& stream) : stream_(stream) {}

    /// What is wrong with the form at the position.
    std::string firstFault() {
        const std::int64_t bytes = stream_.position() + stream_.remaining().value_or(0);
        if (stream_.descend(outer_) != kRiffOk) return "it isn't a project";
        if (outer_.cksize == 0) return "its saving was never finished";
        if (outer_.end() > bytes)
            return "it is cut short: " + std::to_string(outer_.end() - bytes) + " bytes are missing";
        const std::string fault = headerFault();
        return fault.empty() ? chunkFault() : fault;
    }

private:
    struct Header {
        std::uint32_t version;
        std::uint32_t auditionEnabled;
        std::int32_t files;
        std::int32_t pads;
    };

    std::string headerFault() {
        Header header{};
        ChunkInfo chunk = wanted("comn");
        if (stream_.descend(chunk, &outer_, RiffFind::chunk) != kRiffOk ||
            !stream_.readExactly(&header, sizeof header) || stream_.ascend(chunk) != kRiffOk)
            return "its " + quoted("comn") + " chunk is missing or damaged";
        if (header.version != kProjectVersion)
            return "it is of version " + std::to_string(header.version) + "; this program reads version " +
                   std::to_string(kProjectVersion);
        if (header.files < 0 || header.files > kMostFiles)
            return "it claims " + std::to_string(header.files) + " files; a project has up to " +
                   std::to_string(kMostFiles);
        if (header.pads != kPads)
            return "it claims " + std::to_string(header.pads) + " pads; a project has " +
                   std::to_string(kPads);
        files_ = header.files;
        return {};
    }

    std::string chunkFault() {
        if (!pass("keym")) return "its " + quoted("keym") + " chunk is missing or damaged";
        for (int file = 1; file <= files_; ++file)
            if (!pass("lbtr") || !passWave() || !pass("lbte"))
                return "file " + std::to_string(file) + " of it is missing or damaged";
        for (int pad = 1; pad <= kPads; ++pad)
            if (!pass("pdtr") || !pass("pevt"))
                return "pad " + std::to_string(pad) + " of it is missing or damaged";
        return "it is damaged: a value in it is none that a project has";
    }

    static ChunkInfo wanted(const char (&id)[5]) {
        ChunkInfo chunk;
        chunk.ckid = fourCC(id);
        return chunk;
    }

    bool pass(const char (&id)[5]) {
        ChunkInfo chunk = wanted(id);
        return stream_.descend(chunk, &outer_, RiffFind::chunk) == kRiffOk &&
               stream_.ascend(chunk) == kRiffOk;
    }

    bool passWave() {
        ChunkInfo wave;
        wave.fccType = kWaveForm;
        return stream_.descend(wave, &outer_, RiffFind::riff) == kRiffOk && stream_.ascend(wave) == kRiffOk;
    }

    RiffStream& stream_;
    ChunkInfo outer_;
    std::int32_t files_ = 0;
};

}  // namespace

std::string whyProjectNotRead(const std::string& file, HRESULT result) {
    std::error_code ignored;
    const std::filesystem::path path = pathFromUtf8(file);
    if (!std::filesystem::exists(path, ignored)) return "there is no such file";
    if (!std::filesystem::is_regular_file(path, ignored)) return "it isn't a file";
    if (result == E_OUTOFMEMORY) return "there isn't enough memory for it";
    RiffStream stream;
    if (stream.open(path, FileMode::read) != kRiffOk) return "it can't be opened";
    return openProject(stream, file) ? FormWalk(stream).firstFault() : "it isn't a project";
}

}  // namespace marnoth
