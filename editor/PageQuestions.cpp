#include "editor/PageQuestions.h"

#include <utility>

namespace marnoth {

PageQuestions::PageQuestions(PageWindow& window, Act begin, std::function<void(const Act&)> carryOut)
    : window_(window), begin_(std::move(begin)), carryOut_(std::move(carryOut)) {}

PageQuestions::~PageQuestions() {
    if (isOpen()) window_.cancelQuestion();
}

/// Has a question asked, whose answer goes to `then`; one that can't be asked isn't open.
template <class Answer, class Ask>
void PageQuestions::open(Answer cancelled, std::function<void(Answer)> then, Ask ask) {
    begin_();
    auto cancelOpen = std::make_shared<Act>();
    std::function<void(Answer)> answer = [this, open = std::weak_ptr(cancelOpen),
                                          then = std::move(then)](Answer given) {
        // It has its answer already, or the page is gone.
        if (open.expired()) return;
        cancelOpen_.reset();
        carryOut_([&] { then(std::move(given)); });
    };
    *cancelOpen = [answer, cancelled] { answer(cancelled); };
    const std::weak_ptr<Act> own = cancelOpen;
    cancelOpen_ = std::move(cancelOpen);
    try {
        ask(std::move(answer));
    } catch (...) {
        // Behind an answer there may be another question, or no page.
        if (!own.expired()) cancelOpen_.reset();
        throw;
    }
}

void PageQuestions::cancel() {
    const std::shared_ptr<Act> cancelOpen = cancelOpen_;
    if (!cancelOpen) return;
    window_.cancelQuestion();
    (*cancelOpen)();
}

void PageQuestions::askMessage(std::string_view text, MessageKind kind,
                               std::function<void(PageAnswer)> then) {
    if (isOpen()) return then(PageAnswer::cancel);
    open(PageAnswer::cancel, std::move(then),
         [&](auto answer) { window_.askMessage(text, kind, std::move(answer)); });
}

void PageQuestions::askFile(std::string_view filter, FileKind kind,
                            std::function<void(std::optional<std::string>)> then) {
    if (isOpen()) return then({});
    open(std::optional<std::string>(), std::move(then),
         [&](auto answer) { window_.askFile(filter, kind, std::move(answer)); });
}

void PageQuestions::askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) {
    if (isOpen()) return then(0);
    open(0, std::move(then), [&](auto answer) { window_.askMenu(at, items, std::move(answer)); });
}

}  // namespace marnoth
