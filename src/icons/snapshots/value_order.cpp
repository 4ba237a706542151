#include "icons/snapshots/value_order.h"
#include "icons/snapshots/snapshot_store.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/heap_array.h"

#include <algorithm>
#include <cwchar>

namespace {
constexpr int kMostCopies = 64; // so that a registry that deletes nothing ends nothing
constexpr int kListedNameSize = 256;

struct CopyName {
    wchar_t sz[kSnapshotNameLength + 2] = L"";
};

CopyName MakeCopyName(const wchar_t* pszName) {
    CopyName copy;
    std::copy_n(pszName, kSnapshotNameLength, copy.sz);
    copy.sz[kSnapshotNameLength] = kCopyMark;
    return copy;
}

/// Writes the value under the other name, too. False for an empty one.
bool CopyContent(RegKey& key, const wchar_t* pszFrom, const wchar_t* pszTo) {
    unsigned cb = key.GetBinSize(pszFrom);
    HeapArray<unsigned char> bytes(cb);
    DWORD dwType = REG_NONE;
    return bytes.IsReady() && key.GetBin(pszFrom, bytes.Get(), cb, &dwType) && dwType != REG_NONE &&
           key.PutBin(pszTo, bytes.Get(), cb, dwType);
}

void ListLast(RegKey& key, const wchar_t* pszName) {
    CopyName copy = MakeCopyName(pszName);
    if (!CopyContent(key, pszName, copy.sz)) return;
    bool bThere = !key.DelValue(pszName) || CopyContent(key, copy.sz, pszName);
    if (bThere) key.DelValue(copy.sz);
}

/// The first copy that there is; false if there is none.
bool FindCopy(const RegKey& key, CopyName& copy) {
    wchar_t szName[kListedNameSize];
    for (DWORD nAt = 0;; ++nAt) {
        LSTATUS status = key.ReadValueName(nAt, szName, kListedNameSize);
        if (status == ERROR_MORE_DATA) continue; // a longer name
        if (status != ERROR_SUCCESS) return false;
        if (std::wcslen(szName) != kSnapshotNameLength + 1) continue;
        if (szName[kSnapshotNameLength] != kCopyMark) continue;
        copy = MakeCopyName(szName);
        return true;
    }
}
} // namespace

void ListNewerBehind(RegKey& key, unsigned __int64 qwTime) {
    SnapshotList list;
    HeapArray<unsigned __int64> times(static_cast<std::size_t>(ListSnapshots(key, list)));
    std::size_t nNewer = 0;
    for (POS pos = list.GetHeadPos(); pos && times.IsReady(); list.GetNext(pos)) {
        unsigned __int64 qw = GetSnapshotTime(list, pos);
        if (qw > qwTime) times[nNewer++] = qw;
    }
    std::sort(times.begin(), times.begin() + nNewer);
    for (std::size_t i = 0; i < nNewer; ++i) {
        wchar_t szName[kSnapshotNameLength + 1];
        FormatSnapshotName(szName, times[i]);
        ListLast(key, szName);
    }
}

void FinishCopies(RegKey& key) {
    CopyName copy;
    for (int n = 0; n < kMostCopies && FindCopy(key, copy); ++n) {
        CopyName name = copy;
        name.sz[kSnapshotNameLength] = 0;
        bool bThere = key.FindValue(name.sz) || CopyContent(key, copy.sz, name.sz);
        if (!bThere || !key.DelValue(copy.sz)) return;
    }
}
