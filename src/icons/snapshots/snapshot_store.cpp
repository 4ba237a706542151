#include "icons/snapshots/snapshot_store.h"
#include "app/identity/my_product_info.h"
#include "icons/monitor/front_end.h"
#include "runtime/base/cs_buf.h"
#include "runtime/base/digest.h"
#include "runtime/text/str_format.h"

#include <cstring>
#include <cwchar>

namespace {
constexpr int kNameSize = 256; // longer value names are none of a snapshot
constexpr std::size_t kPathSize = 260;

/// The size of the value of so many records; 0 if it is more than the registry can be told.
unsigned GetValueSize(unsigned nRecords) {
    unsigned long long cb =
        kMd5Size + static_cast<unsigned long long>(nRecords) * sizeof(IconRecord);
    return cb <= 0xFFFFFFFF ? static_cast<unsigned>(cb) : 0;
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

int OpenSnapshotKey(RegKey& key, int bWrite) {
    wchar_t szPath[kPathSize];
    FormatText(szPath, L"%s\\%s\\Data", L"HKCU\\Software\\Orvanta", GetMyProductInfo().GetName());
    return key.Open(szPath, bWrite);
}

void OnIconsCaptured(const IconRecord* pRecords, unsigned nRecords) {
    if (!pRecords || !nRecords) return;
    int bChanged = IsLayoutChanged(pRecords, nRecords);
    if (bChanged) StoreSnapshot(pRecords, nRecords);
    ReportCaptureOutcome(bChanged ? L"Icons stored"
                                  : L"No changes to the icons have been detected.");
}

int IsLayoutChanged(const IconRecord* pRecords, unsigned nRecords) {
    RegKey key;
    if (!OpenSnapshotKey(key, 0)) return 1;
    SnapshotList list;
    if (!ListSnapshots(key, list)) return 1;
    unsigned __int64 qwNewest = GetSnapshotTime(list, list.GetHeadPos());
    if (ReadSnapshot(key, qwNewest) != nRecords) return 1;
    if (!nRecords) return 0;

    unsigned cbValue = GetValueSize(nRecords);
    if (!cbValue) return 1;
    CSBuf stored(cbValue - kMd5Size); // zeros, which are no layout, unless it is filled
    if (!stored.IsReady()) return 1;
    unsigned char* pStored = stored;
    ReadSnapshot(key, qwNewest, reinterpret_cast<IconRecord*>(pStored), nRecords);
    return std::memcmp(pStored, pRecords, cbValue - kMd5Size) != 0;
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

    CSBuf value(cbValue);
    if (!value.IsReady()) return;
    unsigned char* pValue = value;
    CalcMD5(pValue, pRecords, cbValue - kMd5Size);
    std::memcpy(pValue + kMd5Size, pRecords, cbValue - kMd5Size);
    key.PutBin(szName, pValue, cbValue, REG_BINARY);
    TrimSnapshots(key);
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

    CSBuf value(cbValue);
    if (!value.IsReady()) return nRecords;
    unsigned char* pValue = value;
    // A value that grew meanwhile is not read, and the zeros of the block have another digest.
    key.GetBin(szName, pValue, cbValue);
    unsigned char digest[kMd5Size];
    CalcMD5(digest, pValue + kMd5Size, cbRecords);
    if (std::memcmp(digest, pValue, kMd5Size) == 0) {
        std::memcpy(pRecords, pValue + kMd5Size, cbRecords);
    }
    return nRecords;
}

void DeleteAllSnapshots() {
    RegKey key;
    if (OpenSnapshotKey(key, 1)) key.DelAll();
}
