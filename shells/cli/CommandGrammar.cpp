#include "shells/cli/CommandGrammar.h"

#include <algorithm>
#include <cmath>

#include "seam/Version.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/LoopRates.h"

namespace marnoth {

namespace {

constexpr std::int32_t kMostBlockFrames = 1 << 20;
constexpr double kSlowestTempo = 1;
constexpr double kFastestTempo = 1000;
constexpr double kMostBeats = 1e6;
constexpr double kMostGainDecibels = 100;

/// Whether instruments can be registered on this system, and whether there is a window to play in.
#ifdef _WIN32
constexpr bool kHasComponents = true;
constexpr bool kHasDesktop = false;
#else
constexpr bool kHasComponents = false;
constexpr bool kHasDesktop = true;
#endif

constexpr const char* kProgramHelp =
    "Marnoth, a loop-based groove sampler, without a host.\n"
    "'marnoth COMMAND --help' tells about a command.";

constexpr const char* kProgramFooter =
    "Environment:\n"
    "  TMPDIR, TMP, TEMP, TEMPDIR\n"
    "                     The first that is set names the folder for what is on its way into a pipe or a\n"
    "                     device; else /tmp. On Windows it is TMP, else TEMP.\n"
    "  FONTCONFIG_FILE, FONTCONFIG_PATH, FONTCONFIG_SYSROOT, HOME, XDG_CONFIG_HOME, XDG_DATA_HOME,\n"
    "  XDG_DATA_DIRS, XDG_CACHE_HOME\n"
    "                     Where page finds the fonts of the system. Not on Windows.\n"
    "\n"
    "Exit status:\n"
    "  0 when all went well, 1 when something failed, 2 for a wrong use; 130 and 143 when it was\n"
    "  interrupted or asked to end.\n";

constexpr const char* kScriptHelp =
    "A line holds one command, in 65536 bytes at most.\n"
    "\n"
    "Examples:\n"
    "  marnoth script take.mrs --out audio > take.transcript\n";

constexpr const char* kComponentHelp =
    "  marnoth script take.mrs --out audio --com\n"
    "\n"
    "The component is Marnoth.dll as hosts find it: register.cmd, which lies beside it, registers it.\n";

constexpr const char* kRenderHelp =
    "Pads count from 1, as on the page; pad 1 plays on note 60, the next ones on the white keys above.\n"
    "Without a MIDI file every loaded pad is held from beat 0 beyond the end, 16 beats unless --beats says\n"
    "otherwise. With one, its notes play the pads and it ends behind its last bar, with 20 ms in which\n"
    "what still sounds fades out, or with --beats where that says. A pad is one-shot: a note starts it\n"
    "whatever the note's length, and a second note switches a loop off. With --gate a pad sounds as long\n"
    "as its notes are held.\n"
    "\n"
    "With --loop a turn of that length is rendered before the files begin: what sounds beyond the end is\n"
    "heard at their beginning, and nothing fades in or out where they join. Loops join that fit into the\n"
    "length, and what notes switch on they have to switch off.\n"
    "\n"
    "Loops that bring a root note follow --key; without it nothing is transposed.\n"
    "\n"
    "With --project the pads are those of a project, and --pad lays files on top of them. With --save what\n"
    "was set up is kept in a project, audio and all, once the render is done; a name without .mrn gets it,\n"
    "and a file of that name is replaced. A project holds no notes, no tempo and no key.\n"
    "\n"
    "The tempo is --tempo, else that of the MIDI file with all its changes, else 120. The rate is --rate,\n"
    "else that of most loops, the higher of two that are as many.\n"
    "\n"
    "Files of 16 and 24 bits are dithered, the same render always alike, and clip above full scale, which "
    "is\n"
    "told; 32f, the default, is 32-bit float and never clips. --normalize brings the mix to full scale and\n"
    "the stems by as much, so that they still add up to it; --gain comes on top of that. What would pass\n"
    "4 GiB is written as RF64.\n"
    "\n"
    "Behind the file of a pad may stand how that is set, each behind a comma. A name that holds a comma, a\n"
    "word of letters and \"=\" itself stands in double quotes; N=,volume=-3 sets a pad of the project.\n";

constexpr const char* kRenderExamples =
    "\n"
    "Examples:\n"
    "  marnoth render --pad 1=drums.wav --tempo 112 --out loop.wav\n"
    "  marnoth render --pad 1=drums.wav --pad 3=bass.wav --midi song.mid --out song.wav --stems stems\n"
    "  marnoth render --pad \"1=bass.wav,volume=-3,pan=20L,transpose=2\" --bits 24 --normalize --out a.wav\n"
    "  marnoth render --pad '1=\"one, two=3.wav\",mode=gate' --out take.wav\n"
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

constexpr const char* kPlayHelp =
    "Sound and notes go through JACK where its server runs, and PipeWire counts as one; the mix is "
    "connected\n"
    "to the speakers, and whatever sends notes to the program. Elsewhere sound goes through PulseAudio or\n"
    "ALSA, the mix alone, and notes come from ALSA's ports. marnoth devices lists the names for --audio\n"
    "and --midi; a system and an output of it are joined by a colon, case doesn't matter. With\n"
    "file:OUT.wav all that is played from the start on is written there, heard or not, as 32-bit float.\n"
    "\n"
    "The keys 1 2 3 4, Q W E R, A S D F and Z X C V play the pads, which lie alike; the space bar starts\n"
    "and stops. A project takes the place of what there is, a loop goes onto the next pad, and a MIDI file\n"
    "plays with the transport.\n"
    "\n"
    "Examples:\n"
    "  marnoth\n"
    "  marnoth play groove.mrn song.mid\n"
    "  marnoth play drums.wav bass.wav --audio null --scale 2\n"
    "  marnoth play groove.mrn --audio pulse:headphones --midi keystation --block 128\n"
    "  marnoth play groove.mrn song.mid --audio file:take.wav\n";

constexpr const char* kDevicesHelp =
    "Each system that sound can go through, best first, with its outputs and their own rates, or why it\n"
    "isn't there; and the ports that send notes. No display is needed.\n"
    "\n"
    "Examples:\n"
    "  marnoth devices\n"
    "  marnoth devices --json\n";

/// The settings of `--pad`, a line each.
std::string padSettingsHelp() {
    constexpr std::size_t kColumn = 18;
    std::string text;
    for (const PadSettingWord& word : padSettingWords()) {
        const std::string name = "  " + word.name + "=";
        text += name + std::string(kColumn - name.size(), ' ') + word.meaning + ": " + word.values + "\n";
    }
    return text;
}

/// A check that says what to write in place of what doesn't pass.
CLI::Validator check(const std::string& wanted, const std::function<bool(const std::string&)>& passes) {
    const auto problem = [=](const std::string& word) -> std::string {
        return passes(word) ? "" : "write " + wanted + " in place of \"" + word + "\"";
    };
    return CLI::Validator(problem, "");
}

/// Takes numbers between the two, and nothing that only looks like a number.
CLI::Validator within(double lowest, double highest) {
    return check("a number from " + printReal(lowest) + " to " + printReal(highest),
                 [=](const std::string& word) {
                     double value = 0;
                     // Written this way round since "nan" lies neither below nor above.
                     return CLI::detail::lexical_cast(word, value) && value >= lowest && value <= highest;
                 });
}

CLI::Validator wholeWithin(std::int32_t lowest, std::int32_t highest) {
    const std::string range = std::to_string(lowest) + " to " + std::to_string(highest);
    return check("a whole number from " + range, [=](const std::string& word) {
        std::int64_t value = 0;
        return CLI::detail::lexical_cast(word, value) && value >= lowest && value <= highest;
    });
}

/// The option takes one of these words, which its help names.
void offer(CLI::Option* option, const std::vector<std::string>& words) {
    option->type_name(joined(words, "|"))->check(check(alternatives(words), [=](const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    }));
}

void addOut(CLI::App& command, std::string& out, const char* file) {
    command.add_option("-o,--out", out, "The file to write; - for standard output")
        ->required()
        ->type_name(file);
}

void addQuiet(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "Print warnings and errors only");
}

void addRecover(CLI::App& command, bool& wanted) {
    command.add_flag("--recover", wanted,
                     "Where a save was cut off, take the project that was there before (.mrn.bak)");
}

}  // namespace

