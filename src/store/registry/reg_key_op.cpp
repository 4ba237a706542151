#include "store/registry/reg_key_op.h"
#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"
#include "store/registry/reg_key_names.h"

#include <cwchar>
#include <new>
#include <utility>

// The small vocabulary of operations on entries.




namespace {
constexpr DWORD kMaxTestedSize = 520; // bytes; a longer text matches nothing
} // namespace

int RegKey::TestStr(const wchar_t* pszName, const wchar_t* pszText, int bNoCase) const {
    wchar_t szStored[kMaxTestedSize / sizeof(wchar_t) + 1] = {}; // one more: text may be open-ended
    DWORD cb = kMaxTestedSize;
    LSTATUS status =
        ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, reinterpret_cast<BYTE*>(szStored), &cb);
    szStored[status == ERROR_SUCCESS ? cb / sizeof(wchar_t) : 0] = 0;
    // A text that cannot be read is like an empty one.
    return bNoCase ? IsSameRegName(szStored, pszText) : std::wcscmp(szStored, pszText) == 0;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, wchar_t* pszText, unsigned cchText) {
    if (op != OpGet) return ProcessEntry(op, pszName, static_cast<const wchar_t*>(pszText));
    int cch = cchText > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(cchText);
    return GetStr(pszName, pszText, cch, nullptr) != 0;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, const wchar_t* pszText) {
    if (!pszText) pszText = L"";
    switch (op) {
    case OpTest:
    case OpTestNoCase: return TestStr(pszName, pszText, op == OpTestNoCase);
    case OpDelete: DelValue(pszName); return 1;
    case OpSet: return TestStr(pszName, pszText, 0) || PutStr(pszName, pszText, 1);
    case OpGet: return 0; // there is no buffer to read to
    case OpTestAbsent: return !FindValue(pszName);
    case OpSetAlways: return PutStr(pszName, pszText, 0);
    }
    return 1;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, DWORD& dwValue) {
    switch (op) {
    case OpTest:
    case OpTestNoCase: return GetDword(pszName, 0) == dwValue;
    case OpDelete: DelValue(pszName); return 1;
    case OpSet:
        if (GetDword(pszName, 0) == dwValue) return 1;
        if (dwValue) return PutDword(pszName, dwValue, 1);
        DelValue(pszName);
        return 1;
    case OpGet: dwValue = GetDword(pszName, 0); return 1;
    case OpTestAbsent: return !FindValue(pszName);
    case OpSetAlways: return PutDword(pszName, dwValue, 0);
    }
    return 1;
}

int RegKey::ProcessEntry(Op op, const wchar_t* pszName, int& nValue) {
    auto dwValue = static_cast<DWORD>(nValue);
    int nResult = ProcessEntry(op, pszName, dwValue);
    nValue = static_cast<int>(dwValue);
    return nResult;
}

int RegKey::ProcessSubKey(Op op, const wchar_t* pszSubkey) {
    if (op != OpDelete && op != OpSet && op != OpSetAlways) return 1;
    DelSubKey(pszSubkey);
    RegKey created;
    if (op != OpDelete) created.Open(*this, pszSubkey, 1);
    if (!bLogMode) Flush();
    return 1;
}

namespace {
constexpr std::size_t kNameSize = 256; // of a prefix and a side's letter, with the terminator
constexpr unsigned kFontSize = 92;     // bytes that are stored
static_assert(sizeof(LOGFONTW) == kFontSize);

struct RectSide {
    const wchar_t* pszFormat;
    LONG RECT::*pnSide;
};
constexpr RectSide kSides[] = {
    {L"%sL", &RECT::left},
    {L"%sT", &RECT::top},
    {L"%sR", &RECT::right},
    {L"%sB", &RECT::bottom},
};
} // namespace

void RegGetRect(RegKey& key, RECT* prc, const wchar_t* pszPrefix) {
    if (!prc) return;
    for (const RectSide& side : kSides) {
        wchar_t szName[kNameSize];
        FormatText(szName, side.pszFormat, pszPrefix ? pszPrefix : L"");
        prc->*side.pnSide = key.GetInt(szName, prc->*side.pnSide);
    }
}

int RegPutRect(RegKey& key, const RECT* prc, const wchar_t* pszPrefix) {
    if (!prc) return 0;
    int bAll = 1;
    for (const RectSide& side : kSides) {
        wchar_t szName[kNameSize];
        FormatText(szName, side.pszFormat, pszPrefix ? pszPrefix : L"");
        if (!key.PutDword(szName, static_cast<DWORD>(prc->*side.pnSide), 1)) bAll = 0;
    }
    return bAll;
}

int RegGetLogFont(RegKey& key, const wchar_t* pszName, LOGFONTW*& plf) {
    if (key.GetBinSize(pszName) == kFontSize && (plf || RegNewLogFont(plf)) &&
        key.GetBin(pszName, plf, kFontSize)) {
        return 1;
    }
    RegDelLogFont(plf);
    return 0;
}

int RegPutLogFont(RegKey& key, const wchar_t* pszName, const LOGFONTW* plf) {
    if (!plf) return key.DelValue(pszName);
    return key.PutBin(pszName, plf, kFontSize, REG_BINARY);
}

int RegNewLogFont(LOGFONTW*& plf) {
    plf = new (std::nothrow) LOGFONTW;
    return plf != nullptr;
}

void RegDelLogFont(LOGFONTW*& plf) { delete std::exchange(plf, nullptr); }
