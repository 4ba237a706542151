// The monitor's half of a restore: the question, the data for the shell side, the mark.

#include "icons/agent/desktop_shared_data.h"
#include "icons/snapshots/snapshot_store.h"
#include "runtime/base/cs_buf.h"
#include "runtime/messages/msg.h"

#include <commctrl.h> // LVS_AUTOARRANGE

namespace {
constexpr const wchar_t* kAutoArrangeQuestion =
    L"Your Desktop is currently set to auto arrange the icons. In order to restore the icons, the "
    L"auto arrange option needs to be cleared.\n\nOK to clear this option? (If you select No, the "
    L"icons will NOT be restored.)";

/// 1 if the list view leaves its icons where they are put, after the user's yes if need be.
int ClearAutoArrange(HWND hwndListView) {
    LONG_PTR dwStyle = ::GetWindowLongPtrW(hwndListView, GWL_STYLE);
    if (!(dwStyle & LVS_AUTOARRANGE)) return 1;
    if (Msg(nullptr, MB_YESNO | MB_ICONEXCLAMATION, kAutoArrangeQuestion) != IDYES) return 0;
    ::SetWindowLongPtrW(hwndListView, GWL_STYLE, dwStyle & ~static_cast<LONG_PTR>(LVS_AUTOARRANGE));
    return 1;
}
} // namespace

void RestoreSnapshot(unsigned __int64 qwTime) {
    HWND hwndListView = desktopSharedData.hwndListView;
    if (!ClearAutoArrange(hwndListView)) return;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return;
    unsigned nRecords = ReadSnapshot(key, qwTime);
    if (!nRecords) return;

    // Zeros, which name no icon, unless the digest holds.
    unsigned cbRecords =
        nRecords * static_cast<unsigned>(sizeof(IconRecord)); // less than the value
    CSBuf records(cbRecords);
    if (!records.IsReady()) return;
    unsigned char* pRecords = records;
    ReadSnapshot(key, qwTime, reinterpret_cast<IconRecord*>(pRecords), nRecords);
    COPYDATASTRUCT data{nRecords, cbRecords, pRecords};
    ::SendMessageW(hwndListView, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));

    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, qwTime);
    key.PutStr(nullptr, szName, 1);
}