CommandGrammar::CommandGrammar(Request& request) : app_(kProgramHelp, "marnoth") {
    app_.set_version_flag("--version", std::string("marnoth ") + kVersion, "Print the version and exit");
    app_.require_subcommand(1);
    // A file's name may begin with a slash on every system.
    app_.allow_windows_style_options(false);
    app_.footer(kProgramFooter);
    addScript(request);
    addRender(request);
    addInfo(request);
    addPage(request);
    if (!kHasDesktop) return;
    addPlay(request);
    addDevices(request);
}

void CommandGrammar::addScript(Request& request) {
    CLI::App* script = app_.add_subcommand("script", "Run a session script and print its transcript");
    script->add_option("FILE.mrs", request.script, "The script")->required()->type_name("");
    script->add_option("-o,--out", request.scriptOut, "Folder for the audio; made when it is missing")
        ->required()
        ->type_name("DIR");
    if (kHasComponents)
        script->add_flag("--com", request.component,
                         "Play the registered component, in the system's filter graph");
    script->footer(std::string(kScriptHelp) + (kHasComponents ? kComponentHelp : ""));
}

void CommandGrammar::addRender(Request& request) {
    CLI::App* render = app_.add_subcommand("render", "Render loops and notes offline into a WAV file");
    RenderOptions& options = request.render;
    render->add_option("--pad", request.pads, "Load a WAV file onto a pad, 1 to 16; may be repeated")
        ->allow_extra_args(false)
        ->type_name("N=FILE.wav[,SETTING...]");
    render->add_option("--project", options.project, "Load a project")->type_name("FILE.mrn");
    addRecover(*render, options.recover);
    render->add_option("--midi", options.midi, "Standard MIDI file to play")->type_name("FILE.mid");
    render->add_option("--tempo", options.tempo, "Beats per minute")
        ->check(within(kSlowestTempo, kFastestTempo))
        ->type_name("BPM");
    render->add_option("--beats", options.beats, "Length in beats")
        ->check(within(0.001, kMostBeats))
        ->type_name("N");
    render->add_option("--rate", options.rate, "Frames per second, those of most loops by default")
        ->check(wholeWithin(LoopRates::kLowest, LoopRates::kHighest))
        ->type_name("R");
    render
        ->add_option("--block", options.block,
                     "Frames of one block, 1024 by default; the audio is the same with any")
        ->check(wholeWithin(1, kMostBlockFrames))
        ->type_name("N");
    render->add_option("--key", request.key, "The project's key, such as A, C# or Bb")->type_name("NAME");
    render->add_flag("--loop", options.loop, "Render a turn before the file begins, so that its ends join");
    render->add_flag("--gate", options.gate, "Pads sound while their notes are held");
    addOut(*render, options.out, "FILE.wav");
    offer(render->add_option("--bits", request.bits, "Of a sample, 32f by default"), {"16", "24", "32f"});
    render->add_flag("--no-dither", request.noDither, "Round 16 and 24 bits to the nearest step alone");
    render->add_option("--gain", options.form.gainDecibels, "Make all files louder, or softer below 0")
        ->check(within(-kMostGainDecibels, kMostGainDecibels))
        ->type_name("DB");
    render->add_flag("--normalize", options.form.normalize,
                     "Bring the mix to full scale, the stems by as much");
    render->add_option("--stems", options.stems, "Folder for a file of each pad")->type_name("DIR");
    render->add_option("--save", options.save, "Keep the pads in a project")->type_name("FILE.mrn");
    addQuiet(*render, request.quiet);
    render->footer(kRenderHelp + padSettingsHelp() + kRenderExamples);
}

