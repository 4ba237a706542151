#include "app/launch/open_html.h"
#include "app/identity/product_info.h"
#include "app/launch/run_file.h"
#include "files/disk/path_fs.h"
#include "files/path/path_command.h"
#include "files/path/path_split.h"
#include "resources/resource_ids.h"
#include "runtime/messages/msg.h"
#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"

#include <shellapi.h>
#include <cwchar>

constinit const wchar_t* pszMyCompanyURL = L"https://orvanta.example/";

namespace {
constexpr unsigned kCommandSize = 8192; // of an address with what a program wants around it
constexpr int kEncodedLength = 3;       // of one character: "%20"
constexpr int kTypeSize = 512 / sizeof(wchar_t); // of a type's name, with the terminator
constexpr int kKeySize = kTypeSize + 64;         // of a key's path that holds such a name
constexpr int kFirstIcon = 0;
constexpr int kProgramIcons[] = {1, 0}; // in the order they are tried

/// The address without anything that could end an argument of a command line: quotes, blanks and
/// control characters become "%XX". False if it does not fit.
bool EncodeUrl(const wchar_t* pszUrl, wchar_t (&szEncoded)[kCommandSize]) {
    unsigned n = 0;
    for (; *pszUrl; ++pszUrl) {
        if (n + kEncodedLength >= kCommandSize) return false;
        if (*pszUrl > L' ' && *pszUrl != L'"')
            szEncoded[n++] = *pszUrl;
        else
            n += FormatText(szEncoded + n, kCommandSize - n, L"%%%02X", *pszUrl);
    }
    szEncoded[n] = 0;
    return true;
}

/// Starts the program that is registered for web pages.
bool OpenByHandler(HWND hwnd, const wchar_t* pszUrl) {
    wchar_t szCommand[MAX_PATH], szProgram[MAX_PATH];
    wchar_t szEncoded[kCommandSize], szArguments[kCommandSize];
    return GetProtocolApp(L"http", nullptr, szCommand) && EncodeUrl(pszUrl, szEncoded) &&
           PreparePathArg(szCommand, szEncoded, szProgram, szArguments, kCommandSize) &&
           ExecuteByShell(hwnd, nullptr, szProgram, szArguments, nullptr, SW_SHOWNORMAL);
}

bool OpenSilently(const wchar_t* pszUrl) {
    return StartWaiting(
        {.hwnd = GetStartOwner(nullptr), .pszFile = pszUrl, .nMask = SEE_MASK_FLAG_NO_UI});
}

/// Adds to a web address: behind "?" for the first addition, "&" for others. False if it does not
/// fit.
bool JoinToUrl(wchar_t (&szUrl)[kMaxUrl], const wchar_t* pszAddition) {
    std::size_t cch = std::wcslen(szUrl);
    const wchar_t* pszBetween = std::wcschr(szUrl, L'?') ? L"&" : L"?";
    if (cch && szUrl[cch - 1] == L'?') pszBetween = L"";
    if (cch + std::wcslen(pszBetween) + std::wcslen(pszAddition) >= kMaxUrl) return false;
    std::wcscat(szUrl, pszBetween);
    std::wcscat(szUrl, pszAddition);
    return true;
}

/// Adds the culture, if there is one.
bool JoinCulture(wchar_t (&szUrl)[kMaxUrl], const wchar_t* pszCulture) {
    if (!pszCulture) return true;
    wchar_t szAddition[kMaxUrl];
    FormatText(szAddition, L"c=%s", pszCulture);
    return JoinToUrl(szUrl, szAddition);
}

/// Adds product, version, revision and language.
bool JoinProduct(wchar_t (&szUrl)[kMaxUrl]) {
    MyProductInfo& info = GetMyProductInfo();
    wchar_t szAddition[kMaxUrl];
    FormatText(szAddition, L"p=%s&v=%s&r=%d&a=%s", info.GetStoreID(), info.GetVersionStr(),
               info.GetRevisionNum(), info.GetLanguage());
    return JoinToUrl(szUrl, szAddition);
}

/// The unnamed value of a key. False if it is missing, empty or does not fit.
bool ReadUnnamed(const wchar_t* pszFormat, const wchar_t* pszName, wchar_t* pszBuffer,
                 int cchBuffer) {
    wchar_t szKey[kKeySize];
    FormatText(szKey, kKeySize, pszFormat, pszName);
    RegKey key;
    return key.Open(szKey, 0) && key.GetStr(nullptr, pszBuffer, cchBuffer, nullptr) > 0;
}

/// Leaves the first word of a command, up to the closing quote or the first blank.
void CutToProgram(wchar_t* pszCommand) {
    bool bQuoted = *pszCommand == L'"';
    if (bQuoted) std::wmemmove(pszCommand, pszCommand + 1, std::wcslen(pszCommand));
    pszCommand[std::wcscspn(pszCommand, bQuoted ? L"\"" : L" ")] = 0;
}

/// The program of a type or a scheme, which have their command in the same place.
bool FindProgram(const wchar_t* pszType, wchar_t* pszProgram, wchar_t* pszCommand) {
    wchar_t szCommand[MAX_PATH], szPath[MAX_PATH];
    if (!ReadUnnamed(L"HKCLS\\%s\\shell\\open\\command", pszType, szCommand, MAX_PATH))
        return false;
    if (pszCommand) std::wcscpy(pszCommand, szCommand);
    CutToProgram(szCommand);
    if (!ExpandEnvStrings(szCommand, szPath, MAX_PATH) || !FileExists(szPath)) return false;
    if (pszProgram) std::wcscpy(pszProgram, szPath);
    return true;
}

void Empty(wchar_t* pszProgram, wchar_t* pszCommand) {
    if (pszProgram) *pszProgram = 0;
    if (pszCommand) *pszCommand = 0;
}

/// The small icon of that index in a file; null if it has none.
HICON ExtractSmallIcon(const wchar_t* pszPath, int nIcon) {
    HICON hIcon = nullptr;
    UINT nCount = ::ExtractIconExW(pszPath, nIcon, nullptr, &hIcon, 1);
    return nCount == 1 ? hIcon : nullptr;
}

/// The icon of the program for a path's extension. szProgram and nIcon say which.
HICON ExtractProgramIcon(const wchar_t* pszPath, wchar_t (&szProgram)[MAX_PATH], int& nIcon) {
    const wchar_t* pszExtension = FindDotExt(pszPath);
    // A dot in a folder's name begins no extension, and a key's path goes on at a backslash.
    if (!pszExtension || FindLastSeparator(pszExtension)) return nullptr;
    if (!GetAssociatedApp(pszExtension, szProgram, nullptr)) return nullptr;
    for (int n : kProgramIcons) {
        nIcon = n;
        if (HICON hIcon = ExtractSmallIcon(szProgram, n)) return hIcon;
    }
    return nullptr;
}
} // namespace

