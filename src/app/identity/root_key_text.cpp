#include "app/identity/root_key_text.h"

#include <cwchar>
#include <new>
#include <utility>

void ReplaceRootText(wchar_t*& pszOwned, int& nLength, const wchar_t* pszNew) {
    std::size_t cch = pszNew ? std::wcslen(pszNew) : 0;
    wchar_t* pszCopy = cch ? new (std::nothrow) wchar_t[cch + 1] : nullptr;
    if (pszCopy) std::wmemcpy(pszCopy, pszNew, cch + 1);
    nLength = pszCopy ? static_cast<int>(cch) : 0;
    delete[] std::exchange(pszOwned, pszCopy);
}
