#include "app/launch/dll_line.h"
#include "files/path/path_quote.h"
#include "files/disk/path_short.h"
#include "runtime/base/library_instance.h"
#include "runtime/system/module_path.h"
#include "runtime/text/text_format.h"

#include <cwchar>

int MakeDllLine(wchar_t* pszLine, int cchLine, const wchar_t* pszArguments) {
    constexpr int kQuotes = 2;
    wchar_t szLibrary[MAX_PATH], szQuoted[MAX_PATH + kQuotes];
    if (!pszArguments) pszArguments = L"";
    *pszLine = 0;
    if (!GetModulePath(GetLibraryInstance(), szLibrary)) return 0;
    ConvertToShortPath(szLibrary, MAX_PATH);
    std::wcscpy(szQuoted, szLibrary);
    AddQuotesIfSpace(szQuoted);
    std::size_t cch = std::wcslen(szQuoted) + 1 + std::wcslen(pszArguments);
    if (cch >= static_cast<std::size_t>(cchLine)) return 0;
    FormatText(pszLine, static_cast<std::size_t>(cchLine), L"%s,%s", szQuoted, pszArguments);
    return 1;
}
