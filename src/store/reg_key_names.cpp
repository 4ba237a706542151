#include "store/reg_key_names.h"

#include <windows.h>

int IsSameRegName(const wchar_t* pszLeft, const wchar_t* pszRight) {
    auto upper = [](wchar_t ch) {
        // A pointer below 64K is a single character for this function.
        auto* psz = reinterpret_cast<wchar_t*>(static_cast<ULONG_PTR>(ch));
        return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(::CharUpperW(psz)));
    };
    for (; *pszLeft && *pszRight; ++pszLeft, ++pszRight) {
        if (*pszLeft != *pszRight && upper(*pszLeft) != upper(*pszRight)) return 0;
    }
    return *pszLeft == *pszRight;
}
