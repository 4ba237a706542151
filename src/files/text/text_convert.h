#pragma once
#include "files/text/text_encoding.h"
#include <windows.h>

class CoreFile;

/// Reads what follows in a file, which has cb bytes or an unknown length, and makes a text of it,
/// in any format but the two of UTF-16: with CR LF line ends and a terminator, and control
/// characters replaced. The number of characters with the terminator; kTextSizeUnknown if cchOut,
/// which is not 0, are too few; 0 without memory and if a read failed.
DWORD ReadAsText(CoreFile& file, DWORD cb, CSFileTextFmt fmt, wchar_t* pszOut, DWORD cchOut,
                 wchar_t chReplacement);
