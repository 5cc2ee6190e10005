/// The hands of tests/hosts/power-cut: saves a project while its file system's image is copied at every step,
/// and looks at what such a copy holds.
///
///     power_cut save FILE NUMBER                  a project with a number in it
///     power_cut watch FILE NUMBER IMAGE FOLDER [commit]
///         the same over one that is there; IMAGE is copied into FOLDER before each change and at the end.
///         With `commit` the file system is made to write its journal before each copy, as it may at any
///         time.
///     power_cut check FILE LEAST                  a whole project of at least that number must be there, or
///                                                 beside it as its backup; LEAST under its own name

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/bytes/RiffStream.h"
#include "project/ProjectBackup.h"
#include "project/ProjectReader.h"
#include "project/ProjectSave.h"
#include "support/WatchedFiles.h"

namespace marnoth::test {
namespace {

namespace fs = std::filesystem;
using Kind = FileChange::Kind;

/// 48000 frames: enough that nothing of it fits into a file's own record.
Project numbered(std::uint32_t number) {
    Project project;
    project.auditionEnabled = number;
    for (std::int32_t pad = 0; pad < kPads; ++pad) project.keys.push_back({pad, 60, 60, 60, 0, 127});
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    format.nChannels = 1;
    format.nSamplesPerSec = 48000;
    format.wBitsPerSample = 32;
    format.nBlockAlign = 4;
    format.nAvgBytesPerSec = 4 * 48000;
    ProjectFile file;
    file.wave = CWaveMem::make();
    if (FAILED(file.wave->Create(48000, format))) throw std::bad_alloc();
    for (std::size_t i = 0; i < 48000; ++i) file.wave->samples[i] = static_cast<float>(i + number) / 48000;
    file.wave->writeGuardFrame();
    file.settings.lengthSamples = 48000;
    file.settings.midiChannel = -1;
    project.files.push_back(file);
    return project;
}

/// Of a project whose audio is all there; 0 for anything else.
std::uint32_t numberIn(const fs::path& file) {
    RiffStream stream;
    Project project;
    if (!isSavedWhole(file) || stream.open(file, FileMode::read) || readProject(stream, project)) return 0;
    const CWaveMem& wave = *project.files.at(0).wave;
    for (std::size_t i = 0; i < 48000; ++i)
        if (wave.samples[i] != static_cast<float>(i + project.auditionEnabled) / 48000) return 0;
    return project.auditionEnabled;
}

/// Copies of an image while a save goes on.
class Steps {
public:
    Steps(fs::path image, fs::path folder, fs::path witness)
        : image_(std::move(image)), folder_(std::move(folder)), witness_(std::move(witness)) {}

    /// Before a change. Of writes in a row every fortieth is enough.
    void take(const FileChange& change) {
        const bool writesOn = change.kind == Kind::write && last_ == Kind::write;
        last_ = change.kind;
        writes_ = writesOn ? writes_ + 1 : 0;
        if (writes_ % 40 == 0) copy("step");
    }
    void end() { copy("z-saved"); }

private:
    void copy(const std::string& name) {
        if (!witness_.empty()) commit();
        const std::string number = std::to_string(100 + count_++).substr(1);
        fs::copy_file(image_, folder_ / (name + number), fs::copy_options::overwrite_existing);
    }
    /// Syncing any other file takes the journal along.
    void commit() {
        const int file = open(witness_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const bool done = file >= 0 && write(file, "x", 1) == 1 && fsync(file) == 0;
        if (file >= 0) close(file);
        if (!done) throw std::runtime_error("the journal can't be written");
    }

    fs::path image_;
    fs::path folder_;
    fs::path witness_;
    Kind last_ = Kind::close;
    int writes_ = 0;
    int count_ = 0;
};

bool watch(const std::vector<std::string>& words) {
    const fs::path file = words.at(1);
    const bool commits = words.size() > 5;
    Steps steps(words.at(3), words.at(4), commits ? file.parent_path() / "witness" : fs::path());
    WatchedFiles files([&](const FileChange& change) { return steps.take(change), true; });
    const auto number = static_cast<std::uint32_t>(std::stoul(words.at(2)));
    if (FAILED(saveProject(numbered(number), file, files))) return false;
    steps.end();
    return true;
}

bool check(const fs::path& file, std::uint32_t least) {
    const std::uint32_t own = numberIn(file);
    const std::uint32_t backup = numberIn(backupOf(file));
    std::cout << own << " under its name, " << backup << " as its backup\n";
    return own >= least || (least < 2 && backup >= least);
}

bool run(const std::vector<std::string>& words) {
    const auto number = static_cast<std::uint32_t>(std::stoul(words.at(2)));
    if (words.at(0) == "save") return SUCCEEDED(saveProject(numbered(number), fs::path(words.at(1))));
    return words.at(0) == "watch" ? watch(words) : check(words.at(1), number);
}

}  // namespace
}  // namespace marnoth::test

int main(int argc, char** argv) try {
    return marnoth::test::run({argv + 1, argv + argc}) ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception& error) {
    std::cerr << "power_cut: " << error.what() << '\n';
    return EXIT_FAILURE;
}
