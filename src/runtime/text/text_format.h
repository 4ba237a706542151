#pragma once
#include <cstdarg>
#include <cstddef>

/// Texts for the user are cut to this many characters, with the terminator.
constexpr int kMessageSize = 1024;

/// A started argument list, as a type of its own: on this platform va_list is char*, so that an
/// overload with a bare va_list would be taken for a call with one narrow text.
struct ArgList {
    va_list v; // started; whoever made it ends it
};

/// The one formatter of wide text. The dialect is the platform's own: %s and %c are wide, %hs and
/// %S narrow. Formats may come from resources or window texts: %n and conversions that the platform
/// does not know are printed as they stand and take no argument.
///
/// Writes at most cchBuffer characters with the terminator and always terminates; what does not
/// fit is cut silently. Returns the length written, without the terminator; 0 for an empty buffer,
/// a null format, or when out of memory for a format that needs repair.
int FormatTextV(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, va_list args);
/// FormatTextV with the arguments.
int FormatText(wchar_t* pszBuffer, std::size_t cchBuffer, const wchar_t* pszFormat, ...);

/// FormatTextV for narrow text, where %s and %c are narrow, %ls and %S wide.
int FormatNarrowTextV(char* pszBuffer, std::size_t cchBuffer, const char* pszFormat, va_list args);

/// FormatText into an array, whose size is taken from its type.
template <std::size_t cch>
int FormatText(wchar_t (&szBuffer)[cch], const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    int n = FormatTextV(szBuffer, cch, pszFormat, args);
    va_end(args);
    return n;
}
