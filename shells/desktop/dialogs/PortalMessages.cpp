#include "shells/desktop/dialogs/PortalMessages.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

#include "platform/text/UriList.h"
#include "shellkit/page/FileFilter.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kPattern = 0;  ///< a filter's part is a pattern, not a type of file
constexpr std::uint32_t kChosen = 0;
constexpr std::uint32_t kCancelledByUser = 1;

/// A pattern that takes large and small letters: "*.[wW][aA][vV]".
std::string ofBothCases(std::string_view pattern) {
    std::string both;
    for (const char c : pattern) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const char other = static_cast<char>(c ^ 0x20);
        both += isLetter ? std::string{'[', c, other, ']'} : std::string{c};
    }
    return both;
}

/// Writes one message; whatever goes wrong makes it unusable.
class CallWriter {
public:
    CallWriter(const BusLibrary& bus, sd_bus_message* message) : bus_(bus), message_(message) {}

    template <class... Values>
    void append(const char* types, Values... values) {
        note(bus_.message_append(message_, types, values...));
    }
    template <class Contents>
    void within(char kind, const char* types, Contents contents) {
        note(bus_.message_open_container(message_, kind, types));
        contents();
        note(bus_.message_close_container(message_));
    }
    /// One entry of the options.
    template <class Contents>
    void option(const char* name, const char* type, Contents contents) {
        within('e', "sv", [&] {
            append("s", name);
            within('v', type, contents);
        });
    }
    /// A path is bytes with a zero behind them.
    void bytes(const std::string& text) {
        note(bus_.message_append_array(message_, 'y', text.c_str(), text.size() + 1));
    }
    bool isFine() const { return fine_; }

private:
    void note(int result) { fine_ = fine_ && result >= 0; }

    const BusLibrary& bus_;
    sd_bus_message* const message_;
    bool fine_ = true;
};

void writeFilter(CallWriter& writer, const std::string& name, const std::vector<std::string>& patterns) {
    writer.within('r', "sa(us)", [&] {
        writer.append("s", name.c_str());
        writer.within('a', "(us)", [&] {
            for (const std::string& pattern : patterns)
                writer.append("(us)", kPattern, ofBothCases(pattern).c_str());
        });
    });
}

void writeOptions(CallWriter& writer, const FileQuestion& question) {
    const FileFilter filter(question.filter);
    writer.within('a', "{sv}", [&] {
        writer.option("handle_token", "s", [&] { writer.append("s", "marnoth"); });
        writer.option("modal", "b", [&] { writer.append("b", 1); });
        writer.option("filters", "a(sa(us))", [&] {
            writer.within('a', "(sa(us))", [&] {
                writeFilter(writer, filter.name, filter.patterns);
                writeFilter(writer, "*", {"*"});
            });
        });
        if (!question.folder.empty())
            writer.option("current_folder", "ay", [&] { writer.bytes(question.folder); });
    });
}

BusMessage newMessage(const BusLibrary& bus, sd_bus* connection, const std::string& path,
                      const char* interface, const char* member) {
    sd_bus_message* message = nullptr;
    bus.message_new_method_call(connection, &message, kPortalName, path.c_str(), interface, member);
    return BusMessage(message, {&bus});
}

/// The first of the addresses in a list of them.
std::optional<std::string> firstFile(const BusLibrary& bus, sd_bus_message* message) {
    std::optional<std::string> file;
    if (bus.message_enter_container(message, 'a', "s") <= 0) return file;
    for (const char* uri = nullptr; bus.message_read(message, "s", &uri) > 0;)
        if (const auto files = filesOfUriList(uri, ""); !file && !files.empty()) file = files.front();
    bus.message_exit_container(message);
    return file;
}

/// Of the results, which are named values, the file.
std::optional<std::string> fileOfResults(const BusLibrary& bus, sd_bus_message* message) {
    std::optional<std::string> file;
    if (bus.message_enter_container(message, 'a', "{sv}") <= 0) return file;
    while (bus.message_enter_container(message, 'e', "sv") > 0) {
        const char* name = nullptr;
        bus.message_read(message, "s", &name);
        const bool isList =
            name && std::string_view(name) == "uris" && bus.message_enter_container(message, 'v', "as") > 0;
        if (isList) {
            file = firstFile(bus, message);
            bus.message_exit_container(message);
        } else if (bus.message_skip(message, "v") < 0) {
            break;
        }
        if (bus.message_exit_container(message) < 0) break;
    }
    return file;
}

}  // namespace

BusMessage openDialogMessage(const BusLibrary& bus, sd_bus* connection, const FileQuestion& question,
                             unsigned long window) {
    const bool saves = question.kind == FileKind::save;
    BusMessage message = newMessage(bus, connection, kPortalPath, "org.freedesktop.portal.FileChooser",
                                    saves ? "SaveFile" : "OpenFile");
    if (!message) return message;
    CallWriter writer(bus, message.get());
    std::array<char, 32> parent{};
    std::snprintf(parent.data(), parent.size(), "x11:%lx", window);
    writer.append("ss", parent.data(), FileFilter(question.filter).title(saves).c_str());
    writeOptions(writer, question);
    if (!writer.isFine()) message.reset();
    return message;
}

BusMessage closeDialogMessage(const BusLibrary& bus, sd_bus* connection, const std::string& request) {
    return newMessage(bus, connection, request, "org.freedesktop.portal.Request", "Close");
}

FileAnswer answerOfResponse(const BusLibrary& bus, sd_bus_message* response) {
    std::uint32_t outcome = 2;
    if (bus.message_read(response, "u", &outcome) <= 0) return {.wasAsked = false, .file = {}};
    if (outcome == kChosen) return {.wasAsked = true, .file = fileOfResults(bus, response)};
    return {.wasAsked = outcome == kCancelledByUser, .file = {}};
}

}  // namespace marnoth