// Web pages

int OpenHTML(HWND hwnd, const wchar_t* pszUrl, int bAsk, int nQuestionId) {
    if (bAsk) {
        int nId = nQuestionId ? nQuestionId : -IDS_OPEN_WEB_PAGE;
        if (Msg(hwnd, MB_OKCANCEL | MB_ICONINFORMATION, nId) != IDOK) return 0;
    }
    // Without an address the shell would open a folder.
    if (pszUrl && *pszUrl) {
        if (ExecuteByShell(hwnd, nullptr, pszUrl, nullptr, nullptr, SW_SHOWNORMAL)) return 1;
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

// Programs of files and addresses

int GetAssociatedApp(const wchar_t* pszExtension, wchar_t* pszProgram, wchar_t* pszCommand) {
    Empty(pszProgram, pszCommand);
    wchar_t szType[kTypeSize];
    if (!pszExtension || !*pszExtension) return 0;
    return ReadUnnamed(L"HKCLS\\%s", pszExtension, szType, kTypeSize) &&
           FindProgram(szType, pszProgram, pszCommand);
}

int GetProtocolApp(const wchar_t* pszScheme, wchar_t* pszProgram, wchar_t* pszCommand) {
    Empty(pszProgram, pszCommand);
    if (!pszScheme || !*pszScheme) return 0;
    return FindProgram(pszScheme, pszProgram, pszCommand);
}

int GetAssociatedIcon(const wchar_t* pszPath, wchar_t* pszIconFile, int* pnIcon, HICON* phIcon) {
    if (!pszPath || std::wcslen(pszPath) >= MAX_PATH) return 0;
    wchar_t szProgram[MAX_PATH];
    const wchar_t* pszFound = pszPath;
    int nIcon = kFirstIcon;
    HICON hIcon = ExtractSmallIcon(pszPath, nIcon);
    if (!hIcon) {
        pszFound = szProgram;
        hIcon = ExtractProgramIcon(pszPath, szProgram, nIcon);
    }
    if (!hIcon) return 0;
    if (pszIconFile) std::wcscpy(pszIconFile, pszFound);
    if (pnIcon) *pnIcon = nIcon;
    if (phIcon)
        *phIcon = hIcon;
    else
        ::DestroyIcon(hIcon);
    return 1;
}
