#pragma once
#include "runtime/base/export.h"

// Taking command lines apart. A switch begins with "/" or "-"; its data follow ":" or "=". Sizes
// are characters with the terminator: what does not fit is cut and the copy terminated. A null line
// or token is an empty one. Names are compared in any case of letters, character by character,
// whatever the user's language.

/// The first token: behind blanks and tabs, one opening quote and further blanks and tabs, up to
/// the closing quote, or to a blank or tab if there was no quote. 1; 0 with an empty buffer for a
/// line that holds nothing but blanks and tabs, or without a buffer.
TESSALY_API int GetCmdLnPath(const wchar_t* pszLine, wchar_t* pszBuffer, int cchBuffer);

/// What follows the first token, behind blanks and tabs, one quote and further blanks and tabs; all
/// of the line, behind its leading blanks and tabs, if its first token begins with "/". A place in
/// the line, which is also copied to the buffer if there is one; null and an empty buffer for no
/// arguments.
// QUIRK: the one quote is the closing one of a quoted token. Behind any other token it is that
// before the first argument, whose closing quote stays: of "a \"b c\" d" that is "b c\" d".
// Test: GetCmdLnArg.OneQuoteBehindTheTokenGoes
TESSALY_API const wchar_t* GetCmdLnArg(const wchar_t* pszLine, wchar_t* pszBuffer, int cchBuffer);

/// 1 if the token is the name, as it stands or without a leading "/" or "-".
TESSALY_API int IsCmdLineOption(const wchar_t* pszToken, const wchar_t* pszName);

/// 1 if the token begins with "/" or "-" and what follows begins with the name, or with the name
/// without its first character.
// QUIRK: that character is left out whatever it is, so that a name of one character, like an empty
// one, fits every switch. Test: IsCmdLineSwitchPrefix.NameOfOneCharacterFitsEverySwitch
TESSALY_API int IsCmdLineSwitchPrefix(const wchar_t* pszToken, const wchar_t* pszName);

/// 1 if the token begins with the name and ":" or "=" comes next.
TESSALY_API int IsCmdLinePrefix(const wchar_t* pszToken, const wchar_t* pszName);

/// The data behind the first ":" or "=": with their quotes up to the closing one if they begin with
/// a quote, otherwise up to a blank. ppszRest (null for not wanted) gets what comes after them,
/// behind blanks, or null at the end, whatever of the data fitted. 1; 0, an empty buffer and a null
/// rest if there is no ":" or "=".
TESSALY_API int GetCmdLineSwitchData(const wchar_t* pszToken, wchar_t* pszBuffer, int cchBuffer,
                                     const wchar_t** ppszRest);

/// Splits a line into the path, up to the closing quote if the line begins with a quote, otherwise
/// up to the first blank, and the arguments (null for not wanted), which are the rest. Each buffer
/// must have room for the whole line, and neither may be the line. 1 if there is a path.
// QUIRK: all quotes and blanks at the arguments' beginning are left out, also a quote that an
// argument needs. Test: ParseCmdLn.DropsTheQuoteOfTheFirstArgument
TESSALY_API int ParseCmdLn(const wchar_t* pszLine, wchar_t* pszPath, wchar_t* pszArguments);
