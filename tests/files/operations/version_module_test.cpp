// Versions of modules that are made byte by byte, and of texts; FileSet.
#include "files/operations/file_operation.h"
#include "files/operations/file_version.h"
#include "files/version_module.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <ostream>
#include <random>
#include <string>

namespace {
constexpr unsigned __int64 kVersion = 0x0001000200030004;

struct VersionCase {
    const char* pszName;
    std::wstring strText;
    unsigned __int64 nVersion;
};
void PrintTo(const VersionCase& row, std::ostream* pOut) { *pOut << row.pszName; }
class VersionNumberTest : public testing::TestWithParam<VersionCase> {};

struct StripCase {
    const wchar_t* pszText;
    unsigned cchOut;
    const wchar_t* pszOut;
};
} // namespace

TEST(VersionModule, IsWhatTheResourceTells) {
    TempFolder folder;
    for (unsigned __int64 nVersion :
         {kVersion, 0xFFFF0000FFFF0001ull, 1ull, 0x000A000000000000ull}) {
        std::wstring strPath = folder.MakeFile(L"a.dll", ModuleOfVersion(nVersion));
        EXPECT_EQ(nVersion, GetFileVersion(strPath.c_str(), nullptr));
        GuardedMemory memory(sizeof(VS_FIXEDFILEINFO));
        auto* pInfo = static_cast<VS_FIXEDFILEINFO*>(memory.Get());
        EXPECT_EQ(nVersion, GetFileVersion(strPath.c_str(), pInfo));
        const VS_FIXEDFILEINFO expected = InfoOfVersion(nVersion);
        EXPECT_EQ(52u, sizeof(expected));
        EXPECT_EQ(0, std::memcmp(pInfo, &expected, sizeof(expected)));
    }
    EXPECT_EQ(kVersion,
              GetFileVersion(folder.MakeFile(L"any name.txt", ModuleOfVersion(kVersion)).c_str(),
                             nullptr));
}

TEST(VersionModule, OfAFileWithoutOneIsZero) {
    TempFolder folder;
    VS_FIXEDFILEINFO info{};
    EXPECT_EQ(0u,
              GetFileVersion(folder.MakeFile(L"none.dll", ModuleWithoutVersion()).c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.MakeFile(L"a.exe", "a text").c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.MakeFile(L"empty.exe", "").c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.File(L"missing.exe").c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(folder.Get().c_str(), &info));
    EXPECT_EQ(0u, GetFileVersion(L"", &info));
    EXPECT_EQ(0u, GetFileVersion(nullptr, &info));
    VS_FIXEDFILEINFO unsigned_info = InfoOfVersion(kVersion);
    unsigned_info.dwSignature = 0xFEEF04BC;
    EXPECT_EQ(0u, GetFileVersion(folder.MakeFile(L"other.dll", ModuleOfInfo(unsigned_info)).c_str(),
                                 &info));
    EXPECT_EQ(0u, info.dwSignature); // nothing was told
}

TEST(VersionModule, OfACutOrBrokenModuleIsZeroOrTold) {
    TempFolder folder;
    const std::string bytes = ModuleOfVersion(kVersion);
    std::mt19937 random(5);
    for (int n = 0; n < 60; ++n) {
        std::string broken = bytes.substr(0, random() % (bytes.size() + 1));
        if (n % 2) {
            broken = bytes;
            const std::size_t nAt = 512 + random() % (bytes.size() - 512); // the resources
            broken[nAt] = static_cast<char>(random());
        }
        VS_FIXEDFILEINFO info{};
        unsigned __int64 nVersion =
            GetFileVersion(folder.MakeFile(L"a.dll", broken).c_str(), &info);
        EXPECT_TRUE(info.dwSignature == 0xFEEF04BD || !(nVersion | info.dwSignature)) << n;
    }
}

TEST(VersionNumberText, HasFourParts) {
    wchar_t sz[32];
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, kVersion));
    EXPECT_STREQ(L"1.2.3.4", sz);
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, 0));
    EXPECT_STREQ(L"0.0.0.0", sz);
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, 0xFFFFFFFFFFFFFFFF));
    EXPECT_STREQ(L"65535.65535.65535.65535", sz);
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, 0x000A00004A618000));
    EXPECT_STREQ(L"10.0.19041.32768", sz);
}

TEST(VersionNumberText, FitsOrGivesZero) {
    for (unsigned cch = 0; cch < 12; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        EXPECT_EQ(cch >= 8, GetFileVersionStr(psz, cch, kVersion)) << cch;
        EXPECT_TRUE(cch < 8 || !std::wcscmp(psz, L"1.2.3.4"));
        EXPECT_TRUE(cch == 0 || std::wstring_view(psz, cch).find(L'\0') < cch); // terminated
    }
}

TEST(VersionNumberText, OfAFileIsThatOfItsVersion) {
    TempFolder folder;
    wchar_t sz[32] = L"old";
    VS_FIXEDFILEINFO info{};
    std::wstring strPath = folder.MakeFile(L"a.dll", ModuleOfVersion(kVersion));
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, strPath.c_str(), &info));
    EXPECT_STREQ(L"1.2.3.4", sz);
    EXPECT_EQ(0x00010002u, info.dwFileVersionMS);
    EXPECT_EQ(1, GetFileVersionStr(sz, 8, strPath.c_str(), nullptr));
    EXPECT_EQ(0, GetFileVersionStr(sz, 7, strPath.c_str(), nullptr));
    EXPECT_EQ(1, GetFileVersionStr(sz, 32, folder.File(L"missing").c_str(), nullptr));
    EXPECT_STREQ(L"0.0.0.0", sz);
}

