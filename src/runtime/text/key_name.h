#pragma once
#include "runtime/base/export.h"

/// Modifiers of a hot key, as the platform's hot-key control has them (HOTKEYF_... in commctrl.h).
enum HotKeyModifier : unsigned {
    HotKeyShift = 1,
    HotKeyCtrl = 2,
    HotKeyAlt = 4,
    HotKeyExtended = 8, // no modifier: the key is the extended one of two with the same code
};

/// The name of a key (a VK_ code) in the language of the keyboard layout, cut to cch characters
/// with the terminator. bExtended asks for the key beside the number block instead of the one in
/// it. The length; 0, and an empty text, if the key has no name.
TESSALY_API int GetKeyName(wchar_t* pszText, int cch, unsigned uVirtualKey, int bExtended);

/// The names of the modifier keys and of the key, joined by " + ", always in the order Ctrl, Shift,
/// Alt, key: "Ctrl + Alt + F5". A key of 0 and keys without a name are left out. 1; 0, and an empty
/// text, if nothing remains.
TESSALY_API int GetHotKeyName(wchar_t* pszText, int cch, unsigned uVirtualKey, unsigned uModifiers);
