#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Controls within their dialog, in its client pixels. A null control, and an id without one, is
// nothing to do: 0. With bRedraw a visible control is hidden first and shown in its new place, so
// that it leaves no trace; an invisible one stays so. Results are the platform's.

/// The control's rectangle; 1. 0, and *prc as it was, for what is no control and for a null prc.
TESSALY_API int GetCtrlRect(HWND hwndDlg, HWND hwndCtl, RECT* prc);
/// GetCtrlRect by the control's id.
TESSALY_API int GetDlgItemRect(HWND hwndDlg, unsigned int nId, RECT* prc);

/// Moves it along one axis into the middle of another control, or of the dialog if hwndRef is null.
TESSALY_API int CenterCtrl(HWND hwndDlg, HWND hwndCtl, int bHorizontal, HWND hwndRef);
/// Moves it by so many pixels.
TESSALY_API int MoveCtrl(HWND hwndDlg, HWND hwndCtl, int dx, int dy, int bRedraw);
/// Makes it larger by so many pixels.
TESSALY_API int ResizeCtrl(HWND hwndDlg, HWND hwndCtl, int dw, int dh, int bRedraw);
/// Both: moves it and makes it larger.
TESSALY_API int MoveResizeCtrl(HWND hwndDlg, HWND hwndCtl, int dx, int dy, int dw, int dh,
                               int bRedraw);

// The same by id.

/// CenterCtrl; nRefId 0 is the dialog.
TESSALY_API int CenterDlgItem(HWND hwndDlg, unsigned int nId, int bHorizontal, unsigned int nRefId);
/// MoveCtrl.
TESSALY_API int MoveDlgItem(HWND hwndDlg, unsigned int nId, int dx, int dy, int bRedraw);
/// ResizeCtrl.
TESSALY_API int ResizeDlgItem(HWND hwndDlg, unsigned int nId, int dw, int dh, int bRedraw);
/// MoveResizeCtrl.
TESSALY_API int MoveResizeDlgItem(HWND hwndDlg, unsigned int nId, int dx, int dy, int dw, int dh,
                                  int bRedraw);
