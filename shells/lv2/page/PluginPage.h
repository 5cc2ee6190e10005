#pragma once

#include <lv2/ui/ui.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "editor/GrooveSamplerPropPage.h"
#include "platform/com/RefPtr.h"
#include "platform/drawing/Font.h"
#include "platform/linux/X11Window.h"
#include "seam/IMarnothOptions.h"
#include "shellkit/listening/FilePreview.h"
#include "shellkit/page/ChooserChain.h"
#include "shellkit/page/PageChooser.h"
#include "shellkit/page/QuestionBox.h"
#include "shells/lv2/PluginInstance.h"

namespace marnoth {

/// A page of an instance, in its host's window. An instance may have several. How its user leaves it is kept,
/// and shown by the next one.
///
/// It has a connection to the display of its own, never waits, and brings nothing of a toolkit into the host:
/// files are asked for over the page. The host's thread for windows alone.
class PluginPage {
public:
    struct Setup {
        unsigned long parent = 0;              ///< the host's window
        double scaleFactor = 0;                ///< as the host enlarges its own; 0 where it tells none
        const LV2UI_Resize* resize = nullptr;  ///< gets the size in pixels; null where the host has none
    };

    /// `instance` outlives it. Throws `std::runtime_error`, with a sentence for the user, where there is no
    /// display or no font for it.
    PluginPage(PluginInstance& instance, const Setup& setup);
    ~PluginPage();
    PluginPage(const PluginPage&) = delete;
    PluginPage& operator=(const PluginPage&) = delete;

    unsigned long window() const { return window_.id(); }
    /// Takes what has come and paints, many times a second. False when the host has destroyed the window.
    bool work();
    void setScaleFactor(double factor);

private:
    /// The instrument is shown as it is now, with the view that was kept last.
    void bind();
    /// What a state has brought, automation or another page has changed, is read here too: not in the middle
    /// of what the user types, and no oftener than any refresh.
    void followOthers();
    void keepView();
    std::string viewText() const;
    /// The instrument's count of changes without those that are automated.
    std::uint64_t edits() const;
    void tellSize() const;

    IGrooveSampler& sampler_;
    PageMemory& memory_;
    const LV2UI_Resize* const resize_;
    std::unique_ptr<FontSource> fonts_;
    std::unique_ptr<Font> questionFont_;
    FilePreview preview_;
    PageChooser pageChooser_;
    ChooserChain chooser_{{&pageChooser_}};
    QuestionBox questions_;
    X11Window window_;
    CGrooveSamplerPropPage page_;
    RefPtr<IMarnothOptions> options_;
    // The memory's counts, of what is shown.
    std::uint64_t automated_ = 0;
    std::uint64_t edited_ = 0;
    std::uint64_t restored_ = 0;
    std::string kept_;  ///< the view that the memory has, or had at first
    std::chrono::steady_clock::time_point nextLook_;
};

}  // namespace marnoth
