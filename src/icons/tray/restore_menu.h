#pragma once
class CSMenu;

// The sub-menu of the snapshots, as they stand in the store when it is built. An item's data is the
// address of its snapshot's time stamp (an unsigned __int64 on the heap), which belongs to the item
// until FreeRestoreMenuData.

/// Appends an item for each snapshot, newest first, with ids from nFirstId on without a gap: "Today
/// at" or the long date, and the time, in the user's locale. The one that was restored last is the
/// default item. A time stamp that is none of a date gets no item. Returns the number of items; 0
/// also if the store can't be opened.
// QUIRK: a long date of 32 characters or more is left out, and only the time shows.
// Test: RestoreMenu.LongDateThatDoesNotFitIsLeftOut
int BuildRestoreMenu(CSMenu& menu, unsigned nFirstId);

/// Gives back all time stamps and clears the items' data, so that a second call does nothing.
void FreeRestoreMenuData(CSMenu& menu);
