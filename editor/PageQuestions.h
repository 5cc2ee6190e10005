#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/drawing/PageWindow.h"

namespace marnoth {

/// The questions of a page to its user, one at a time: a question while another one is open is cancelled.
///
/// An answer comes to `then` at once, within the call, or later; none comes once this is gone, which takes an
/// open question back. The window's thread alone.
class PageQuestions {
public:
    using Act = std::function<void()>;

    /// `window` outlives it. `begin` is called before a question opens; `carryOut` gets what an answer leads
    /// to, and does it.
    PageQuestions(PageWindow& window, Act begin, std::function<void(const Act&)> carryOut);
    ~PageQuestions();
    PageQuestions(const PageQuestions&) = delete;
    PageQuestions& operator=(const PageQuestions&) = delete;

    void askMessage(std::string_view text, MessageKind kind, std::function<void(PageAnswer)> then);
    void askFile(std::string_view filter, FileKind kind,
                 std::function<void(std::optional<std::string>)> then);
    void askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then);

    bool isOpen() const { return cancelOpen_ != nullptr; }
    /// An open question is taken back and counts as cancelled, for what it was about goes.
    void cancel();

private:
    template <class Answer, class Ask>
    void open(Answer cancelled, std::function<void(Answer)> then, Ask ask);

    PageWindow& window_;
    Act begin_;
    std::function<void(const Act&)> carryOut_;
    /// Goes on as if the user had cancelled the open question; null while none is open.
    std::shared_ptr<Act> cancelOpen_;
};

}  // namespace marnoth
