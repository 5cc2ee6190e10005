#pragma once

#include <filesystem>
#include <memory>

#include "editor/GrooveSamplerPropPage.h"
#include "platform/drawing/Font.h"
#include "platform/drawing/HeadlessWindow.h"
#include "platform/drawing/PlatformFonts.h"

namespace marnoth {

/// The editor page of an instrument in a window without a screen, open as a host would show it. One thread.
///
/// Questions are answered in advance, or left open (`HeadlessWindow::leaveOpen`).
class HeadlessPage {
public:
    /// `instrument` outlives it. File answers that are relative count from `folder`. Throws
    /// `std::runtime_error`, with a sentence for the user, when the page's font can't be had.
    HeadlessPage(IUnknown& instrument, const std::filesystem::path& folder);
    HeadlessPage(const HeadlessPage&) = delete;
    HeadlessPage& operator=(const HeadlessPage&) = delete;

    /// Whatever a user does goes through it, and the page's questions come back from it.
    HeadlessWindow& window() { return window_; }
    CGrooveSamplerPropPage& page() { return *page_; }
    /// What a user sees, with the list, menu or question that is open; nothing in it is out of date. Throws
    /// `std::runtime_error` as the constructor does.
    Bitmap picture();

private:
    std::unique_ptr<FontSource> fonts_ = platformFonts();
    HeadlessWindow window_;
    std::unique_ptr<CGrooveSamplerPropPage> page_;  // destroyed before its window
};

}  // namespace marnoth
