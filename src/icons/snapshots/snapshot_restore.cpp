// The monitor's half of a restore: the data for the shell side, the mark.

#include "icons/agent/desktop_shared_data.h"
#include "icons/snapshots/auto_arrange.h"
#include "icons/snapshots/snapshot_store.h"
#include "runtime/base/cs_buf.h"

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
