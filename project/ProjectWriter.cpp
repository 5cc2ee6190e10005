#include "project/ProjectWriter.h"

#include <bit>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/Text.h"

namespace marnoth {
namespace {

static_assert(std::endian::native == std::endian::little, "audio goes out as it lies in memory");

constexpr std::int64_t kFormHeaderBytes = 12;  ///< with the form type
constexpr std::int64_t kFormatBytes = 18;

std::int64_t padded(std::int64_t bytes) {
    return bytes + (bytes & 1);
}

/// The body of a chunk, grown field by field.
class Body {
public:
    void put(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) bytes_.push_back(static_cast<std::byte>(value >> shift));
    }
    void put(std::uint16_t value) {
        for (int shift = 0; shift < 16; shift += 8) bytes_.push_back(static_cast<std::byte>(value >> shift));
    }
    template <std::size_t size>
    void put(const std::array<std::byte, size>& record) {
        bytes_.insert(bytes_.end(), record.begin(), record.end());
    }
    /// The length, then the bytes without a terminator.
    void put(std::wstring_view text) {
        const std::string stored = storedFromWide(text, kLongestProjectText);
        put(static_cast<std::uint32_t>(stored.size()));
        const auto* from = reinterpret_cast<const std::byte*>(stored.data());
        bytes_.insert(bytes_.end(), from, from + stored.size());
    }

    const std::byte* data() const { return bytes_.data(); }
    std::int64_t size() const { return static_cast<std::int64_t>(bytes_.size()); }

private:
    std::vector<std::byte> bytes_;
};

Body header(const Project& project) {
    Body body;
    body.put(kProjectVersion);
    body.put(project.auditionEnabled);
    body.put(static_cast<std::uint32_t>(project.files.size()));
    body.put(static_cast<std::uint32_t>(project.pads.size()));
    return body;
}

Body keyMap(const Project& project) {
    Body body;
    body.put(static_cast<std::uint32_t>(project.keys.size()));
    for (const KeyMapRecord& keys : project.keys) body.put(encode(keys));
    return body;
}

Body fileSettings(std::uint32_t index, const ProjectFile& file) {
    Body body;
    body.put(index);
    body.put(encode(file.settings));
    body.put(file.name);
    body.put(file.path);
    return body;
}

Body padSettings(std::uint32_t index, const ProjectPad& pad) {
    Body body;
    body.put(index);
    body.put(encode(pad.settings));
    return body;
}

Body grainList(std::uint32_t index, const std::vector<GrainSettings>& grains) {
    Body body;
    body.put(index);
    body.put(static_cast<std::uint32_t>(grains.size()));
    std::uint32_t running = 0;
    for (const GrainSettings& grain : grains) {
        body.put(running++);
        body.put(encode(grain));
    }
    return body;
}

Body waveFormat(const WAVEFORMATEX& format) {
    Body body;
    body.put(std::uint16_t{format.wFormatTag});
    body.put(std::uint16_t{format.nChannels});
    body.put(std::uint32_t{format.nSamplesPerSec});
    body.put(std::uint32_t{format.nAvgBytesPerSec});
    body.put(std::uint16_t{format.nBlockAlign});
    body.put(std::uint16_t{format.wBitsPerSample});
    body.put(std::uint16_t{0});
    return body;
}

std::int64_t chunkBytes(const Body& body) {
    return kChunkHeaderBytes + padded(body.size());
}

/// Of the whole inner form, its header included.
std::int64_t waveBytes(const CWaveMem& wave) {
    return kFormHeaderBytes + kChunkHeaderBytes + kFormatBytes + kChunkHeaderBytes +
           padded(static_cast<std::int64_t>(wave.byteSize));
}

/// The writing itself. Every size but the outer one is known when its header goes out, so that nothing is
/// written twice. The outer one is the mark of a form that is whole: it goes out when the medium has the
/// rest, or a power cut could leave the mark on a form that isn't.
class FormWriter {
public:
    explicit FormWriter(RiffStream& stream) : stream_(stream) {}

    bool write(const Project& project) {
        ChunkInfo form;
        form.fccType = fourCC("marn");
        return stream_.createChunk(form, RiffCreate::riff) == kRiffOk && writeParts(project) &&
               stream_.sync() && stream_.ascend(form) == kRiffOk;
    }

private:
    bool writeParts(const Project& project) {
        if (!writeChunk(fourCC("comn"), header(project)) || !writeChunk(fourCC("keym"), keyMap(project)))
            return false;
        std::uint32_t index = 0;
        for (const ProjectFile& file : project.files) {
            if (!writeFile(index++, file)) return false;
        }
        index = 0;
        for (const ProjectPad& pad : project.pads) {
            if (!writePad(index++, pad)) return false;
        }
        return true;
    }

    bool writeFile(std::uint32_t index, const ProjectFile& file) {
        return writeChunk(fourCC("lbtr"), fileSettings(index, file)) && writeWave(*file.wave) &&
               writeChunk(fourCC("lbte"), grainList(index, file.grains));
    }

    bool writePad(std::uint32_t index, const ProjectPad& pad) {
        return writeChunk(fourCC("pdtr"), padSettings(index, pad)) &&
               writeChunk(fourCC("pevt"), grainList(index, pad.grains));
    }

    /// The whole block of samples, with the guard frame and whatever the allocation was rounded by.
    bool writeWave(const CWaveMem& wave) {
        ChunkInfo form;
        form.fccType = fourCC("WAVE");
        form.cksize = static_cast<std::uint32_t>(waveBytes(wave) - kChunkHeaderBytes);
        return stream_.createChunk(form, RiffCreate::riff) == kRiffOk &&
               writeChunk(fourCC("fmt "), waveFormat(wave.format)) &&
               writeChunk(fourCC("data"), wave.samples.get(), static_cast<std::int64_t>(wave.byteSize)) &&
               stream_.ascend(form) == kRiffOk;
    }

    bool writeChunk(std::uint32_t id, const Body& body) { return writeChunk(id, body.data(), body.size()); }

    bool writeChunk(std::uint32_t id, const void* body, std::int64_t bytes) {
        ChunkInfo info;
        info.ckid = id;
        info.cksize = static_cast<std::uint32_t>(bytes);
        return stream_.createChunk(info) == kRiffOk && stream_.write(body, bytes) &&
               stream_.ascend(info) == kRiffOk;
    }

    RiffStream& stream_;
};

}  // namespace

std::int64_t projectBytes(const Project& project) {
    std::int64_t bytes = kFormHeaderBytes + chunkBytes(header(project)) + chunkBytes(keyMap(project));
    for (const ProjectFile& file : project.files) {
        bytes +=
            chunkBytes(fileSettings(0, file)) + waveBytes(*file.wave) + chunkBytes(grainList(0, file.grains));
    }
    for (const ProjectPad& pad : project.pads) {
        bytes += chunkBytes(padSettings(0, pad)) + chunkBytes(grainList(0, pad.grains));
    }
    return bytes;
}

HRESULT writeProject(RiffStream& stream, const Project& project) {
    return FormWriter(stream).write(project) ? S_OK : E_FAIL;
}

}  // namespace marnoth
