#include "shells/cli/CommandLine.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <set>
#include <string>

#include "shellkit/files/Failure.h"
#include "shellkit/midi/MidiFile.h"
#include "shellkit/text/InstrumentText.h"
#include "shellkit/text/PlainText.h"
#include "shells/cli/CommandGrammar.h"
#include "shells/cli/ScriptRun.h"
#include "shells/cli/WrongWord.h"

namespace marnoth {

namespace {

constexpr int kFailedStatus = 1;
constexpr int kWrongUseStatus = 2;

SampleFormat readBits(const std::string& bits) {
    return bits == "16"   ? SampleFormat::integer16
           : bits == "24" ? SampleFormat::integer24
                          : SampleFormat::float32;
}

std::vector<PadFile> padFiles(const Request& request) {
    std::vector<PadFile> files;
    std::set<int> taken;
    for (const std::string& text : request.pads) {
        files.push_back(readPadFile(text));
        const std::string pad = std::to_string(files.back().pad + 1);
        if (!taken.insert(files.back().pad).second)
            throw WrongUse("--pad " + pad + " is given twice: a pad holds one file");
        if (files.back().file.empty() && request.render.project.empty())
            throw WrongUse("--pad \"" + text + "\": a pad without --project needs a file: write N=FILE.wav");
    }
    return files;
}

RenderOptions renderOptions(const Request& request) {
    RenderOptions options = request.render;
    if (request.pads.empty() && options.project.empty())
        throw WrongUse("there is nothing to play: give --pad N=FILE.wav or --project FILE.mrn");
    options.pads = padFiles(request);
    options.form.format = readBits(request.bits);
    options.form.dither = !request.noDither;
    if (!request.key.empty()) options.key = readKey(request.key);
    return options;
}

int runPlay(const PlayOptions& options, const Streams& streams, const PlayCommand& play) {
    if (!play) throw WrongUse("this program has no window");
    return play(options, streams);
}

int carryOut(const Request& request, const CommandGrammar& grammar, std::ostream& out, std::ostream& errors,
             const PlayCommand& play, const ListSound& list) {
    int status = 0;
    const Streams streams{out, errors, request.quiet};
    if (grammar.chose("script"))
        status = runScriptFile(request.script, pathFromUtf8(request.scriptOut), out, errors,
                               request.component ? Playing::component : Playing::ownInstrument);
    else if (grammar.chose("render"))
        runRender(renderOptions(request), streams);
    else if (grammar.chose("page"))
        runPage(request.page, streams);
    else if (grammar.chose("info"))
        runInfo(request.info, streams);
    else if (grammar.chose("devices"))
        runDevices(request.devices, list, streams);
    else  // which isn't known everywhere
        status = runPlay(request.play, streams, play);
    if (!out.flush()) throw FileFailure("standard output can't be written");
    return status;
}

int report(std::ostream& errors, int status, const std::string& text) {
    errors << "marnoth: " << inOneLine(text) << std::endl;
    return status;
}

int understandAndCarryOut(std::vector<std::string> arguments, std::ostream& out, std::ostream& errors,
                          const PlayCommand& play, const ListSound& list) {
    if (arguments.empty() && play) arguments = {"play"};
    Request request;
    CommandGrammar grammar(request);
    try {
        grammar.app().parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return carryOut(request, grammar, out, errors, play, list);
    } catch (const CLI::Success& wish) {
        return grammar.app().exit(wish, out, errors);
    } catch (const CLI::Error& error) {
        return report(errors, kWrongUseStatus, tellWrongWord(grammar.app(), arguments, error.what()));
    } catch (const WrongUse& error) {
        return report(errors, kWrongUseStatus, error.what());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return report(errors, kFailedStatus, error.what());
    }
}

}  // namespace

int runCommandLine(std::vector<std::string> arguments, std::ostream& out, std::ostream& errors,
                   const PlayCommand& play, const ListSound& list) try {
    return understandAndCarryOut(std::move(arguments), out, errors, play, list);
} catch (const std::bad_alloc&) {
    // Whatever the command had taken is back; even so this asks for none.
    errors << "marnoth: there isn't enough memory" << std::endl;
    return kFailedStatus;
}

}  // namespace marnoth
