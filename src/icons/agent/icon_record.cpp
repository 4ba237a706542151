#include "icons/agent/icon_record.h"
#include "runtime/base/digest.h"

#include <windows.h>
#include <commctrl.h>
#include <cstring>
#include <cwchar>

namespace {
constexpr unsigned kCchIconText = 260; // longer texts are cut by the list view, terminator included

unsigned GetItemCount(HWND hwndListView) {
    return static_cast<unsigned>(::SendMessageW(hwndListView, LVM_GETITEMCOUNT, 0, 0));
}

/// The text that LVM_GETITEM left. The list view may point to a text of its own instead of filling
/// the buffer, and that one has no bound.
unsigned MeasureText(const wchar_t* psz) {
    return static_cast<unsigned>(wcsnlen(psz, kCchIconText - 1));
}

/// The first nCount items; not ready when out of memory.
HeapArray<IconRecord> CaptureToHeap(HWND hwndListView, unsigned nCount) {
    HeapArray<IconRecord> records(nCount);
    if (records.IsReady()) CaptureIcons(hwndListView, records.Get(), nCount);
    return records;
}
} // namespace

unsigned __int64 MakeNameKey(const wchar_t* psz, unsigned int cch) {
    if (!psz) {
        cch = 0;
    } else if (cch == 0) {
        cch = static_cast<unsigned int>(std::wcslen(psz));
    }
    unsigned char digest[kMd5Size];
    CalcMD5(digest, psz, cch * sizeof(wchar_t));
    unsigned __int64 qwKey;
    std::memcpy(&qwKey, digest, sizeof(qwKey));
    return qwKey;
}

unsigned __int64 MakeIconKey(const wchar_t* pszText, unsigned* pcchTaken) {
    unsigned cch = MeasureText(pszText);
    if (pcchTaken) *pcchTaken = cch;
    return MakeNameKey(pszText, cch);
}

const POINT* RecordMatcher::Take(unsigned __int64 qwNameKey) {
    // Those at the front that have served are skipped for good: a restore of an unchanged order
    // then looks at each once.
    while (nServed < records.size() && records[nServed].qwNameKey == kServed) ++nServed;
    for (IconRecord& record : records.subspan(nServed)) {
        if (record.qwNameKey != qwNameKey || qwNameKey == kServed) continue;
        record.qwNameKey = kServed;
        return &record.pt;
    }
    return nullptr;
}

unsigned CaptureIcons(HWND hwndListView, IconRecord* pRecords, unsigned nCount) {
    if (nCount == 0) return GetItemCount(hwndListView);
    // QUIRK: not cleared between items: one whose text can't be read has the text before it.
    // Test: Capture.OfAnUnreadableLaterItemKeepsTheTextBefore
    wchar_t szText[kCchIconText] = {};
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    for (unsigned i = 0; i < nCount; ++i) {
        IconRecord& record = pRecords[i];
        record.nIndex = i;
        ::SendMessageW(hwndListView, LVM_GETITEMPOSITION, i, reinterpret_cast<LPARAM>(&record.pt));
        item.iItem = static_cast<int>(i);
        item.pszText = szText;
        item.cchTextMax = kCchIconText;
        ::SendMessageW(hwndListView, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        szText[kCchIconText - 1] = 0;
        const wchar_t* pszText =
            item.pszText && item.pszText != LPSTR_TEXTCALLBACKW ? item.pszText : szText;
        record.qwNameKey = MakeIconKey(pszText, &record.cchName);
    }
    return nCount;
}

void SendCapture(HWND hwndListView, HWND hwndMonitor, HWND hwndSender) {
    unsigned nCount = CaptureIcons(hwndListView, nullptr, 0);
    if (nCount == 0 || nCount > kMaxCapturedIcons) return;
    HeapArray<IconRecord> records = CaptureToHeap(hwndListView, nCount);
    if (!records.IsReady()) return;
    COPYDATASTRUCT data{nCount, static_cast<DWORD>(records.GetByteCount()), records.Get()};
    ::SendMessageW(hwndMonitor, WM_COPYDATA, reinterpret_cast<WPARAM>(hwndSender),
                   reinterpret_cast<LPARAM>(&data));
}

HeapArray<IconRecord> RestoreFrom(HWND hwndListView, const COPYDATASTRUCT& data) {
    // Any program can send this. Dividing first keeps a huge count from wrapping round.
    if (data.dwData > data.cbData / sizeof(IconRecord)) return {};
    if (data.dwData * sizeof(IconRecord) != data.cbData || !data.lpData) return {};
    unsigned nItems = CaptureIcons(hwndListView, nullptr, 0);
    if (nItems == 0 || data.dwData == 0) return {};
    HeapArray<IconRecord> stored(data.dwData); // the sender's data are not ours to write to
    HeapArray<IconRecord> items = CaptureToHeap(hwndListView, nItems); // for the present names
    if (!items.IsReady() || !stored.IsReady()) return {};

    std::memcpy(stored.Get(), data.lpData, data.cbData); // it need not be aligned
    RecordMatcher matcher({stored.Get(), stored.GetCount()});
    unsigned nMoved = 0;
    for (unsigned i = 0; i < nItems; ++i) {
        const POINT* ppt = matcher.Take(items[i].qwNameKey);
        if (!ppt) continue;
        ::SendMessageW(hwndListView, LVM_SETITEMPOSITION32, i, reinterpret_cast<LPARAM>(ppt));
        items[nMoved] = items[i];
        items[nMoved++].pt = *ppt;
    }
    HeapArray<IconRecord> moved(nMoved);
    if (moved.IsReady()) std::memcpy(moved.Get(), items.Get(), moved.GetByteCount());
    return moved;
}
