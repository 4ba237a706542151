#include "app/update/update_reply.h"

#include "app/identity/product_info.h"
#include "support/replace_import.h"
#include "support/told_version.h"

#include <gtest/gtest.h>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

extern "C" FARPROC __imp_GetLocaleInfoW;

namespace {
UpdateReply Read(const std::wstring& str) { return ReadUpdateReply(str.c_str()); }

TEST(UpdateReply, IsToldByItsText) {
    EXPECT_EQ(UpdateReply::kNone, ReadUpdateReply(nullptr));
    for (const wchar_t* psz : {L"OK", L"ok", L"Ok", L"oK"})
        EXPECT_EQ(UpdateReply::kNothingNew, Read(psz)) << psz;
    for (const wchar_t* psz : {L"[dl]", L"[DL]", L"[Dl]\nversion=1", L"[dl] x", L"[dl]x"})
        EXPECT_EQ(UpdateReply::kUpdate, Read(psz)) << psz;
    for (const wchar_t* psz : {L"", L"O", L"OKAY", L"OK ", L" OK", L"OK\n", L"ok\r\n", L"[dl",
                               L"dl", L" [dl]", L"error", L"<html>", L"\xFEFFOK", L"[ dl]"}) {
        EXPECT_EQ(UpdateReply::kError, Read(psz)) << psz;
    }
}

TEST(UpdateReply, DetailIsWhatFollowsTheWord) {
    EXPECT_STREQ(L"no disk", GetReplyDetail(L"error no disk"));
    EXPECT_STREQ(L"no disk ", GetReplyDetail(L"ERROR   no disk "));
    EXPECT_STREQ(L": no disk", GetReplyDetail(L"Error: no disk"));
    EXPECT_STREQ(L"s", GetReplyDetail(L"errors"));
    EXPECT_STREQ(L"%s%n", GetReplyDetail(L"error %s%n"));
    EXPECT_STREQ(L"", GetReplyDetail(L"error"));
    EXPECT_STREQ(L"", GetReplyDetail(L"error   "));
    for (const wchar_t* psz : {L"", L"err", L"an error", L" error x", L"OKAY", L"<html>"})
        EXPECT_STREQ(L"", GetReplyDetail(psz)) << psz;
}

/// What a pass over a reply finds.
struct Fields {
    std::wstring strVersion, strDescription, strMoreInfo, strDownload, strToOpen;
};

Fields Parse(const std::wstring& strText) {
    UpdateIni ini;
    ini.ReadAll(strText.c_str(), 0);
    return {ini.szVersion, ini.szDescription, ini.szUrlMoreInfo, ini.szUrlDownload,
            ini.GetUrlToOpen()};
}

TEST(UpdateIni, TakesFourKeys) {
    Fields fields =
        Parse(L"[dl]\r\nversion=1.2\r\ndescr=<b>New</b> icons\r\n"
              L"urlmoreinfo=http://a.example/more\r\nurldownload=https://a.example/get\r\n");
    EXPECT_EQ(L"1.2", fields.strVersion);
    EXPECT_EQ(L"<b>New</b> icons", fields.strDescription);
    EXPECT_EQ(L"http://a.example/more", fields.strMoreInfo);
    EXPECT_EQ(L"https://a.example/get", fields.strDownload);
    EXPECT_EQ(L"https://a.example/get", fields.strToOpen);
}

TEST(UpdateIni, LinesMayEndWithoutCarriageReturns) {
    Fields fields = Parse(L"[dl]\nversion=1.2\ndescr=x\nurldownload=http://a/b");
    EXPECT_EQ(L"1.2", fields.strVersion);
    EXPECT_EQ(L"x", fields.strDescription);
    EXPECT_EQ(L"http://a/b", fields.strToOpen);
}

TEST(UpdateIni, AnyKeyMayBeMissing) {
    const std::map<std::wstring, std::wstring> lines = {{L"version", L"1.2"},
                                                        {L"descr", L"words"},
                                                        {L"urlmoreinfo", L"http://a/more"},
                                                        {L"urldownload", L"http://a/get"}};
    for (const auto& [strMissing, strNot] : lines) {
        std::wstring strText = L"[dl]\r\n";
        for (const auto& [strKey, strValue] : lines)
            if (strKey != strMissing) strText += strKey + L"=" + strValue + L"\r\n";
        Fields fields = Parse(strText);
        EXPECT_EQ(strMissing == L"version" ? L"" : L"1.2", fields.strVersion);
        EXPECT_EQ(strMissing == L"descr" ? L"" : L"words", fields.strDescription);
        EXPECT_EQ(strMissing == L"urlmoreinfo" ? L"" : L"http://a/more", fields.strMoreInfo);
        EXPECT_EQ(strMissing == L"urldownload" ? L"" : L"http://a/get", fields.strDownload);
        EXPECT_EQ(strMissing == L"urldownload" ? L"http://a/more" : L"http://a/get",
                  fields.strToOpen);
    }
    Fields none = Parse(L"[dl]");
    EXPECT_EQ(L"", none.strVersion + none.strDescription + none.strMoreInfo + none.strDownload);
    EXPECT_EQ(L"", none.strToOpen);
}

TEST(UpdateIni, OfSeveralTheLastCounts) {
    Fields fields =
        Parse(L"[dl]\nversion=1\nversion=2\ndescr=a\ndescr=b\nurlmoreinfo=http://a/1\n"
              L"urlmoreinfo=http://a/2\nurldownload=http://a/3\nurldownload=http://a/4");
    EXPECT_EQ(L"2", fields.strVersion);
    EXPECT_EQ(L"b", fields.strDescription);
    EXPECT_EQ(L"http://a/2", fields.strMoreInfo);
    EXPECT_EQ(L"http://a/4", fields.strDownload);
}

TEST(UpdateIni, OtherKeysAreIgnored) {
    Fields fields =
        Parse(L"[dl]\nversions=1\nurl=http://a/b\ndescription=x\nversion=3\nfile=c:\\x");
    EXPECT_EQ(L"3", fields.strVersion);
    EXPECT_EQ(L"", fields.strDescription + fields.strToOpen);
}

TEST(UpdateIni, LongTextsAreCutAndLongAddressesAreNone) {
    const std::wstring strLong(1000, L'x');
    Fields fields =
        Parse(L"[dl]\nversion=" + strLong + L"\ndescr=" + strLong + L"\nurlmoreinfo=http://a/" +
              strLong + L"\nurldownload=http://a/" + strLong);
    EXPECT_EQ(std::wstring(259, L'x'), fields.strVersion);
    EXPECT_EQ(std::wstring(259, L'x'), fields.strDescription);
    EXPECT_EQ(L"", fields.strMoreInfo);
    EXPECT_EQ(L"", fields.strDownload);
    // Just what fits.
    const std::wstring strUrl = L"http://a/" + std::wstring(250, L'x');
    ASSERT_EQ(259u, strUrl.size());
    EXPECT_EQ(strUrl, Parse(L"[dl]\nurldownload=" + strUrl).strDownload);
    EXPECT_EQ(L"", Parse(L"[dl]\nurldownload=" + strUrl + L"x").strDownload);
}

TEST(UpdateIni, AddressThatMayNotBeOpenedCountsAsMissing) {
    EXPECT_EQ(L"http://a/more",
              Parse(L"[dl]\nurldownload=javascript:alert(1)\nurlmoreinfo=http://a/more").strToOpen);
    EXPECT_EQ(L"", Parse(L"[dl]\nurldownload=c:\\a.exe\nurlmoreinfo=file:///c:/a").strToOpen);
}

TEST(UpdateIni, TextsWithoutOrderDoNoHarm) {
    for (const wchar_t* psz :
         {L"[dl", L"[dl]=", L"[dl]\n=", L"[dl]\n=x", L"[dl]\nversion", L"[dl]\nversion=",
          L"[dl]\n[dl]\nversion=1", L"[dl]\n;x\n\n\nversion=1", L"[dl]\n]]][[["}) {
        Fields fields = Parse(psz);
        EXPECT_EQ(L"", fields.strToOpen) << psz;
    }
    EXPECT_EQ(L"7", Parse(L"[dl]\r\n\r\n; a comment\r\n version = 7\r\n").strVersion);
}

TEST(WebAddress, IsOfTheTwoSchemesAndOfPlainCharacters) {
    for (const wchar_t* psz :
         {L"http://a", L"https://a", L"http://updates.orvanta.example/get.php?a=1&b=%20#x",
          L"https://[::1]:8080/", L"http://a/~x(1),;:@!$*+"}) {
        EXPECT_TRUE(IsWebAddress(psz)) << psz;
    }
    for (const wchar_t* psz : {L"",
                               L"http",
                               L"http:",
                               L"http:/a",
                               L"http://",
                               L"https://",
                               L"httpx://a",
                               L"ftp://a",
                               L"file:///c:/a",
                               L"javascript:alert(1)",
                               L"c:\\windows\\system32\\calc.exe",
                               L"\\\\server\\share",
                               L"mailto:a@b",
                               L" http://a",
                               L"http://a b",
                               L"http://a ",
                               L"http://a\"b",
                               L"http://a'b",
                               L"http://a\tb",
                               L"http://a\nb",
                               L"http://a\x7F",
                               L"http://\x00E4",
                               L"http://\x0430",
                               L"www.a.example",
                               L"//a",
                               L"ms-settings:x",
                               L"http\\://a",
                               L"search-ms:x"}) {
        EXPECT_FALSE(IsWebAddress(psz)) << psz;
    }
    EXPECT_TRUE(IsWebAddress((L"http://" + std::wstring(252, L'x')).c_str()));
    EXPECT_FALSE(IsWebAddress((L"http://" + std::wstring(253, L'x')).c_str()));
    EXPECT_FALSE(IsWebAddress(nullptr));
}

// What is asked

std::wstring Request() {
    wchar_t sz[kRequestSize + 16];
    std::fill(std::begin(sz), std::end(sz), L'#');
    MakeUpdateRequest(reinterpret_cast<wchar_t(&)[kRequestSize]>(sz));
    for (std::size_t n = kRequestSize; n < kRequestSize + 16; ++n) EXPECT_EQ(L'#', sz[n]);
    return sz;
}

int HexValue(wchar_t ch) {
    if (ch >= L'0' && ch <= L'9') return ch - L'0';
    if (ch >= L'A' && ch <= L'F') return ch - L'A' + 10;
    if (ch >= L'a' && ch <= L'f') return ch - L'a' + 10;
    return -1;
}

/// What a server makes of a value. Anything that has no place in a form's value fails the test.
std::wstring Decode(const std::wstring& strValue) {
    std::string strBytes;
    for (std::size_t n = 0; n < strValue.size(); ++n) {
        wchar_t ch = strValue[n];
        if (ch == L'%') {
            if (n + 2 >= strValue.size()) {
                ADD_FAILURE() << "broken escape at the end of " << strValue;
                return {};
            }
            int nHigh = HexValue(strValue[n + 1]), nLow = HexValue(strValue[n + 2]);
            EXPECT_TRUE(nHigh >= 0 && nLow >= 0) << strValue;
            strBytes += static_cast<char>(nHigh * 16 + nLow);
            n += 2;
            continue;
        }
        EXPECT_TRUE((ch >= L'a' && ch <= L'z') || (ch >= L'A' && ch <= L'Z') ||
                    (ch >= L'0' && ch <= L'9') || std::wcschr(L"-._~+*()!'", ch))
            << strValue;
        strBytes += ch == L'+' ? ' ' : static_cast<char>(ch);
    }
    wchar_t sz[512] = {};
    ::MultiByteToWideChar(CP_UTF8, 0, strBytes.c_str(), -1, sz, 512);
    return sz;
}

using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;

Pairs Split(const std::wstring& strBody) {
    Pairs pairs;
    for (std::size_t nBegin = 0; nBegin <= strBody.size();) {
        std::size_t nEnd = std::min(strBody.find(L'&', nBegin), strBody.size());
        std::wstring strPair = strBody.substr(nBegin, nEnd - nBegin);
        std::size_t nEqual = strPair.find(L'=');
        if (nEqual == std::wstring::npos)
            pairs.push_back({strPair, L"(no value)"});
        else
            pairs.push_back({strPair.substr(0, nEqual), Decode(strPair.substr(nEqual + 1))});
        nBegin = nEnd + 1;
    }
    return pairs;
}

std::wstring strToldLocale;
std::vector<LCTYPE> asked;
std::vector<LCID> askedFor;
std::vector<int> sizes;

int WINAPI TellLocale(LCID nLocale, LCTYPE nType, LPWSTR psz, int cch) {
    asked.push_back(nType);
    askedFor.push_back(nLocale);
    sizes.push_back(cch);
    int cchNeeded = static_cast<int>(strToldLocale.size()) + 1;
    if (cch == 0) return cchNeeded;
    if (cch < cchNeeded) {
        ::SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::wcscpy(psz, strToldLocale.c_str());
    return cchNeeded;
}

OSVERSIONINFOEXW ToldWindows(DWORD nMajor, DWORD nMinor, DWORD nBuild, WORD nPack) {
    OSVERSIONINFOEXW info = Version(VER_PLATFORM_WIN32_NT, nMajor, nMinor, VER_NT_WORKSTATION);
    info.dwBuildNumber = nBuild;
    info.wServicePackMajor = nPack;
    return info;
}

class UpdateRequest : public testing::Test {
  protected:
    void SetUp() override {
        asked.clear();
        askedFor.clear();
        sizes.clear();
    }
    ReplaceImport locale{__imp_GetLocaleInfoW, &TellLocale};
};

TEST_F(UpdateRequest, TellsProductAndSystem) {
    strToldLocale = L"en-US";
    ToldVersion told(ToldWindows(6, 1, 0x00011DB1, 2)); // the build's high half is told apart
    MyProductInfo& product = GetMyProductInfo();
    const Pairs expected = {{L"app", product.GetStoreID()},
                            {L"appver", L"1.1.0.2409"},
                            {L"applang", product.GetLanguage()},
                            {L"apped", product.GetEditionShort()},
                            {L"winver", L"6.1.1.7601"},
                            {L"winlang", L"en-US"},
                            {L"winsp", L"2.0"},
                            {L"wined", product.GetEditionShort()}};
    EXPECT_EQ(expected, Split(Request()));
    ASSERT_EQ(1u, asked.size());
    EXPECT_EQ(92u, asked[0]);
    EXPECT_EQ(static_cast<LCID>(LOCALE_SYSTEM_DEFAULT), askedFor[0]);
    EXPECT_EQ(85, sizes[0]);
}

TEST_F(UpdateRequest, NamesTheLanguageBeforeVista) {
    strToldLocale = L"Norwegian (Bokm\x00E5l)";
    ToldVersion told(ToldWindows(5, 2, 3790, 1));
    Pairs pairs = Split(Request());
    ASSERT_EQ(8u, pairs.size());
    EXPECT_EQ(L"5.2.0.3790", pairs[4].second);
    EXPECT_EQ(strToldLocale, pairs[5].second);
    EXPECT_EQ(L"1.0", pairs[6].second);
    ASSERT_EQ(1u, asked.size());
    EXPECT_EQ(4097u, asked[0]);
}

TEST_F(UpdateRequest, EncodesWhatWouldEndAValue) {
    strToldLocale = L"a&b=c%d+e f#g?h/i\"j";
    Pairs pairs = Split(Request());
    ASSERT_EQ(8u, pairs.size());
    EXPECT_EQ(strToldLocale, pairs[5].second);
}

TEST_F(UpdateRequest, IsCutWithoutBreakingAnEscape) {
    ToldVersion told(ToldWindows(6, 1, 7601, 1));
    for (std::size_t n = 0; n <= 84; ++n) {
        strToldLocale = std::wstring(n, L'\x20AC'); // nine characters each
        if (n % 3 == 1) strToldLocale.insert(0, 1, L'x');
        if (n % 3 == 2) strToldLocale.insert(0, 2, L'x');
        strToldLocale.resize(std::min<std::size_t>(strToldLocale.size(), 84));
        std::wstring strBody = Request();
        EXPECT_GE(256u, strBody.size());
        EXPECT_EQ(0u, strBody.find(L"app="));
        (void)Split(strBody); // tells of broken escapes
    }
}

TEST_F(UpdateRequest, LanguageThatIsNotToldIsEmpty) {
    strToldLocale = std::wstring(85, L'x'); // does not fit
    Pairs pairs = Split(Request());
    ASSERT_EQ(8u, pairs.size());
    EXPECT_EQ(L"", pairs[5].second);
}
} // namespace
