#include "shells/cli/PageCommand.h"

#include <array>
#include <ostream>

#include "editor/PageLayout.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "shellkit/files/Failure.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/media/PngFile.h"
#include "shellkit/page/HeadlessPage.h"
#include "shellkit/script/ScriptNumbers.h"
#include "shellkit/text/InstrumentText.h"

namespace marnoth {

namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::uint32_t kStereo = 2;

constexpr Point kFirstBinRow{kBinList.left + 6, kBinList.top + 6};
constexpr Point kOnKeyMapTab{(kKeyMapTab.left + kKeyMapTab.right) / 2,
                             (kKeyMapTab.top + kKeyMapTab.bottom) / 2};

/// Projects are loaded at the rate of a connection.
void connect(HostRig& rig) {
    const std::array<int, 1> mix{0};
    const HRESULT result = rig.connect(kRate, kStereo, mix);
    if (FAILED(result))
        throw FileFailure("connecting the instrument failed with code " + printResult(result));
}

void click(HeadlessPage& page, Point at) {
    page.window().press(at);
    page.window().release(at);
}

/// What a user does to see what was asked for.
void arrange(HeadlessPage& page, const PageOptions& options) {
    page.window().tick();
    page.page().SelectPad(options.pad - 1);
    // Where the list is empty its row is nothing to click on.
    click(page, options.keyMap ? kOnKeyMapTab : kFirstBinRow);
}

Bitmap enlarged(const Bitmap& picture, int scale) {
    Bitmap large(picture.width() * scale, picture.height() * scale);
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x) large.at(x, y) = picture.at(x / scale, y / scale);
    return large;
}

}  // namespace

void runPage(const PageOptions& options, std::ostream& report) {
    HostRig rig{createInstrument};
    connect(rig);
    if (!options.project.empty()) loadProjectFile(rig.sampler(), options.project);
    HeadlessPage page(rig.sampler(), {});
    page.page().setRootScale(RootScale::ofLoops);
    arrange(page, options);
    const Bitmap picture = enlarged(page.picture(), options.scale);
    writePng(pathFromUtf8(options.out), picture);
    report << options.out << ": " << picture.width() << " by " << picture.height() << " pixels" << std::endl;
}

}  // namespace marnoth
