#include "files/operations/file_version.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "support/guard_page.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr unsigned __int64 kVersion = 0x0001000200030004;

class FileVersion : public testing::Test {
  protected:
    unsigned __int64 VersionOf(const std::string& strBytes, VS_FIXEDFILEINFO* pInfo = nullptr) {
        return GetFileVersion(folder.MakeFile(L"a.dll", strBytes).c_str(), pInfo);
    }
    TempFolder folder;
};

TEST_F(FileVersion, IsReadFromTheResource) {
    VS_FIXEDFILEINFO info{};
    EXPECT_EQ(kVersion, VersionOf(MadeModule(kVersion), &info));
    VS_FIXEDFILEINFO expected = MadeVersionInfo(kVersion);
    EXPECT_EQ(0, std::memcmp(&expected, &info, sizeof(info)));
    EXPECT_EQ(kVersion, VersionOf(MadeModule(kVersion), nullptr));
    EXPECT_EQ(~0ull, VersionOf(MadeModule(~0ull)));
    EXPECT_EQ(1u, VersionOf(MadeModule(1)));
    EXPECT_EQ(0u, VersionOf(MadeModule(0)));
}

TEST_F(FileVersion, ANameDoesNotMatter) {
    std::wstring strPath = folder.MakeFile(L"no extension", MadeModule(kVersion));
    EXPECT_EQ(kVersion, GetFileVersion(strPath.c_str(), nullptr));
}

TEST_F(FileVersion, NothingElseHasOne) {
    VS_FIXEDFILEINFO info;
    std::memset(&info, 0x77, sizeof(info));
    VS_FIXEDFILEINFO before = info;
    EXPECT_EQ(0u, VersionOf("", &info));
    EXPECT_EQ(0u, VersionOf("MZ", &info));
    EXPECT_EQ(0u, VersionOf("a text", &info));
    EXPECT_EQ(0u, VersionOf(MadeModule(kVersion).substr(0, 0x400), &info)) << "no resource";
    EXPECT_EQ(0u, VersionOf(MadeModule(MadeVersionInfo(kVersion, 0xFEEF04BC)), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.Get().c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"missing").c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"no folder\\a.dll").c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(L"", &info));
    EXPECT_EQ(0u, GetFileVersion(nullptr, &info));
    EXPECT_EQ(0, std::memcmp(&before, &info, sizeof(info)));
}

TEST_F(FileVersion, AFolderNamedLikeAModuleHasNone) {
    std::filesystem::create_directory(folder.File(L"user32.dll"));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"user32.dll").c_str(), nullptr));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"kernel32.dll").c_str(), nullptr))
        << "one that is loaded elsewhere";
}

// The resource as the platform hands it out may be anything.

unsigned cbTold;        // what GetFileVersionInfoSizeW says
unsigned cbValue;       // and VerQueryValueW
bool bReads, bHasValue; // the other two succeed
VS_FIXEDFILEINFO toldInfo;

DWORD WINAPI TellSize(LPCWSTR, LPDWORD pdw) {
    if (pdw) *pdw = 0;
    return cbTold;
}
BOOL WINAPI TellBlock(LPCWSTR, DWORD, DWORD cb, LPVOID p) {
    EXPECT_GE(cb, cbTold);
    std::memset(p, 0, cbTold);
    return bReads;
}
BOOL WINAPI TellValue(LPCVOID, LPCWSTR pszWhat, LPVOID* pp, PUINT pcb) {
    EXPECT_STREQ(L"\\", pszWhat);
    if (!bHasValue) return FALSE;
    *pp = &toldInfo;
    if (pcb) *pcb = cbValue;
    return TRUE;
}

class ToldFileVersion : public FileVersion {
  protected:
    ToldFileVersion() {
        functions.Set("GetFileVersionInfoSizeW", &TellSize);
        functions.Set("GetFileVersionInfoW", &TellBlock);
        functions.Set("VerQueryValueW", &TellValue);
        cbTold = 200;
        cbValue = sizeof(toldInfo);
        bReads = bHasValue = true;
        toldInfo = MadeVersionInfo(kVersion);
    }
    ReplaceFunctions functions;
};

