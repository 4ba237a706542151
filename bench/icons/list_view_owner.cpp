#include "list_view_owner.h"

#include <commctrl.h>
#include <string>

namespace {
constexpr const wchar_t* kOwnerClass = L"Progman";
constexpr const wchar_t* kViewClass = L"SHELLDLL_DefView";
constexpr int kCchText = 260;

HWND hwndList;
OwnWork pfnOwnWork;

void FillList(HWND hwndFilled) {
    for (int i = 0; i < kIcons; ++i) {
        std::wstring strName = L"Quarterly report " + std::to_wstring(i) + L".docx";
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = i;
        item.pszText = strName.data();
        ::SendMessageW(hwndFilled, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
}

LRESULT CALLBACK OwnerProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == kMsgBareRead && hwndList) {
        static std::vector<BareIcon> icons(kIcons);
        return Microseconds([] { ReadBare(hwndList, icons); });
    }
    if (uMsg >= kMsgOwnWork && uMsg < 0xC000 && pfnOwnWork) {
        return pfnOwnWork(hwndList, uMsg, wParam, lParam);
    }
    switch (uMsg) {
    case WM_CLOSE: ::DestroyWindow(hwnd); return 0;
    case WM_DESTROY: ::PostQuitMessage(0); return 0;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}

void Register(const wchar_t* pszClass, WNDPROC pfn) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = pfn;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = pszClass;
    ::RegisterClassW(&wc);
}
} // namespace

POINT PlaceOf(int nIndex, bool bAside) {
    constexpr int kPitch = 75, kPerColumn = 10, kAside = 10;
    int nOffset = bAside ? kAside : 0;
    return {(nIndex / kPerColumn) * kPitch + nOffset, (nIndex % kPerColumn) * kPitch + nOffset};
}

void MoveIcon(HWND hwndOfList, int nIndex, POINT pt) {
    ::SendMessageW(hwndOfList, LVM_SETITEMPOSITION32, nIndex, reinterpret_cast<LPARAM>(&pt));
}

void ReadBare(HWND hwndOfList, std::vector<BareIcon>& out) {
    wchar_t szText[kCchText];
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    for (int i = 0; i < kIcons; ++i) {
        ::SendMessageW(hwndOfList, LVM_GETITEMPOSITION, i, reinterpret_cast<LPARAM>(&out[i].pt));
        item.iItem = i;
        item.pszText = szText;
        item.cchTextMax = kCchText;
        ::SendMessageW(hwndOfList, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
}

void RestoreBare(HWND hwndOfList) {
    static std::vector<BareIcon> icons(kIcons);
    ReadBare(hwndOfList, icons);
    for (int i = 0; i < kIcons; ++i) MoveIcon(hwndOfList, i, PlaceOf(i));
}

void MoveAllAside(HWND hwndOfList) {
    for (int i = 0; i < kIcons; ++i) MoveIcon(hwndOfList, i, PlaceOf(i, true));
}

bool AllAreInPlace(HWND hwndOfList) {
    std::vector<BareIcon> icons(kIcons);
    ReadBare(hwndOfList, icons);
    for (int i = 0; i < kIcons; ++i) {
        POINT pt = PlaceOf(i);
        if (icons[i].pt.x != pt.x || icons[i].pt.y != pt.y) return false;
    }
    return true;
}

HWND MakeList(HWND hwndParent) {
    HWND hwnd = ::CreateWindowW(WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_ICON, 0, 0, 1000,
                                700, hwndParent, reinterpret_cast<HMENU>(1),
                                ::GetModuleHandleW(nullptr), nullptr);
    FillList(hwnd);
    ::UpdateWindow(hwnd); // arranges its icons when it is first painted
    for (int i = 0; i < kIcons; ++i) MoveIcon(hwnd, i, PlaceOf(i));
    return hwnd;
}

int RunOwner(OwnWork pfnWork) {
    pfnOwnWork = pfnWork;
    INITCOMMONCONTROLSEX icc{sizeof(icc), ICC_LISTVIEW_CLASSES};
    ::InitCommonControlsEx(&icc);
    Register(kOwnerClass, OwnerProc);
    Register(kViewClass, ::DefWindowProcW);
    HINSTANCE hinst = ::GetModuleHandleW(nullptr);
    HWND hwnd = ::CreateWindowW(kOwnerClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 1000, 700, nullptr,
                                nullptr, hinst, nullptr);
    HWND hwndView = ::CreateWindowW(kViewClass, L"", WS_CHILD | WS_VISIBLE, 0, 0, 1000, 700, hwnd,
                                    nullptr, hinst, nullptr);
    ::ShowWindow(hwnd, SW_SHOWNOACTIVATE);
    hwndList = MakeList(hwndView);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}

HWND StartOwner(HANDLE& hProcess) {
    wchar_t szPath[MAX_PATH];
    ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
    std::wstring strCommand = L"\"" + std::wstring(szPath) + L"\" --owner";
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    PROCESS_INFORMATION pi{};
    if (!::CreateProcessW(szPath, strCommand.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &si, &pi)) {
        return nullptr;
    }
    ::CloseHandle(pi.hThread);
    hProcess = pi.hProcess;
    for (int i = 0; i < 500; ++i) {
        HWND hwnd = ::FindWindowW(kOwnerClass, nullptr);
        if (hwnd && ::SendMessageW(hwnd, kMsgBareRead, 0, 0)) return hwnd;
        ::Sleep(20);
    }
    return nullptr;
}

HWND ListOf(HWND hwndOwner) {
    return ::FindWindowExW(::FindWindowExW(hwndOwner, nullptr, kViewClass, nullptr), nullptr,
                           WC_LISTVIEWW, nullptr);
}
