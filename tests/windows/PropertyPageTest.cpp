/// The component's page as hosts make and use it: by its class id, in a frame, with an instrument that they
/// have from the component as well. The user's hands are messages.

#include "editor/PageLayout.h"
#include "host/CreateInstance.h"
#include "hostkit/HostRig.h"
#include "page/Groove.h"
#include "page/PagePlaces.h"
#include "platform/windows/SystemHandle.h"
#include "seam/ClassIds.h"
#include "shellkit/page/HeadlessPage.h"
#include "shells/windows/PropertyPage.h"
#include "windows/Component.h"
#include "windows/PropertyFrame.h"

namespace marnoth::test::property_page_test {
namespace {

constexpr Point kOnClear{60, 36};

template <class Hand>
void click(Hand& hand, Point at, int times = 1) {
    for (int i = 0; i < times; ++i) {
        hand.press(at);
        hand.release(at);
    }
}

class Apartment {
public:
    Apartment() { EXPECT_EQ(OleInitialize(nullptr), S_OK); }
    ~Apartment() { OleUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

RefPtr<IPropertyPage> makePage(const Component& component) {
    return component.make<IPropertyPage>(CLSID_MarnothProperties, IID_IPropertyPage);
}

/// What the rigs of a test make their instruments of.
const Component* served = nullptr;

HRESULT makeServed(IUnknown* outer, REFIID iid, void** out) {
    return served->factory(CLSID_Marnoth)->CreateInstance(outer, iid, out);
}

/// An instrument of the component in its host, connected.
class Hosted {
public:
    explicit Hosted(const Component& component) : rig((served = &component, makeServed)) {
        const std::array<int, 1> mix{0};
        EXPECT_EQ(rig.connect(44100, 2, mix), S_OK);
    }
    HostRig rig;
};

class PropertyPages : public testing::Test {
protected:
    Apartment apartment;
    Component component;
};

TEST_F(PropertyPages, TellTheirNameAndSize) {
    const auto page = makePage(component);
    PROPPAGEINFO info{};
    ASSERT_EQ(page->GetPageInfo(&info), S_OK);
    EXPECT_EQ(info.cb, sizeof info);
    EXPECT_STREQ(info.pszTitle, L"Marnoth");
    EXPECT_EQ(info.size.cx, 600);
    EXPECT_EQ(info.size.cy, 553);
    EXPECT_EQ(info.pszDocString, nullptr);
    EXPECT_EQ(info.pszHelpFile, nullptr);
    CoTaskMemFree(info.pszTitle);
}

TEST_F(PropertyPages, TakeNoNullPointer) {
    PropertyFrame frame(makePage(component));
    const auto refuse = [&] {
        EXPECT_EQ(frame.page->GetPageInfo(nullptr), E_POINTER);
        EXPECT_EQ(frame.page->SetObjects(1, nullptr), E_POINTER);
        EXPECT_EQ(frame.page->Move(nullptr), E_POINTER);
        EXPECT_EQ(frame.page->TranslateAccelerator(nullptr), E_POINTER);
        EXPECT_EQ(frame.page->QueryInterface(IID_IPropertyPage, nullptr), E_POINTER);
        EXPECT_EQ(frame.page->Activate(frame.window(), nullptr, FALSE), E_POINTER);
        // What may be null.
        IUnknown* none = nullptr;
        EXPECT_EQ(frame.page->SetObjects(1, &none), S_OK);
        EXPECT_EQ(frame.page->SetObjects(0, nullptr), S_OK);
        EXPECT_EQ(frame.page->SetPageSite(nullptr), S_OK);
    };
    refuse();
    const RECT place{};
    EXPECT_EQ(frame.page->Activate(nullptr, &place, FALSE), E_INVALIDARG);
    EXPECT_EQ(frame.page->Activate(reinterpret_cast<HWND>(0x12345), &place, FALSE), E_INVALIDARG);
    frame.show();
    refuse();
}

TEST_F(PropertyPages, AreParts) {
    const auto factory = component.factory(CLSID_MarnothProperties);
    void* out = &out;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPropertyPage, nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IBaseFilter, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    // Of another object, whose identity is theirs.
    FrameSite outer;
    RefPtr<IUnknown> part;
    EXPECT_EQ(factory->CreateInstance(outer.Inner(), IID_IPropertyPage, part.putVoid()), E_NOINTERFACE);
    ASSERT_EQ(factory->CreateInstance(outer.Inner(), IID_IUnknown, part.putVoid()), S_OK);
    RefPtr<IPropertyPage> page;
    ASSERT_EQ(part->QueryInterface(IID_IPropertyPage, page.putVoid()), S_OK);
    RefPtr<IUnknown> identity;
    EXPECT_EQ(page->QueryInterface(IID_IUnknown, identity.putVoid()), S_OK);
    EXPECT_EQ(identity.get(), outer.Inner());
}

TEST_F(PropertyPages, AreNeverDirty) {
    PropertyFrame frame(makePage(component));
    Hosted host(component);
    const auto expectClean = [&] {
        EXPECT_EQ(frame.page->IsPageDirty(), S_FALSE);
        EXPECT_EQ(frame.page->Apply(), S_OK);
    };
    expectClean();
    frame.setObject(&host.rig.sampler());
    frame.show();
    click(frame, onSolo(2));
    std::uint32_t solo = 0;
    EXPECT_EQ(host.rig.sampler().GetPadSolo(2, &solo), S_OK);
    EXPECT_EQ(solo, 1u) << "what the user did has reached the instrument already";
    expectClean();
}

TEST_F(PropertyPages, AreActiveOnce) {
    PropertyFrame frame(makePage(component));
    EXPECT_EQ(frame.page->Deactivate(), S_OK);
    EXPECT_EQ(frame.page->Show(SW_SHOW), E_UNEXPECTED);
    const RECT place{1, 2, 3, 4};
    EXPECT_EQ(frame.page->Move(&place), E_UNEXPECTED);
    EXPECT_EQ(frame.activate(), S_OK);
    const HWND first = frame.pageWindow();
    EXPECT_TRUE(first);
    EXPECT_EQ(frame.activate(), E_UNEXPECTED);
    EXPECT_EQ(frame.pageWindow(), first);
    EXPECT_FALSE(GetWindow(first, GW_HWNDNEXT)) << "and there is no other";
    EXPECT_EQ(frame.page->Deactivate(), S_OK);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_EQ(frame.page->Deactivate(), S_OK);
    EXPECT_EQ(frame.activate(), S_OK);
    EXPECT_TRUE(frame.pageWindow());
}

/// Of a window, in its parent.
RECT placeOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

TEST_F(PropertyPages, HaveTheirOwnSizeWhereverTheyAre) {
    PropertyFrame frame(makePage(component));
    const auto expectAt = [&](LONG left, LONG top) {
        const RECT place = placeOf(frame.pageWindow());
        EXPECT_EQ(place.left, left);
        EXPECT_EQ(place.top, top);
        EXPECT_EQ(place.right - place.left, 600);
        EXPECT_EQ(place.bottom - place.top, 553);
    };
    const RECT large{20, 30, 720, 768};
    EXPECT_EQ(frame.page->Activate(frame.window(), &large, TRUE), S_OK);
    expectAt(20, 30);
    const RECT small{5, 6, 15, 16};
    EXPECT_EQ(frame.page->Move(&small), S_OK);
    expectAt(5, 6);
    EXPECT_FALSE(IsWindowVisible(frame.pageWindow())) << "until it is told to";
    EXPECT_EQ(frame.page->Show(SW_SHOW), S_OK);
    EXPECT_TRUE(IsWindowVisible(frame.pageWindow()));
    EXPECT_EQ(frame.page->Show(SW_HIDE), S_OK);
    EXPECT_FALSE(IsWindowVisible(frame.pageWindow()));
}

TEST_F(PropertyPages, AskNothingOfTheirSite) {
    auto* const site = new FrameSite;
    const auto kept = RefPtr<IUnknown>::adopt(site->Inner());
    PropertyFrame frame(makePage(component));
    EXPECT_EQ(frame.page->SetPageSite(site), S_OK);
    frame.show();
    click(frame, onImage(3));
    EXPECT_EQ(frame.page->Deactivate(), S_OK);
    EXPECT_EQ(site->calls, 0);
    // Frames that never take theirs back leave nothing behind.
    frame.page.reset();
    EXPECT_EQ(kept->AddRef(), 2u);
    kept->Release();
}

TEST_F(PropertyPages, TakeEveryKeyOfTheirWindowAndNothingElse) {
    PropertyFrame frame(makePage(component));
    MSG key{};
    key.hwnd = frame.window();
    key.message = WM_KEYDOWN;
    key.wParam = VK_TAB;
    EXPECT_EQ(frame.page->TranslateAccelerator(&key), S_FALSE);
    frame.show();
    EXPECT_EQ(frame.page->TranslateAccelerator(&key), S_FALSE) << "it is another window's";
    key.hwnd = frame.pageWindow();
    for (const WPARAM code : {VK_TAB, VK_ESCAPE, VK_RETURN, VK_LEFT, VK_DOWN, VK_F5, int{'A'}})
        for (const UINT message : {WM_KEYDOWN, WM_KEYUP}) {
            key.message = message;
            key.wParam = code;
            EXPECT_EQ(frame.page->TranslateAccelerator(&key), S_OK) << code;
        }
    key.message = WM_MOUSEMOVE;
    EXPECT_EQ(frame.page->TranslateAccelerator(&key), S_FALSE);
}

TEST_F(PropertyPages, HaveTheInstrumentBeforeOrBehindTheWindow) {
    const SoundFolder sounds;
    Hosted host(component);
    const Groove groove(host.rig.sampler());
    PropertyFrame before(makePage(component)), behind(makePage(component));
    before.setObject(&host.rig.sampler());
    before.show();
    behind.show();
    EXPECT_FALSE(behind.picture() == before.picture());
    behind.setObject(&host.rig.sampler());
    EXPECT_TRUE(behind.picture() == before.picture());
}

TEST_F(PropertyPages, TakeTheFirstObjectThatIsAnInstrument) {
    Hosted host(component);
    PropertyFrame frame(makePage(component));
    const RefPtr<IPropertyPage> none = makePage(component);
    std::array<IUnknown*, 3> objects{nullptr, none.get(), &host.rig.sampler()};
    EXPECT_EQ(frame.page->SetObjects(3, objects.data()), S_OK);
    frame.show();
    click(frame, onSolo(2));
    std::uint32_t solo = 0;
    EXPECT_EQ(host.rig.sampler().GetPadSolo(2, &solo), S_OK);
    EXPECT_EQ(solo, 1u);
}

TEST_F(PropertyPages, AreEmptyWithoutAnInstrument) {
    PropertyFrame frame(makePage(component));
    const RefPtr<IPropertyPage> none = makePage(component);
    frame.setObject(none.get());
    frame.show();
    HeadlessPage expected(*none, {});
    EXPECT_TRUE(frame.picture() == expected.picture());
    click(frame, onSolo(2));
    click(expected.window(), onSolo(2));
    EXPECT_TRUE(frame.picture() == expected.picture());
}

TEST_F(PropertyPages, LetGoOfTheirObjects) {
    PropertyFrame frame(makePage(component));
    FrameSite object;
    const auto references = [&] {
        object.AddRef();
        return object.Release();
    };
    frame.setObject(&object);
    EXPECT_GT(references(), 1u);
    frame.show();
    EXPECT_EQ(frame.page->SetObjects(0, nullptr), S_OK);
    EXPECT_EQ(references(), 1u);
    frame.setObject(&object);
    frame.page.reset();
    EXPECT_EQ(references(), 1u);
}

// Pictures: those of the same page in a window without a screen, for the same hands.

class PropertyPagePictures : public PropertyPages {
protected:
    template <class Act>
    void expectSame(bool filled, Act act) {
        const SoundFolder sounds;
        Hosted host(component), peer(component);
        if (filled) {
            const Groove groove(host.rig.sampler());
            const Groove same(peer.rig.sampler());
        }
        PropertyFrame frame(makePage(component));
        frame.setObject(&host.rig.sampler());
        frame.show();
        HeadlessPage expected(peer.rig.sampler(), {});
        const Bitmap beginning = expected.picture();
        act(frame);
        act(expected.window());
        frame.tick();
        expected.window().tick();
        EXPECT_TRUE(frame.picture() == expected.picture());
        EXPECT_EQ(frame.picture() == beginning, !filled) << "the hands have changed something";
    }
};

TEST_F(PropertyPagePictures, OfAnEmptyProject) {
    expectSame(false, [](auto&) {});
}

TEST_F(PropertyPagePictures, OfAGrooveWithSelectedGrains) {
    expectSame(true, [](auto& hand) {
        click(hand, onRow(2, 3));
        hand.hold(kKeyShift);
        click(hand, onRow(2, 4));
        hand.let(kKeyShift);
    });
}

TEST_F(PropertyPagePictures, OfAKeyMapWhoseHighKeyIsDragged) {
    expectSame(true, [](auto& hand) {
        click(hand, onImage(2));
        click(hand, kOnKeyTab);
        click(hand, onSolo(2));
        hand.press({390, 264});
        hand.move({430, 264});
        hand.move({475, 264});
    });
}

TEST_F(PropertyPagePictures, OfAListThatIsOpen) {
    expectSame(true, [](auto& hand) {
        click(hand, onImage(2));
        click(hand, kOnOutput);
    });
}

TEST_F(PropertyPagePictures, OfTailsUnderThePointerInLargeRows) {
    expectSame(true, [](auto& hand) {
        click(hand, onBinRow(1));
        click(hand, onRow(0, 2));
        click(hand, kOnTail);
        click(hand, kOnRowsHigher, 2);
        click(hand, kOnZoomIn, 2);
        hand.move({300, 380});
    });
}

// What goes, and when.

TEST_F(PropertyPages, KeepTheModule) {
    EXPECT_EQ(component.canUnloadNow(), S_OK);
    {
        const auto page = makePage(component);
        EXPECT_EQ(component.canUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(component.canUnloadNow(), S_OK);
    {
        PropertyFrame frame(makePage(component));
        frame.show();
        EXPECT_EQ(component.canUnloadNow(), S_FALSE);
        frame.page.reset();
    }
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

TEST(PropertyPage, IsShownAgainByAModuleThatComesAgain) {
    const Apartment apartment;
    for (int round = 0; round < 3; ++round) {
        std::filesystem::path file;
        HINSTANCE module = nullptr;
        std::array<wchar_t, 256> kind{};
        WNDCLASSW told{};
        {
            const Component component;
            file = component.path();
            PropertyFrame frame(makePage(component));
            frame.show();
            module = GetModuleHandleW(file.c_str());
            GetClassNameW(frame.pageWindow(), kind.data(), static_cast<int>(kind.size()));
            EXPECT_TRUE(GetClassInfoW(module, kind.data(), &told));
            EXPECT_TRUE(frame.picture() == HeadlessPage(*frame.page, {}).picture()) << round;
            frame.page.reset();
            EXPECT_EQ(component.canUnloadNow(), S_OK);
        }
        EXPECT_EQ(GetModuleHandleW(file.c_str()), nullptr);
        EXPECT_FALSE(GetClassInfoW(module, kind.data(), &told)) << "its windows' class goes with it";
    }
}

/// What this program holds of the system; the last two are the system's own figures, where it has any.
std::array<long, 10> held() {
    const auto guiResources = [](DWORD kind) {
        return static_cast<long>(GetGuiResources(GetCurrentProcess(), kind));
    };
    return {DeviceHandle::live(),        BitmapHandle::live(), FontHandle::live(),
            CursorHandle::live(),        MenuHandle::live(),   WindowHandle::live(),
            HookHandle::live(),          ModuleLock::count(),  guiResources(GR_GDIOBJECTS),
            guiResources(GR_USEROBJECTS)};
}

TEST(PropertyPage, LeavesNothingOfTheSystemsBehind) {
    const Apartment apartment;
    HostRig rig(createInstrument);
    std::array<long, 10> before{};
    for (int round = 0; round <= 50; ++round) {
        // What is made once is made in the first round.
        if (round == 1) before = held();
        RefPtr<IPropertyPage> page;
        ASSERT_EQ(createPropertyPage(nullptr, IID_IPropertyPage, page.putVoid()), S_OK);
        PropertyFrame frame(std::move(page));
        frame.setObject(&rig.sampler());
        frame.show();
        EXPECT_GT(BitmapHandle::live(), before[1]);
        click(frame, onImage(3));
        frame.onQuestion([&](HWND) { EXPECT_EQ(frame.page->Deactivate(), S_OK); });
        click(frame, kOnClear);
        EXPECT_FALSE(frame.pageWindow());
        // Every other one goes with its frame.
        EXPECT_EQ(round % 2 ? frame.activate() : S_OK, S_OK);
        frame.destroyWindow();
        frame.page.reset();
        if (round == 0) continue;
        ASSERT_EQ(held(), before) << round;
    }
}

TEST_F(PropertyPages, OutliveTheFramesWindow) {
    Hosted host(component);
    PropertyFrame frame(makePage(component));
    frame.setObject(&host.rig.sampler());
    frame.show();
    frame.destroyWindow();
    EXPECT_EQ(frame.page->Show(SW_SHOW), S_OK);
    EXPECT_EQ(frame.page->Help(L""), S_OK);
    const RECT place{1, 2, 3, 4};
    EXPECT_EQ(frame.page->Move(&place), S_OK);
    frame.setObject(&host.rig.sampler());
    PropertyFrame next(frame.page);
    EXPECT_EQ(next.activate(), S_OK) << "its window went with the frame's";
    EXPECT_TRUE(next.pageWindow());
    next.destroyWindow();
    EXPECT_EQ(next.page->Deactivate(), S_OK);
}

/// A frame that takes the page away while the page asks something.
class PropertyPageUnderAQuestion : public PropertyPages {
protected:
    PropertyPageUnderAQuestion() {
        frame.setObject(&host->rig.sampler());
        frame.show();
    }
    template <class Act>
    void askAnd(Act act) {
        int acts = 0;
        frame.onQuestion([&](HWND box) {
            ++acts;
            question = box;
            act();
        });
        click(frame, kOnClear);
        EXPECT_EQ(acts, 1);
        EXPECT_FALSE(IsWindow(question)) << "a question that nobody can answer any more is gone";
    }
    /// Whether the question was answered by yes.
    bool isCleared() {
        std::uint32_t solo = 0;
        EXPECT_EQ(host->rig.sampler().GetPadSolo(1, &solo), S_OK);
        return solo == 0;
    }

    std::optional<Hosted> host{component};
    PropertyFrame frame{makePage(component)};
    HWND question = nullptr;
};

TEST_F(PropertyPageUnderAQuestion, IsDeactivated) {
    host->rig.sampler().SetPadSolo(1, 1);
    askAnd([this] {
        EXPECT_EQ(frame.page->Deactivate(), S_OK);
        EXPECT_FALSE(frame.pageWindow());
    });
    EXPECT_FALSE(isCleared());
    EXPECT_EQ(frame.activate(), S_OK) << "and can be shown again";
}

TEST_F(PropertyPageUnderAQuestion, IsReleasedWithItsInstrument) {
    askAnd([this] {
        frame.page.reset();
        host.reset();
        EXPECT_EQ(component.canUnloadNow(), S_FALSE) << "its code is still under way";
    });
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

TEST_F(PropertyPageUnderAQuestion, KeepsTheModuleByItself) {
    EXPECT_EQ(frame.page->SetObjects(0, nullptr), S_OK);
    host.reset();
    askAnd([this] {
        frame.page.reset();
        EXPECT_EQ(component.canUnloadNow(), S_FALSE);
    });
    EXPECT_EQ(component.canUnloadNow(), S_OK);
}

TEST_F(PropertyPageUnderAQuestion, LosesTheFramesWindow) {
    host->rig.sampler().SetPadSolo(1, 1);
    askAnd([this] { frame.destroyWindow(); });
    EXPECT_FALSE(isCleared());
    EXPECT_EQ(frame.page->Deactivate(), S_OK);
}

TEST_F(PropertyPageUnderAQuestion, GetsAnotherInstrument) {
    Hosted other(component);
    host->rig.sampler().SetPadSolo(1, 1);
    other.rig.sampler().SetPadSolo(3, 1);
    askAnd([&] { frame.setObject(&other.rig.sampler()); });
    EXPECT_FALSE(isCleared());
    PropertyFrame fresh(makePage(component));
    fresh.setObject(&other.rig.sampler());
    fresh.show();
    EXPECT_TRUE(frame.picture() == fresh.picture());
}

}  // namespace
}  // namespace marnoth::test::property_page_test
