// What tests/setup/setup_test.py asks of the platform, setup_probe.exe with
//   hold FILE          has it open until the standard input ends
//   catch FILE         the same, as soon as it is there
//   block KEY          that key of the user can be neither opened nor made until then
//   pose CLASS         has a window of that class until it gets a registered message, as /EXIT
//   sends one
//   window CLASS       0: there is one
//   desktop            0: there is one with icons (the platform's own has none)
//   setup              0: installer or uninstaller run
//   place TITLE TEXT   tells where the middle of that control of that window is, if it can be
//   clicked
//   focus TITLE CLASS  0: keys go to a control of that class of that window
//   item TITLE INDEX   tells the picture of that item of that window's tree, if it is the chosen
//   one
// Links nothing of the product.

#include <windows.h>
#include <commctrl.h>
#include <cstdio>
#include <cwchar>
#include <string>
#include <string_view>

namespace {
constexpr int kUsage = 2;

void TellThatItHasBegun() {
    DWORD cb = 0;
    char ch = '\n';
    ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), &ch, 1, &cb, nullptr);
}

/// Tells that it has begun, and returns when the standard input has ended.
void WaitForInputEnd() {
    TellThatItHasBegun();
    DWORD cb = 0;
    char ch = 0;
    while (::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), &ch, 1, &cb, nullptr) && cb) {
    }
}

/// Nobody can move or replace the file meanwhile.
HANDLE OpenAlone(const wchar_t* pszFile) {
    return ::CreateFileW(pszFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                         nullptr);
}

int Hold(const wchar_t* pszFile) {
    HANDLE h = OpenAlone(pszFile);
    if (h == INVALID_HANDLE_VALUE) return 1;
    WaitForInputEnd();
    ::CloseHandle(h);
    return 0;
}

struct Caught {
    const wchar_t* pszFile;
    HANDLE h = INVALID_HANDLE_VALUE;
};

/// Ends with the process at the latest.
DWORD WINAPI CatchThread(void* pCaught) {
    auto& caught = *static_cast<Caught*>(pCaught);
    while ((caught.h = OpenAlone(caught.pszFile)) == INVALID_HANDLE_VALUE) ::Sleep(1);
    return 0;
}

int Catch(const wchar_t* pszFile) {
    Caught caught{pszFile};
    HANDLE hThread = ::CreateThread(nullptr, 0, &CatchThread, &caught, 0, nullptr);
    WaitForInputEnd();
    return ::WaitForSingleObject(hThread, 0) == WAIT_OBJECT_0 ? 0 : 1;
}

/// By a link to a key that does not exist, which is deleted as such.
int Block(const wchar_t* pszKey) {
    constexpr wchar_t kNowhere[] = L"\\Registry\\User\\NoSuchUser\\Nowhere";
    HKEY hkey = nullptr;
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, pszKey, 0, nullptr, REG_OPTION_CREATE_LINK,
                          KEY_ALL_ACCESS | KEY_CREATE_LINK, nullptr, &hkey, nullptr) ||
        ::RegSetValueExW(hkey, L"SymbolicLinkValue", 0, REG_LINK,
                         reinterpret_cast<const BYTE*>(kNowhere),
                         sizeof(kNowhere) - sizeof(wchar_t))) {
        return 1;
    }
    WaitForInputEnd();
    auto* pfnDelete = reinterpret_cast<LONG(WINAPI*)(HANDLE)>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")));
    LONG status = pfnDelete(hkey);
    ::RegCloseKey(hkey);
    return status ? 1 : 0;
}

int Pose(const wchar_t* pszClass) {
    constexpr UINT kFirstRegisteredMsg = 0xC000;
    WNDCLASSW wc{};
    wc.lpfnWndProc = ::DefWindowProcW;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = pszClass;
    if (!::RegisterClassW(&wc) || !::CreateWindowExW(0, pszClass, pszClass, WS_POPUP, 0, 0, 0, 0,
                                                     nullptr, nullptr, wc.hInstance, nullptr)) {
        return 1;
    }
    TellThatItHasBegun();
    MSG msg{};
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0 && msg.message < kFirstRegisteredMsg)
        ::DispatchMessageW(&msg);
    return 0;
}

struct ControlSearch {
    const wchar_t* pszText;
    HWND hwnd = nullptr;
};

/// The text is the control's without the mark of its key.
BOOL CALLBACK FindControl(HWND hwnd, LPARAM lParam) {
    auto* pSearch = reinterpret_cast<ControlSearch*>(lParam);
    wchar_t szText[256] = L"";
    ::GetWindowTextW(hwnd, szText, 256);
    std::wstring strText;
    for (const wchar_t* psz = szText; *psz; ++psz) {
        if (*psz != L'&') strText += *psz;
    }
    if (strText != pSearch->pszText || !::IsWindowVisible(hwnd) || !::IsWindowEnabled(hwnd))
        return TRUE;
    pSearch->hwnd = hwnd;
    return FALSE;
}

