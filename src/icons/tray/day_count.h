#pragma once
#include <windows.h>

// The user's clock and calendar, as the menu and the day counter see them.

using LocalTimeFunc = void WINAPI(SYSTEMTIME*);

/// Where today's date comes from, for tests of what happens when the day changes. Null brings the
/// platform's clock back.
void SetLocalTimeSource(LocalTimeFunc* pfnNew);

/// Today's date in the user's locale and the platform's format dwFlags (DATE_LONGDATE, or 0 for the
/// short one) into a buffer of that many characters. Returns 1; if the text does not fit, 0, and
/// the buffer holds what the platform left there, terminated.
int FormatToday(DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer);
/// The same for a date that is given, and for its time of day.
int FormatLocalDate(const SYSTEMTIME& st, DWORD dwFlags, wchar_t* pszBuffer, int cchBuffer);
int FormatLocalTime(const SYSTEMTIME& st, wchar_t* pszBuffer, int cchBuffer);

/// The local date and time of a snapshot's time stamp (UTC file time). 0 if it stands for none.
int ToLocalTime(unsigned __int64 qwTime, SYSTEMTIME& st);

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
