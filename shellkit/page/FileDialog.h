#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "editor/controls/EditLine.h"
#include "platform/drawing/FileChooser.h"
#include "platform/drawing/PageOverlay.h"
#include "shellkit/listening/FileListener.h"
#include "shellkit/page/FileBrowser.h"
#include "shellkit/page/FileDialogLayout.h"
#include "shellkit/page/FileDialogPicture.h"
#include "shellkit/page/QuestionBox.h"
#include "shellkit/page/UserPlaces.h"

namespace marnoth {

class Font;

/// A dialog in which a user chooses a file, in the page's own looks and over it.
///
/// The keyboard is the list's or the name field's, which Tab changes. In the list the arrows, Page Up, Page
/// Down, Home and End move, Return opens, Backspace goes to the folder above, space plays the file, and what
/// is typed goes into the field. In the field Tab first completes what is typed. Escape cancels.
class FileDialog final : public PageOverlay {
public:
    struct Setup {
        FileQuestion question;
        std::vector<FilePlace> places;
        FileListener* listener = nullptr;  ///< not owned; null where nothing can be heard
        Rect room;                         ///< what the dialog stays within
    };
    /// `then` gets the file, or nothing when the user cancels; the dialog is good until then.
    /// `font` and `clipboard` outlive it.
    FileDialog(const Setup& setup, Font& font, PageWindow& clipboard,
               std::function<void(std::optional<std::string>)> then);
    ~FileDialog() override;

    Rect place() const override;
    void paint(Surface& surface) override;
    void leftDown(Point at) override;
    void leftUp(Point at) override;
    void doubleClick(Point at) override;
    void mouseMove(Point at) override;
    void wheel(Point at, int steps) override;
    void keyDown(int key, Modifiers held) override;
    void character(char32_t character) override;
    void timer() override {}

    /// What is shown, for tests.
    const FileBrowser& browser() const { return browser_; }
    const std::string& name() const { return name_.text(); }

private:
    using Button = FileDialogLooks::Button;
    using Keyboard = FileDialogLooks::Keyboard;

    Button buttonAt(Point at) const;
    void press(Button button);
    void pressList(Point at);
    void pressPlace(Point at);
    void pressScroller(Point at);
    void dragScroller(int y);
    std::optional<std::size_t> entryAt(Point at) const;
    void enter(const std::string& folder);
    void goUp();
    void light(std::optional<std::size_t> entry);
    void step(std::ptrdiff_t by);
    void scrollTo(std::ptrdiff_t first);
    void showLit();
    void listKey(int key);
    void fieldKey(int key, Modifiers held);
    bool eitherKey(int key);
    void tab();
    void typed();
    void paste();
    void listen();
    void stopListening();
    void accept();
    void askToReplace(std::string file);
    void answerReplace(std::optional<int> answer);
    void finish(std::optional<std::string> file);

    Font& font_;
    PageWindow& clipboard_;
    FileListener* const listener_;
    const std::vector<FilePlace> places_;
    const Rect room_;
    const FileDialogLayout layout_;
    std::function<void(std::optional<std::string>)> then_;
    FileBrowser browser_;
    EditLine name_;
    QuestionBox question_;
    std::string replaced_;  ///< the file about which `question_` asks
    std::string heard_;     ///< what was played last
    std::size_t firstRow_ = 0;
    Keyboard keyboard_;
    Button pressed_ = Button::none;
    bool selects_ = false;            ///< a drag of the mouse in the field
    std::optional<int> scrollsFrom_;  ///< of a drag of the thumb: where in it the mouse is
    std::string note_;                ///< why a file can't be heard
    std::shared_ptr<char> life_ = std::make_shared<char>();  ///< as long as the dialog
};

}  // namespace marnoth
