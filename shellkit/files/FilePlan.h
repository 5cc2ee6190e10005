#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "platform/files/FileIdentity.h"

namespace marnoth {

/// What a command is going to read and to write, so that nothing is written over what is read, or twice,
/// however it is named: hard links, symbolic links and other spellings are one file.
class FilePlan {
public:
    /// `what` is how its user knows the file: "--pad 1".
    void read(std::string what, const std::filesystem::path& file);
    /// Throws `WrongUse` when `file` is read, or written as something else. `what` and `name` are what its
    /// user wrote.
    void write(std::string what, const std::string& name, const std::filesystem::path& file);
    /// The same, for what may be written again.
    void check(const std::string& what, const std::string& name, const std::filesystem::path& file) const;
    /// The same, for a file beside `name` that comes and goes while that is written.
    void checkBeside(const std::string& what, const std::string& name,
                     const std::filesystem::path& file) const;

    /// Whether it is among what is read or written.
    bool has(const std::filesystem::path& file) const { return find(file) != nullptr; }

private:
    /// What its user knows a file as that is read or written; null for any other.
    const std::string* find(const std::filesystem::path& file) const;

    std::map<FileIdentity, std::string> files_;
};

/// An output, with the name that it grows under. What goes to standard output isn't one: `checkPrinting`.
void planOutput(FilePlan& plan, const std::string& what, const std::string& file);
/// A project that is loaded, with the backup that may be loaded in its place.
void planProject(FilePlan& plan, const std::string& what, const std::string& file);
/// A project that is saved, with its backup.
void planSave(FilePlan& plan, const std::string& what, const std::string& file);
/// What a command prints may be appended to a file: to none that it reads.
void checkPrinting(const FilePlan& plan);

}  // namespace marnoth
