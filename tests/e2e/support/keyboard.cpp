#include "e2e/support/keyboard.h"

#include <windows.h>
#include <stdexcept>

namespace {
constexpr WORD kCodes[] = {VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT, VK_RETURN, VK_ESCAPE};
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
