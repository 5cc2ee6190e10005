#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "tests/hosts/robot/UserHands.h"

namespace marnoth::robot {

/// What the robot works with.
struct RobotSetup {
    unsigned seed = 1;
    std::vector<std::string>
        files;  ///< full paths of what is dropped onto the page, fine files and damaged ones
    /// Where it lays the name of the file that the stand-in for a dialog of files is to choose next; whoever
    /// takes it, removes it.
    std::filesystem::path nextChoice;
    std::string project;  ///< what is opened to compare the memory of two times
    std::string result;   ///< where the project is saved at the end
};

/// Works in the program's window as somebody who tries everything in no order: presses, drags, wheel, keys,
/// menus, questions, text, files opened, saved and dropped, transport and takes. The same seed gives the same
/// gestures; each is written down before it is made. What it must not find throws `std::runtime_error`: a
/// program that is gone, doesn't answer, or leaves a question open.
class EditingRobot {
public:
    EditingRobot(UserHands& hands, RobotSetup setup);

    void work(std::chrono::seconds time);
    /// Comes to rest with the project of the setup and nothing to be undone; the memory that the program has
    /// then to itself, KiB.
    long rest();
    /// Saves under the name of the setup, and closes the window.
    void finish();

private:
    struct Gesture {
        int weight;
        const char* name;
        void (EditingRobot::*make)();
    };
    static const std::vector<Gesture>& gestures();

    void pressSomewhere();
    void doubleClickSomewhere();
    void dragSomewhere();
    void dragGrain();
    void turnKnob();
    void turnWheel();
    void openMenu();
    void useCombo();
    void typeIntoField();
    void pressKeys();
    void playPads();
    void undoAndRedo();
    void answerQuestion();
    void openLoop();
    void openProject();
    void saveProject();
    void clearProject();
    void dropSomewhere();
    void useTransport();
    void typeTempo();
    void recordTake();
    void openFileMenu();
    void openSettings();

    /// Questions are left by Escape until none is open.
    void leaveQuestions();
    void expectAnswer();
    /// The transport stops and plays when it is told to: no question is open, and the thread that renders is
    /// alive.
    void expectPlaying();
    bool stopsAndPlays();
    void learnPictures();
    bool sees(std::uint64_t picture);
    void choose(const std::string& file);

    int any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool oneOf(int count) { return any(count) == 0; }
    template <class T>
    const T& any(const std::vector<T>& things) {
        return things[random_() % things.size()];
    }
    template <class T>
    T any(std::initializer_list<T> things) {
        return things.begin()[random_() % things.size()];
    }
    Point within(const Rect& place);
    Point somewhere();
    void drag(Point from, Point to);
    void hold(const std::string& key, bool down);
    void say(const std::string& what);
    void pause(int mostMilliseconds);

    UserHands& hands_;
    const RobotSetup setup_;
    std::mt19937 random_;
    std::uint64_t stopped_ = 0;  ///< how the button looks then, of Play
    std::uint64_t playing_ = 0;
    int made_ = 0;  ///< gestures so far
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace marnoth::robot
