#include "shells/cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <new>
#include <ostream>
#include <set>
#include <string>

#include "seam/Version.h"
#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiFile.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/InfoCommand.h"
#include "shells/cli/PageCommand.h"
#include "shells/cli/RenderCommand.h"
#include "shells/cli/ScriptRun.h"

namespace marnoth {

namespace {

constexpr int kFailedStatus = 1;
constexpr int kWrongUseStatus = 2;

constexpr std::uint32_t kLowestRate = 1000;
constexpr std::uint32_t kHighestRate = 768000;
constexpr std::int32_t kMostBlockFrames = 1 << 20;
constexpr double kSlowestTempo = 1;
constexpr double kFastestTempo = 1000;
constexpr double kMostBeats = 1e6;

constexpr const char* kProgramHelp =
    "Marnoth, a loop-based groove sampler, without a host.\n"
    "'marnoth COMMAND --help' tells about a command.";

constexpr const char* kScriptHelp =
    "Examples:\n"
    "  marnoth script take.mrs --out audio > take.transcript\n";

constexpr const char* kRenderHelp =
    "Pads count from 1, as on the page; pad 1 plays on note 60, the next ones on the white keys above.\n"
    "Without a MIDI file every loaded pad is held from beat 0 to the end, 16 beats unless --beats says\n"
    "otherwise. With one, its notes play the pads and it ends at its last bar. A pad is one-shot: a note\n"
    "starts it whatever the note's length, and a second note switches a loop off. With --gate a pad\n"
    "sounds as long as its notes are held.\n"
    "With --project the pads are those of a project, and --pad lays files on top of them. With --save what\n"
    "was set up is kept in a project, audio and all, once the render is done; a name without .mrn gets it,\n"
    "and a file of that name is replaced. A project holds no notes, no tempo and no key.\n"
    "The tempo is --tempo, else that of the MIDI file with all its changes, else 120.\n"
    "\n"
    "Examples:\n"
    "  marnoth render --pad 1=drums.wav --tempo 112 --out loop.wav\n"
    "  marnoth render --pad 1=drums.wav --pad 3=bass.wav --midi song.mid --out song.wav --stems stems\n"
    "  marnoth render --pad 1=drums.wav --pad 2=bass.wav --out take.wav --save groove.mrn\n"
    "  marnoth render --project groove.mrn --midi song.mid --out song.wav\n";

constexpr const char* kInfoHelp =
    "Examples:\n"
    "  marnoth info drums.wav\n"
    "  marnoth info groove.mrn\n"
    "  marnoth info drums.wav --json\n";

constexpr const char* kPageHelp =
    "Without a project it is the page of an empty instrument. The strip in the middle shows the first file\n"
    "of the Loop Bin, or with --key-map which keys and velocities play the pads.\n"
    "\n"
    "Examples:\n"
    "  marnoth page groove.mrn --out page.png\n"
    "  marnoth page groove.mrn --out pad3.png --pad 3 --key-map --scale 2\n"
    "  marnoth page groove.mrn --out menu.png --open menu\n";

/// What the arguments say, as text where CLI11 doesn't read it itself.
struct Request {
    std::string script;
    std::string scriptOut;
    std::vector<std::string> pads;
    std::string key;
    RenderOptions render;
    InfoOptions info;
    PageOptions page;
};

/// Takes numbers between the two, and nothing that only looks like a number.
CLI::Validator within(double lowest, double highest) {
    const std::string range = "a number from " + printReal(lowest) + " to " + printReal(highest);
    const auto problem = [=](const std::string& word) -> std::string {
        double value = 0;
        // Written this way round since "nan" lies neither below nor above.
        if (CLI::detail::lexical_cast(word, value) && value >= lowest && value <= highest) return {};
        return "write " + range + " in place of \"" + word + "\"";
    };
    return CLI::Validator(problem, "");
}

/// The grammar of the command line; fills a request.
class Grammar {
public:
    explicit Grammar(Request& request) {
        app_.set_version_flag("--version", std::string("marnoth ") + kVersion);
        app_.require_subcommand(1);
        // A file's name may begin with a slash on every system.
        app_.allow_windows_style_options(false);
        addScript(request);
        addRender(request);
        addInfo(request);
        addPage(request);
    }

    CLI::App& app() { return app_; }
    bool chose(const char* name) const { return app_.got_subcommand(name); }

    /// How to ask for help about what was chosen.
    std::string helpCall() const {
        std::string call = "marnoth ";
        for (const CLI::App* sub : app_.get_subcommands()) call += sub->get_name() + " ";
        return call + "--help";
    }

private:
    void addScript(Request& request) {
        CLI::App* script = app_.add_subcommand("script", "Run a session script and print its transcript");
        script->add_option("FILE", request.script, "The script")->required();
        script->add_option("--out", request.scriptOut, "Folder for the audio; made when it is missing")
            ->required()
            ->type_name("DIR");
        script->footer(kScriptHelp);
    }

