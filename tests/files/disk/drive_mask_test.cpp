#include "files/disk/path_drive.h"
#include "files/path_support.h"

#include <gtest/gtest.h>
#include <bit>
#include <cwctype>

namespace {
TEST(GetDriveMask, IsOneBit) {
    EXPECT_EQ(1u, GetDriveMask(-5));
    EXPECT_EQ(1u, GetDriveMask(0));
    EXPECT_EQ(2u, GetDriveMask(1));
    EXPECT_EQ(0x2000000u, GetDriveMask(25));
    EXPECT_EQ(0x80000000u, GetDriveMask(31));
    EXPECT_EQ(0u, GetDriveMask(32));
    EXPECT_EQ(0u, GetDriveMask(0x7FFFFFFF));
}

TEST(GetDriveFromMask, IsTheNumberOfTheNthBit) {
    EXPECT_EQ(1, GetDriveFromMask(0b1010, 0));
    EXPECT_EQ(3, GetDriveFromMask(0b1010, 1));
    EXPECT_EQ(-1, GetDriveFromMask(0b1010, 2));
    EXPECT_EQ(-1, GetDriveFromMask(0, 0));
    EXPECT_EQ(31, GetDriveFromMask(0xFFFFFFFF, 31));
    EXPECT_EQ(-1, GetDriveFromMask(0xFFFFFFFF, 32));
    EXPECT_EQ(-1, GetDriveFromMask(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(CountBits, CountsThoseThatAreSet) {
    EXPECT_EQ(0, CountBits(0));
    EXPECT_EQ(1, CountBits(0x80000000));
    EXPECT_EQ(2, CountBits(0b1010));
    EXPECT_EQ(32, CountBits(0xFFFFFFFF));
}

TEST(GetDrivesList, ListsTheLetters) {
    const struct {
        DWORD dwMask;
        const wchar_t* pszSeparator;
        int nCount;
        const wchar_t* pszList;
    } rows[] = {{0, L", ", 0, L""},
                {1, L", ", 1, L"A:"},
                {0b1101, L", ", 3, L"A:, C:, D:"},
                {0b1101, L"", 3, L"A:C:D:"},
                {0b1101, nullptr, 3, L"A:C:D:"},
                {0x2000000, L";", 1, L"Z:"},
                {0xFC000001, L";", 1, L"A:"}}; // there are no drives behind Z
    for (const auto& row : rows) {
        PathBuffer out(L"before");
        EXPECT_EQ(row.nCount, GetDrivesList(row.dwMask, out, MAX_PATH, row.pszSeparator));
        EXPECT_STREQ(row.pszList, out);
    }
}

TEST(GetDrivesList, UnknownMaskLeavesTheBufferAlone) {
    PathBuffer out(L"before");
    EXPECT_EQ(0, GetDrivesList(0xFFFFFFFF, out, MAX_PATH, L","));
    EXPECT_STREQ(L"before", out);
    EXPECT_EQ(26, GetDrivesList(0x03FFFFFF, out, MAX_PATH, L","));
    EXPECT_EQ(0, GetDrivesList(1, out, 0, L","));
    EXPECT_EQ(0, GetDrivesList(1, nullptr, 10, L","));
}

TEST(GetDrivesList, LeavesOutWhatDoesNotFitWhole) {
    for (unsigned cch = 1; cch < 12; ++cch) {
        PathBuffer out(L"", cch);
        int nExpected = cch < 3 ? 0 : cch < 7 ? 1 : cch < 11 ? 2 : 3;
        EXPECT_EQ(nExpected, GetDrivesList(0b111, out, cch, L", ")) << cch;
        EXPECT_EQ(std::wstring(L"A:, B:, C:").substr(0, nExpected ? nExpected * 4 - 2 : 0),
                  out.Str());
    }
}

TEST(GetDriveFromPath, TakesCapitals) {
    EXPECT_EQ(0, GetDriveFromPath(L"A:\\x"));
    EXPECT_EQ(2, GetDriveFromPath(L"C:\\x"));
    EXPECT_EQ(25, GetDriveFromPath(L"Z"));
    for (const wchar_t* psz : {L"", L"\\\\s", L"1:", L"@:", L"[:", L"\u00C4:"}) {
        EXPECT_EQ(-1, GetDriveFromPath(psz)) << psz;
    }
    EXPECT_EQ(-1, GetDriveFromPath(nullptr));
}

TEST(GetDriveFromPath, SmallLettersButAAreNone) {
    EXPECT_EQ(0, GetDriveFromPath(L"a:\\x"));
    for (wchar_t ch = L'b'; ch <= L'z'; ++ch) {
        EXPECT_EQ(-1, GetDriveFromPath(std::wstring{ch, L':'}.c_str()));
    }
}

TEST(GetSystemDrive, IsTheWindowsFoldersDrive) {
    wchar_t sz[MAX_PATH] = {};
    ASSERT_NE(0u, ::GetWindowsDirectoryW(sz, MAX_PATH));
    EXPECT_EQ(static_cast<int>(std::towupper(sz[0])) - L'A', GetSystemDrive());
}

TEST(DriveRandom, MasksAgainstASecondTellingOfTheRules) {
    std::mt19937 random(881);
    GuardedArea area(1024);
    for (int i = 0; i < kRandomInputs; ++i) {
        DWORD dwMask = random();
        if (i % 2) dwMask &= random();
        ASSERT_EQ(std::popcount(static_cast<unsigned>(dwMask)), CountBits(dwMask));
        unsigned nIndex = random() % 34;
        DWORD dwRest = dwMask;
        for (unsigned n = 0; n < nIndex; ++n) dwRest &= dwRest - 1;
        ASSERT_EQ(dwRest ? std::countr_zero(static_cast<unsigned>(dwRest)) : -1,
                  GetDriveFromMask(dwMask, nIndex));
        auto cch = static_cast<unsigned>(1 + random() % 120);
        auto* psz = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
        const wchar_t* pszSeparator = i % 3 ? L", " : L"";
        int nListed = GetDrivesList(dwMask, psz, cch, pszSeparator);
        std::wstring str;
        int nCount = 0;
        for (int n = 0; n < 26; ++n) {
            if (!(dwMask >> n & 1)) continue;
            std::wstring strMore = nCount ? pszSeparator : L"";
            strMore += {static_cast<wchar_t>(L'A' + n), L':'};
            if (str.size() + strMore.size() >= cch) break;
            str += strMore;
            ++nCount;
        }
        if (dwMask == 0xFFFFFFFF) continue;
        ASSERT_EQ(nCount, nListed);
        ASSERT_EQ(str, psz);
    }
}
} // namespace
