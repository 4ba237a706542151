#include "app/launch/open_html.h"
#include "app/launch/assoc_app.h"
#include "app/identity/my_product_info.h"
#include "app/launch/shell_start.h"
#include "files/path/path_cmd.h"
#include "resources/resource_ids.h"
#include "runtime/messages/msg.h"
#include "runtime/text/text_format.h"

#include <cwchar>

constinit const wchar_t* pszMyCompanyURL = L"https://orvanta.example/";

namespace {
constexpr INT_PTR kLastShellError = 32; // what ShellExecuteW returns above this is no error
constexpr unsigned kCommandSize = 8192; // of an address with what a program wants around it
constexpr int kEncodedLength = 3;       // of one character: "%20"

/// 1 if the shell took it.
int IsOpened(HWND hwnd, const wchar_t* pszFile, const wchar_t* pszParameters) {
    HINSTANCE hinst =
        ::ShellExecuteW(hwnd, nullptr, pszFile, pszParameters, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(hinst) > kLastShellError;
}

/// The address without anything that could end an argument of a command line: quotes, blanks and
/// control characters become "%XX". 0 if it does not fit.
int EncodeUrl(const wchar_t* pszUrl, wchar_t (&szEncoded)[kCommandSize]) {
    unsigned n = 0;
    for (; *pszUrl; ++pszUrl) {
        if (n + kEncodedLength >= kCommandSize) return 0;
        if (*pszUrl > L' ' && *pszUrl != L'"')
            szEncoded[n++] = *pszUrl;
        else
            n += FormatText(szEncoded + n, kCommandSize - n, L"%%%02X", *pszUrl);
    }
    szEncoded[n] = 0;
    return 1;
}

/// Starts the program that is registered for web pages.
int OpenByHandler(HWND hwnd, const wchar_t* pszUrl) {
    wchar_t szCommand[MAX_PATH], szProgram[MAX_PATH];
    wchar_t szEncoded[kCommandSize], szArguments[kCommandSize];
    return GetProtocolApp(L"http", nullptr, szCommand) && EncodeUrl(pszUrl, szEncoded) &&
           PreparePathArg(szCommand, szEncoded, szProgram, szArguments, kCommandSize) &&
           IsOpened(hwnd, szProgram, szArguments);
}

int OpenSilently(const wchar_t* pszUrl) {
    ShellStart start;
    start.hwnd = GetStartOwner(nullptr);
    start.pszFile = pszUrl;
    start.nMask = SEE_MASK_FLAG_NO_UI;
    return StartWaiting(start);
}

/// Adds to a web address: behind "?" for the first addition, "&" for others. 0 if it does not fit.
int JoinToUrl(wchar_t (&szUrl)[kMaxUrl], const wchar_t* pszAddition) {
    std::size_t cch = std::wcslen(szUrl);
    const wchar_t* pszBetween = std::wcschr(szUrl, L'?') ? L"&" : L"?";
    if (cch && szUrl[cch - 1] == L'?') pszBetween = L"";
    if (cch + std::wcslen(pszBetween) + std::wcslen(pszAddition) >= kMaxUrl) return 0;
    std::wcscat(szUrl, pszBetween);
    std::wcscat(szUrl, pszAddition);
    return 1;
}

/// A name and a text behind it, joined to the address.
int JoinCulture(wchar_t (&szUrl)[kMaxUrl], const wchar_t* pszCulture) {
    if (!pszCulture) return 1;
    wchar_t szAddition[kMaxUrl];
    FormatText(szAddition, L"c=%s", pszCulture);
    return JoinToUrl(szUrl, szAddition);
}

int JoinProduct(wchar_t (&szUrl)[kMaxUrl]) {
    MyProductInfo& info = GetMyProductInfo();
    wchar_t szAddition[kMaxUrl];
    FormatText(szAddition, L"p=%s&v=%s&r=%d&a=%s", info.GetStoreID(), info.GetVersionStr(),
               info.GetRevisionNum(), info.GetLanguage());
    return JoinToUrl(szUrl, szAddition);
}
} // namespace

int OpenHTML(HWND hwnd, const wchar_t* pszUrl, int bAsk, int nQuestionId) {
    if (bAsk) {
        int nId = nQuestionId ? nQuestionId : -IDS_OPEN_WEB_PAGE;
        if (Msg(hwnd, MB_OKCANCEL | MB_ICONINFORMATION, nId) != IDOK) return 0;
    }
    // Without an address the shell would open a folder.
    if (pszUrl && *pszUrl) {
        if (IsOpened(hwnd, pszUrl, nullptr)) return 1;
        if (OpenByHandler(hwnd, pszUrl)) return 1;
        if (OpenSilently(pszUrl)) return 1;
    }
    Msg(hwnd, MB_ICONERROR, -IDS_WEB_PAGE_NOT_OPENED);
    return 0;
}

int MakeGoOnlineURL(wchar_t* pszBuffer, int cchBuffer, const wchar_t* pszPage) {
    if (!pszBuffer || cchBuffer <= 0) return 0;
    const wchar_t* pszSite = pszMyCompanyURL ? pszMyCompanyURL : L"";
    std::size_t cch = std::wcslen(pszSite);
    const wchar_t* pszSlash = cch && pszSite[cch - 1] == L'/' ? L"" : L"/";
    if (!pszPage) pszPage = L"";
    constexpr const wchar_t* kPath = L"go/?p=";
    std::size_t cchAll = cch + std::wcslen(pszSlash) + std::wcslen(kPath) + std::wcslen(pszPage);
    pszBuffer[0] = 0;
    if (cchAll >= static_cast<std::size_t>(cchBuffer)) return 0;
    FormatText(pszBuffer, static_cast<std::size_t>(cchBuffer), L"%s%s%s%s", pszSite, pszSlash,
               kPath, pszPage);
    return 1;
}

int GoOnline(HWND hwnd, const wchar_t* pszPage) {
    wchar_t szUrl[kMaxUrl];
    return MakeGoOnlineURL(szUrl, kMaxUrl, pszPage) && OpenHTML(hwnd, szUrl, 0, 0);
}

int GoWinStore(HWND hwnd) { return GoOnline(hwnd, L"rate-tessaly"); }

int GoOnline_Lang(HWND hwnd, const wchar_t* pszPage, const wchar_t* pszCulture) {
    wchar_t szUrl[kMaxUrl];
    return MakeGoOnlineURL(szUrl, kMaxUrl, pszPage) && JoinProduct(szUrl) &&
           JoinCulture(szUrl, pszCulture) && OpenHTML(hwnd, szUrl, 0, 0);
}

int GoOnline_ImproveTranslation(HWND hwnd, const wchar_t* pszCulture) {
    return GoOnline_Lang(hwnd, L"improve-translation", pszCulture);
}

int GoOnline_Translate(HWND hwnd, const wchar_t* pszCulture) {
    return GoOnline_Lang(hwnd, L"translate", pszCulture);
}
