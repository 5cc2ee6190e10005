#pragma once

#include <map>
#include <string>
#include <vector>

#include "editor/PageLayout.h"
#include "editor/controls/BitmapButton.h"
#include "editor/controls/BitmapKnobCtrl.h"
#include "editor/controls/BitmapToggleCtrl.h"
#include "editor/controls/FxComboBox.h"
#include "editor/controls/FxEdit.h"
#include "editor/controls/PlugInFilterControl.h"
#include "editor/controls/StaticText.h"
#include "editor/controls/ZoomButton.h"

namespace marnoth {

/// The controls of the page by their ids, made, placed and furnished with their pictures and texts. What they
/// stand for is the page's business. An id of another kind throws `std::out_of_range`.
class PageControls {
public:
    /// Those made of bitmaps tell `callback` of their events first; edits and combos keep theirs to
    /// themselves. `font` is that of edits, combos and read-outs. Both, and the parent, outlive the controls.
    PageControls(ControlParent& parent, CPlugInFilterCallback& callback, Font& font);

    /// In the order of making.
    const std::vector<Control*>& all() const { return all_; }

    CBitmapToggleCtrl& toggle(int id) { return toggles_.at(id); }
    CBitmapKnobCtrl& knob(int id) { return knobs_.at(id); }
    CFxEdit& edit(int id) { return edits_.at(id); }
    CFxComboBox& combo(int id) { return combos_.at(id); }
    StaticText& readOut(int id) { return readOuts_.at(id); }

private:
    template <class Base>
    using Filtered = CPlugInFilterControl<Base>;

    /// Makes one of `controls`, at a corner.
    template <class Map>
    auto& make(Map& controls, int id, Point corner);
    template <class Map>
    auto& makeOfBitmaps(Map& controls, int id, Point corner);
    void makeToggle(int id, Point corner, int up, int down);
    void makeButton(int id, Point corner, int up, int down);
    void makeZoom(int id, Point corner, int up, int down);
    void makeKnob(int id, Point corner);
    void makeEdit(int id, Point corner, int width);
    void makeCombo(int id, Point corner, std::vector<std::string> items);
    void makeReadOut(int id, Point corner);
    void makeFileControls();
    void makePad(int pad);
    void makePadPanel();
    void makeGrainPanel();
    void makeZooms();

    ControlParent& parent_;
    CPlugInFilterCallback& callback_;
    Font& font_;
    std::map<int, Filtered<CBitmapToggleCtrl>> toggles_;
    std::map<int, Filtered<CBitmapButton>> buttons_;
    std::map<int, Filtered<CZoomButton>> zooms_;
    std::map<int, Filtered<CBitmapKnobCtrl>> knobs_;
    std::map<int, Filtered<CFxEdit>> edits_;
    std::map<int, Filtered<CFxComboBox>> combos_;
    std::map<int, StaticText> readOuts_;
    std::vector<Control*> all_;
};

}  // namespace marnoth
