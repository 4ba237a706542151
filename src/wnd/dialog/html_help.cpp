#include "wnd/dialog/html_help.h"
#include "files/disk/path_fs.h"
#include "files/disk/path_home.h"
#include "files/path/path_shape.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/msg.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/text_format.h"

#include <htmlhelp.h>
#include <cwchar>

namespace {
constexpr wchar_t kPageMark[] = L"::/"; // between a help file and a page of it

/// HtmlHelpW of the platform's viewer, by its number; null where there is no viewer.
decltype(::HtmlHelpW)* FindHtmlHelp() {
    constexpr WORD kOrdinal = 15;
    return FindSystemFunc<decltype(::HtmlHelpW)>(L"hhctrl.ocx", MAKEINTRESOURCEA(kOrdinal));
}

int TellMissing(HWND hwnd, const wchar_t* pszFile) {
    MsgFmt(hwnd, MB_ICONHAND, -IDS_HELP_FILE_MISSING, pszFile);
    return 0;
}
} // namespace

int CSHtmlHelp(HWND hwnd, LPCWSTR pszPage, unsigned int uCommand, unsigned long dwData) {
    CSWaitCursor wait;
    const wchar_t* pszFile = GetCurrentProduct().pfnGetHelpFile();
    wchar_t szTopic[MAX_PATH];
    // Where the folder is too long for its path the file can't be opened: its name tells which.
    if (!GetSatellitePath(szTopic, pszFile, nullptr)) return TellMissing(hwnd, pszFile);
    if (!IsFileExists(szTopic)) return TellMissing(hwnd, szTopic);
    if (!pszPage) pszPage = L"";
    std::size_t cchFile = std::wcslen(szTopic);
    if (cchFile + std::wcslen(kPageMark) + std::wcslen(pszPage) >= MAX_PATH) {
        wchar_t szTold[kMessageSize];
        FormatText(szTold, L"%s%s%s", szTopic, kPageMark, pszPage);
        return TellMissing(hwnd, szTold);
    }
    std::wcscpy(szTopic + cchFile, kPageMark);
    std::wcscat(szTopic, pszPage);
    auto* pfnHtmlHelp = FindHtmlHelp();
    if (pfnHtmlHelp && pfnHtmlHelp(hwnd, szTopic, uCommand, dwData)) return 1;
    Msg(hwnd, MB_ICONHAND, -IDS_NO_HTML_HELP);
    return 0;
}

int CSHelp(HWND hwnd, LPCWSTR pszFile, unsigned int uCommand, unsigned long dwData) {
    CSWaitCursor wait;
    if (IsFullPathName(pszFile)) return ::WinHelpW(hwnd, pszFile, uCommand, dwData);
    wchar_t szPath[MAX_PATH];
    if (!GetSatellitePath(szPath, pszFile, nullptr)) {
        ::SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return 0;
    }
    return ::WinHelpW(hwnd, szPath, uCommand, dwData);
}
