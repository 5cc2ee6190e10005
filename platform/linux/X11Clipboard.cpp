#include "platform/linux/X11Clipboard.h"

#include <array>
#include <utility>

#include "platform/linux/X11Property.h"
#include "platform/text/Text.h"

namespace marnoth {

namespace {

/// Latin-1, which is what a plain string is.
std::string utf8FromLatin1(const std::string& text) {
    std::wstring wide;
    for (const char c : text) wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return utf8FromWide(wide);
}

}  // namespace

void X11Clipboard::offer(std::string text) {
    offered_ = std::move(text);
    XSetSelectionOwner(display_.get(), clipboard(), window_, CurrentTime);
}

void X11Clipboard::read(std::function<void(std::string)> then) {
    if (then_) finish({});
    if (offered_) return then(*offered_);
    if (XGetSelectionOwner(display_.get(), clipboard()) == kXNone) return then({});
    then_ = std::move(then);
    ask(utf8());
}

void X11Clipboard::ask(Atom target) {
    asked_ = target;
    inParts_ = false;
    incoming_.clear();
    deadline_ = std::chrono::steady_clock::now() + kPatience;
    XConvertSelection(display_.get(), clipboard(), target, inbox(), window_, CurrentTime);
}

bool X11Clipboard::handle(const XEvent& event) {
    switch (event.type) {
        case SelectionRequest:
            if (event.xselectionrequest.selection != clipboard()) return false;
            serve(event.xselectionrequest);
            return true;
        case SelectionClear:
            if (event.xselectionclear.selection != clipboard()) return false;
            offered_.reset();
            return true;
        case SelectionNotify:
            if (event.xselection.selection != clipboard()) return false;
            answered(event.xselection);
            return true;
        case PropertyNotify:
            if (event.xproperty.atom != inbox()) return false;
            if (inParts_ && event.xproperty.state == PropertyNewValue) chunk();
            return true;
        default:
            return false;
    }
}

void X11Clipboard::answered(const XSelectionEvent& event) {
    if (!then_ || event.target != asked_) return;
    if (event.property == kXNone) {
        if (asked_ == utf8()) return ask(XA_STRING);
        return finish({});
    }
    const X11Property property = readProperty(display_, window_, inbox(), true, kLongestText + 1);
    if (property.type == display_.atom("INCR")) {
        // Taking the property away, as was just done, asks for the first part.
        inParts_ = true;
        return;
    }
    finish(asked_ == XA_STRING ? utf8FromLatin1(property.bytes) : property.bytes);
}

void X11Clipboard::chunk() {
    deadline_ = std::chrono::steady_clock::now() + kPatience;
    const X11Property property = readProperty(display_, window_, inbox(), true, kLongestText + 1);
    if (property.bytes.empty())
        return finish(asked_ == XA_STRING ? utf8FromLatin1(incoming_) : std::exchange(incoming_, {}));
    incoming_ += property.bytes;
    if (incoming_.size() > kLongestText) finish({});
}

void X11Clipboard::finish(std::string text) {
    inParts_ = false;
    deadline_.reset();
    incoming_.clear();
    const auto then = std::exchange(then_, {});
    if (then) then(text.size() > kLongestText ? std::string() : std::move(text));
}

void X11Clipboard::expire(Time now) {
    if (deadline_ && now >= *deadline_) finish({});
}

void X11Clipboard::serve(const XSelectionRequestEvent& request) {
    // Old programs name no property: then it is that of the target.
    const Atom property = request.property ? request.property : request.target;
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.time = request.time;
    answer.xselection.property = offered_ && put(request, property) ? property : kXNone;
    XSendEvent(display_.get(), request.requestor, kXFalse, NoEventMask, &answer);
}

bool X11Clipboard::put(const XSelectionRequestEvent& request, Atom property) {
    const Atom plain = display_.atom("text/plain;charset=utf-8");
    const Atom targets = display_.atom("TARGETS");
    if (request.target == targets) {
        writeAtoms(display_, request.requestor, property, std::array{targets, utf8(), plain});
        return true;
    }
    if (request.target != utf8() && request.target != plain) return false;
    // More than one request can hold would have to go in parts; what a page copies is a line.
    if (offered_->size() > kLongestText / 8) return false;
    writeText(display_, request.requestor, property, request.target, *offered_);
    return true;
}

}  // namespace marnoth
