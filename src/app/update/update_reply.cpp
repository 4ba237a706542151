#include "app/update/update_reply.h"
#include "app/identity/product_info.h"
#include "resources/version.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/encoding.h"
#include "runtime/text/str_chars.h"
#include "runtime/text/str_find.h"
#include "runtime/text/text_format.h"

#include <windows.h>
#include <cwchar>

// The build tells the server (see CMakeLists.txt).
const wchar_t* GetUpdateServer() { return TEXT(TESSALY_UPDATE_SERVER); }

// The answer

namespace {
struct Field {
    const wchar_t* pszKey;
    wchar_t (UpdateIni::*pszField)[UpdateIni::kFieldSize];
    bool bAddress;
};
constexpr Field kFields[] = {
    {L"version", &UpdateIni::szVersion, false},
    {L"descr", &UpdateIni::szDescription, false},
    {L"urlmoreinfo", &UpdateIni::szUrlMoreInfo, true},
    {L"urldownload", &UpdateIni::szUrlDownload, true},
};
constexpr const wchar_t* kErrorWord = L"error";
} // namespace

int UpdateIni::CallBack(CallBackFlag nFlag, const wchar_t* /*pszSection*/, const wchar_t* pszName,
                        const wchar_t* pszValue) {
    if (nFlag != cbVar) return 1;
    for (const Field& field : kFields) {
        if (!StrIsSame(pszName, field.pszKey, 1)) continue;
        // A piece of an address is another address.
        const bool bTaken = !field.bAddress || IsWebAddress(pszValue);
        ::lstrcpynW(this->*field.pszField, bTaken ? pszValue : L"", kFieldSize);
    }
    return 1;
}

bool IsWebAddress(const wchar_t* pszUrl) {
    std::size_t cchScheme = 0;
    for (const wchar_t* pszScheme : {L"http://", L"https://"}) {
        if (StrStartsWith(pszUrl, pszScheme, 1)) cchScheme = std::wcslen(pszScheme);
    }
    if (!cchScheme || !pszUrl[cchScheme]) return false;
    std::size_t cch = 0;
    for (; pszUrl[cch]; ++cch) {
        const wchar_t ch = pszUrl[cch];
        if (ch <= L' ' || ch > L'~' || ch == L'"' || ch == L'\'') return false;
        if (cch + 1 >= UpdateIni::kFieldSize) return false;
    }
    return true;
}

UpdateReply ReadUpdateReply(const wchar_t* pszReply) {
    if (!pszReply) return UpdateReply::kNone;
    if (StrIsSame(pszReply, L"OK", 1)) return UpdateReply::kNothingNew;
    return StrStartsWith(pszReply, L"[dl]", 1) ? UpdateReply::kUpdate : UpdateReply::kError;
}

const wchar_t* GetReplyDetail(const wchar_t* pszReply) {
    if (!StrStartsWith(pszReply, kErrorWord, 1)) return L"";
    pszReply += std::wcslen(kErrorWord);
    while (*pszReply == L' ' || *pszReply == L'\t') ++pszReply;
    return pszReply;
}

// The question

namespace {
constexpr int kValueSize = 85; // characters of a value, with the terminator

/// Builds a body. Once something does not fit, nothing more is added.
class BodyWriter {
  public:
    BodyWriter(wchar_t* pszBody, std::size_t cchBody) : p(pszBody), cchLeft(cchBody - 1) { *p = 0; }

    void Add(const wchar_t* pszKey, const wchar_t* pszValue) {
        AddPiece(pszKey);
        while (*pszValue) pszValue = AddEncoded(pszValue);
    }

  private:
    void AddPiece(const wchar_t* psz) {
        const std::size_t cch = std::wcslen(psz);
        if (cch > cchLeft) {
            cchLeft = 0;
            return;
        }
        std::wmemcpy(p, psz, cch + 1);
        p += cch;
        cchLeft -= cch;
    }
    static bool IsPlain(wchar_t ch) {
        return (ch >= L'a' && ch <= L'z') || (ch >= L'A' && ch <= L'Z') || IsAsciiDigit(ch) ||
               (ch && std::wcschr(L"-._~", ch));
    }
    /// One character, whole or not at all. Gives the place behind it.
    const wchar_t* AddEncoded(const wchar_t* pszAt) {
        const bool bPair = IS_SURROGATE_PAIR(pszAt[0], pszAt[1]);
        const wchar_t szChar[] = {pszAt[0], bPair ? pszAt[1] : L'\0', 0};
        if (IsPlain(*szChar)) {
            AddPiece(szChar);
        } else {
            char szUtf8[8];
            wchar_t szEscapes[32] = L"";
            wc2utf8(szChar, szUtf8, sizeof(szUtf8));
            for (std::size_t i = 0; szUtf8[i]; ++i) {
                FormatText(szEscapes + 3 * i, 4, L"%%%02X",
                           static_cast<unsigned>(static_cast<unsigned char>(szUtf8[i])));
            }
            AddPiece(szEscapes);
        }
        return pszAt + (bPair ? 2 : 1);
    }

    wchar_t* p; // where the next piece goes; a terminator stands there
    std::size_t cchLeft;
};
} // namespace

void MakeUpdateRequest(wchar_t (&szBody)[kRequestSize]) {
    MyProductInfo& info = GetMyProductInfo();
    DWORD dwServicePack = 0;
    const unsigned long long qwWindows = GetWinVersion(&dwServicePack);
    const DWORD dwBuild = static_cast<DWORD>(qwWindows);
    wchar_t szVersion[kValueSize], szWindows[kValueSize], szServicePack[kValueSize];
    wchar_t szWinLanguage[kValueSize];
    FormatText(szVersion, L"%d.%d.%d.%d", TESSALY_VERSION_MAJOR, TESSALY_VERSION_MINOR,
               TESSALY_VERSION_BUILD, TESSALY_REVISION);
    FormatText(szWindows, L"%d.%d.%d.%d", static_cast<int>(qwWindows >> 48),
               static_cast<int>(qwWindows >> 32 & 0xFFFF), HIWORD(dwBuild), LOWORD(dwBuild));
    FormatText(szServicePack, L"%d.%d", HIWORD(dwServicePack), LOWORD(dwServicePack));
    GetWinLanguage(szWinLanguage, kValueSize);

    BodyWriter body(szBody, kRequestSize);
    body.Add(L"app=", info.GetStoreID());
    body.Add(L"&appver=", szVersion);
    body.Add(L"&applang=", info.GetLanguage());
    body.Add(L"&apped=", info.GetEditionShort());
    body.Add(L"&winver=", szWindows);
    body.Add(L"&winlang=", szWinLanguage);
    body.Add(L"&winsp=", szServicePack);
    body.Add(L"&wined=", info.GetEditionShort());
}
