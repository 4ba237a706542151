#pragma once
#include "runtime/base/export.h"

/// Puts a path into a command as a file association gives it ("\"%ProgramFiles%\\x.exe\" \"%1\"").
///
/// pszProgram gets the command's first word, which ends at a blank or tab or stands in double
/// quotes, with its environment strings expanded and a second terminator behind it. pszArgs gets
/// the rest with the path for each "%1"; without "%1" the rest, a blank and the path; without a
/// rest the path. The path comes as it is, without quotes. pszArgs has cch characters, pszProgram
/// as many but no more than 260.
/// Returns 1. Arguments that do not fit stay empty, and so do both if the program does not fit;
/// the result is then 0.
TESSALY_API int PreparePathArg(const wchar_t* pszCommand, const wchar_t* pszPath,
                               wchar_t* pszProgram, wchar_t* pszArgs, unsigned cch);
