#pragma once
#include "runtime/base/export.h"

/// Replaces "%NAME%" by the environment's value (ExpandEnvironmentStringsW). Without such strings,
/// if the platform fails, or if the result is empty or longer than pszOut, that gets a copy of the
/// input as it is. cchOut counts the terminator; a null input counts as empty. The input may lie in
/// pszOut if it has less than 260 characters; a longer one is not expanded there.
/// Returns 1; 0 if the text was cut to fit.
TESSALY_API int ExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut);
/// The reverse for the start of a path, for the folders that the platform knows
/// (PathUnExpandEnvStringsW), with the same fall-back and result.
TESSALY_API int UnExpandEnvStrings(const wchar_t* pszIn, wchar_t* pszOut, unsigned cchOut);
