#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/FileSystem.h"

namespace marnoth::test {

/// One change of files or names. `path` and `to` are names without folders.
struct FileChange {
    enum class Kind { create, write, sync, close, rename, remove, syncFolder };
    Kind kind;
    std::string path;
    std::string to = {};

    bool operator==(const FileChange&) const = default;
};

/// The system's files, with each change told before it happens.
class WatchedFiles final : public FileSystem {
public:
    /// Whether the change may happen; without that it fails.
    using Watch = std::function<bool(const FileChange&)>;

    explicit WatchedFiles(Watch watch) : watch_(std::move(watch)) {}

    std::unique_ptr<ByteStream> open(const std::filesystem::path& path, FileMode mode) override {
        if (!watch_({FileChange::Kind::create, nameOf(path)})) return nullptr;
        auto bytes = systemFiles().open(path, mode);
        if (!bytes) return nullptr;
        return std::make_unique<WatchedBytes>(std::move(bytes), nameOf(path), watch_);
    }
    bool rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return watch_({FileChange::Kind::rename, nameOf(from), nameOf(to)}) && systemFiles().rename(from, to);
    }
    bool remove(const std::filesystem::path& path) override {
        return watch_({FileChange::Kind::remove, nameOf(path)}) && systemFiles().remove(path);
    }
    bool syncFolderOf(const std::filesystem::path& path) override {
        return watch_({FileChange::Kind::syncFolder, {}}) && systemFiles().syncFolderOf(path);
    }

private:
    class WatchedBytes final : public ByteStream {
    public:
        WatchedBytes(std::unique_ptr<ByteStream> bytes, std::string name, const Watch& watch)
            : bytes_(std::move(bytes)), name_(std::move(name)), watch_(watch) {}

        std::int64_t read(void* to, std::int64_t count) override { return bytes_->read(to, count); }
        bool write(const void* from, std::int64_t count) override {
            return watch_({FileChange::Kind::write, name_}) && bytes_->write(from, count);
        }
        bool seek(std::int64_t offset) override { return bytes_->seek(offset); }
        std::int64_t position() const override { return bytes_->position(); }
        std::optional<std::int64_t> size() override { return bytes_->size(); }
        bool sync() override { return watch_({FileChange::Kind::sync, name_}) && bytes_->sync(); }
        bool close() override { return watch_({FileChange::Kind::close, name_}) && bytes_->close(); }

    private:
        std::unique_ptr<ByteStream> bytes_;
        std::string name_;
        const Watch& watch_;
    };

    static std::string nameOf(const std::filesystem::path& path) { return path.filename().string(); }

    const Watch watch_;
};

}  // namespace marnoth::test