TEST_F(ToldFileVersion, AnyStepMayFail) {
    EXPECT_EQ(kVersion, VersionOf("a"));
    cbTold = 0;
    EXPECT_EQ(0u, VersionOf("a"));
    cbTold = 200;
    bReads = false;
    EXPECT_EQ(0u, VersionOf("a"));
    bReads = true;
    bHasValue = false;
    EXPECT_EQ(0u, VersionOf("a"));
    bHasValue = true;
    toldInfo.dwSignature = 0;
    EXPECT_EQ(0u, VersionOf("a"));
}

TEST_F(ToldFileVersion, AValueThatIsTooShortIsNone) {
    for (unsigned cb : {0u, 4u, static_cast<unsigned>(sizeof(toldInfo)) - 1}) {
        cbValue = cb;
        EXPECT_EQ(0u, VersionOf("a")) << cb;
    }
}

TEST_F(ToldFileVersion, AFolderIsNotAsked) {
    EXPECT_EQ(0u, GetFileVersion(folder.Get().c_str(), nullptr));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"missing").c_str(), nullptr));
}

TEST_F(FileVersion, WithoutThePlatformsFunctionsThereIsNone) {
    HideFunctions hidden{"GetFileVersionInfoSizeW", "GetFileVersionInfoW", "VerQueryValueW"};
    EXPECT_EQ(0u, VersionOf(MadeModule(kVersion)));
}

// As a text

struct StrCase {
    const char* pszName;
    unsigned __int64 nVersion;
    const wchar_t* pszText;
};
class FileVersionStr : public testing::TestWithParam<StrCase> {};
TEST_P(FileVersionStr, FitsOrIsCut) {
    const auto& [pszName, nVersion, pszText] = GetParam();
    auto cch = static_cast<unsigned>(std::wcslen(pszText));
    GuardedArea area((cch + 2) * sizeof(wchar_t));
    for (unsigned cchOut = 1; cchOut <= cch + 2; ++cchOut) {
        auto* pszOut = static_cast<wchar_t*>(area.Put(cchOut * sizeof(wchar_t)));
        EXPECT_EQ(cchOut > cch, GetFileVersionStr(pszOut, cchOut, nVersion)) << cchOut;
        EXPECT_EQ(std::wstring(pszText, std::min(cch, cchOut - 1)), pszOut) << cchOut;
    }
    auto* pszNone = static_cast<wchar_t*>(area.Put(std::size_t{0}));
    EXPECT_EQ(0, GetFileVersionStr(pszNone, 0, nVersion));
    EXPECT_EQ(0, GetFileVersionStr(nullptr, 0, nVersion));
    GuardedArea text((cch + 1) * sizeof(wchar_t));
    EXPECT_EQ(nVersion, ParseFileVersionStr(text.Put(pszText)));
}
INSTANTIATE_TEST_SUITE_P(
    Versions, FileVersionStr,
    testing::Values(StrCase{"None", 0, L"0.0.0.0"}, StrCase{"Lowest", 1, L"0.0.0.1"},
                    StrCase{"Each", kVersion, L"1.2.3.4"},
                    StrCase{"Highest", ~0ull, L"65535.65535.65535.65535"},
                    StrCase{"Sign", 0x8000800080008000, L"32768.32768.32768.32768"}),
    kRowName);

TEST_F(FileVersion, OfAFileAsAText) {
    std::wstring strPath = folder.MakeFile(L"a.dll", MadeModule(kVersion));
    wchar_t szOut[8] = L"";
    VS_FIXEDFILEINFO info{};
    EXPECT_EQ(1, GetFileVersionStr(szOut, 8, strPath.c_str(), &info));
    EXPECT_STREQ(L"1.2.3.4", szOut);
    EXPECT_EQ(0x00030004u, info.dwFileVersionLS);
    EXPECT_EQ(0, GetFileVersionStr(szOut, 7, strPath.c_str(), nullptr));
    EXPECT_EQ(1, GetFileVersionStr(szOut, 8, folder.File(L"missing").c_str(), nullptr));
    EXPECT_STREQ(L"0.0.0.0", szOut);
}