TEST_P(VersionNumberTest, IsParsed) {
    GuardedArea area(1024);
    wchar_t* psz = area.Put(GetParam().strText);
    EXPECT_EQ(GetParam().nVersion, ParseFileVersionStr(psz));
    std::wstring strCut = GetParam().strText; // each dot gives way
    for (wchar_t& ch : strCut)
        if (ch == L'.') ch = L'\0';
    EXPECT_EQ(strCut, std::wstring(psz, strCut.size()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, VersionNumberTest,
    testing::Values(
        VersionCase{"Empty", L"", 0}, VersionCase{"One", L"7", 7},
        VersionCase{"Two", L"1.2", 0x10002}, VersionCase{"Three", L"1.2.3", 0x100020003},
        VersionCase{"Four", L"1.2.3.4", kVersion}, VersionCase{"Five", L"9.1.2.3.4", kVersion},
        VersionCase{"Eight", L"9.9.9.9.1.2.3.4", kVersion}, VersionCase{"Zeros", L"0.0.0.0", 0},
        VersionCase{"Zero", L"00.010.1", 0xA0001},
        VersionCase{"Largest", L"65535.65535.65535.65535", 0xFFFFFFFFFFFFFFFF},
        VersionCase{"Empties", L"1..2", 0x100000002}, VersionCase{"TooLarge", L"1.65536", 0x20000},
        VersionCase{"FirstEmpty", L".5", 5}),
    [](const auto& row) { return row.param.pszName; });

TEST(VersionNumberText, OfNullIsZero) { EXPECT_EQ(0u, ParseFileVersionStr(nullptr)); }

TEST(VersionNumberText, RoundTrips) {
    std::mt19937_64 random(6);
    for (int n = 0; n < 1000; ++n) {
        unsigned __int64 nVersion = random();
        wchar_t sz[24];
        ASSERT_EQ(1, GetFileVersionStr(sz, 24, nVersion));
        ASSERT_EQ(nVersion, ParseFileVersionStr(sz));
    }
}

TEST(VersionWithoutBuild, KeepsThreeParts) {
    const std::wstring strLong(300, L'1');
    const StripCase rows[] = {
        {L"1.2.3.4", 32, L"1.2.3"},
        {L"1.2.3.4.5.6", 32, L"1.2.3"},
        {L"10.0.19041.1 (WinBuild.160101.0800)", 32, L"10.0.19041"},
        {L"1.2.3", 32, L"1.2.3"},
        {L"1.2", 32, L"1.2"},
        {L"1", 32, L"1"},
        {L"", 32, L""},
        {nullptr, 32, L""},
        {L"no version", 32, L"no version"},
        {L"a.b.c.d", 32, L"a.b.c"},
        {L"1.2.3.4", 6, L"1.2.3"},
        {L"1.2.3.4", 5, L"1.2."},
        {L"1.2.3.4", 4, L"1.2"},
        {L"1.2.3.4", 2, L"1"},
        {L"1.2.3.4", 1, L""},
        {strLong.c_str(), 400, nullptr},
    };
    for (const StripCase& row : rows) {
        GuardedMemory memory(row.cchOut * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        std::wmemset(psz, L'x', row.cchOut);
        StripBuildNumberIfAny(psz, row.cchOut, row.pszText);
        std::wstring strExpected = row.pszOut ? row.pszOut : strLong.substr(0, 259);
        EXPECT_EQ(strExpected, psz);
    }
    GuardedMemory nothing(0);
    StripBuildNumberIfAny(static_cast<wchar_t*>(nothing.Get()), 0, L"1.2.3.4");
    StripBuildNumberIfAny(nullptr, 0, L"1.2.3.4");
}

TEST(VersionWithoutBuild, WorksInPlaceAndReadsNoFurtherThanTheText) {
    wchar_t sz[] = L"6.1.7601.17514";
    StripBuildNumberIfAny(sz, 15, sz);
    EXPECT_STREQ(L"6.1.7601", sz);
    GuardedText text(L"1.2.3.4");
    wchar_t szOut[16];
    StripBuildNumberIfAny(szOut, 16, text.Get());
    EXPECT_STREQ(L"1.2.3", szOut);
}

TEST(FileSetHandle, IsThatOfItsEntriesIfThereAreAny) {
    int entries[3] = {};
    FileSet files;
    EXPECT_EQ(0u, files.GetCount());
    files.nCount = 3;
    EXPECT_EQ(0u, files.GetCount()); // of nothing
    files.pSet = entries;
    EXPECT_EQ(3u, files.GetCount());
    FileSet other;
    other = files;
    EXPECT_EQ(3u, other.GetCount());
    EXPECT_EQ(files.pSet, other.pSet);
    other.pSet = nullptr;
    EXPECT_EQ(0u, other.GetCount());
    EXPECT_EQ(3u, files.GetCount());
}
