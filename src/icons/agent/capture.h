#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/heap_array.h"
#include <windows.h>
#include <span>

// Reading and moving the items of the desktop's list view, in the process that owns it.

/// With nCount 0 only returns the list view's item count. Otherwise fills pRecords with the first
/// nCount items, in the list view's order, and returns nCount.
unsigned CaptureIcons(HWND hwndListView, IconRecord* pRecords, unsigned nCount);

/// Captures all items and sends them to hwndMonitor as WM_COPYDATA, with hwndSender as wParam. An
/// empty desktop and one of more than kMaxCapturedIcons are not sent. Returns after the monitor has
/// dealt with it.
void SendCapture(HWND hwndListView, HWND hwndMonitor, HWND hwndSender);

/// Moves each item that a record names to that record's point. The data must hold dwData whole
/// records and nothing else; otherwise nothing happens. Items match records by name key alone, in
/// the order of both; a record serves one item. Returns what was moved, with its new place, in the
/// list view's order; not ready if that is nothing. Items that stayed are left out.
HeapArray<IconRecord> RestoreFrom(HWND hwndListView, const COPYDATASTRUCT& data);

/// The key of an icon's text as a capture takes it: a long text counts as far as the list view
/// would give it.
unsigned __int64 MakeIconKey(const wchar_t* pszText, unsigned* pcchTaken = nullptr);

/// Records that serve items by their name keys, each record one item; borrowed, and written to.
class RecordMatcher {
  public:
    explicit RecordMatcher(std::span<IconRecord> recordsStored) : records(recordsStored) {}
    /// The first record of that name that has served none; null if there is none left. The key 0
    /// names nothing.
    const POINT* Take(unsigned __int64 qwNameKey);

  private:
    static constexpr unsigned __int64 kServed = 0;
    std::span<IconRecord> records;
    std::size_t nServed = 0; // so many at the front have
};
