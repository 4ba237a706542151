// Values whose names have a prefix in common.

#include "store/registry/reg_key.h"

#include "runtime/text/text_format.h"

namespace {
constexpr std::size_t kJoinedSize = 256; // of a prefix and a name, with the terminator

/// A prefix and a name as one name.
class JoinedName {
  public:
    JoinedName(const wchar_t* pszPrefix, const wchar_t* pszName) {
        FormatText(szJoined, RegKey::pszFmtPrefix, pszPrefix ? pszPrefix : L"",
                   pszName ? pszName : L"");
    }
    operator const wchar_t*() const { return szJoined; }

  private:
    wchar_t szJoined[kJoinedSize] = {};
};
} // namespace

int RegKey::DelValuePrefix(const wchar_t* pszPrefix, const wchar_t* pszName) {
    return DelValue(JoinedName(pszPrefix, pszName));
}

int RegKey::GetIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nDefault) const {
    return GetInt(JoinedName(pszPrefix, pszName), nDefault);
}

DWORD RegKey::GetDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName,
                             DWORD dwDefault) const {
    return GetDword(JoinedName(pszPrefix, pszName), dwDefault);
}

unsigned RegKey::GetBinSizePrefix(const wchar_t* pszPrefix, const wchar_t* pszName) const {
    return GetBinSize(JoinedName(pszPrefix, pszName));
}

int RegKey::GetBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, void* pBuffer,
                         unsigned cbMax) const {
    return GetBin(JoinedName(pszPrefix, pszName), pBuffer, cbMax);
}

int RegKey::GetStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, wchar_t* pszBuffer,
                         int cchBuffer, const wchar_t* pszDefault) const {
    return GetStr(JoinedName(pszPrefix, pszName), pszBuffer, cchBuffer, pszDefault);
}

int RegKey::PutIntPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, int nValue) {
    return PutInt(JoinedName(pszPrefix, pszName), nValue);
}

int RegKey::PutDwordPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, DWORD dwValue) {
    return PutDword(JoinedName(pszPrefix, pszName), dwValue, 1);
}

int RegKey::PutStrPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const wchar_t* pszText) {
    return PutStr(JoinedName(pszPrefix, pszName), pszText, 1);
}

int RegKey::PutBinPrefix(const wchar_t* pszPrefix, const wchar_t* pszName, const void* pBytes,
                         unsigned cbBytes) {
    return PutBin(JoinedName(pszPrefix, pszName), pBytes, cbBytes, REG_BINARY);
}
