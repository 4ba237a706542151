#include "e2e/support/keyboard.h"
#include "e2e/support/unix_shell.h"

#include <windows.h>
#include <stdexcept>

namespace {
constexpr WORD kCodes[] = {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_RETURN, VK_ESCAPE};
constexpr const wchar_t* kNames[] = {L"Up", L"Down", L"Left", L"Right", L"Return", L"Escape"};
} // namespace

void keyboard::Press(const std::vector<Key>& keys) {
    for (Key key : keys) {
        INPUT inputs[2]{};
        for (INPUT& input : inputs) {
            input.type = INPUT_KEYBOARD;
            input.ki.wVk = kCodes[static_cast<int>(key)];
            input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(input.ki.wVk, MAPVK_VK_TO_VSC));
        }
        inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
        if (::SendInput(2, inputs, sizeof(INPUT)) != 2) {
            throw std::runtime_error("SendInput failed");
        }
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
