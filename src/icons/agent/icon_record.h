#pragma once
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"
#include <windows.h>
#include <cstddef>
#include <span>

/// One icon of a layout, as it is stored and as it travels between the processes. Little-endian, no
/// padding. Only the name key identifies the icon; index and name length take part in comparing two
/// layouts and in nothing else.
struct IconRecord {
    unsigned int nIndex;        // of the item in the list view at capture, from 0
    POINT pt;                   // the item's position in list-view coordinates
    unsigned int cchName;       // of the item's text, in UTF-16 units without terminator
    unsigned __int64 qwNameKey; // MakeNameKey of the text
};
static_assert(sizeof(IconRecord) == 24);
static_assert(offsetof(IconRecord, pt) == 4 && offsetof(IconRecord, cchName) == 12 &&
              offsetof(IconRecord, qwNameKey) == 16);

/// A desktop with more icons is not captured at all.
constexpr unsigned kMaxCapturedIcons = 999;

/// The key by which an icon's text is known: the first eight bytes of the MD5 of its UTF-16LE units
/// (RFC 1321), the first byte lowest. cch is the number of units; 0: the text is measured up to its
/// terminator. A null text has the key of the empty one. Nothing is folded: capital and small
/// letters differ.
TESSALY_API unsigned __int64 MakeNameKey(const wchar_t* psz, unsigned int cch);

// Reading and moving the items of the desktop's list view, in the process that owns it.

/// With nCount 0 only returns the list view's item count. Otherwise fills pRecords, which has room
/// for nCount records, with the first nCount items, in the list view's order, and returns nCount.
/// There must be so many items.
unsigned CaptureIcons(HWND hwndListView, IconRecord* pRecords, unsigned nCount);

/// Captures all items and sends them to hwndMonitor as WM_COPYDATA: dwData is the number of the
/// records, wParam is hwndSender. An empty desktop and one of more than kMaxCapturedIcons are not
/// sent, nor anything when out of memory. Returns after the monitor has dealt with it.
void SendCapture(HWND hwndListView, HWND hwndMonitor, HWND hwndSender);

/// Moves each item that a record names to that record's point. The data must hold dwData whole
/// records and nothing else; otherwise nothing happens, as when out of memory. Items match records
/// by name key alone, in the order of both; a record serves one item. The data stay as they are.
/// Returns what was moved, with its new place, in the list view's order; not ready if that is
/// nothing. Items that stayed are left out.
HeapArray<IconRecord> RestoreFrom(HWND hwndListView, const COPYDATASTRUCT& data);

/// The key of an icon's text as a capture takes it: a long text counts as far as the list view
/// would give it.
unsigned __int64 MakeIconKey(const wchar_t* pszText, unsigned* pcchTaken = nullptr);

/// Records that serve items by their name keys, each record one item; borrowed, and written to.
class RecordMatcher {
  public:
    /// The records stay the caller's and live longer than the object.
    explicit RecordMatcher(std::span<IconRecord> recordsStored) : records(recordsStored) {}
    /// The first record of that name that has served none; null if there is none left. The key 0
    /// names nothing.
    const POINT* Take(unsigned __int64 qwNameKey);

  private:
    static constexpr unsigned __int64 kServed = 0;
    std::span<IconRecord> records;
    std::size_t nServed = 0; // so many at the front have
};
