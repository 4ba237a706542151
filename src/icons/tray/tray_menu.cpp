#include "icons/tray/tray_menu.h"
#include "app/about/about.h"
#include "app/launch/open_html.h"
#include "icons/monitor/monitor_wnd.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/tray/day_count.h"
#include "icons/tray/recommendations.h"
#include "icons/tray/restore_menu.h"
#include "runtime/messages/msg.h"
#include "wnd/menu/csmenu.h"

namespace {
enum Command : unsigned {
    kRemember = 1,
    kNothingToRestore = 2,
    kDeleteAll = 3,
    kAbout = 8,
    kExit = 9,
    kFirstRecommendation = kRecommendationId,
    kFirstSnapshot = 1000, // from kFirstRecommendation up to here all are recommendations
};

constexpr const wchar_t* kRestoreText = L"Restore icons";

constinit bool bMenuOpen = false;

/// Never at first, then every other day, and from 5 on always.
bool IsRecommendationDue(DWORD dwDays) { return dwDays && (dwDays % 2 || dwDays > 5); }

/// Builds both menus. Whether sub is part of menu now.
bool BuildMenu(CSMenu& menu, CSMenu& sub) {
    menu.CreatePopup();
    menu.AppendItem(kRemember, L"Remember icons now");
    sub.CreatePopup();
    bool bIsPart = false;
    if (BuildRestoreMenu(sub, kFirstSnapshot) > 0) {
        bIsPart = menu.AppendSubMenu(sub, kRestoreText) != 0;
        menu.AppendItem(kDeleteAll, L"Delete all snapshots...");
    } else {
        menu.AppendItem(kNothingToRestore, kRestoreText);
        menu.EnableItemByID(kNothingToRestore, 0);
    }
    if (IsRecommendationDue(UpdateDayCount())) {
        menu.AppendSeparator();
        AddRecommendationRows(menu);
    }
    menu.AppendSeparator();
    menu.AppendItem(kAbout, L"About Tessaly...");
    menu.AppendItem(kExit, L"Exit");
    return bIsPart;
}

/// The command that the user chose; 0 for none, and if the monitor window is gone.
unsigned Track(CSMenu& menu, MyMonitor_Wnd& monitor) {
    bMenuOpen = true;
    int nChosen = menu.Track2(monitor, 1);
    bMenuOpen = false;
    if (monitor.IsReady()) return static_cast<unsigned>(nChosen);
    // The window was closed meanwhile, and the end of the round with it was announced to whichever
    // loop was running: a menu's may keep that to itself.
    ::PostQuitMessage(0);
    return 0;
}

void RestoreChosen(MyMonitor_Wnd& monitor, const CSMenu& sub, unsigned nId) {
    monitor.SuppressCaptures(); // before anything moves
    const auto* pTime = reinterpret_cast<const unsigned __int64*>(sub.GetItemDataByID(nId));
    if (pTime && PutSnapshotBack(*pTime)) monitor.NoteRestore();
}

void RememberNow(MyMonitor_Wnd& monitor) {
    monitor.SetSnapshotAnnounce(1);
    monitor.RequestCapture();
}

void DeleteAllAfterQuestion() {
    int nAnswer =
        Msg(nullptr, MB_YESNO | MB_ICONQUESTION, L"Are you sure you want to delete all snapshots?");
    if (nAnswer == IDYES) DeleteAllSnapshots();
}

void OpenRecommendation() {
    if (const Recommendation* pRow = GetRecommendation()) OpenHTML(nullptr, pRow->pszUrl, 0, 0);
}

void Act(unsigned nChosen, MyMonitor_Wnd& monitor, const CSMenu& sub) {
    if (nChosen >= kFirstSnapshot) {
        RestoreChosen(monitor, sub, nChosen);
    } else if (nChosen >= kFirstRecommendation) {
        OpenRecommendation();
    } else if (nChosen == kRemember) {
        RememberNow(monitor);
    } else if (nChosen == kDeleteAll) {
        DeleteAllAfterQuestion();
    } else if (nChosen == kAbout) {
        ShowAboutOrActivate();
    } else if (nChosen == kExit) {
        ::PostMessageW(monitor, WM_CLOSE, 0, 0);
    }
}
} // namespace

void OpenTrayMenu(MyMonitor_Wnd& monitor) {
    if (bMenuOpen) return; // the platform shows one at a time, and a double click asks twice
    CSMenu menu, sub;
    bool bIsPart = BuildMenu(menu, sub);
    Act(Track(menu, monitor), monitor, sub);
    FreeRestoreMenuData(sub);
    menu.Destroy();
    if (bIsPart) sub.Detach(); // it went with the menu
}
