#include "icons/agent/icon_record.h"
#include "list_view_owner.h"

#include <commctrl.h>
#include <chrono>
#include <string>
#include <vector>

namespace {
HWND hwndList;
std::vector<IconRecord> records;

void FillList() {
    for (int i = 0; i < kIcons; ++i) {
        std::wstring strName = L"Quarterly report " + std::to_wstring(i) + L".docx";
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = i;
        item.pszText = strName.data();
        ::SendMessageW(hwndList, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    for (int i = 0; i < kIcons; ++i) {
        POINT pt{(i / 10) * 75, (i % 10) * 75};
        ::SendMessageW(hwndList, LVM_SETITEMPOSITION32, i, reinterpret_cast<LPARAM>(&pt));
    }
    records.resize(kIcons);
    CaptureIcons(hwndList, records.data(), kIcons);
}

void ReadBare(std::vector<IconRecord>& out) {
    wchar_t szText[260];
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    for (int i = 0; i < kIcons; ++i) {
        ::SendMessageW(hwndList, LVM_GETITEMPOSITION, i, reinterpret_cast<LPARAM>(&out[i].pt));
        item.iItem = i;
        item.pszText = szText;
        item.cchTextMax = 260;
        ::SendMessageW(hwndList, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
}

void Work(UINT uMsg) {
    static std::vector<IconRecord> scratch(kIcons);
    switch (uMsg) {
    case kMsgCapture: CaptureIcons(hwndList, scratch.data(), kIcons); break;
    case kMsgBareRead: ReadBare(scratch); break;
    case kMsgRestore: {
        COPYDATASTRUCT data{kIcons, static_cast<DWORD>(kIcons * sizeof(IconRecord)),
                            records.data()};
        RestoreFrom(hwndList, data);
        break;
    }
    case kMsgBareRestore:
        CaptureIcons(hwndList, scratch.data(), kIcons);
        for (int i = 0; i < kIcons; ++i) {
            ::SendMessageW(hwndList, LVM_SETITEMPOSITION32, i,
                           reinterpret_cast<LPARAM>(&records[i].pt));
        }
        break;
    }
}

LRESULT CALLBACK OwnerProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    switch (uMsg) {
    case kMsgCapture:
    case kMsgBareRead:
    case kMsgRestore:
    case kMsgBareRestore: {
        using namespace std::chrono;
        auto tStart = steady_clock::now();
        Work(uMsg);
        return duration_cast<microseconds>(steady_clock::now() - tStart).count();
    }
    case WM_CLOSE: ::DestroyWindow(hwnd); return 0;
    case WM_DESTROY: ::PostQuitMessage(0); return 0;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

int RunOwner() {
    INITCOMMONCONTROLSEX icc{sizeof(icc), ICC_LISTVIEW_CLASSES};
    ::InitCommonControlsEx(&icc);
    WNDCLASSW wc{};
    wc.lpfnWndProc = OwnerProc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = kOwnerClass;
    ::RegisterClassW(&wc);
    HWND hwnd = ::CreateWindowW(kOwnerClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 1000, 700, nullptr,
                                nullptr, wc.hInstance, nullptr);
    hwndList = ::CreateWindowW(WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_ICON, 0, 0, 1000, 700,
                               hwnd, reinterpret_cast<HMENU>(1), wc.hInstance, nullptr);
    FillList();
    ::ShowWindow(hwnd, SW_SHOWNOACTIVATE);
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) ::DispatchMessageW(&msg);
    return 0;
}
