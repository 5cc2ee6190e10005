#include "editor/PageQuestions.h"

#include <utility>

namespace marnoth {

PageQuestions::PageQuestions(PageWindow& window, Act begin, std::function<void(const Act&)> carryOut)
    : window_(window), begin_(std::move(begin)), carryOut_(std::move(carryOut)) {}

PageQuestions::~PageQuestions() {
    if (isOpen()) window_.cancelQuestion();
}

template <class Answer>
std::function<void(Answer)> PageQuestions::opened(Answer cancelled, std::function<void(Answer)> then) {
    begin_();
    cancelOpen_ = std::make_shared<Act>();
    std::function<void(Answer)> answer = [this, open = std::weak_ptr(cancelOpen_),
                                          then = std::move(then)](Answer given) {
        // It has its answer already, or the page is gone.
        if (open.expired()) return;
        cancelOpen_.reset();
        carryOut_([&] { then(std::move(given)); });
    };
    *cancelOpen_ = [answer, cancelled] { answer(cancelled); };
    return answer;
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
    window_.askMessage(text, kind, opened(PageAnswer::cancel, std::move(then)));
}

void PageQuestions::askFile(std::string_view filter, FileKind kind,
                            std::function<void(std::optional<std::string>)> then) {
    if (isOpen()) return then({});
    window_.askFile(filter, kind, opened(std::optional<std::string>(), std::move(then)));
}

void PageQuestions::askMenu(Point at, std::span<const MenuItem> items, std::function<void(int)> then) {
    if (isOpen()) return then(0);
    window_.askMenu(at, items, opened(0, std::move(then)));
}

}  // namespace marnoth
