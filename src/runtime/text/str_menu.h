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
