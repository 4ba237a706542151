#include "icons/snapshots/snapshot_names.h"
#include "runtime/text/encoding.h"
#include "runtime/text/str_format.h"

#include <new>

void FreeSnapshotTime(void* pTime) { delete static_cast<unsigned __int64*>(pTime); }

int SnapshotList::FreeTime(unsigned long long, unsigned, void* pElement) {
    FreeSnapshotTime(pElement);
    return 0;
}

unsigned __int64 GetSnapshotTime(const CSList& list, POS pos) {
    return *static_cast<const unsigned __int64*>(list.GetAt(pos));
}

int InsertSnapshotTime(CSList& list, unsigned __int64 qwTime) {
    auto* pTime = new (std::nothrow) unsigned __int64(qwTime);
    if (!pTime) return 0;
    POS posStop = list.GetHeadPos();
    while (posStop && posStop != list.GetTailPos() && GetSnapshotTime(list, posStop) >= qwTime) {
        list.GetNext(posStop);
    }
    if (list.InsertBefore(posStop, pTime)) return 1;
    delete pTime;
    return 0;
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
