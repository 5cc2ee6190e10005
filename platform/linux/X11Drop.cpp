#include "platform/linux/X11Drop.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

#include "platform/linux/X11Property.h"
#include "platform/text/UriList.h"

namespace marnoth {

namespace {

constexpr Atom kVersion = 5;
constexpr const char* kUriList = "text/uri-list";

std::string hostName() {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

}  // namespace

X11Drop::X11Drop(X11Display& display, ::Window window, Page page, ToPage toPage)
    : display_(display), window_(window), page_(std::move(page)), toPage_(std::move(toPage)) {
    writeAtoms(display_, window_, display_.atom("XdndAware"), std::array{kVersion});
}

bool X11Drop::handle(const XEvent& event) {
    if (event.type == SelectionNotify && event.xselection.selection == display_.atom("XdndSelection")) {
        received(event.xselection);
        return true;
    }
    if (event.type != ClientMessage) return false;
    const XClientMessageEvent& message = event.xclient;
    if (message.message_type == display_.atom("XdndEnter")) {
        enter(message);
    } else if (message.message_type == display_.atom("XdndPosition")) {
        position(message);
    } else if (message.message_type == display_.atom("XdndLeave")) {
        leave();
    } else if (message.message_type == display_.atom("XdndDrop")) {
        drop(message);
    } else {
        return false;
    }
    return true;
}

void X11Drop::enter(const XClientMessageEvent& message) {
    leave();
    source_ = static_cast<::Window>(message.data.l[0]);
    std::vector<Atom> types;
    // Up to three stand in the message itself.
    if (message.data.l[1] & 1) {
        types = readAtoms(display_, source_, display_.atom("XdndTypeList"));
    } else {
        for (const int i : {2, 3, 4}) types.push_back(static_cast<Atom>(message.data.l[i]));
    }
    hasFiles_ = std::ranges::count(types, display_.atom(kUriList)) > 0;
}

void X11Drop::position(const XClientMessageEvent& message) {
    if (static_cast<::Window>(message.data.l[0]) != source_) return;
    const auto root = static_cast<unsigned long>(message.data.l[2]);
    Point at;
    ::Window child = 0;
    XTranslateCoordinates(display_.get(), display_.root(), window_, static_cast<int>(root >> 16 & 0xFFFF),
                          static_cast<int>(root & 0xFFFF), &at.x, &at.y, &child);
    at_ = toPage_(at);
    DropEffect effect = DropEffect::none;
    if (PageEvents* const page = page_()) {
        if (!std::exchange(entered_, true)) page->dragEnter(hasFiles_);
        effect = page->dragOver(at_);
    }
    // Without files nothing can come of it, whatever the page says of the place.
    const bool takes = effect != DropEffect::none && hasFiles_;
    answer("XdndStatus", takes ? 1 : 0, takes ? display_.atom("XdndActionCopy") : kXNone);
}

void X11Drop::leave() {
    if (std::exchange(entered_, false))
        if (PageEvents* const page = page_()) page->dragLeave();
    forget();
}

void X11Drop::forget() {
    source_ = kXNone;
    hasFiles_ = entered_ = false;
}

void X11Drop::drop(const XClientMessageEvent& message) {
    if (static_cast<::Window>(message.data.l[0]) != source_) return;
    if (!hasFiles_ || !page_()) {
        finished(DropEffect::none);
        return leave();
    }
    XConvertSelection(display_.get(), display_.atom("XdndSelection"), display_.atom(kUriList), inbox(),
                      window_, static_cast<::Time>(message.data.l[2]));
}

void X11Drop::received(const XSelectionEvent& event) {
    if (source_ == kXNone) return;
    std::optional<std::vector<std::string>> files;
    if (event.property != kXNone) {
        const X11Property property = readProperty(display_, window_, inbox(), true);
        files = filesOfUriList(property.bytes, hostName());
        if (files->empty()) files.reset();
    }
    DropEffect effect = DropEffect::none;
    // The program that drags waits for our answer, and the page may ask something: the answer goes first.
    PageEvents* const page = page_();
    if (page && files) effect = DropEffect::copy;
    finished(effect);
    forget();
    if (!page) return;
    if (files) {
        page->drop(at_, std::span<const std::string>(*files));
    } else {
        page->drop(at_, std::nullopt);
    }
}

void X11Drop::finished(DropEffect effect) {
    const bool took = effect != DropEffect::none;
    answer("XdndFinished", took ? 1 : 0, took ? display_.atom("XdndActionCopy") : kXNone);
}

void X11Drop::answer(const char* message, long flags, Atom action) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.display = display_.get();
    event.xclient.window = source_;
    event.xclient.message_type = display_.atom(message);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(window_);
    event.xclient.data.l[1] = flags;
    const bool isFinished = message == std::string("XdndFinished");
    // A finish says what was done in its third word, a status in its fifth.
    event.xclient.data.l[isFinished ? 2 : 4] = static_cast<long>(action);
    XSendEvent(display_.get(), source_, kXFalse, NoEventMask, &event);
    XFlush(display_.get());
}

}  // namespace marnoth
