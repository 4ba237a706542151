#pragma once
#include "runtime/text/str_chars.h"

#include <windows.h>
#include <cstddef>
#include <cwchar>

// What all path functions share: sizes, the characters that take a path apart, and copies into
// buffers. A path buffer holds kPathChars characters with the terminator; there is no form for
// longer paths.
constexpr std::size_t kPathChars = MAX_PATH;
constexpr int kDrives = 26; // A to Z

/// What the names of a file that is wiped are made of: two patterns of alternating bits, of which
/// the second turns every bit of the first.
constexpr wchar_t kFirstWipedChar = 0x5555;
constexpr wchar_t kLastWipedChar = 0xAAAA;

/// Both are read; only the backslash is written.
inline bool IsPathSeparator(wchar_t ch) { return ch == L'\\' || ch == L'/'; }
/// Behind this a name begins.
inline bool IsPathBreak(wchar_t ch) { return IsPathSeparator(ch) || ch == L':'; }
/// A letter and ":", with anything behind.
inline bool StartsWithDrive(const wchar_t* psz) { return IsAlphaChar(*psz) && psz[1] == L':'; }
/// A letter, ":" and a separator, with anything behind.
inline bool StartsWithDriveRoot(const wchar_t* psz) {
    return StartsWithDrive(psz) && IsPathSeparator(psz[2]);
}
/// Two backslashes and at least one more character.
inline bool StartsWithServer(const wchar_t* psz) {
    return psz[0] == L'\\' && psz[1] == L'\\' && psz[2];
}
/// The text's last character, of cch, is a separator.
inline bool EndsInSeparator(const wchar_t* psz, std::size_t cch) {
    return cch > 0 && IsPathSeparator(psz[cch - 1]);
}

/// The number of the drive with that letter, of either case, from 0 for A; -1 for other characters.
int DriveOfLetter(wchar_t ch);
/// The capital letter of a drive's number from 0 to 25.
inline wchar_t LetterOfDrive(int nDrive) { return static_cast<wchar_t>(L'A' + nDrive); }

/// The separator or the terminator behind the name that starts here, which may be empty.
template <class Char>
Char* EndOfName(Char* psz) {
    while (*psz && !IsPathSeparator(*psz)) ++psz;
    return psz;
}
/// Behind the root and its separator: "X:\", with either separator, or "\\server\share\", of which
/// the end may be missing. Null without a root.
wchar_t* SkipRoot(wchar_t* pszPath);
/// The path's length, of cch characters, without a separator at its end; that one counts if a
/// separator or ":" stands before it.
std::size_t LengthWithoutSeparator(const wchar_t* pszPath, std::size_t cch);

/// The length of a text; 0 for null.
inline std::size_t LengthOf(const wchar_t* psz) { return psz ? std::wcslen(psz) : 0; }
/// The length of a text, counted no further than cchMax; 0 for null.
std::size_t LengthUpTo(const wchar_t* psz, std::size_t cchMax);
/// Neither null nor too long for a path buffer.
bool FitsPath(const wchar_t* psz);

// Copies. The two texts may overlap, and a null text counts as empty.

/// Copies at most cchMax characters of a text and a terminator, so that pszOut holds cchMax + 1.
/// Returns the length written; 0 for a null output.
std::size_t CopyTextPart(wchar_t* pszOut, const wchar_t* psz, std::size_t cchMax);
/// Copies into a buffer of cchOut characters, cut to fit. True if it is whole; false as well, and
/// nothing is written, for a null output or one without room for the terminator.
bool CopyTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz);
/// Copies into a path buffer, cut to fit. True if it is whole; false for a null output.
inline bool CopyPath(wchar_t* pszOut, const wchar_t* psz) {
    return CopyTextCut(pszOut, kPathChars, psz);
}
/// Puts a text behind the one in a buffer of cchOut characters, cut to fit. True if it is whole.
bool AppendTextCut(wchar_t* pszOut, std::size_t cchOut, const wchar_t* psz);
/// Puts a text behind the one in a path buffer, cut to fit. True if it is whole.
inline bool AppendPath(wchar_t* pszOut, const wchar_t* psz) {
    return AppendTextCut(pszOut, kPathChars, psz);
}
/// Puts a text between double quotes. The buffer must have room for two more characters.
void AddQuotes(wchar_t* pszPath);
