#include "platform/windows/Clipboard.h"

#include <cstddef>
#include <cstring>

#include "platform/text/Text.h"
#include "platform/windows/LockedMemory.h"
#include "platform/windows/SystemHandle.h"

namespace marnoth {

namespace {

class OpenClipboardHold {
public:
    explicit OpenClipboardHold(HWND window) {
        constexpr int kTries = 6;
        constexpr DWORD kPause = 10;  // milliseconds
        for (int tries = 1; !(isOpen_ = OpenClipboard(window) != FALSE) && tries < kTries; ++tries)
            Sleep(kPause);
    }
    ~OpenClipboardHold() {
        if (isOpen_) CloseClipboard();
    }
    OpenClipboardHold(const OpenClipboardHold&) = delete;
    OpenClipboardHold& operator=(const OpenClipboardHold&) = delete;

    explicit operator bool() const { return isOpen_; }

private:
    bool isOpen_ = false;
};

MemoryHandle memoryOf(const std::wstring& text) {
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    MemoryHandle memory(GlobalAlloc(GMEM_MOVEABLE, bytes));
    if (!memory) return {};
    const LockedMemory locked(memory.get());
    if (locked.bytes().size() < bytes) return {};
    std::memcpy(locked.bytes().data(), text.c_str(), bytes);
    return memory;
}

}  // namespace

std::string readClipboardText(HWND window) {
    const OpenClipboardHold clipboard(window);
    if (!clipboard) return {};
    HANDLE const memory = GetClipboardData(CF_UNICODETEXT);
    if (!memory) return {};
    const LockedMemory locked(memory);
    const std::span<std::byte> bytes = locked.bytes();
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    // It should end with a 0, and needn't.
    return utf8FromWide(text.c_str());
}

void writeClipboardText(HWND window, std::string_view text) {
    MemoryHandle memory = memoryOf(wideFromUtf8(text));
    const OpenClipboardHold clipboard(window);
    if (!memory || !clipboard || !EmptyClipboard()) return;
    if (SetClipboardData(CF_UNICODETEXT, memory.get())) memory.release();
}

}  // namespace marnoth
