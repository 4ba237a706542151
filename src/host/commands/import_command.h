#pragma once
class CommandText;

/// Takes the snapshots of an export in: those that are whole, new and fit in are checked again and
/// written, one after the other, by the monitor if one runs. Tells how many, and what was left out
/// and why. A file of more than 16 MiB is refused unread. Returns an exit code.
int ImportFile(const wchar_t* pszPath, CommandText& told);
