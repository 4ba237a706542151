#pragma once

/// Compares two names as the registry does, ignoring case. 1 if they are the same.
int IsSameRegName(const wchar_t* pszLeft, const wchar_t* pszRight);
