#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// Help files lie beside this library. Both functions show the wait cursor.

/// Shows a page of the product's help file in the platform's viewer; uCommand and dwData are those
/// of HtmlHelpW. 1; 0 after a message to the user, if there is no such file or no viewer, or if the
/// file and the page, with "::/" between, reach 260 characters. A null page counts as empty.
TESSALY_API int CSHtmlHelp(HWND hwnd, LPCWSTR pszPage, unsigned int uCommand, unsigned long dwData);
/// WinHelpW with a file of that folder, or with one that is told by its full path
/// (IsFullPathName). Its result; 0 (ERROR_FILENAME_EXCED_RANGE) if the path in the folder reaches
/// 260 characters.
TESSALY_API int CSHelp(HWND hwnd, LPCWSTR pszFile, unsigned int uCommand, unsigned long dwData);

/// What code 100 of the company message points to: a dialog is asked for the page of a help id, and
/// asks its parent if it has none.
struct HelpRequest {
    unsigned int nHelpId; // what is asked for
    LPCWSTR pszPage;      // the answer; null: nobody knows one
};
/// Codes of the company message that dialogs answer.
constexpr WPARAM kMsgHelpRequest = 100; // lParam: a HelpRequest of this process
constexpr WPARAM kMsgFindDialog = 121;  // lParam: an activationTag; the answer is 1 if it is this
