#include "icons/tray/restore_menu.h"
#include "icons/snapshots/snapshot_commands.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "icons/tray/day_count.h"
#include "runtime/text/str_find.h"
#include "wnd/menu/csmenu.h"

namespace {
constexpr int kTodaySize = 64;     // characters of today's date
constexpr int kLabelPartSize = 32; // of a snapshot's date, and of its time

/// False for a time stamp that is none of a date, and if the menu takes no item.
bool AppendSnapshot(CSMenu& menu, unsigned nId, unsigned __int64 qwTime, const wchar_t* pszToday) {
    SYSTEMTIME st{};
    if (!ToLocalTime(qwTime, st)) return false;
    wchar_t szDate[kLabelPartSize], szTime[kLabelPartSize];
    bool bHasDate = FormatLocalDate(st, DATE_LONGDATE, szDate, kLabelPartSize);
    FormatLocalTime(st, szTime, kLabelPartSize);
    // What is left of two dates that do not fit says nothing of their being the same.
    bool bToday = bHasDate && StrIsSame(szDate, pszToday, 1);
    const wchar_t* pszFirst = bToday ? L"Today at" : szDate;
    return menu.AppendItem(nId, L"%s %s", pszFirst, szTime) != 0;
}
} // namespace

int BuildRestoreMenu(CSMenu& menu, unsigned nFirstId) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return 0;
    SnapshotList list;
    if (!ListSnapshots(key, list)) return 0;
    unsigned __int64 qwMarked = ReadRestoreMark(key);
    wchar_t szToday[kTodaySize];
    FormatToday(DATE_LONGDATE, szToday, kTodaySize);

    int nItems = 0;
    for (POS pos = list.GetHeadPos(); pos;) {
        auto* pTime = static_cast<unsigned __int64*>(list.ExtractAt(pos));
        unsigned nId = nFirstId + static_cast<unsigned>(nItems);
        unsigned __int64 qwTime = *pTime;
        if (!AppendSnapshot(menu, nId, qwTime, szToday)) {
            FreeSnapshotTime(pTime);
            continue; // its id is the next one's
        }
        // From here on the time stamp is the item's.
        if (!menu.SetItemDataByID(nId, reinterpret_cast<unsigned __int64>(pTime))) {
            FreeSnapshotTime(pTime);
        }
        if (qwTime == qwMarked) menu.SetDefaultByID(nId);
        ++nItems;
    }
    return nItems;
}

void FreeRestoreMenuData(CSMenu& menu) {
    int nCount = menu.GetCount();
    for (int nPos = 0; nPos < nCount; ++nPos) {
        auto nItem = static_cast<unsigned>(nPos);
        FreeSnapshotTime(reinterpret_cast<void*>(menu.GetItemDataByPos(nItem)));
        menu.SetItemDataByPos(nItem, 0);
    }
}
