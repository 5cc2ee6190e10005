/// A host's frame around the page of the registered component, for a person or a script at a display:
///
///     page_frame own CONTENT                in a frame of its own, which obeys the lines of its standard
///     input page_frame system CONTENT             in the system's property frame page_frame script CONTENT
///     STORY DIR   without a display, driven by a page script
///
/// CONTENT is what the instrument holds: `empty`, `groove`, or the file of a project. Each line that it
/// prints is a fact: where the page is, what its engine is told, which question is open.

#include <olectl.h>

#include <array>
#include <fstream>
#include <iostream>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "hostkit/HostRig.h"
#include "page/Groove.h"
#include "platform/text/Text.h"
#include "seam/ClassIds.h"
#include "shellkit/files/ProjectFiles.h"
#include "shellkit/script/ScriptRunner.h"
#include "windows/PropertyFrame.h"
#include "windows/frame/FileDrag.h"
#include "windows/frame/QuestionWatch.h"
#include "windows/frame/ToldSampler.h"

namespace marnoth::test {
namespace {

constexpr RECT kDragPlace{760, 100, 860, 200};

/// One line, whole, whichever thread tells it.
void tell(const std::string& fact) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::cout << fact << std::endl;
}

void tellPlace(HWND page) {
    POINT corner{};
    ClientToScreen(page, &corner);
    tell("page " + std::to_string(corner.x) + " " + std::to_string(corner.y));
}

/// The window that is as large as the page, among all of this process that can be seen.
HWND findPage() {
    HWND found = nullptr;
    const auto look = [](HWND window, LPARAM found) {
        RECT area{};
        GetClientRect(window, &area);
        if (area.right != 600 || area.bottom != 553 || !IsWindowVisible(window)) return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    };
    const auto lookInside = [](HWND window, LPARAM inside) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        const auto& [look, found] = *reinterpret_cast<std::pair<WNDENUMPROC, HWND*>*>(inside);
        if (process == GetCurrentProcessId()) EnumChildWindows(window, look, reinterpret_cast<LPARAM>(found));
        return *found ? FALSE : TRUE;
    };
    std::pair<WNDENUMPROC, HWND*> inside(look, &found);
    EnumWindows(lookInside, reinterpret_cast<LPARAM>(&inside));
    return found;
}

/// Without it there is nothing to show.
void need(HRESULT result, const char* what) {
    if (result == S_OK) return;
    tell("failed: " + std::string(what));
    std::_Exit(1);
}

HRESULT makeRegistered(IUnknown* outer, REFIID iid, void** out) {
    return CoCreateInstance(CLSID_Marnoth, outer, CLSCTX_INPROC_SERVER, iid, out);
}

/// The instrument and who listens to what its page tells it.
struct Instrument {
    explicit Instrument(const std::string& content) : rig(makeRegistered) {
        const std::array<int, 1> mix{0};
        EXPECT_EQ(rig.connect(44100, 2, mix), S_OK);
        if (content == "groove")
            const Groove groove(rig.sampler());
        else if (content != "empty")
            need(rig.sampler().LoadProject(content.c_str()), "the project");
    }
    HostRig rig;
    ToldSampler told{rig.sampler(), [](const std::string& call) { tell("told " + call); }};
};

/// What the lines of the standard input do to a frame, each told when it is done: activate, deactivate,
/// release, destroy, drag FILE ..., quit; and sync, which is when all that a user did so far has been heard.
class Orders {
public:
    /// Of the thread that waits for messages, whenever there is none.
    void idle() {
        if (std::exchange(syncWanted_, false)) tell("synced");
    }

    Orders(PropertyFrame& frame, DragWindow& drag) : frame_(frame), drag_(drag), thread_([this] { read(); }) {
        thread_.detach();
    }

private:
    void read() {
        // A frame without its window hears nothing any more.
        for (std::string line; std::getline(std::cin, line) && line != "quit";)
            frame_.post([this, line] {
                if (line == "sync") {
                    syncWanted_ = true;
                    return;
                }
                obey(line);
                tell("done " + line);
            });
        std::_Exit(0);
    }
    void obey(const std::string& line) {
        std::istringstream words(line);
        std::string order;
        words >> order;
        if (order == "activate") frame_.show();
        if (order == "deactivate") need(frame_.page->Deactivate(), "Deactivate");
        if (order == "release") frame_.page.reset();
        if (order == "destroy") frame_.destroyWindow();
        if (order == "drag") drag_.files.clear();
        for (std::string file; order == "drag" && words >> file;) drag_.files.push_back(wideFromUtf8(file));
    }

    PropertyFrame& frame_;
    DragWindow& drag_;
    bool syncWanted_ = false;
    std::thread thread_;
};

RefPtr<IPropertyPage> makePage() {
    RefPtr<IPropertyPage> page;
    EXPECT_EQ(CoCreateInstance(CLSID_MarnothProperties, nullptr, CLSCTX_INPROC_SERVER, IID_IPropertyPage,
                               page.putVoid()),
              S_OK);
    return page;
}

[[noreturn]] void runOwn(const std::string& content) {
    Instrument instrument(content);
    PropertyFrame frame(makePage());
    frame.setObject(&instrument.told);
    frame.show();
    // What filled the instrument wants to be read again.
    frame.tick();
    DragWindow drag(kDragPlace, [](DWORD effect) { tell("dropped " + std::to_string(effect)); });
    const QuestionWatch watch(tell);
    Orders orders(frame, drag);
    tellPlace(frame.pageWindow());
    for (;;) {
        frame.settle();
        orders.idle();
        WaitMessage();
    }
}

void runSystem(const std::string& content) {
    Instrument instrument(content);
    const QuestionWatch watch(tell);
    const std::jthread finder([] {
        HWND page = nullptr;
        while (!(page = findPage())) Sleep(20);
        tellPlace(page);
    });
    std::array<IUnknown*, 1> objects{&instrument.told};
    CLSID page = CLSID_MarnothProperties;
    const HRESULT result = OleCreatePropertyFrame(nullptr, 60, 40, L"Marnoth", 1, objects.data(), 1, &page,
                                                  LOCALE_USER_DEFAULT, 0, nullptr);
    tell("closed " + std::to_string(result));
}

int runStory(const std::string& content, const std::string& story, const std::string& folder) {
    Instrument instrument(content);
    const ScriptStage stage{instrument.rig, [&](IUnknown&, const std::filesystem::path& files) {
                                auto page = std::make_unique<HeadlessPage>(instrument.told, files);
                                page->page().checkLoads(adviceBeforeLoad);
                                return page;
                            }};
    std::ostringstream transcript;
    const int status = runScript(stage, story, folder, transcript, std::cerr);
    std::istringstream lines(transcript.str());
    for (std::string line; std::getline(lines, line);) tell("script " + line);
    return status;
}

int run(const std::vector<std::string>& words) {
    int status = 0;
    const SoundFolder sounds;
    if (words.size() == 2 && words[0] == "own")
        runOwn(words[1]);
    else if (words.size() == 2 && words[0] == "system")
        runSystem(words[1]);
    else if (words.size() == 4 && words[0] == "script")
        status = runStory(words[1], words[2], words[3]);
    else
        status = 2;
    return status;
}

}  // namespace
}  // namespace marnoth::test

int main(int argc, char** argv) {
    OleInitialize(nullptr);
    const std::vector<std::string> words(argv + 1, argv + argc);
    const int status = marnoth::test::run(words);
    OleUninitialize();
    return status;
}
