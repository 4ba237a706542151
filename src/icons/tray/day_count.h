#pragma once
#include <windows.h>

/// Counts the days on which the program is used, by changes of today's date as the user's locale
/// writes it: the first day only remembers the date, and each later one adds 1, however many days
/// have passed in between. Counter and date are the values "DayCount" and "LastUse" of the key
/// "Setup" below the product's root; on a day that is remembered already nothing is written.
///
/// Returns the counter; if the key can't be opened, as it was last known in this process, 0 at
/// first. On the monitor's thread only.
// QUIRK: a date of 32 characters or more is never read back, so that in such a locale the counter
// stands still. Test: DayCount.DateOfMoreThan31CharactersIsNeverReadBack
DWORD UpdateDayCount();
