#pragma once
#include "e2e/support/mouse.h"

#include <windows.h>
#include <string>
#include <vector>

// A person's hands and eyes before another process' windows.

/// Keys by their names on the display ("Tab", "Return", "F1", "space", "Down", "alt+m"), one after
/// the other, and text, to the window, once it is in front. The pointer is led to its title if it
/// is not within it: keys of the display go to the window below the pointer. Throws
/// std::runtime_error.
void PressKeys(HWND hwnd, const std::vector<std::wstring>& keys);
void TypeText(HWND hwnd, const std::wstring& strText);

/// The middle of a window.
POINT MiddleOf(HWND hwnd);
/// A click into the middle of a window.
void ClickOn(HWND hwnd);
/// Maximises the window, or brings it back.
void DoubleClickTitleOf(HWND hwnd);

RECT RectOf(HWND hwnd);
inline int WidthOf(const RECT& rc) { return rc.right - rc.left; }
inline int HeightOf(const RECT& rc) { return rc.bottom - rc.top; }
/// What a window says of its text, also that of a control in another process.
std::wstring TextOf(HWND hwnd);
std::wstring ClassOf(HWND hwnd);
bool IsChecked(HWND hwndButton);

/// The colours of a piece of the screen as it is to be seen, row by row.
std::vector<COLORREF> PixelsOf(const RECT& rc);
/// The colour of a point of the screen.
COLORREF ColourAt(POINT pt);
/// The cursor that is to be seen; a handle of the program that shows it.
HCURSOR CursorNow();
/// A picture of what of the screen the windows cover, as gallery-NAME.png in the folder that
/// TESSALY_SCREENSHOTS names; without that, none.
void TakePicture(const std::wstring& strName, const std::vector<HWND>& windows);

/// Lets go of a file over a window: posts WM_DROPFILES with a block of the window's own process, as
/// the platform does. (The way of the file there is left out: this display has no program that
/// files are dragged from.)
void DropFileOn(HWND hwnd, const std::wstring& strPath);
