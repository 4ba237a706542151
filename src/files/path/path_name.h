#pragma once
#include "runtime/base/export.h"

// Changes to the characters of paths and names. Nothing here asks the file system. A separator is a
// backslash or a slash; only backslashes are written. A null text to change is left alone.

// Separators

/// Every "/" becomes "\".
TESSALY_API void ConvertSlashes(wchar_t* pszPath);
/// Adds a backslash unless the text ends in a separator; an empty text stays empty. The buffer must
/// have room for it.
TESSALY_API void AppendBackSlash(wchar_t* pszPath);
/// Cuts one separator at the end, unless a separator or ":" stands before it.
TESSALY_API void RemoveBackSlash(wchar_t* pszPath);
/// Cuts one separator at the end, whatever stands before it. 1 if there was one; 0 for a null text.
TESSALY_API int StripBackSlash(wchar_t* pszPath);

// Names

/// Every dash from U+2012 to U+2015 becomes "-".
TESSALY_API void ConvertDashes(wchar_t* pszText);
/// The first character becomes upper case, the others lower case, by the platform's tables.
TESSALY_API void MakeNamePretty(wchar_t* pszName);

// The next three make one file name out of a text, such as a title or a whole path, and back. They
// treat the ten characters " * . / : < > ? \ | : as "." is one of them, nothing of an extension
// remains. The output has 260 characters and may be the input. Each returns 1 if all of the input
// was taken; 0 if it was cut because the output was full, and for a null output.

/// Each of the ten becomes "-". A null input means the output's own text.
TESSALY_API int FixFileName(wchar_t* pszOut, const wchar_t* pszIn);
/// Each of the ten becomes "&#N;" with its decimal code. Such a group is never cut in two. A null
/// input counts as empty.
TESSALY_API int EncodeFileName(wchar_t* pszOut, const wchar_t* pszIn);
/// Takes back what EncodeFileName did: "&#" and what follows up to ";" or the end becomes the one
/// of the ten with that code; with any other number it is dropped. The number is the digits at the
/// start. A null input counts as empty.
TESSALY_API int DecodeFileName(wchar_t* pszOut, const wchar_t* pszIn);

/// Makes a mask, in a buffer of 260 characters, match one more name: what the two have in common at
/// the start stays, and "*" follows if they differ behind it, or where the mask has a "*". Texts
/// that are equal, also in case, and null texts change nothing.
TESSALY_API void UpdateMask(wchar_t* pszMask, const wchar_t* pszName);
