#pragma once
#include "store/registry/reg_key.h"

// Structures of the platform as values. A rectangle is four numbers whose names are a prefix and
// "L", "T", "R" or "B", cut at 255 characters; a null prefix counts as empty. A font is one binary
// value, the LOGFONTW as it stands in memory, 92 bytes.

/// Reads the four; a field whose value is missing, or longer than four bytes, stays.
TESSALY_API void RegGetRect(RegKey& key, RECT* prc, const wchar_t* pszPrefix);
/// Writes those that changed. 1; 0 if one could not be written.
TESSALY_API int RegPutRect(RegKey& key, const RECT* prc, const wchar_t* pszPrefix);

/// Reads a font into *plf, which is allocated if it is null. If there is no value of exactly 92
/// bytes, 0, and plf is freed and null. A plf that is not null must come from this function or from
/// RegNewLogFont, and goes back by RegDelLogFont. The face's name is as stored: it may lack its
/// terminator.
[[nodiscard]] TESSALY_API int RegGetLogFont(RegKey& key, const wchar_t* pszName, LOGFONTW*& plf);
/// Writes the font if it changed. Null deletes the value.
TESSALY_API int RegPutLogFont(RegKey& key, const wchar_t* pszName, const LOGFONTW* plf);
/// Allocates a font, not cleared, whatever plf was. 0, with a null plf, when out of memory.
[[nodiscard]] TESSALY_API int RegNewLogFont(LOGFONTW*& plf);
/// Frees a font of these functions, and sets plf to null. Null does nothing.
TESSALY_API void RegDelLogFont(LOGFONTW*& plf);