struct ParseCase {
    const char* pszName;
    const wchar_t* pszText;
    unsigned __int64 nVersion;
};
class ParseVersion : public testing::TestWithParam<ParseCase> {};
TEST_P(ParseVersion, AddsUpItsParts) {
    std::wstring strText = GetParam().pszText;
    GuardedArea area((strText.size() + 1) * sizeof(wchar_t));
    wchar_t* psz = area.Put(strText);
    EXPECT_EQ(GetParam().nVersion, ParseFileVersionStr(psz));
    for (wchar_t& ch : strText)
        if (ch == L'.') ch = 0; // the text is cut in place
    EXPECT_TRUE(strText == std::wstring(psz, strText.size()));
}
INSTANTIATE_TEST_SUITE_P(
    Texts, ParseVersion,
    testing::Values(ParseCase{"Empty", L"", 0}, ParseCase{"One", L"7", 7},
                    ParseCase{"Two", L"1.2", 0x10002}, ParseCase{"Three", L"1.2.3", 0x100020003},
                    ParseCase{"Four", L"1.2.3.4", kVersion},
                    ParseCase{"Five", L"9.1.2.3.4", kVersion}, ParseCase{"Dot", L".", 0},
                    ParseCase{"EndsInDot", L"1.", 0x10000}, ParseCase{"BeginsWithDot", L".1", 1},
                    ParseCase{"TwoDots", L"1..2", 0x100000002}, ParseCase{"NoNumber", L"a.2", 2},
                    ParseCase{"LeadingZeros", L"01.002", 0x10002},
                    ParseCase{"LargestPart", L"65535.1", 0xFFFF0001},
                    ParseCase{"CarriesOver", L"1.65536", 0x20000}),
    kRowName);

TEST(ParseVersionEdges, NoText) { EXPECT_EQ(0u, ParseFileVersionStr(nullptr)); }

struct StripCase {
    const char* pszName;
    const wchar_t* pszText;
    const wchar_t* pszResult;
};
class StripBuild : public testing::TestWithParam<StripCase> {};
TEST_P(StripBuild, KeepsThreeParts) {
    const auto& [pszName, pszText, pszResult] = GetParam();
    GuardedText text(pszText);
    std::size_t cch = std::wcslen(pszResult);
    GuardedArea area((cch + 8) * sizeof(wchar_t));
    for (std::size_t cchOut = 1; cchOut <= cch + 2; ++cchOut) {
        auto* pszOut = static_cast<wchar_t*>(area.Put(cchOut * sizeof(wchar_t)));
        StripBuildNumberIfAny(pszOut, static_cast<unsigned>(cchOut), text.Get());
        EXPECT_EQ(std::wstring(pszResult, std::min(cch, cchOut - 1)), pszOut) << cchOut;
    }
    std::wstring strInPlace = pszText;
    StripBuildNumberIfAny(strInPlace.data(), static_cast<unsigned>(strInPlace.size()) + 1,
                          strInPlace.data());
    EXPECT_STREQ(pszResult, strInPlace.c_str());
    StripBuildNumberIfAny(static_cast<wchar_t*>(area.Put(std::size_t{0})), 0, text.Get());
}
INSTANTIATE_TEST_SUITE_P(
    Texts, StripBuild,
    testing::Values(StripCase{"Empty", L"", L""}, StripCase{"One", L"1", L"1"},
                    StripCase{"Two", L"1.2", L"1.2"}, StripCase{"Three", L"1.2.3", L"1.2.3"},
                    StripCase{"Four", L"1.2.3.4", L"1.2.3"},
                    StripCase{"Five", L"1.2.3.4.5", L"1.2.3"},
                    StripCase{"LongParts", L"2024.1000.30000.4", L"2024.1000.30000"},
                    StripCase{"Words", L"1.2.3 beta.4", L"1.2.3 beta"}),
    kRowName);

TEST(StripBuildEdges, NoTextIsEmpty) {
    wchar_t szOut[4] = L"old";
    StripBuildNumberIfAny(szOut, 4, nullptr);
    EXPECT_STREQ(L"", szOut);
    StripBuildNumberIfAny(nullptr, 0, L"1.2.3.4");
}

TEST(StripBuildEdges, OfALongTextAPartCounts) {
    std::wstring strText(400, L'7');
    GuardedArea area(500 * sizeof(wchar_t));
    auto* pszOut = static_cast<wchar_t*>(area.Put(500 * sizeof(wchar_t)));
    StripBuildNumberIfAny(pszOut, 500, strText.c_str());
    EXPECT_EQ(std::wstring(259, L'7'), pszOut) << "260 characters with the terminator";
}
} // namespace
