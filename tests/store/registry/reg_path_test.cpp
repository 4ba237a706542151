#include "store/registry/reg_path.h"
#include "store/registry/reg_key.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <string>

namespace {
struct BelowCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszOther;
    const wchar_t* pszBelow;
};

class RegPathBelow : public testing::TestWithParam<BelowCase> {};

TEST_P(RegPathBelow, ComparesComponents) {
    GuardedText path(GetParam().pszPath), other(GetParam().pszOther);
    EXPECT_STREQ(GetParam().pszBelow, FindRegPathBelow(path.Get(), other.Get()));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegPathBelow,
    testing::Values(
        BelowCase{"BothEmpty", L"", L"", L""}, BelowCase{"BelowEmpty", L"a", L"", L"a"},
        BelowCase{"EmptyBelow", L"", L"a", nullptr}, BelowCase{"Same", L"a", L"a", L""},
        BelowCase{"SameInOtherCase", L"A", L"a", L""}, BelowCase{"Child", L"a\\B", L"A", L"B"},
        BelowCase{"SamePair", L"a\\b", L"A\\B", L""}, BelowCase{"LongerName", L"ab", L"a", nullptr},
        BelowCase{"ShorterName", L"a", L"ab", nullptr}, BelowCase{"Parent", L"a", L"a\\b", nullptr},
        BelowCase{"DoubledBackslash", L"a\\\\b", L"a\\b", L""},
        BelowCase{"OuterBackslashes", L"\\a", L"a\\", L""},
        BelowCase{"TrailingBackslash", L"a\\", L"a", L""},
        BelowCase{"Sibling", L"a\\c", L"a\\b", nullptr},
        BelowCase{"LongerLastName", L"a\\bc", L"a\\b", nullptr},
        BelowCase{"ChildOfAPair", L"a\\b\\c", L"a\\b", L"c"},
        BelowCase{"BackslashesOnly", L"\\", L"\\\\", L""},
        BelowCase{"RestAsItStands", L"\\a\\\\b\\c", L"a", L"b\\c"}),
    [](const auto& row) { return std::string(row.param.pszName); });

struct NameCase {
    const char* pszName;
    const wchar_t* pszPath;
    const wchar_t* pszLast;
    const wchar_t* pszParent;
};

class RegSubkeyNameTable : public testing::TestWithParam<NameCase> {};

TEST_P(RegSubkeyNameTable, LastNameAndParent) {
    EXPECT_STREQ(GetParam().pszLast, RegKey::FindLastSubkeyName(GetParam().pszPath));
    wchar_t sz[20] = L"untouched";
    EXPECT_EQ(1, RegKey::GetParentSubkeyName(GetParam().pszPath, sz, 20));
    EXPECT_STREQ(GetParam().pszParent, sz);
}

INSTANTIATE_TEST_SUITE_P(Cases, RegSubkeyNameTable,
                         testing::Values(NameCase{"One", L"a", L"a", L""},
                                         NameCase{"Two", L"a\\b", L"b", L"a"},
                                         NameCase{"Three", L"a\\b\\c", L"c", L"a\\b"},
                                         NameCase{"TrailingBackslash", L"a\\b\\", L"", L"a\\b"},
                                         NameCase{"LeadingBackslash", L"\\a", L"a", L""},
                                         NameCase{"OnlyABackslash", L"\\", L"", L""},
                                         NameCase{"DoubledBackslash", L"a\\\\b", L"b", L"a\\"},
                                         NameCase{"SlashIsNoSeparator", L"a/b", L"a/b", L""}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(RegSubkeyName, NoPathHasNoName) {
    EXPECT_EQ(nullptr, RegKey::FindLastSubkeyName(nullptr));
    EXPECT_EQ(nullptr, RegKey::FindLastSubkeyName(L""));
    for (const wchar_t* psz : {static_cast<const wchar_t*>(nullptr), L""}) {
        wchar_t sz[20] = L"text";
        EXPECT_EQ(0, RegKey::GetParentSubkeyName(psz, sz, 20));
        EXPECT_STREQ(L"", sz);
    }
}

TEST(RegSubkeyName, ParentIsCutToTheBuffer) {
    GuardedArea area(100);
    for (unsigned n = 1; n < 10; ++n) {
        auto* psz = static_cast<wchar_t*>(area.Put(n * sizeof(wchar_t)));
        EXPECT_EQ(1, RegKey::GetParentSubkeyName(L"abcd\\e", psz, n));
        EXPECT_EQ(std::wstring(L"abcd").substr(0, n - 1), psz);
    }
    wchar_t ch = L'#';
    EXPECT_EQ(0, RegKey::GetParentSubkeyName(L"a\\b", &ch, 0));
    EXPECT_EQ(L'#', ch);
    EXPECT_EQ(0, RegKey::GetParentSubkeyName(L"a\\b", nullptr, 5));
}

TEST(RegSubkeyName, RandomPathsStayInTheirBuffers) {
    std::mt19937 random(20090607);
    GuardedArea area(200), areaOut(200), areaOther(200);
    for (int nRound = 0; nRound < 200000; ++nRound) {
        auto make = [&] {
            std::wstring str(random() % 12, L' ');
            for (wchar_t& ch : str) ch = L"\\aAb\\"[random() % 5];
            return str;
        };
        std::wstring strPath = make(), strOther = make();
        const wchar_t* pszPath = area.Put(strPath);
        unsigned cch = 1 + random() % 12;
        auto* pszOut = static_cast<wchar_t*>(areaOut.Put(cch * sizeof(wchar_t)));
        std::size_t nSlash = strPath.rfind(L'\\');
        bool bSlash = nSlash != std::wstring::npos;
        ASSERT_EQ(!strPath.empty(), RegKey::GetParentSubkeyName(pszPath, pszOut, cch));
        ASSERT_EQ(strPath.substr(0, bSlash ? nSlash : 0).substr(0, cch - 1), pszOut);
        const wchar_t* pszLast = RegKey::FindLastSubkeyName(pszPath);
        ASSERT_EQ(strPath.empty() ? nullptr : pszPath + (bSlash ? nSlash + 1 : 0), pszLast);
        const wchar_t* pszOther = areaOther.Put(strOther);
        if (FindRegPathBelow(pszPath, pszOther) && FindRegPathBelow(pszOther, pszPath)) {
            auto count = [](const std::wstring& str) {
                return std::count_if(str.begin(), str.end(),
                                     [](wchar_t ch) { return ch != L'\\'; });
            };
            ASSERT_EQ(count(strPath), count(strOther));
        }
    }
}
} // namespace
