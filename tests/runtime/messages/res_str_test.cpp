#include "app/identity/product_info.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/res_str.h"
#include "support/test_resource_ids.h"
#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {
const void* Arg(unsigned long long n) { return reinterpret_cast<const void*>(n); }

/// Another module with strings, and the first of them.
struct OtherModule {
    HMODULE hmod = ::LoadLibraryW(L"shell32.dll");
    int nId = 0;
    std::wstring str;

    OtherModule() {
        for (int n = 1; n < 0xFFFF && str.empty(); ++n) {
            wchar_t sz[1024] = {};
            if (n == IDS_TEST_PLAIN || !::LoadStringW(hmod, static_cast<UINT>(n), sz, 1024))
                continue;
            nId = n;
            str = sz;
        }
    }
    ~OtherModule() { ::FreeLibrary(hmod); }
};

struct ArgCase {
    const char* pszName;
    unsigned long long n;
    int bId;
};

class IsResourceIdArgTable : public testing::TestWithParam<ArgCase> {};

TEST_P(IsResourceIdArgTable, TellsIdsFromPointersByTheWholeValue) {
    EXPECT_EQ(GetParam().bId, IsResourceIdArg(Arg(GetParam().n)));
}

INSTANTIATE_TEST_SUITE_P(Cases, IsResourceIdArgTable,
                         testing::Values(ArgCase{"Zero", 0, 1}, ArgCase{"One", 1, 1},
                                         ArgCase{"LargestId", 0xFFFF, 1},
                                         ArgCase{"AboveTheLargestId", 0x10000, 0},
                                         ArgCase{"BelowTheLeastWithZeros", 0xFFFEFFFF, 0},
                                         ArgCase{"LeastWithZeros", 0xFFFF0000, 1},
                                         ArgCase{"MinusOneWithZeros", 0xFFFFFFFF, 1},
                                         ArgCase{"PointerWithLowBitsClear", 0x100000000, 0},
                                         ArgCase{"PointerWithBits16To31Clear", 0x10000FFFF, 0},
                                         ArgCase{"PointerWithBits16To31Set", 0x1FFFF0000, 0},
                                         ArgCase{"UserPointer", 0x00007FFF0000ABCD, 0},
                                         ArgCase{"LastUserPointer", 0x00007FFFFFFFFFFF, 0},
                                         ArgCase{"BelowTheLeastWithSign", 0xFFFFFFFFFFFEFFFF, 0},
                                         ArgCase{"LeastWithSign", 0xFFFFFFFFFFFF0000, 1},
                                         ArgCase{"MinusOneWithSign", 0xFFFFFFFFFFFFFFFF, 1}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(GetResourceIdArg, GivesTheSignedIdOfEitherExtension) {
    EXPECT_EQ(-20102, GetResourceIdArg(Arg(0xFFFFFFFFFFFFB17A)));
    EXPECT_EQ(-20102, GetResourceIdArg(Arg(0xFFFFB17A)));
    EXPECT_EQ(20102, GetResourceIdArg(Arg(20102)));
    EXPECT_EQ(-1, GetResourceIdArg(Arg(0xFFFFFFFF)));
}

TEST(ResStr, NegativeIdIsAStringOfTheLibrary) {
    ResStr str(-IDS_REGISTRY_NOT_WRITTEN);
    EXPECT_STREQ(L"Cannot write to the Windows Registry.", str);
    EXPECT_EQ(0, str.IsEmpty());
}

struct StatedText {
    const char* pszName;
    int nId;
    const wchar_t* pszText;
};

class ResStrTable : public testing::TestWithParam<StatedText> {};

TEST_P(ResStrTable, StringTableHasTheStatedText) {
    EXPECT_STREQ(GetParam().pszText, ResStr(-GetParam().nId));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ResStrTable,
    testing::Values(
        StatedText{"NotWritten", 20001, L"Cannot write to the Windows Registry."},
        StatedText{"Overwrite", 20011, L"File '%s' already exists.\n\nOverwrite it?"},
        StatedText{
            "NoUpdates", 20102,
            L"No updates are available at this time. You are using the latest version available."},
        StatedText{"NotWrittenByUser", 21651,
                   L"Cannot write to the Windows Registry. (You may need to run this application "
                   L"as an administrator to perform this command)."}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ResStr, StringTableHasTheTextsOfFiles) {
    for (int nId : {20008, 20012, 20013}) EXPECT_FALSE(ResStr(-nId).IsEmpty()) << nId;
}

TEST(ResStr, NoSuchStringIsTheEmptyText) {
    for (int nId : {0, -1, 1, 65535, -65535, INT_MAX, INT_MIN}) {
        ResStr str(nId);
        EXPECT_STREQ(L"", str) << nId;
        EXPECT_EQ(1, str.IsEmpty()) << nId;
    }
}

TEST(ResStr, LoadReplacesWhatIsHeldAlsoByNothing) {
    ResStr str(-IDS_TEST_PLAIN);
    EXPECT_STREQ(L"plain test string", str);
    EXPECT_STREQ(L"%s", str.Load(-IDS_TEST_EMPTY_WHEN_FORMATTED));
    EXPECT_STREQ(L"", str.Load(0));
    EXPECT_EQ(1, str.IsEmpty());
    EXPECT_STREQ(L"plain test string", str.Load(-IDS_TEST_PLAIN, nullptr, 77));
    EXPECT_STREQ(L"", str.Load(-9));
    EXPECT_STREQ(L"", str);
}

TEST(ResStr, PositiveIdIsOfTheCurrentAppInstanceElseOfTheLibrary) {
    OtherModule other;
    ASSERT_FALSE(other.str.empty());
    EXPECT_STREQ(L"plain test string", ResStr(IDS_TEST_PLAIN));
    AppInstance app(other.hmod, nullptr);
    EXPECT_EQ(other.str, std::wstring(ResStr(other.nId)));
    EXPECT_STREQ(L"plain test string", ResStr(-IDS_TEST_PLAIN));
}

TEST(ResStr, GivenInstanceGoesBeforeTheRuleForEitherSign) {
    OtherModule other;
    ASSERT_FALSE(other.str.empty());
    EXPECT_EQ(other.str, std::wstring(ResStr(other.nId, other.hmod)));
    EXPECT_EQ(other.str, std::wstring(ResStr(-other.nId, other.hmod)));
}

TEST(ResStrFmt, FormatsTheStringWithTheArguments) {
    ResStrFmt str(-IDS_TEST_NUMBER_AND_TEXT, 12, L"abc");
    EXPECT_STREQ(L"number 12, text abc", str);
}

std::wstring FormatWithList(int nId, HINSTANCE hinst, ...) {
    ArgList args;
    va_start(args.v, hinst);
    ResStrFmt str(nId, hinst, args);
    va_end(args.v);
    return std::wstring(str);
}

TEST(ResStrFmt, TakesAStartedArgumentList) {
    EXPECT_EQ(L"number 3, text x", FormatWithList(-IDS_TEST_NUMBER_AND_TEXT, nullptr, 3, L"x"));
    EXPECT_EQ(L"number 3, text x",
              FormatWithList(IDS_TEST_NUMBER_AND_TEXT, ::GetModuleHandleW(nullptr), 3, L"x"));
}

TEST(ResStrFmt, EmptyResultLeavesTheTextUnformatted) {
    EXPECT_STREQ(L"%s", ResStrFmt(-IDS_TEST_EMPTY_WHEN_FORMATTED, L""));
}

TEST(ResStrFmt, MissingStringStaysEmpty) { EXPECT_STREQ(L"", ResStrFmt(-9, L"argument")); }

TEST(ResStrFmt, LongResultIsCut) {
    for (int n : {1022, 1023, 1024, 5000}) {
        std::wstring strLong(static_cast<std::size_t>(n), L'x');
        ResStrFmt str(-IDS_TEST_EMPTY_WHEN_FORMATTED, strLong.c_str());
        EXPECT_EQ(std::min(n, 1023), ::lstrlenW(str)) << n;
    }
}

TEST(ResStrFmt, ConversionThatWritesIsPrintedAsItStands) {
    EXPECT_STREQ(L"%n is no conversion", ResStrFmt(-IDS_TEST_HOSTILE_FORMAT, 0));
}

TEST(StrAppendTextFmt, TakesAStringOfTheTableAsTheFormat) {
    for (int nSign : {1, -1}) {
        wchar_t sz[64] = L"a, ";
        StrAppendTextFmt(sz, 64, nSign * IDS_TEST_NUMBER_AND_TEXT, 12, L"abc");
        EXPECT_STREQ(L"a, number 12, text abc", sz);
        StrAppendTextFmt(sz, 64, nSign * IDS_TEST_EMPTY_WHEN_FORMATTED, L"");
        EXPECT_STREQ(L"a, number 12, text abc", sz);
    }
}

TEST(StrAppendTextFmt, MissingStringAppendsNothing) {
    wchar_t sz[16] = L"abc";
    StrAppendTextFmt(sz, 16, -9, L"x");
    EXPECT_STREQ(L"abc", sz);
}

TEST(StrAppendTextFmt, IdZeroClearsTheText) {
    wchar_t sz[16] = L"abc";
    StrAppendTextFmt(sz, 16, 0);
    EXPECT_STREQ(L"", sz);
    sz[0] = L'x';
    StrAppendTextFmt(sz, 0, 0); // no characters, none cleared
    EXPECT_EQ(L'x', sz[0]);
    StrAppendTextFmt(nullptr, 16, 0);
}

struct IdCase {
    const char* pszName;
    int nId;
    int bModule; // a foreign module is named
    int bApp;    // a foreign application is current
    DefaultModule defaultModule;
    int bExpectForeign;
    unsigned nExpected;
};
class ResolvedId : public testing::TestWithParam<IdCase> {};
TEST_P(ResolvedId, NamesModuleAndNumber) {
    const IdCase& row = GetParam();
    HMODULE hmod = ::LoadLibraryW(L"shell32.dll");
    AppInstance app(row.bApp ? hmod : GetLibraryInstance(), nullptr);
    ResourceRef ref = ResolveResourceId(row.nId, row.bModule ? hmod : nullptr, row.defaultModule);
    EXPECT_EQ(row.bExpectForeign ? hmod : GetLibraryInstance(), ref.hinst);
    EXPECT_EQ(row.nExpected, reinterpret_cast<ULONG_PTR>(ref.pszName));
}
constexpr auto kLib = DefaultModule::kLibrary;
constexpr auto kApp = DefaultModule::kApplication;
INSTANTIATE_TEST_SUITE_P(
    Cases, ResolvedId,
    testing::Values(IdCase{"PositiveWithModule", 9, 1, 0, kLib, 1, 9},
                    IdCase{"PositiveWithModuleBesideAnApplication", 9, 1, 1, kApp, 1, 9},
                    IdCase{"PositiveWithoutModuleOfTheLibrary", 9, 0, 1, kLib, 0, 9},
                    IdCase{"PositiveWithoutModuleOfTheApplication", 9, 0, 1, kApp, 1, 9},
                    IdCase{"NegativeWithModule", -9, 1, 1, kLib, 0, 9},
                    IdCase{"NegativeWithModuleBesideAnApplication", -9, 1, 1, kApp, 0, 9},
                    IdCase{"NegativeWithoutModule", -9, 0, 1, kApp, 0, 9},
                    IdCase{"GreatestNumber", 0xFFFF, 0, 0, kLib, 0, 0xFFFF},
                    IdCase{"AboveTheGreatest", 0x10001, 0, 0, kLib, 0, 1},
                    IdCase{"LeastInt", -0x7FFFFFFF - 1, 0, 0, kLib, 0, 0}),
    [](const auto& row) { return std::string(row.param.pszName); });
} // namespace
