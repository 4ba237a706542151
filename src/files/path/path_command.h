#pragma once
#include "runtime/base/export.h"

// What commands and the paths in them are made of: environment strings, quotes, arguments. Nothing
// here asks the file system.

/// Puts a path into a command as a file association gives it ("\"%ProgramFiles%\\x.exe\" \"%1\"").
///
/// pszProgram gets the command's first word, which ends at a blank or tab or stands in double
/// quotes, with its environment strings expanded and a second terminator behind it. pszArgs gets
/// the rest with the path for each "%1"; without "%1" the rest, a blank and the path; without a
/// rest the path. The path comes as it is, without quotes. pszArgs has cch characters, pszProgram
/// as many but no more than 260.
/// Returns 1. Arguments that do not fit stay empty, and so do both if the program does not fit;
/// the result is then 0, as it is for a null output or cch 0. A null command or path counts as
/// empty.
[[nodiscard]] TESSALY_API int PreparePathArg(const wchar_t* pszCommand, const wchar_t* pszPath,
                                             wchar_t* pszProgram, wchar_t* pszArgs, unsigned cch);

/// Replaces "%NAME%" by the environment's value (ExpandEnvironmentStringsW). Without such strings,
/// if the platform fails, or if the result is empty, pszOut gets a copy of the input as it is.
/// cchOut counts the terminator; a null input counts as empty. The input may lie in pszOut if it
/// has less than 260 characters; a longer one is not expanded there. Returns 1; 0 if the expanded
/// text was cut to fit, and for a null output or cchOut 0.
TESSALY_API int ExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut);
/// Replaces the start of a path by the environment string of one of the folders that the platform
/// knows so (PathUnExpandEnvStringsW). Where there is none or the platform fails, pszOut gets a
/// copy, as where the new text does not fit; sizes, null, an input in pszOut and the result are as
/// in ExpandEnvStrings.
TESSALY_API int UnExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut);

// Quotes around paths and the arguments of command lines. Where pszIn is null pszOut's own text is
// changed, whatever its length; otherwise pszOut has 260 characters and longer results are cut. A
// null output does nothing.

/// Puts the text between double quotes if it holds a blank. The buffer must have room for two more
/// characters. Null does nothing.
TESSALY_API void AddQuotesIfSpace(wchar_t* pszPath);
/// A text that starts with a double quote loses that and ends before the next one; any other stays
/// whole.
TESSALY_API void UnQuote(wchar_t* pszOut, const wchar_t* pszIn);
/// Removes blanks and tabs, then one double quote, then blanks and tabs from the start of the text,
/// and from its end.
TESSALY_API void RemoveWhiteSpacesAndQuotes(wchar_t* pszOut, const wchar_t* pszIn);
