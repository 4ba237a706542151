// What opening the tray menu costs, with 25 snapshots and a recommendation: from the request to the
// popup's first painting, beside a bare popup of the same items. `bench_menu`.

#include "../measure.h"
#include "app/start/library_start.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "icons/tray/recommendations.h"
#include "icons/tray/tray_front_end.h"
#include "runtime/base/current_product.h"
#include "runtime/base/digest.h"
#include "wnd/core/company_msg.h"
#include "wnd/menu/csmenu.h"

#include <string>

namespace {
constexpr int kTurns = 60;
constexpr double kLimit = 1.5;

std::chrono::steady_clock::time_point tPainted;
bool bPainted = false;

/// Stops the clock when a popup has painted itself, and closes it.
LRESULT CALLBACK OnReturn(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto* p = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (nCode == HC_ACTION && p->message == WM_PAINT && !bPainted) {
        wchar_t szClass[16] = {};
        ::GetClassNameW(p->hwnd, szClass, 16);
        if (std::wstring(szClass) == L"#32768") {
            tPainted = std::chrono::steady_clock::now();
            bPainted = true;
            ::EndMenu();
        }
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

template <class Fn>
double SecondsToPaint(Fn&& fnOpen) {
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
    bPainted = false;
    auto tStart = std::chrono::steady_clock::now();
    fnOpen();
    return bPainted ? std::chrono::duration<double>(tPainted - tStart).count() : -1;
}

struct Item {
    UINT uFlags;
    UINT_PTR nId;
    std::wstring strText;
    HBITMAP hbm = nullptr;
    bool bDefault = false;
    std::vector<Item> sub;
};

/// What a menu holds, to make the same again by bare calls.
std::vector<Item> Copy(HMENU hmenu) {
    std::vector<Item> items;
    for (int n = 0; n < ::GetMenuItemCount(hmenu); ++n) {
        wchar_t szText[300] = {};
        MENUITEMINFOW info{};
        info.cbSize = sizeof(info);
        info.fMask =
            MIIM_FTYPE | MIIM_STRING | MIIM_ID | MIIM_STATE | MIIM_SUBMENU | MIIM_CHECKMARKS;
        info.dwTypeData = szText;
        info.cch = 300;
        ::GetMenuItemInfoW(hmenu, static_cast<UINT>(n), TRUE, &info);
        Item item{static_cast<UINT>(info.fType & MFT_SEPARATOR ? MF_SEPARATOR : MF_STRING),
                  info.wID,
                  szText,
                  info.hbmpUnchecked,
                  (info.fState & MFS_DEFAULT) != 0,
                  {}};
        if (info.hSubMenu) item.sub = Copy(info.hSubMenu);
        items.push_back(std::move(item));
    }
    return items;
}

HMENU Make(const std::vector<Item>& items) {
    HMENU hmenu = ::CreatePopupMenu();
    UINT nPos = 0;
    for (const Item& item : items) {
        if (item.sub.empty()) {
            ::AppendMenuW(hmenu, item.uFlags, item.nId, item.strText.c_str());
        } else {
            ::AppendMenuW(hmenu, MF_POPUP, reinterpret_cast<UINT_PTR>(Make(item.sub)),
                          item.strText.c_str());
        }
        if (item.hbm) ::SetMenuItemBitmaps(hmenu, nPos, MF_BYPOSITION, item.hbm, item.hbm);
        if (item.bDefault) ::SetMenuDefaultItem(hmenu, nPos, TRUE);
        ++nPos;
    }
    return hmenu;
}

void PlantSnapshots() {
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return;
    key.DelAll();
    for (unsigned n = 0; n < kMaxSnapshots; ++n) {
        wchar_t szName[kSnapshotNameLength + 1];
        FormatSnapshotName(szName, 0x01D35400'00000000 + n * 36000000000ull);
        unsigned char bytes[kMd5Size + sizeof(IconRecord)] = {};
        key.PutBin(szName, bytes, sizeof(bytes), REG_BINARY);
        if (n == 3) key.PutStr(nullptr, szName, 1);
    }
}

/// The sixth day of use, so that the recommendation shows. The first opening sets the date.
void PlantDays() {
    RegKey key(L"HKCU\\Software\\Orvanta\\Tessaly\\Setup", 1);
    key.PutDword(L"DayCount", 6, 0);
}

std::vector<Item> itemsSeen;

/// The monitor window, which shows what its menu holds.
class WatchedMonitor : public MyMonitor_Wnd {
  public:
    using MyMonitor_Wnd::MyMonitor_Wnd;
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        if (uMsg == WM_INITMENUPOPUP && itemsSeen.empty())
            itemsSeen = Copy(reinterpret_cast<HMENU>(wParam));
        return MyMonitor_Wnd::OnWndMessage(uMsg, wParam, lParam);
    }
};

int Run() {
    PlantSnapshots();
    PlantDays();
    TrayFrontEnd frontEnd;
    WatchedMonitor monitor(frontEnd);
    if (!monitor.CreateHidden(nullptr)) return 2;
    HHOOK hhook = ::SetWindowsHookExW(WH_CALLWNDPROCRET, OnReturn, nullptr, ::GetCurrentThreadId());
    ::SetCursorPos(500, 300);
    auto openOurs = [&] { SendMyCompanyMsg(monitor, kCodeOpenMenu, 1); };
    // All five bitmaps are made, the items known.
    for (int n = 0; n < kRecommendations; ++n) SecondsToPaint(openOurs);
    // Without its owner in front a popup does not close on a click elsewhere: the bare one has
    // that, too.
    auto openBare = [&] {
        HWND hwndFormer = ::GetForegroundWindow();
        HMENU hmenu = Make(itemsSeen);
        ::SetForegroundWindow(monitor);
        ::TrackPopupMenu(hmenu, TPM_RIGHTBUTTON | TPM_RETURNCMD, 516, 316, 0, monitor, nullptr);
        ::DestroyMenu(hmenu);
        ::SetForegroundWindow(hwndFormer);
    };
    Comparison c = CompareTimed(
        kTurns, [&] { return SecondsToPaint(openOurs); }, [&] { return SecondsToPaint(openBare); });
    std::printf("%zu items in the menu, %zu in the sub-menu\n", itemsSeen.size(),
                itemsSeen.size() > 1 ? itemsSeen[1].sub.size() : 0);
    bool bOk = Report("tray menu with 25 snapshots / bare popup", c, kLimit, true);
    bOk = bOk && c.dFirst > 0 && c.dSecond > 0;
    ::UnhookWindowsHookEx(hhook);
    monitor.Destroy();
    return bOk ? 0 : 1;
}
} // namespace

int main() {
    LibraryStart(::GetModuleHandleW(nullptr));
    int nResult = Run();
    LibraryStop();
    return nResult;
}
