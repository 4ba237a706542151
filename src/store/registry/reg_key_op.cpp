// The small vocabulary of operations on entries.

#include "store/registry/reg_key.h"

#include "store/registry/reg_key_names.h"

#include <cwchar>

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
