#include "icons/snapshots/snapshot_store.h"
#include "app/identity/product_info.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/snapshots/auto_arrange.h"
#include "runtime/base/digest.h"
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

/// The size of the value of so many records; 0 if it is more than the registry can be told.
unsigned GetValueSize(unsigned nRecords) {
    unsigned long long cb =
        kMd5Size + static_cast<unsigned long long>(nRecords) * sizeof(IconRecord);
    return cb <= 0xFFFFFFFF ? static_cast<unsigned>(cb) : 0;
}

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

void FormatSnapshotName(wchar_t (&szName)[kSnapshotNameLength + 1], unsigned __int64 qwTime) {
    FormatText(szName, L"%08X%08X", static_cast<unsigned>(qwTime >> 32),
               static_cast<unsigned>(qwTime));
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
    unsigned cbValue = key.GetBinSize(szName);
    if (cbValue <= kMd5Size) return 0;
    std::size_t cbRecords = cbValue - kMd5Size;
    if (cbRecords % sizeof(IconRecord)) return 0;
    auto nRecords = static_cast<unsigned>(cbRecords / sizeof(IconRecord));
    if (!pRecords || (nRoom && nRecords > nRoom)) return nRecords;

    HeapArray<unsigned char> value(cbValue);
    if (!value.IsReady()) return nRecords;
    // A value that grew meanwhile is not read, and the zeros of the block have another digest.
    key.GetBin(szName, value.Get(), cbValue);
    unsigned char digest[kMd5Size];
    CalcMD5(digest, value.Get() + kMd5Size, cbRecords);
    if (std::memcmp(digest, value.Get(), kMd5Size) == 0) {
        std::memcpy(pRecords, value.Get() + kMd5Size, cbRecords);
    }
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

void StoreSnapshot(const IconRecord* pRecords, unsigned nRecords) {
    unsigned cbValue = GetValueSize(nRecords);
    if (!pRecords || !nRecords || !cbValue) return;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return;
    FILETIME ft{};
    ::GetSystemTimeAsFileTime(&ft);
    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName,
                       static_cast<unsigned __int64>(ft.dwHighDateTime) << 32 | ft.dwLowDateTime);

    HeapArray<unsigned char> value(cbValue);
    if (!value.IsReady()) return;
    CalcMD5(value.Get(), pRecords, cbValue - kMd5Size);
    std::memcpy(value.Get() + kMd5Size, pRecords, cbValue - kMd5Size);
    key.PutBin(szName, value.Get(), cbValue, REG_BINARY);
    TrimSnapshots(key); // the new one counts
}

void DeleteAllSnapshots() {
    RegKey key;
    if (OpenSnapshotKey(key, 1)) key.DelAll();
}

// The monitor's half of a restore: the data for the shell side, the mark.

void RestoreSnapshot(unsigned __int64 qwTime) {
    HWND hwndListView = GetDesktopSharedData().hwndListView;
    if (!ClearAutoArrange(hwndListView)) return;
    RegKey key;
    if (!OpenSnapshotKey(key, 1)) return;
    unsigned nRecords = ReadSnapshot(key, qwTime);
    if (!nRecords) return;
    HeapArray<IconRecord> records = ReadRecords(key, qwTime, nRecords);
    if (!records.IsReady()) return;

    auto cbRecords = static_cast<DWORD>(records.GetByteCount()); // less than the value's size
    COPYDATASTRUCT data{nRecords, cbRecords, records.Get()};
    ::SendMessageW(hwndListView, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));

    wchar_t szName[kSnapshotNameLength + 1];
    FormatSnapshotName(szName, qwTime);
    key.PutStr(nullptr, szName, 1);
}
