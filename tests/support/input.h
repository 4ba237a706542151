#pragma once
#include <windows.h>

// Keys and mouse through the platform's own input.

/// Presses a key and lets it go; false if the platform refuses.
inline bool SendKey(WORD wKey) {
    INPUT inputs[2]{};
    for (INPUT& input : inputs) {
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = wKey;
        input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(wKey, MAPVK_VK_TO_VSC));
    }
    inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
    return ::SendInput(2, inputs, sizeof(INPUT)) == 2;
}

/// A movement to a point of the screen, together with what else is given as MOUSEEVENTF_ flags.
/// Movement and button in one: between two inputs, an earlier movement that is still on its way can
/// put the cursor back.
inline INPUT MouseInput(DWORD dwFlags, POINT pt) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | dwFlags;
    // In 65,536ths of the screen.
    input.mi.dx = ::MulDiv(pt.x, 65536, ::GetSystemMetrics(SM_CXSCREEN)) + 1;
    input.mi.dy = ::MulDiv(pt.y, 65536, ::GetSystemMetrics(SM_CYSCREEN)) + 1;
    return input;
}
