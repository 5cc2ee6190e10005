#include "shells/lv2/PluginState.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "hostkit/FileStream.h"
#include "hostkit/MakeObject.h"
#include "hostkit/MemoryStream.h"
#include "platform/bytes/RiffStream.h"
#include "project/ProjectReader.h"
#include "shellkit/files/FaultText.h"
#include "shells/lv2/ProjectStream.h"

namespace marnoth {

namespace {

constexpr std::int32_t kStateVersion = 1;
constexpr std::uint32_t kPlain = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;

/// A path that the host has given; it goes back to the host.
class HostPath {
public:
    HostPath(char* path, const LV2_Feature* const* features)
        : path_(path), free_(featureOf<LV2_State_Free_Path>(features, LV2_STATE__freePath)) {}
    ~HostPath() {
        if (free_) {
            free_->free_path(free_->handle, path_);
        } else {
            std::free(path_);
        }
    }
    HostPath(const HostPath&) = delete;
    HostPath& operator=(const HostPath&) = delete;

    const char* get() const { return path_; }

private:
    char* path_;
    const LV2_State_Free_Path* free_;
};

/// A property is nothing where the host has none.
std::optional<std::int32_t> versionIn(const void* value, std::size_t bytes) {
    std::int32_t version = 0;
    if (!value || bytes != sizeof version) return {};
    std::memcpy(&version, value, sizeof version);
    return version;
}

std::string textIn(const void* value, std::size_t bytes) {
    const auto* text = static_cast<const char*>(value);
    return text ? std::string(text, strnlen(text, bytes)) : std::string();
}

/// A path in a state as it is now.
std::filesystem::path pathIn(const std::string& path, const LV2_Feature* const* features) {
    const auto* map = featureOf<LV2_State_Map_Path>(features, LV2_STATE__mapPath);
    if (!map) return path;
    const HostPath present(map->absolute_path(map->handle, path.c_str()), features);
    return present.get() ? present.get() : path;
}

/// Reads a project whole, and throws it away.
LoadFault faultOf(IStream& stream) {
    RiffStream riff;
    if (riff.open(&stream)) return {.kind = FaultKind::cannotRead};
    Project project;
    const LoadFault fault = readProject(riff, project);
    return fault ? fault : grainBelowZero(project);
}

/// Calls what must not throw into a host.
template <class Work>
LV2_State_Status guarded(const HostLog& log, Work work) try {
    return work();
} catch (const std::exception& error) {
    log.error(std::string("its state: ") + error.what());
    return LV2_STATE_ERR_UNKNOWN;
}

}  // namespace

LV2_State_Status PluginState::refuse(const std::string& why) const {
    log_.error("the state isn't restored: " + why);
    return LV2_STATE_ERR_UNKNOWN;
}

LV2_State_Status PluginState::save(LV2_State_Store_Function store, LV2_State_Handle handle,
                                   const LV2_Feature* const* features) {
    return guarded(log_, [&] {
        const std::lock_guard lock(one_);
        const auto* makePath = featureOf<LV2_State_Make_Path>(features, LV2_STATE__makePath);
        const auto* mapPath = featureOf<LV2_State_Map_Path>(features, LV2_STATE__mapPath);
        const LV2_State_Status versioned =
            store(handle, urids_.stateVersion, &kStateVersion, sizeof kStateVersion, urids_.atomInt, kPlain);
        if (versioned != LV2_STATE_SUCCESS) return versioned;
        const LV2_State_Status saved = makePath && mapPath
                                           ? saveFile(store, handle, *makePath, *mapPath, features)
                                           : saveChunk(store, handle);
        return saved == LV2_STATE_SUCCESS ? saveView(store, handle) : saved;
    });
}

LV2_State_Status PluginState::saveView(LV2_State_Store_Function store, LV2_State_Handle handle) {
    const std::string view = pages_.view();
    if (view.empty()) return LV2_STATE_SUCCESS;
    return store(handle, urids_.view, view.c_str(), view.size() + 1, urids_.atomString, kPlain);
}

LV2_State_Status PluginState::saveFile(LV2_State_Store_Function store, LV2_State_Handle handle,
                                       const LV2_State_Make_Path& makePath, const LV2_State_Map_Path& mapPath,
                                       const LV2_Feature* const* features) {
    const HostPath path(makePath.path(makePath.handle, "project.mrn"), features);
    if (!path.get()) return saveChunk(store, handle);
    RefPtr<FileStream> file;
    HRESULT hr = FileStream::open(path.get(), FileMode::create, &file);
    if (SUCCEEDED(hr)) hr = host_.save(*makeObject<ProjectStream>(RefPtr<IStream>(file.get())));
    if (SUCCEEDED(hr)) hr = file->close();
    const HostPath name(SUCCEEDED(hr) ? mapPath.abstract_path(mapPath.handle, path.get()) : nullptr,
                        features);
    if (!name.get()) {
        log_.error(std::string("the project can't be written to ") + path.get());
        return LV2_STATE_ERR_UNKNOWN;
    }
    return store(handle, urids_.project, name.get(), std::strlen(name.get()) + 1, urids_.atomPath, kPlain);
}

LV2_State_Status PluginState::saveChunk(LV2_State_Store_Function store, LV2_State_Handle handle) {
    const RefPtr<MemoryStream> memory = makeObject<MemoryStream>();
    if (FAILED(host_.save(*makeObject<ProjectStream>(RefPtr<IStream>(memory.get()))))) {
        log_.error("the project can't be saved");
        return LV2_STATE_ERR_UNKNOWN;
    }
    const std::vector<std::uint8_t>& bytes = memory->bytes();
    return store(handle, urids_.project, bytes.data(), bytes.size(), urids_.atomChunk, kPlain);
}

PluginState::Stored PluginState::retrieved(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                                           LV2_URID key) {
    Stored stored;
    std::uint32_t flags = 0;
    stored.value = retrieve(handle, key, &stored.bytes, &stored.type, &flags);
    return stored;
}

LV2_State_Status PluginState::restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                                      const LV2_Feature* const* features) {
    return guarded(log_, [&] {
        const std::lock_guard lock(one_);
        const Stored project = retrieved(retrieve, handle, urids_.project);
        const Stored version = retrieved(retrieve, handle, urids_.stateVersion);
        if (!project.value && !version.value) return LV2_STATE_ERR_NO_PROPERTY;
        const std::optional<std::int32_t> number =
            version.type == urids_.atomInt ? versionIn(version.value, version.bytes) : std::nullopt;
        if (!number) return refuse("it has no version");
        if (*number != kStateVersion)
            return refuse("it is of version " + std::to_string(*number) + ", and this reads version " +
                          std::to_string(kStateVersion));
        if (!project.value) return refuse("it has no project");
        const Stored view = retrieved(retrieve, handle, urids_.view);
        const LV2_State_Status loaded = load(project, features);
        if (loaded == LV2_STATE_SUCCESS)
            pages_.restore(view.type == urids_.atomString ? textIn(view.value, view.bytes) : std::string());
        return loaded;
    });
}

LV2_State_Status PluginState::load(const Stored& project, const LV2_Feature* const* features) {
    if (project.type == urids_.atomPath) {
        RefPtr<FileStream> file;
        const std::filesystem::path path = pathIn(textIn(project.value, project.bytes), features);
        if (FAILED(FileStream::open(path, FileMode::read, &file)))
            return refuse(path.string() + " can't be opened");
        return load(*file);
    }
    if (project.type != urids_.atomChunk) return refuse("its project is neither a file nor a chunk");
    const auto* bytes = static_cast<const std::uint8_t*>(project.value);
    return load(*makeObject<MemoryStream>(std::vector<std::uint8_t>(bytes, bytes + project.bytes)));
}

LV2_State_Status PluginState::load(IStream& project) {
    if (const LoadFault fault = faultOf(project)) return refuse(inWords(fault));
    project.Seek({}, STREAM_SEEK_SET, nullptr);
    if (FAILED(host_.load(*makeObject<ProjectStream>(RefPtr<IStream>(&project)))))
        return refuse(inWords(lastLoadFault(host_.sampler())));
    host_.sampler().SetRefreshRequest(1);
    return LV2_STATE_SUCCESS;
}

}  // namespace marnoth
