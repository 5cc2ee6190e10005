#pragma once

#include <functional>
#include <optional>
#include <string>

namespace marnoth {

/// What the user is told about a project that wasn't loaded.
struct LoadAdvice {
    std::string text;     ///< sentences, in UTF-8
    std::string instead;  ///< a full path in UTF-8 that `text` asks to load in its place; empty for none
};

/// What a shell has to say about the load of `path` that has just failed, on the same thread.
using LoadAdvisor = std::function<LoadAdvice(const std::string& path)>;

/// What a shell has to say of the project in `path` before it is loaded, on the same thread, since a load
/// begins with an empty project whatever comes of it; nothing where it may be loaded.
using LoadCheck = std::function<std::optional<LoadAdvice>(const std::string& path)>;

/// Whether a shell lets the project that there is go for another one: it calls `then` with that, at once or
/// when its user has answered, on the same thread.
using LoadGuard = std::function<void(std::function<void(bool mayGo)> then)>;

/// Told that the instrument holds what `path` does: it was just saved to it, or loaded from there.
using ProjectListener = std::function<void(const std::string& path, bool saved)>;

}  // namespace marnoth
