#include "runtime/text/key_name.h"
#include "runtime/text/str_append.h"

#include <windows.h>

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

void AppendKey(wchar_t* pszText, int cch, unsigned uVirtualKey, int bExtended) {
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
    auto lKey = static_cast<LONG>(uScanCode << kScanCodeShift);
    return ::GetKeyNameTextW(bExtended ? lKey | kExtendedKey : lKey, pszText, cch);
}

int GetHotKeyName(wchar_t* pszText, int cch, unsigned uVirtualKey, unsigned uModifiers) {
    if (!pszText || cch <= 0) return 0;
    *pszText = 0;
    for (const ModifierKey& key : kModifierKeys) {
        if (uModifiers & key.uModifier) AppendKey(pszText, cch, key.uVirtualKey, 0);
    }
    if (uVirtualKey) AppendKey(pszText, cch, uVirtualKey, (uModifiers & HotKeyExtended) != 0);
    return *pszText != 0;
}
