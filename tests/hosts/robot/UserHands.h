#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/drawing/Geometry.h"

namespace marnoth::robot {

/// Buttons of a mouse as a display counts them.
enum class Button : unsigned {
    left = 1,
    right = 3,
    wheelUp = 4,
    wheelDown = 5,
    wheelLeft = 6,
    wheelRight = 7
};

/// What a user has of a program: a window to look at, a mouse and a keyboard. Both are put into the display
/// as its own devices, so that the program can't tell them from those. Places are pixels of the window.
/// Whatever can't be done, as when the window is gone, throws `std::runtime_error`.
class UserHands {
public:
    /// Waits for a window whose class has this instance name.
    UserHands(const std::string& name, std::chrono::seconds patience);
    ~UserHands();
    UserHands(const UserHands&) = delete;
    UserHands& operator=(const UserHands&) = delete;

    int processId() const;
    unsigned long window() const;
    /// The same place counted from the screen's corner.
    Point onScreen(Point at);

    void moveTo(Point at);
    void press(Button button);
    void release(Button button);
    void click(Point at, Button button = Button::left);
    /// Keys by the names that X gives them: "Return", "a", "plus", "Shift_L".
    void keyDown(const std::string& key);
    void keyUp(const std::string& key);
    void tap(const std::string& key);
    /// Letters, digits and signs of ASCII.
    void type(const std::string& text);
    /// Whatever is held down comes up.
    void letGo();

    /// Whether the program answers its window manager's question for that.
    bool answers(std::chrono::seconds patience);
    /// A fingerprint of what is seen there.
    std::uint64_t look(const Rect& place);
    /// As a window manager does it.
    void askToClose();

private:
    struct Display;

    void sendToWindow(unsigned long what, unsigned long detail);
    void sync();

    std::unique_ptr<Display> display_;
    std::set<unsigned> heldKeys_;
    std::set<Button> heldButtons_;
    unsigned long question_ = 0;  ///< how often the program was asked to answer
};

}  // namespace marnoth::robot
