#pragma once
#include "icons/agent/icon_record.h"
#include <windows.h>

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
void RestoreFrom(HWND hwndListView, const COPYDATASTRUCT& data);
