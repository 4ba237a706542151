#pragma once

/// Where the settings of all of the maker's products live.
constexpr const wchar_t* kMakerRootKey = L"HKCU\\Software\\Orvanta";

/// Frees an owned text and puts a copy of pszNew in its place, with its length; null and 0 for a
/// null or empty text, or when out of memory. pszNew may be the present text.
void ReplaceRootText(wchar_t*& pszOwned, int& nLength, const wchar_t* pszNew);
