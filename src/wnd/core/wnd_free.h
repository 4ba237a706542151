#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Functions on a plain window handle. Flags are SWP_ flags (winuser.h); each function adds and
// removes those that make it what it is. Results that are not told are the platform's, non-zero for
// success.

/// The style, or with bExtended the extended style; 0 also for what is no window.
TESSALY_API DWORD GetWndStyle(HWND hwnd, int bExtended);
/// Replaces that style and returns what it was before the call.
TESSALY_API DWORD SetWndStyle(HWND hwnd, DWORD dwStyle, int bExtended);
/// Removes bits of that style, then adds bits, and returns the style before the call.
TESSALY_API DWORD ModifyWndStyle(HWND hwnd, DWORD dwRemove, DWORD dwAdd, int bExtended);
/// Removes and adds bits of both styles, each of which is touched only if one of its masks
/// is non-zero.
TESSALY_API void ModifyStyle(HWND hwnd, DWORD dwRemoveStyle, DWORD dwAddStyle,
                             DWORD dwRemoveExStyle, DWORD dwAddExStyle);

/// Places the window behind hwndAfter (or HWND_TOP and its like); neither moved nor activated.
TESSALY_API int SetWndZOrder(HWND hwnd, HWND hwndAfter, DWORD dwFlags);

// Sizes are of the whole window, positions in the parent's client pixels or, without a parent, in
// the screen's. None of these activates the window or changes its place in the order.

/// Sets the size alone.
TESSALY_API int SetWndSize(HWND hwnd, int cx, int cy, DWORD dwFlags);
/// Sets the place of the top left corner alone.
TESSALY_API int SetWndOrigin(HWND hwnd, int x, int y, DWORD dwFlags);
/// Sets place and size. 0 for a null rectangle.
TESSALY_API int SetWndPos(HWND hwnd, int x, int y, int cx, int cy, DWORD dwFlags);
TESSALY_API int SetWndPos(HWND hwnd, const RECT* prc, DWORD dwFlags);
/// Shows or hides the window where it is.
TESSALY_API int SetWndShow(HWND hwnd, int bShow, DWORD dwFlags);
/// Moves by that many pixels. 0 for a window whose rectangle can't be read.
TESSALY_API int OffsetWnd(HWND hwnd, int dx, int dy);
/// Resizes by that many pixels. 0 for a window whose rectangle can't be read.
TESSALY_API int ResizeWnd(HWND hwnd, int dcx, int dcy);

/// Posts WM_COMMAND as if the dialog's item had been clicked, with the item's handle.
TESSALY_API int SimulateButton(HWND hwndDlg, unsigned short nId);
/// WM_COMMAND as that control (null: none) would send it; SendCommand gives the window's answer.
TESSALY_API int PostCommand(HWND hwnd, unsigned short nId, HWND hwndCtl, unsigned short nCode);
TESSALY_API LRESULT SendCommand(HWND hwnd, unsigned short nId, HWND hwndCtl, unsigned short nCode);
/// PostMessageW.
TESSALY_API int PostMsg(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam);
TESSALY_API LRESULT SendMsg(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam); ///< SendMessageW.

/// The size of one line of text in pixels, in the window's font (the system's if it has none). 0,
/// and *psize as it was, for a null text or size and for what is no window.
TESSALY_API int GetTextSizeForWindow(HWND hwnd, LPCWSTR pszText, SIZE* psize);
/// The same on the window's own context. 0 also for a window without a font of its own.
TESSALY_API int GetWndTextSize(HWND hwnd, LPCWSTR pszText, SIZE* psize);
/// The width of that, or 0.
TESSALY_API int GetWndTextWidth(HWND hwnd, LPCWSTR pszText);

/// The first window with WS_POPUP from this one upward, or the last one that there is. Null for
/// null.
TESSALY_API HWND GetPopupParent(HWND hwnd);
