#include <future>
#include <stdexcept>
#include <vector>

#include "bench/Check.h"
#include "bench/ComponentBench.h"
#include "platform/com/RefPtr.h"
#include "seam/ClassIds.h"
#include "shellkit/component/RegisteredInstrument.h"
#include "shellkit/page/HeadlessPage.h"

namespace marnoth::bench {
namespace {

constexpr double kBound = 30000;  // us

/// A window that pages are shown in.
class Frame {
public:
    Frame()
        : window_(CreateWindowW(L"STATIC", L"Frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 700, 650,
                                nullptr, nullptr, nullptr, nullptr)) {
        if (!window_) throw std::runtime_error("there are no windows");
    }
    ~Frame() { DestroyWindow(window_); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    /// Microseconds from `Activate` to the first picture of a page of the instrument.
    double showPage(IUnknown& instrument) {
        RefPtr<IPropertyPage> page;
        check(CoCreateInstance(CLSID_MarnothProperties, nullptr, CLSCTX_INPROC_SERVER, IID_IPropertyPage,
                               page.putVoid()),
              "making a page");
        IUnknown* object = &instrument;
        check(page->SetObjects(1, &object), "SetObjects");
        const RECT place{0, 0, 600, 553};
        const double taken = timed([&] {
            check(page->Activate(window_, &place, FALSE), "Activate");
            check(page->Show(SW_SHOW), "Show");
            if (!UpdateWindow(GetWindow(window_, GW_CHILD))) throw std::runtime_error("there is no page");
        });
        check(page->Deactivate(), "Deactivate");
        check(page->SetObjects(0, nullptr), "SetObjects");
        return taken;
    }

private:
    HWND window_;
};

/// What windows want of the thread that makes them.
class OleScope {
public:
    OleScope() { check(OleInitialize(nullptr), "OleInitialize"); }
    ~OleScope() { OleUninitialize(); }
    OleScope(const OleScope&) = delete;
    OleScope& operator=(const OleScope&) = delete;
};

void showPages() {
    const OleScope ole;
    RefPtr<IUnknown> instrument;
    check(createRegistered(nullptr, IID_IUnknown, instrument.putVoid()), "making an instrument");
    Frame frame;
    std::vector<double> shown, headless;
    frame.showPage(*instrument);
    for (int i = 0; i < 50; ++i) {
        headless.push_back(timed([&] { HeadlessPage(*instrument, {}).picture(); }));
        shown.push_back(frame.showPage(*instrument));
    }
    print("a page without a screen, median", Times(headless).median());
    print("Activate to the first picture, median", Times(shown).median(), kBound);
    print("the same, worst", Times(shown).worst());
}

}  // namespace

void benchPage() {
    std::async(std::launch::async, showPages).get();
}

}  // namespace marnoth::bench
