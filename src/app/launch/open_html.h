#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Opens a web page in the user's browser: through the shell, then through the program registered
/// for "http", then through the shell without its own messages. If all that fails, says so and
/// gives 0.
///
/// bAsk nonzero asks the user first, with the string nQuestionId (for its rule see
/// runtime/messages/res_str.h; 0 for a general question), and gives 0 unless the answer is OK. hwnd
/// owns the boxes and may be null.
TESSALY_API int OpenHTML(HWND hwnd, const wchar_t* pszUrl, int bAsk, int nQuestionId);

/// The address of the maker's web site. Borrowed; a product may set its own.
extern TESSALY_API const wchar_t* pszMyCompanyURL;

/// Characters of a web address, with the terminator.
constexpr int kMaxUrl = 2048;

/// The address of one of the maker's pages, into a buffer of that many characters. 1; 0 and an
/// empty buffer if it does not fit.
TESSALY_API int MakeGoOnlineURL(wchar_t* pszBuffer, int cchBuffer, const wchar_t* pszPage);

/// Open one of the maker's pages without a question; results are OpenHTML's, or 0 for an address
/// that does not fit.
TESSALY_API int GoOnline(HWND hwnd, const wchar_t* pszPage);
/// GoOnline with the page for rating this product.
TESSALY_API int GoWinStore(HWND hwnd);
/// GoOnline with an address that also tells product, version, revision and language, and the
/// culture unless that is null.
TESSALY_API int GoOnline_Lang(HWND hwnd, const wchar_t* pszPage, const wchar_t* pszCulture);
/// GoOnline_Lang for the pages about the product's translations.
TESSALY_API int GoOnline_ImproveTranslation(HWND hwnd, const wchar_t* pszCulture);
/// The page on which users translate, otherwise as GoOnline_ImproveTranslation.
TESSALY_API int GoOnline_Translate(HWND hwnd, const wchar_t* pszCulture);

// Which program the registry names for files and addresses. Buffers have room for 260 characters
// and may be null; without such a program they are empty, and the result is 0.

/// The program that opens files of that extension (L".txt", the name of a key below HKCLS), as the
/// registered command names it: environment strings are expanded, and it exists and is no folder.
/// pszCommand gets the whole command as it is registered, also if its program is missing. 1 or 0.
TESSALY_API int GetAssociatedApp(const wchar_t* pszExtension, wchar_t* pszProgram,
                                 wchar_t* pszCommand);
/// The program that opens addresses of that scheme (L"http"), otherwise as GetAssociatedApp.
TESSALY_API int GetProtocolApp(const wchar_t* pszScheme, wchar_t* pszProgram, wchar_t* pszCommand);

/// The small icon that a file shows: its own first one, or else the second, or else the first, of
/// the program for its extension. pszIconFile, *pnIcon and *phIcon get the file, the index and the
/// icon, which the caller destroys (null for not wanted); they are written only with the result 1.
/// 0 if there is no icon.
TESSALY_API int GetAssociatedIcon(const wchar_t* pszPath, wchar_t* pszIconFile, int* pnIcon,
                                  HICON* phIcon);
