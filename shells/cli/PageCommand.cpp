#include "shells/cli/PageCommand.h"

#include <array>
#include <utility>

#include "editor/PageLayout.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/FilePlan.h"
#include "shellkit/files/LoopFiles.h"
#include "shellkit/files/Need.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/media/PngFile.h"
#include "shellkit/page/HeadlessPage.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"
#include "shells/cli/Recovery.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::uint32_t kStereo = 2;

constexpr Point kFirstBinRow{kBinList.left + 6, kBinList.top + 6};

/// Projects are loaded at the rate of a connection.
void connect(HostRig& rig) {
    const std::array<int, 1> mix{0};
    need(rig.connect(kRate, kStereo, mix), "connecting the instrument");
}

void click(HeadlessPage& page, Point at) {
    page.window().press(at);
    page.window().release(at);
}

Point middle(const Rect& area) {
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

/// What opens when a control is clicked on: lists, and questions.
constexpr std::array<std::pair<const char*, int>, 7> kOpeners{{{"output", kOutput},
                                                               {"channel", kMidiChannel},
                                                               {"root", kRootNote},
                                                               {"snap", kSnap},
                                                               {"clear", kClearProject},
                                                               {"delete", kDeleteFromBin},
                                                               {"load", kLoadToBin}}};
constexpr const char* kMenu = "menu";

void openOver(HeadlessPage& page, const PageOptions& options) {
    page.window().leaveOpen();
    if (options.open == kMenu) page.window().rightClick(middle(padImage(options.pad - 1)));
    for (const auto& [name, id] : kOpeners)
        if (options.open == name) click(page, middle(page.page().controlOf(id)->place()));
}

/// What a user does to see what was asked for.
void arrange(HeadlessPage& page, const PageOptions& options) {
    page.window().tick();
    page.page().SelectPad(options.pad - 1);
    // Where the list is empty its row is nothing to click on.
    click(page, options.keyMap ? middle(kKeyMapTab) : kFirstBinRow);
    if (!options.open.empty()) openOver(page, options);
}

Bitmap enlarged(const Bitmap& picture, int scale) {
    Bitmap large(picture.width() * scale, picture.height() * scale);
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x) large.at(x, y) = picture.at(x / scale, y / scale);
    return large;
}

}  // namespace

std::vector<std::string> openables() {
    std::vector<std::string> names{kMenu};
    for (const auto& [name, id] : kOpeners) names.emplace_back(name);
    return names;
}

void runPage(const PageOptions& options, const Streams& streams) {
    FilePlan files;
    if (!options.project.empty()) planProject(files, "the project", options.project);
    planOutput(files, "--out", options.out);
    checkPrinting(files);
    HostRig rig{createInstrument};
    connect(rig);
    setLenientFiles(rig.sampler(), true);
    if (!options.project.empty())
        loadOrRecover(options.project, options.recover, streams.errors,
                      [&](const std::string& file) { loadProjectFile(rig.sampler(), file); });
    HeadlessPage page(rig.sampler(), {});
    page.page().setRootScale(RootScale::ofLoops);
    arrange(page, options);
    const Bitmap picture = enlarged(page.picture(), options.scale);
    const auto output = openOutput(options.out, streams.out);
    writePng(*output, picture);
    streams.reportBeside(options.out)
        << output->name() << ": " << picture.width() << " by " << picture.height() << " pixels" << std::endl;
}

}  // namespace marnoth