void CommandGrammar::addInfo(Request& request) {
    CLI::App* info = app_.add_subcommand("info", "Tell what is in a WAV file or a project");
    info->add_option("FILE", request.info.file, "The WAV file or project")->required()->type_name("");
    info->add_flag("--json", request.info.json, "Print JSON");
    addRecover(*info, request.info.recover);
    info->footer(kInfoHelp);
}

void CommandGrammar::addPage(Request& request) {
    CLI::App* page = app_.add_subcommand("page", "Draw the editor page into a PNG file");
    PageOptions& options = request.page;
    page->add_option("PROJECT.mrn", options.project, "The project that the page shows")->type_name("");
    addRecover(*page, options.recover);
    addOut(*page, options.out, "FILE.png");
    page->add_option("--pad", options.pad, "The pad that is selected, 1 by default")
        ->check(wholeWithin(1, 16))
        ->type_name("N");
    page->add_flag("--key-map", options.keyMap, "The strip shows the key map");
    offer(page->add_option("--open", options.open, "The list, menu or question that is open over it"),
          openables());
    page->add_option("--scale", options.scale, "Size of a pixel, 1 to 3")
        ->check(wholeWithin(1, 3))
        ->type_name("S");
    addQuiet(*page, request.quiet);
    page->footer(kPageHelp);
}

