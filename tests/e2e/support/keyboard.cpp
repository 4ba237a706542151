#include "e2e/support/keyboard.h"
#include "e2e/support/unix_shell.h"
#include "support/input.h"

#include <windows.h>
#include <stdexcept>

namespace {
constexpr WORD kCodes[] = {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_RETURN, VK_ESCAPE};
constexpr const wchar_t* kNames[] = {L"Up", L"Down", L"Left", L"Right", L"Return", L"Escape"};
} // namespace

void keyboard::Press(const std::vector<Key>& keys) {
    for (Key key : keys) {
        if (!SendKey(kCodes[static_cast<int>(key)])) throw std::runtime_error("SendInput failed");
    }
}

void keyboard::PressOnDisplay(const std::vector<Key>& keys) {
    if (!UsesXdotool()) return Press(keys);
    // 1 is no window but the pointer's root (X.h): the focus is with whatever lies below the
    // pointer.
    std::wstring strLine = L"xdotool windowfocus 1 key --delay 30";
    for (Key key : keys) strLine += std::wstring(L" ") + kNames[static_cast<int>(key)];
    RunUnixShell(strLine);
}
