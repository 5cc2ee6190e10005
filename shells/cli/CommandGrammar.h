#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "shells/cli/DevicesCommand.h"
#include "shells/cli/InfoCommand.h"
#include "shells/cli/PageCommand.h"
#include "shells/cli/PlayCommand.h"
#include "shells/cli/RenderCommand.h"

namespace marnoth {

/// What the arguments say, as text where the grammar doesn't read it itself.
struct Request {
    std::string script;
    std::string scriptOut;
    bool component = false;  ///< the script plays the registered one
    std::vector<std::string> pads;
    std::string bits;
    bool noDither = false;
    std::string key;
    RenderOptions render;
    InfoOptions info;
    PageOptions page;
    PlayOptions play;
    DevicesOptions devices;
    bool quiet = false;
};

/// The one description of the command line: what is read, what `--help` prints, and what manual page and
/// completions are made from. Parsing fills a request, which must outlive this.
class CommandGrammar {
public:
    explicit CommandGrammar(Request& request);
    CommandGrammar(const CommandGrammar&) = delete;
    CommandGrammar& operator=(const CommandGrammar&) = delete;

    CLI::App& app() { return app_; }
    const CLI::App& app() const { return app_; }
    /// False too for a command that there isn't on this system.
    bool chose(const std::string& name) const {
        const auto chosen = app_.get_subcommands();
        return !chosen.empty() && chosen.front()->get_name() == name;
    }

private:
    void addScript(Request& request);
    void addRender(Request& request);
    void addInfo(Request& request);
    void addPage(Request& request);
    void addPlay(Request& request);
    void addDevices(Request& request);

    CLI::App app_;
};

}  // namespace marnoth