void CommandGrammar::addPlay(Request& request) {
    CLI::App* play = app_.add_subcommand("play", "Play in a window, with sound and MIDI");
    PlayOptions& options = request.play;
    play->add_option("FILE", options.files, "Projects, loops and MIDI files")->type_name("");
    play->add_option("--audio", options.audio,
                     "jack, pulse, alsa, null for no sound, file:OUT.wav, or a part of an output's name")
        ->type_name("NAME");
    play->add_option("--midi", options.midi,
                     "A part of the names of the ports that send notes; all by default")
        ->type_name("NAME");
    play->add_option("--rate", options.rate, "Frames per second, the device's own by default")
        ->check(wholeWithin(LoopRates::kLowest, LoopRates::kHighest))
        ->type_name("R");
    play->add_option("--block", options.block, "Frames of one block, the device's own by default")
        ->check(wholeWithin(1, kMostBlockFrames))
        ->type_name("N");
    play->add_option("--tempo", options.tempo, "Beats per minute, in place of the MIDI file's")
        ->check(within(kSlowestTempo, kFastestTempo))
        ->type_name("BPM");
    play->add_option("--song-tempo", options.songTempo,
                     "Whether the MIDI file plays in its own tempo; as last time by default")
        ->check(CLI::IsMember({"yes", "no"}))
        ->type_name("yes|no");
    play->add_option("--repeat", options.repeat,
                     "Whether the MIDI file begins anew where it ends; as last time by default")
        ->check(CLI::IsMember({"yes", "no"}))
        ->type_name("yes|no");
    play->add_option("--scale", options.scale,
                     "Size of a pixel, 1 to 8; by the screen's resolution by default")
        ->check(wholeWithin(1, 8))
        ->type_name("S");
    play->add_flag("--verbose", options.verbose,
                   "At the end, tell how long blocks took, and how many were late or dropped out");
    play->footer(kPlayHelp);
}

void CommandGrammar::addDevices(Request& request) {
    CLI::App* devices = app_.add_subcommand("devices", "List what sound and notes can go through");
    devices->add_flag("--json", request.devices.json, "Print JSON");
    devices->footer(kDevicesHelp);
}

}  // namespace marnoth
