#pragma once
#include <windows.h>

/// Makes the font's height larger by n (smaller for a negative one), whichever of the two meanings
/// the sign of a height has: a positive one grows upward, all others downward.
void AddToFontHeight(LOGFONTW& lf, LONG n);

/// The font of that description, with another face (null or empty: with its own), cut to the
/// LF_FACESIZE characters of a face's name. If it can't be had, the description's own face is tried
/// once more. Null for neither.
[[nodiscard]] HFONT CreateFontWithFace(const LOGFONTW& lf, const wchar_t* pszFace);
