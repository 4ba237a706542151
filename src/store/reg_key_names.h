#pragma once

/// Compares two names as the registry does, ignoring case. 1 if they are the same.
int IsSameRegName(const wchar_t* pszLeft, const wchar_t* pszRight);

/// 1 if the path is the same as the other or lies below it: component by component, ignoring case
/// and doubled, leading and trailing backslashes. Everything lies below the empty path.
int IsRegPathWithin(const wchar_t* pszPath, const wchar_t* pszOther);
