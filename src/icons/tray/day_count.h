#pragma once
#include <windows.h>

// The user's calendar, as the menu and the day counter see it: dates and times as the user's locale
// writes them, and the count of the days of use.

/// Today's date in the user's locale and the platform's format dwFlags (DATE_LONGDATE, or 0 for the
/// short one) into a buffer of cchBuffer characters, at least one. False if the text does not fit:
/// the buffer then holds what the platform left there, with an end.
bool FormatToday(DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer);
/// FormatToday for a date that is given.
bool FormatLocalDate(const SYSTEMTIME& st, DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer);
/// The time of day in the user's locale, with the same buffer and result.
bool FormatLocalTime(const SYSTEMTIME& st, wchar_t* pszBuffer, int cchBuffer);

/// Counts the days on which the program is used, by changes of today's date as the user's locale
/// writes it: the first day only remembers the date, and each later one adds 1, however many days
/// have passed in between. Counter and date are the values "DayCount" and "LastUse" of the key
/// "Setup" below the product's root; on a day that is remembered already nothing is written.
///
/// From the second day on, each call also has the check for updates looked after (CheckForUpdates),
/// daily and automatic, whatever the registry says.
///
/// Returns the counter; if the key can't be opened, as it was last known in this process, 0 at
/// first. On the monitor's thread only.
// QUIRK: a date of 32 characters or more is never read back, so that in such a locale the counter
// stands still. Test: DayCount.DateOfMoreThan31CharactersIsNeverReadBack
DWORD UpdateDayCount();
