#pragma once
#include "runtime/text/str_chars.h"

#include <cstddef>

// What all path functions share. A path buffer holds kPathChars characters with the terminator;
// there is no form for longer paths.
constexpr std::size_t kPathChars = 260; // MAX_PATH
constexpr int kDrives = 26;             // A to Z

/// Both are read; only the backslash is written.
inline bool IsPathSeparator(wchar_t ch) { return ch == L'\\' || ch == L'/'; }
/// Behind this a name begins.
inline bool IsPathBreak(wchar_t ch) { return IsPathSeparator(ch) || ch == L':'; }
/// A letter and ":", with anything behind.
inline bool StartsWithDrive(const wchar_t* psz) { return IsAlphaChar(*psz) && psz[1] == L':'; }
/// The number of the drive with that letter, of either case, from 0 for A; -1 for other characters.
int DriveOfLetter(wchar_t ch);
/// The separator or the terminator behind the name that starts here, which may be empty.
template <class Char>
Char* EndOfName(Char* psz) {
    while (*psz && !IsPathSeparator(*psz)) ++psz;
    return psz;
}
/// Behind the root and its separator: "X:\" (IsDosFolder), or "\\server\share\" (IsNetworkPath) of
/// which the end may be missing. Null without a root.
wchar_t* SkipRoot(wchar_t* pszPath);

/// Neither null nor too long for a path buffer.
int FitsPath(const wchar_t* psz);

/// Copies at most cchMax characters of a text and a terminator, so that pszOut holds cchMax + 1.
/// The two may overlap; a null text counts as empty. Returns the length written;
/// 0 for a null output.
std::size_t CopyTextPart(wchar_t* pszOut, const wchar_t* psz, std::size_t cchMax);
/// Copies into a buffer of cchOut characters, cut to fit. 1 if it is whole.
int CopyTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz);
/// The same into a path buffer.
inline int CopyPath(wchar_t* pszOut, const wchar_t* psz) {
    return CopyTextCut(pszOut, kPathChars, psz);
}
/// Puts a text behind the one in a buffer of cchOut characters, cut to fit. 1 if it is whole.
int AppendTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz);
/// Puts a text between double quotes. The buffer must have room for two more characters.
void AddQuotes(wchar_t* pszPath);
