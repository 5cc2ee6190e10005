#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace marnoth {

/// A copy of the open project that outlives a crash, in the user's state folder. Each program that runs has a
/// place of its own there, held by a lock that goes with the process; what a former one left in a place is
/// found by the next that gets it. Writing goes on beside the caller and puts a whole file in the place of
/// the former one. The window's thread.
class RecoveryFile {
public:
    /// `folder` is made when it is missing. Where no place can be had nothing is kept.
    explicit RecoveryFile(const std::filesystem::path& folder);
    /// The program ends well: nothing is left.
    ~RecoveryFile();
    RecoveryFile(const RecoveryFile&) = delete;
    RecoveryFile& operator=(const RecoveryFile&) = delete;

    /// What a program that didn't end well has left here; nothing without one.
    const std::optional<std::filesystem::path>& found() const { return found_; }
    /// What was found has been answered for: it goes with the next copy, or at the end. One that can't be
    /// read is put aside instead, under the name that is given back.
    void settle() { found_.reset(); }
    std::filesystem::path putAside();
    /// What was found stays where it is, for the next program; copies go to another place.
    void leaveFound();

    /// The state that a copy is made of; nothing when it can't be had. Called on a thread of its own.
    using Take = std::function<std::optional<std::vector<std::uint8_t>>()>;
    /// Takes the state and writes it in the place of the former copy. False while that is being done for the
    /// call before, and while what was found waits for an answer.
    bool write(Take take);
    /// Whether a copy is still being written; waits until it is.
    bool isBusy() const { return writes_; }
    void finish();
    /// The project is safe elsewhere: the copy goes.
    void discard();
    /// Nobody could be asked: the copy stays when the program ends, and is found by the next.
    void keep() { keeps_ = true; }
    /// Where the copy lies; empty without a place.
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path place(int number, const char* ending) const;
    bool isLeft(int number) const;
    bool takePlace(int number);
    void takeAnyPlace(bool wantsLeft);

    const std::filesystem::path folder_;
    std::filesystem::path path_;
    std::optional<std::filesystem::path> found_;
    int lock_ = -1;
    bool keeps_ = false;
    std::atomic<bool> writes_ = false;
    std::thread writer_;
};

/// The user's folder for what a program keeps between its runs: "marnoth" in the state folder of
/// freedesktop.org's base directories.
std::filesystem::path stateFolder();

}  // namespace marnoth
