#pragma once

/// Tells the user a text of lines that end in a line feed but for the last one. It goes to the
/// standard output if that leads to a file, a pipe or another device; what failed to the standard
/// error on the same condition, as UTF-8 with CR LF line ends. Otherwise to the console of the
/// program that started this one, and where there is none into a message box, with the sign for
/// information or, with bWarning, for a warning.
void TellUser(const wchar_t* pszText, bool bFailed, bool bWarning);
