#include "shell/namespace/pidl_of_path.h"
#include "runtime/base/scope_exit.h"
#include <shlobj.h>
#include <cwchar>
#include <new>

ITEMIDLIST* GetPidlOf(const wchar_t* pszPath) {
    if (!pszPath) return nullptr;
    IShellFolder* pDesktop = nullptr;
    if (FAILED(::SHGetDesktopFolder(&pDesktop)) || !pDesktop) return nullptr;
    ScopeExit release([&] { pDesktop->Release(); });
    // The parser takes a text that it may write to.
    std::size_t cch = std::wcslen(pszPath) + 1;
    wchar_t* pszCopy = new (std::nothrow) wchar_t[cch];
    if (!pszCopy) return nullptr;
    ScopeExit freeCopy([&] { delete[] pszCopy; });
    std::wmemcpy(pszCopy, pszPath, cch);
    ITEMIDLIST* pidl = nullptr;
    if (FAILED(pDesktop->ParseDisplayName(nullptr, nullptr, pszCopy, nullptr, &pidl, nullptr)))
        return nullptr;
    return pidl;
}
