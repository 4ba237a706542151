#include "icons/snapshots/snapshot_store.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/snapshots/auto_arrange.h"
#include "icons/snapshots/layout.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "runtime/text/encoding.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <cstring>
#include <cwchar>
#include <new>

namespace {
constexpr int kNameSize = 256; // longer value names are none of a snapshot
constexpr std::size_t kPathSize = 260;

/// The records of a snapshot of so many, zeros if its digest fails: those are no layout and name no
/// icon. Not ready when out of memory.
HeapArray<IconRecord> ReadRecords(RegKey& key, unsigned __int64 qwTime, unsigned nRecords) {
    HeapArray<IconRecord> records(nRecords);
    if (records.IsReady()) ReadSnapshot(key, qwTime, records.Get(), nRecords);
    return records;
}

/// Deletes the values of all but the newest snapshots.
void TrimSnapshots(RegKey& key) {
    SnapshotList list;
    ListSnapshots(key, list);
    for (; list.GetCount() > kMaxSnapshots; list.RemoveTail()) {
        wchar_t szName[kSnapshotNameLength + 1];
        FormatSnapshotName(szName, GetSnapshotTime(list, list.GetTailPos()));
        key.DelValue(szName);
    }
}
} // namespace

// The time stamps

void FreeSnapshotTime(void* pTime) { delete static_cast<unsigned __int64*>(pTime); }

int SnapshotList::FreeTime(unsigned long long, unsigned, void* pElement) {
    FreeSnapshotTime(pElement);
    return 0;
}

unsigned __int64 GetSnapshotTime(const CSList& list, POS pos) {
    return *static_cast<const unsigned __int64*>(list.GetAt(pos));
}

bool InsertSnapshotTime(CSList& list, unsigned __int64 qwTime) {
    auto* pTime = new (std::nothrow) unsigned __int64(qwTime); // the list's, once it is in
    if (!pTime) return false;
    ScopeExit release([&] { FreeSnapshotTime(pTime); });
    POS posStop = list.GetHeadPos();
    while (posStop && posStop != list.GetTailPos() && GetSnapshotTime(list, posStop) >= qwTime) {
        list.GetNext(posStop);
    }
    if (!list.InsertBefore(posStop, pTime)) return false;
    release.Dismiss();
    return true;
}

unsigned __int64 ParseSnapshotName(const wchar_t* pszName) {
    unsigned __int64 qwTime = 0;
    // Counted first: the text may hold any number of pairs, the result eight bytes.
    if (HexToBinLE(nullptr, pszName) != sizeof(qwTime)) return 0;
    HexToBinLE(&qwTime, pszName);
    return qwTime;
}

// The store

int OpenSnapshotKey(RegKey& key, int bWrite) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s\\Data", L"HKCU\\Software\\Orvanta", GetMyProductInfo().GetName());
    return key.Open(szPath, bWrite);
}

int ListSnapshots(RegKey& key, CSList& list) {
    wchar_t szName[kNameSize];
    for (DWORD nAt = 0;; ++nAt) {
        LSTATUS status = key.ReadValueName(nAt, szName, kNameSize);
        if (status == ERROR_MORE_DATA) continue; // a longer name
        // Besides the end of the values these are errors that would come at every index.
        if (status != ERROR_SUCCESS) break;
        if (std::wcslen(szName) != kSnapshotNameLength) continue;
        unsigned __int64 qwTime = ParseSnapshotName(szName);
        if (qwTime) InsertSnapshotTime(list, qwTime);
    }
    return list.GetCount();
}

unsigned ReadSnapshot(RegKey& key, unsigned __int64 qwTime, IconRecord* pRecords, unsigned nRoom) {
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, qwTime);
    unsigned nRecords = CountLayoutRecords(key, szName);
    if (!nRecords || !pRecords || (nRoom && nRecords > nRoom)) return nRecords;
    static_cast<void>(ReadLayoutRecords(key, szName, pRecords, nRecords));
    return nRecords;
}

bool IsLayoutChanged(const IconRecord* pRecords, unsigned nRecords) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return true;
    SnapshotList list;
    if (!ListSnapshots(key, list)) return true;
    unsigned __int64 qwNewest = GetSnapshotTime(list, list.GetHeadPos());
    if (ReadSnapshot(key, qwNewest) != nRecords) return true;
    if (!nRecords) return false;
    HeapArray<IconRecord> stored = ReadRecords(key, qwNewest, nRecords);
    if (!stored.IsReady()) return true;
    return std::memcmp(stored.Get(), pRecords, stored.GetByteCount()) != 0;
}

bool StoreSnapshot(const IconRecord* pRecords, unsigned nRecords) {
    HeapArray<unsigned char> value = MakeLayoutValue(pRecords, nRecords);
    if (!value.IsReady()) return false;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return false;
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName,
                       static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime);
    int bStored =
        key.PutBin(szName, value.Get(), static_cast<unsigned>(value.GetByteCount()), REG_BINARY);
    TrimSnapshots(key); // the new one counts
    return bStored != 0;
}

void DeleteAllSnapshots() {
    RegKey key;
    if (OpenSnapshotKey(key, 1)) key.DelAll();
}

// The monitor's half of a restore: the data for the shell side, the mark.

void RestoreSnapshot(unsigned __int64 qwTime) { PutSnapshotBack(qwTime); }

bool PutSnapshotBack(unsigned __int64 qwTime) {
    HWND hwndListView = GetDesktopSharedData().hwndListView;
    if (!ClearAutoArrange(hwndListView)) return false;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return false;
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, qwTime);
    HeapArray<IconRecord> records(CountLayoutRecords(key, szName));
    if (!records.IsReady() || !records.GetCount()) return false;

    // Zeros if the digest fails, which name no icon.
    bool bWhole =
        ReadLayoutRecords(key, szName, records.Get(), static_cast<unsigned>(records.GetCount()));
    SendRestore(hwndListView, {records.Get(), records.GetCount()});
    key.PutStr(nullptr, szName, 1);
    return bWhole;
}