    void addRender(Request& request) {
        CLI::App* render = app_.add_subcommand("render", "Render loops and notes offline into a WAV file");
        RenderOptions& options = request.render;
        render->add_option("--pad", request.pads, "Load a WAV file onto a pad, 1 to 16; may be repeated")
            ->allow_extra_args(false)
            ->type_name("N=FILE");
        render->add_option("--project", options.project, "Load a project")->type_name("FILE.mrn");
        addRecover(*render, options.recover);
        render->add_option("--midi", options.midi, "Standard MIDI file to play")->type_name("FILE");
        render->add_option("--tempo", options.tempo, "Beats per minute")
            ->check(within(kSlowestTempo, kFastestTempo))
            ->type_name("BPM");
        render->add_option("--beats", options.beats, "Length in beats")
            ->check(within(0.001, kMostBeats))
            ->type_name("N");
        render->add_option("--rate", options.rate, "Frames per second, 44100 by default")
            ->check(within(kLowestRate, kHighestRate))
            ->type_name("R");
        render
            ->add_option("--block", options.block,
                         "Frames of one block, 1024 by default: room for a whole fade at the usual rates")
            ->check(within(1, kMostBlockFrames))
            ->type_name("N");
        render->add_option("--key", request.key, "The project's key, such as A, C# or Bb")->type_name("NAME");
        render->add_flag("--gate", options.gate, "Pads sound while their notes are held");
        render->add_option("--out", options.out, "The file to write; - for standard output")
            ->required()
            ->type_name("FILE.wav");
        render->add_option("--stems", options.stems, "Folder for a file of each pad")->type_name("DIR");
        render->add_option("--save", options.save, "Keep the pads in a project")->type_name("FILE.mrn");
        render->footer(kRenderHelp);
    }

    void addInfo(Request& request) {
        CLI::App* info = app_.add_subcommand("info", "Tell what is in a WAV file or a project");
        info->add_option("FILE", request.info.file, "The WAV file or project")->required();
        info->add_flag("--json", request.info.json, "Print JSON");
        addRecover(*info, request.info.recover);
        info->footer(kInfoHelp);
    }

    void addPage(Request& request) {
        CLI::App* page = app_.add_subcommand("page", "Draw the editor page into a PNG file");
        PageOptions& options = request.page;
        page->add_option("PROJECT.mrn", options.project, "The project that the page shows");
        addRecover(*page, options.recover);
        page->add_option("--out", options.out, "The file to write; - for standard output")
            ->required()
            ->type_name("FILE.png");
        page->add_option("--pad", options.pad, "The pad that is selected, 1 by default")
            ->check(within(1, 16))
            ->type_name("N");
        page->add_flag("--key-map", options.keyMap, "The strip shows the key map");
        page->add_option(
                "--open", options.open,
                "What is open over it: a list (output, channel, root, snap), the pad's menu (menu) or a "
                "question (clear, delete, load)")
            ->check(CLI::IsMember(openables()))
            ->type_name("WHAT");
        page->add_option("--scale", options.scale, "Size of a pixel, 1 to 3")
            ->check(within(1, 3))
            ->type_name("S");
        page->footer(kPageHelp);
    }

    static void addRecover(CLI::App& command, bool& wanted) {
        command.add_flag("--recover", wanted,
                         "Where a save was cut off, take the project that was there before (.mrn.bak)");
    }

    CLI::App app_{kProgramHelp, "marnoth"};
};

RenderOptions renderOptions(const Request& request) {
    RenderOptions options = request.render;
    if (request.pads.empty() && options.project.empty())
        throw WrongUse("there is nothing to play: give --pad N=FILE.wav or --project FILE.mrn");
    std::set<int> taken;
    for (const std::string& text : request.pads) {
        options.pads.push_back(readPadFile(text));
        const int pad = options.pads.back().pad;
        if (!taken.insert(pad).second)
            throw WrongUse("--pad " + std::to_string(pad + 1) + " is given twice: a pad holds one file");
    }
    if (!request.key.empty()) options.key = readKey(request.key);
    if (!options.midi.empty() && !canReadMidi())
        throw WrongUse("--midi needs a build for Linux: render without it, or use 'marnoth script'");
    return options;
}

int carryOut(const Request& request, const Grammar& grammar, std::ostream& out, std::ostream& errors) {
    int status = 0;
    if (grammar.chose("script"))
        status = runScriptFile(request.script, pathFromUtf8(request.scriptOut), out, errors);
    else if (grammar.chose("render"))
        runRender(renderOptions(request), {out, errors});
    else if (grammar.chose("page"))
        runPage(request.page, {out, errors});
    else
        runInfo(request.info, {out, errors});
    if (!out.flush()) throw FileFailure("standard output can't be written");
    return status;
}

int report(std::ostream& errors, int status, const std::string& text) {
    errors << "marnoth: " << inOneLine(text) << std::endl;
    return status;
}

}  // namespace

int runCommandLine(std::vector<std::string> arguments, std::ostream& out, std::ostream& errors) {
    Request request;
    Grammar grammar(request);
    try {
        std::reverse(arguments.begin(), arguments.end());
        grammar.app().parse(std::move(arguments));
        return carryOut(request, grammar, out, errors);
    } catch (const CLI::Success& wish) {
        return grammar.app().exit(wish, out, errors);
    } catch (const CLI::Error& error) {
        return report(errors, kWrongUseStatus, std::string(error.what()) + "; see " + grammar.helpCall());
    } catch (const WrongUse& error) {
        return report(errors, kWrongUseStatus, error.what());
    } catch (const std::bad_alloc&) {
        return report(errors, kFailedStatus, "there isn't enough memory");
    } catch (const std::exception& error) {
        return report(errors, kFailedStatus, error.what());
    }
}

}  // namespace marnoth