int Place(const wchar_t* pszTitle, const wchar_t* pszText) {
    ControlSearch search{pszText};
    HWND hwnd = ::FindWindowW(L"#32770", pszTitle);
    if (!hwnd) return 1;
    ::EnumChildWindows(hwnd, &FindControl, reinterpret_cast<LPARAM>(&search));
    RECT rc{};
    if (!search.hwnd || !::GetWindowRect(search.hwnd, &rc)) return 1;
    std::printf("%ld %ld", (rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2);
    return 0;
}

int IsFocus(const wchar_t* pszTitle, const wchar_t* pszClass) {
    HWND hwnd = ::FindWindowW(L"#32770", pszTitle);
    if (!hwnd || ::GetForegroundWindow() != hwnd) return 1;
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    wchar_t szClass[64] = L"";
    if (::GetGUIThreadInfo(::GetWindowThreadProcessId(hwnd, nullptr), &info) && info.hwndFocus)
        ::GetClassNameW(info.hwndFocus, szClass, 64);
    return std::wcscmp(szClass, pszClass) ? 1 : 0;
}

BOOL CALLBACK FindTree(HWND hwnd, LPARAM lParam) {
    wchar_t szClass[64] = L"";
    ::GetClassNameW(hwnd, szClass, 64);
    if (std::wcscmp(szClass, WC_TREEVIEWW) || !::IsWindowVisible(hwnd)) return TRUE;
    *reinterpret_cast<HWND*>(lParam) = hwnd;
    return FALSE;
}

int Item(const wchar_t* pszTitle, int nIndex) {
    HWND hwnd = ::FindWindowW(L"#32770", pszTitle), hwndTree = nullptr;
    if (!hwnd) return 1;
    ::EnumChildWindows(hwnd, &FindTree, reinterpret_cast<LPARAM>(&hwndTree));
    if (!hwndTree) return 1;
    LRESULT lItem = ::SendMessageW(hwndTree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
    while (lItem && nIndex-- > 0)
        lItem = ::SendMessageW(hwndTree, TVM_GETNEXTITEM, TVGN_NEXT, lItem);
    if (!lItem || lItem != ::SendMessageW(hwndTree, TVM_GETNEXTITEM, TVGN_CARET, 0)) return 1;
    LRESULT lState =
        ::SendMessageW(hwndTree, TVM_GETITEMSTATE, static_cast<WPARAM>(lItem), TVIS_STATEIMAGEMASK);
    std::printf("%d", static_cast<int>((lState & TVIS_STATEIMAGEMASK) >> 12));
    return 0;
}
} // namespace

namespace {
constexpr DWORD kLimitMs = 60000;
constexpr DWORD kPollMs = 50;

int IsNoSetupThere() {
    wchar_t szUser[257] = L"";
    DWORD cch = 257;
    ::GetUserNameW(szUser, &cch);
    const std::wstring strName = std::wstring(L"Global\\Orvanta_Setup_Tessaly_") + szUser;
    HANDLE h = ::OpenMutexW(SYNCHRONIZE, FALSE, strName.c_str());
    if (h) ::CloseHandle(h);
    return h ? 1 : 0;
}

int IsDesktopThere() {
    for (HWND hwnd = nullptr; (hwnd = ::FindWindowExW(nullptr, hwnd, L"Progman", nullptr));) {
        HWND hwndView = ::FindWindowExW(hwnd, nullptr, L"SHELLDLL_DefView", nullptr);
        if (hwndView && ::FindWindowExW(hwndView, nullptr, WC_LISTVIEWW, nullptr)) return 0;
    }
    return 1;
}

int Ask(int nArguments, wchar_t** ppszArguments) {
    const std::wstring_view strWhat = nArguments ? ppszArguments[0] : L"";
    if (nArguments == 2 && strWhat == L"hold") return Hold(ppszArguments[1]);
    if (nArguments == 2 && strWhat == L"catch") return Catch(ppszArguments[1]);
    if (nArguments == 2 && strWhat == L"block") return Block(ppszArguments[1]);
    if (nArguments == 2 && strWhat == L"pose") return Pose(ppszArguments[1]);
    if (nArguments == 2 && strWhat == L"window")
        return ::FindWindowW(ppszArguments[1], nullptr) ? 0 : 1;
    if (nArguments == 1 && strWhat == L"desktop") return IsDesktopThere();
    if (nArguments == 1 && strWhat == L"no-setup") return IsNoSetupThere();
    if (nArguments == 3 && strWhat == L"place") return Place(ppszArguments[1], ppszArguments[2]);
    if (nArguments == 3 && strWhat == L"focus") return IsFocus(ppszArguments[1], ppszArguments[2]);
    if (nArguments == 3 && strWhat == L"item")
        return Item(ppszArguments[1], static_cast<int>(std::wcstol(ppszArguments[2], nullptr, 10)));
    return kUsage;
}
} // namespace

int wmain(int nArguments, wchar_t** ppszArguments) {
    if (nArguments < 2 || std::wcscmp(ppszArguments[1], L"until") != 0)
        return Ask(nArguments - 1, ppszArguments + 1);
    const DWORD dwStart = ::GetTickCount();
    for (;;) {
        int nAnswer = Ask(nArguments - 2, ppszArguments + 2);
        if (nAnswer != 1 || ::GetTickCount() - dwStart > kLimitMs) return nAnswer;
        ::Sleep(kPollMs);
    }
}
