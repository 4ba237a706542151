#pragma once

/// The program that calls an exported function of a library.
constexpr const wchar_t* kRunDll32 = L"RunDll32.exe";

/// What that program wants to be told: this library's short path, a comma and the arguments. 0 and
/// an empty text if it does not fit. Where a path has no short form, quotes keep its blanks
/// together.
int MakeDllLine(wchar_t* pszLine, int cchLine, const wchar_t* pszArguments);
