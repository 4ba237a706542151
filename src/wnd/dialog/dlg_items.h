#pragma once
#include "runtime/base/export.h"
#include "runtime/text/text_format.h"
#include <windows.h>

class CSDlg;

// Functions on the items of a dialog, by the dialog's handle. An item that does not exist is
// nothing to do: 0. Where a result is not told it is the platform's. The dialog class CSDlg has
// members of the same names, which call these.

/// Enables and shows the item, or disables and hides it.
TESSALY_API int TurnDlgItem(HWND hwndDlg, int nId, int bOn);
TESSALY_API int EnableDlgItem(HWND hwndDlg, int nId, int bOn); ///< Enables or disables.
TESSALY_API int ShowDlgItem(HWND hwndDlg, int nId, int bOn);   ///< Shows or hides.
/// Moves the focus to the item. 1 if there is the item.
TESSALY_API int SetDlgItemFocus(HWND hwndDlg, unsigned int nId);
/// Sends the item a message. Its answer.
TESSALY_API LRESULT SendDlgItemMsg(HWND hwndDlg, int nId, UINT uMsg, WPARAM wParam, LPARAM lParam);

/// The id of the default button, 0 for none.
TESSALY_API unsigned int GetDlgDefBtnID(HWND hwndDlg);
/// Makes another button the default one; the former one loses the look. Always 1.
TESSALY_API int SetDlgDefBtnID(HWND hwndDlg, unsigned int nId);

/// Sets both ends of an up-down control's range.
TESSALY_API int SetDlgItemSpinRange(HWND hwndDlg, unsigned int nId, unsigned int uLow,
                                    unsigned int uHigh);
/// Sets the position of an up-down control.
TESSALY_API int SetDlgItemSpinPos(HWND hwndDlg, unsigned int nId, unsigned int uPos);
/// Sets both ends of a progress bar's range.
TESSALY_API int SetDlgItemProgressRange(HWND hwndDlg, unsigned int nId, unsigned int uLow,
                                        unsigned int uHigh);
/// Sets the position of a progress bar.
TESSALY_API int SetDlgItemProgressPos(HWND hwndDlg, unsigned int nId, unsigned int uPos);

/// Gives the item a text that is formatted with the arguments (runtime/text/text_format.h) and cut
/// at 1,023 characters.
TESSALY_API int SetDlgItemTextFmt(HWND hwndDlg, int nId, LPCWSTR pszFormat, ...);
/// A string of that module; a null module and a lone string id as in runtime/messages/res_str.h.
TESSALY_API int SetDlgItemTextFmt(HWND hwndDlg, int nId, HINSTANCE hinst, int nStringId, ...);
TESSALY_API int SetDlgItemTextFmt(HWND hwndDlg, int nId, int nStringId, ...);
/// SetDlgItemTextFmt with a started argument list.
int SetDlgItemTextFmtV(HWND hwndDlg, int nId, LPCWSTR pszFormat, ArgList args);
/// Formats with the window's own text as the format, and therefore only once per text.
TESSALY_API int SetWndTextFmtCtrl(HWND hwnd, ...);

/// The first dialog object above the window that is no page of another one; null for none.
TESSALY_API CSDlg* GetTopDlg(HWND hwnd);
/// 1 if the children's ids, in the order of siblings, are those of a list that ends in 0. The
/// shorter of the two decides where the comparison ends; a null list is an empty one.
TESSALY_API int CheckDlgIDs(HWND hwndDlg, unsigned int* pnIds);
