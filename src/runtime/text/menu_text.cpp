#include "runtime/text/menu_text.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <cwchar>

// Texts of menus

void StrRemoveAmpAndDots(wchar_t* pszText) {
    if (!pszText) return;
    wchar_t* pOut = pszText;
    for (const wchar_t* p = pszText; *p;) {
        if (*p == L'&') {
            ++p;
        } else if (p[0] == L'.' && p[1] == L'.' && p[2] == L'.') {
            p += 3;
        } else {
            *pOut++ = *p++;
        }
    }
    *pOut = 0;
}

// QUIRK: "&&", which a menu shows as one "&", is not told apart: it loses its first one, and the
// mark behind it stays. Test: RemoveMenuChar.DeletesTheFirstOnly
void RemoveMenuChar(wchar_t* pszText) {
    wchar_t* pAmp = pszText ? std::wcschr(pszText, L'&') : nullptr;
    if (pAmp) std::wmemmove(pAmp, pAmp + 1, std::wcslen(pAmp)); // with the terminator
}

const wchar_t* MakeNameFromMenu(const wchar_t* pszText) {
    static wchar_t szName[kMenuNameSize];
    unsigned cch = 0;
    bool bRemoved = false;
    // Forward, character by character: the text may be an earlier result in the same buffer.
    for (const wchar_t* p = pszText; p && *p && cch < kMenuNameSize - 1; ++p) {
        if (*p == L'&' && !bRemoved) {
            bRemoved = true;
        } else {
            szName[cch++] = *p;
        }
    }
    szName[cch] = 0;
    return szName;
}

wchar_t GetMenuItemChar(const wchar_t* pszText) {
    const wchar_t* pAmp = pszText ? std::wcschr(pszText, L'&') : nullptr;
    return pAmp ? CharToUpper(pAmp[1]) : L'\0';
}

// Names of keys

namespace {
constexpr int kKeyNameSize = 128; // characters; the platform's longest names have about 20
constexpr unsigned kScanCodeShift = 16;
constexpr LONG kExtendedKey = 1 << 24; // as in a WM_KEYDOWN's lParam

struct ModifierKey {
    unsigned uModifier;
    unsigned uVirtualKey;
};
constexpr ModifierKey kModifierKeys[] = {
    {HotKeyCtrl, VK_CONTROL},
    {HotKeyShift, VK_SHIFT},
    {HotKeyAlt, VK_MENU},
};

void AppendKey(wchar_t* pszText, int cch, unsigned uVirtualKey, bool bExtended) {
    wchar_t szKey[kKeyNameSize];
    if (!GetKeyName(szKey, kKeyNameSize, uVirtualKey, bExtended)) return;
    StrAppendTextFmt(pszText, static_cast<unsigned>(cch), *pszText ? L" + %s" : L"%s", szKey);
}
} // namespace

int GetKeyName(wchar_t* pszText, int cch, unsigned uVirtualKey, int bExtended) {
    if (!pszText || cch <= 0) return 0;
    *pszText = 0;
    if (cch == 1) return 0; // the platform does not promise to end a text there
    UINT uScanCode = ::MapVirtualKeyW(uVirtualKey, MAPVK_VK_TO_VSC);
    LONG lKey = static_cast<LONG>(uScanCode) << kScanCodeShift;
    return ::GetKeyNameTextW(bExtended ? lKey | kExtendedKey : lKey, pszText, cch);
}

int GetHotKeyName(wchar_t* pszText, int cch, unsigned uVirtualKey, unsigned uModifiers) {
    if (!pszText || cch <= 0) return 0;
    *pszText = 0;
    for (const ModifierKey& key : kModifierKeys) {
        if (uModifiers & key.uModifier) AppendKey(pszText, cch, key.uVirtualKey, false);
    }
    if (uVirtualKey) AppendKey(pszText, cch, uVirtualKey, (uModifiers & HotKeyExtended) != 0);
    return *pszText != 0;
}
