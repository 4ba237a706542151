#pragma once
#include "runtime/base/export.h"

// Texts of menus and buttons: "&" before the character that chooses the item, "..." behind the
// name of what opens a dialog.

/// The static buffer of MakeNameFromMenu, in characters with the terminator; what is longer is cut.
constexpr unsigned kMenuNameSize = 1024;

/// Deletes every "&" and every three dots that stand next to one another, in place. Looks at the
/// text as it comes in: dots that only a deletion brings together stay, and so does a fourth dot.
TESSALY_API void StrRemoveAmpAndDots(wchar_t* pszText);
/// Deletes the first "&", in place; any further one stays.
TESSALY_API void RemoveMenuChar(wchar_t* pszText);
/// The text without its first "&", in a buffer of the process that the next call overwrites: for
/// use at once, on one thread. Null counts as empty.
TESSALY_API const wchar_t* MakeNameFromMenu(const wchar_t* pszText);
/// The character behind the first "&", in upper case; 0 if there is no "&" or nothing behind it.
TESSALY_API wchar_t GetMenuItemChar(const wchar_t* pszText);

/// Modifiers of a hot key, as the platform's hot-key control has them (HOTKEYF_... in commctrl.h).
enum HotKeyModifier : unsigned {
    HotKeyShift = 1,    // HOTKEYF_SHIFT
    HotKeyCtrl = 2,     // HOTKEYF_CONTROL
    HotKeyAlt = 4,      // HOTKEYF_ALT
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
