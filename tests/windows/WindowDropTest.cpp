#include <memory>

#include "platform/com/RefPtr.h"
#include "platform/windows/DroppedFiles.h"
#include "windows/DropData.h"
#include "windows/UserInput.h"
#include "windows/WindowRig.h"

namespace marnoth::test::window_drop_test {
namespace {

using Paths = std::vector<std::wstring>;

class WindowDrop : public WindowRig {
protected:
    static RefPtr<DragData> files(const Paths& paths) {
        return RefPtr<DragData>::adopt(new DragData(CF_HDROP, wideFileList(paths)));
    }
    static RefPtr<DragData> text() { return RefPtr<DragData>::adopt(new DragData(CF_TEXT, "abc")); }
    /// What the system keeps for whoever drags something over the window.
    RefPtr<IDropTarget> target() const {
        return RefPtr<IDropTarget>(static_cast<IDropTarget*>(GetPropW(handle(), L"OleDropTargetInterface")));
    }
    POINTL at(Point place) const {
        const POINT point = screenPoint(place);
        return {point.x, point.y};
    }
    DWORD enter(IDataObject* data) const {
        DWORD effect = DROPEFFECT_MOVE;
        EXPECT_EQ(target()->DragEnter(data, 0, at({1, 2}), &effect), S_OK);
        return effect;
    }
    DWORD over(Point place) const {
        DWORD effect = DROPEFFECT_MOVE;
        EXPECT_EQ(target()->DragOver(0, at(place), &effect), S_OK);
        return effect;
    }
    DWORD drop(IDataObject* data, Point place = {30, 40}) const {
        DWORD effect = DROPEFFECT_MOVE;
        EXPECT_EQ(target()->Drop(data, 0, at(place), &effect), S_OK);
        return effect;
    }
};

TEST_F(WindowDrop, TellsThePageOfEachStepAndAnswersWithItsEffect) {
    const auto data = files({L"C:\\a.wav"});
    EXPECT_EQ(enter(data.get()), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(over({3, 4}), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(target()->DragLeave(), S_OK);
    EXPECT_EQ(drop(data.get()), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(page.take(), (Lines{"enter with files", "over 3,4", "leave", "drop 30,40"}));
    EXPECT_EQ(page.dropped, Lines{"C:\\a.wav"});
    page.effect = DropEffect::none;
    EXPECT_EQ(enter(data.get()), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(over({3, 4}), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(drop(data.get()), DWORD{DROPEFFECT_NONE});
}

TEST_F(WindowDrop, WhatIsNotFilesHasNoEffectOnEnterAndIsNoneWhenItIsDropped) {
    const auto data = text();
    EXPECT_EQ(enter(data.get()), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(over({3, 4}), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(drop(data.get()), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(page.take(), (Lines{"enter", "over 3,4", "drop of something else 30,40"}));
}

TEST_F(WindowDrop, NothingAtAllIsNotFiles) {
    EXPECT_EQ(enter(nullptr), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(drop(nullptr), DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(page.take(), (Lines{"enter", "drop of something else 30,40"}));
    EXPECT_EQ(target()->DragEnter(nullptr, 0, {}, nullptr), E_POINTER);
    EXPECT_EQ(target()->DragOver(0, {}, nullptr), E_POINTER);
    EXPECT_EQ(target()->Drop(nullptr, 0, {}, nullptr), E_POINTER);
}

TEST_F(WindowDrop, AnEmptyListIsADropOfNoFiles) {
    EXPECT_EQ(drop(files({}).get()), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(page.take(), Lines{"drop 30,40"});
    EXPECT_EQ(page.dropped, Lines{});
}

TEST_F(WindowDrop, AListThatCannotBeReadIsADropOfNoFiles) {
    const auto data = files({L"C:\\a.wav"});
    data->givesNoMemory = true;
    EXPECT_EQ(drop(data.get()), DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(page.take(), Lines{"drop 30,40"});
    EXPECT_EQ(page.dropped, Lines{});
}

TEST_F(WindowDrop, ThreeHundredFilesComeAllAndInTheirOrder) {
    Paths paths;
    Lines expected;
    for (int i = 0; i < 300; ++i) {
        paths.push_back(L"C:\\loops\\" + std::to_wstring(i) + L".wav");
        expected.push_back("C:\\loops\\" + std::to_string(i) + ".wav");
    }
    drop(files(paths).get());
    EXPECT_EQ(page.dropped, expected);
}

TEST_F(WindowDrop, PathsComeWholeHoweverLongTheyAre) {
    const std::wstring folder = L"C:\\" + std::wstring(400, L'f') + L"\\";
    const std::wstring longest = L"\\\\?\\C:\\" + std::wstring(32000, L'g') + L".wav";
    drop(files({folder + L"a.wav", longest}).get());
    ASSERT_EQ(page.dropped.size(), 2u);
    EXPECT_EQ(page.dropped[0], "C:\\" + std::string(400, 'f') + "\\a.wav");
    EXPECT_EQ(page.dropped[1], "\\\\?\\C:\\" + std::string(32000, 'g') + ".wav");
}

TEST_F(WindowDrop, PlacesLeftOfAndAboveThePageAreBelowZero) {
    drop(files({}).get(), {-7, -3});
    EXPECT_EQ(page.take(), Lines{"drop -7,-3"});
}

TEST_F(WindowDrop, AWindowThatIsGoneTakesNothing) {
    const RefPtr<IDropTarget> kept = target();
    const auto data = files({L"C:\\a.wav"});
    window.close();
    DWORD effect = DROPEFFECT_COPY;
    EXPECT_EQ(kept->DragEnter(data.get(), 0, {}, &effect), S_OK);
    EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
    effect = DROPEFFECT_COPY;
    EXPECT_EQ(kept->Drop(data.get(), 0, {}, &effect), S_OK);
    EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
    EXPECT_EQ(kept->DragLeave(), S_OK);
    EXPECT_EQ(page.take(), Lines{});
}

TEST_F(WindowDrop, ATargetThatIsKeptAsksNothingOfAWindowThatIsNoMore) {
    void* const room = VirtualAlloc(nullptr, sizeof(Win32Window), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    ASSERT_TRUE(room);
    auto* const other = new (room) Win32Window(frame.handle(), kPlace, fonts, {}, {});
    const RefPtr<IDropTarget> kept(
        static_cast<IDropTarget*>(GetPropW(other->handle(), L"OleDropTargetInterface")));
    std::destroy_at(other);
    VirtualFree(room, 0, MEM_RELEASE);  // who looks there now ends the test
    DWORD effect = DROPEFFECT_COPY;
    EXPECT_EQ(kept->DragOver(0, {}, &effect), S_OK);
    EXPECT_EQ(effect, DWORD{DROPEFFECT_NONE});
}

TEST_F(WindowDrop, ATargetThatIsKeptKeepsTheModule) {
    const long before = ModuleLock::count();
    {
        const RefPtr<IDropTarget> kept = target();
        window.close();
        EXPECT_EQ(ModuleLock::count(), before);
    }
    EXPECT_EQ(ModuleLock::count(), before - 1);
}

TEST_F(WindowDrop, IsKnownAsADropTargetAlone) {
    RefPtr<IUnknown> found;
    EXPECT_EQ(target()->QueryInterface(IID_IDropTarget, found.putVoid()), S_OK);
    EXPECT_EQ(target()->QueryInterface(IID_IDataObject, found.putVoid()), E_NOINTERFACE);
}

TEST_F(WindowDrop, AnErrorOfThePageEndsTheDropAlone) {
    page.act = [](const std::string&) { throw std::bad_alloc(); };
    EXPECT_EQ(drop(files({L"C:\\a.wav"}).get()), DWORD{DROPEFFECT_NONE});
}

/// Lets go of what it drags over the first window that takes it.
class Dragger final : public Implements<CUnknown, IDropSource> {
public:
    Dragger() : Implements(nullptr) {}

    HRESULT QueryContinueDrag(BOOL, DWORD) override { return moves_ >= 3 ? DRAGDROP_S_DROP : S_OK; }
    HRESULT GiveFeedback(DWORD effect) override {
        if (effect != DROPEFFECT_NONE) ++moves_;
        return DRAGDROP_S_USEDEFAULTCURSORS;
    }

private:
    IUnknown* FindInterface(REFIID iid) override {
        return iid == IID_IDropSource ? static_cast<IDropSource*>(this) : nullptr;
    }

    int moves_ = 0;
};

TEST_F(WindowDrop, TheSystemsOwnDragEndsOnThePage) {
    const auto data = files({L"C:\\m\u00fcsik.wav"});
    const auto source = RefPtr<Dragger>::adopt(new Dragger);
    movePointer(screenPoint({50, 60}));
    mouseInput(MOUSEEVENTF_LEFTDOWN);
    // The drag goes on with each message of the mouse.
    static POINT place;
    place = screenPoint({50, 60});
    const UINT_PTR hand = SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR, DWORD) {
        place.x ^= 1;
        movePointer(place);
    });
    DWORD effect = DROPEFFECT_NONE;
    EXPECT_EQ(DoDragDrop(data.get(), source.get(), DROPEFFECT_COPY, &effect), DRAGDROP_S_DROP);
    KillTimer(nullptr, hand);
    mouseInput(MOUSEEVENTF_LEFTUP);
    EXPECT_EQ(effect, DWORD{DROPEFFECT_COPY});
    EXPECT_EQ(page.dropped, Lines{"C:\\m\xC3\xBCsik.wav"});
    EXPECT_EQ(page.heard.front(), "enter with files");
}

std::span<const std::byte> bytesOf(const std::string& block) {
    return std::as_bytes(std::span(block));
}

TEST(DroppedFiles, NamesInTheCodePageAreReadToo) {
    const std::string block = fileListOf(std::string("C:\\a.wav\0C:\\b.wav\0\0ignored", 26), false);
    EXPECT_EQ(parseFileList(bytesOf(block)), (Paths{L"C:\\a.wav", L"C:\\b.wav"}));
}

TEST(DroppedFiles, ABlockThatEndsTooSoonGivesWhatItHas) {
    const std::string whole = wideFileList({L"C:\\a.wav", L"C:\\b.wav"});
    EXPECT_EQ(parseFileList(bytesOf(whole)), (Paths{L"C:\\a.wav", L"C:\\b.wav"}));
    EXPECT_EQ(parseFileList(bytesOf(whole.substr(0, whole.size() - 8))), (Paths{L"C:\\a.wav", L"C:\\b.w"}));
    EXPECT_EQ(parseFileList(bytesOf(whole.substr(0, sizeof(DROPFILES)))), Paths{});
    EXPECT_EQ(parseFileList(bytesOf(whole.substr(0, sizeof(DROPFILES) - 1))), Paths{});
    EXPECT_EQ(parseFileList({}), Paths{});
}

TEST(DroppedFiles, NamesThatBeginBehindTheBlockAreNone) {
    std::string block = wideFileList({L"C:\\a.wav"});
    const DWORD begin = static_cast<DWORD>(block.size()) + 1;
    std::memcpy(block.data(), &begin, sizeof begin);
    EXPECT_EQ(parseFileList(bytesOf(block)), Paths{});
    const DWORD huge = 0xFFFFFFFF;
    std::memcpy(block.data(), &huge, sizeof huge);
    EXPECT_EQ(parseFileList(bytesOf(block)), Paths{});
}

}  // namespace
}  // namespace marnoth::test::window_drop_test
