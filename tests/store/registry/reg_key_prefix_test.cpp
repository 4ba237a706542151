#include "store/registry/reg_key.h"
#include "support/registry.h"

#include <gtest/gtest.h>

namespace {
class RegKeyPrefix : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyPrefixTest"};
    RegKey key{raw.Path().c_str(), 1};
};

TEST_F(RegKeyPrefix, EveryOperationTakesTheJoinedName) {
    EXPECT_EQ(1, key.PutIntPrefix(L"pos", L"Int", -5));
    EXPECT_EQ(1, key.PutDwordPrefix(L"pos", L"Dword", 7));
    EXPECT_EQ(1, key.PutStrPrefix(L"pos", L"Str", L"text"));
    EXPECT_EQ(1, key.PutBinPrefix(L"pos", L"Bin", "\1\2\3", 3));
    const std::map<std::wstring, RegContent> kExpected = {
        {L"posInt", {REG_DWORD, {0xFB, 0xFF, 0xFF, 0xFF}}},
        {L"posDword", {REG_DWORD, {7, 0, 0, 0}}},
        {L"posStr", {REG_SZ, BytesOf(L"text")}},
        {L"posBin", {REG_BINARY, {1, 2, 3}}},
    };
    EXPECT_EQ(kExpected, raw.Values());

    wchar_t sz[10];
    unsigned char bytes[4] = {};
    EXPECT_EQ(-5, key.GetIntPrefix(L"pos", L"Int", 1));
    EXPECT_EQ(7u, key.GetDwordPrefix(L"pos", L"Dword", 1));
    EXPECT_EQ(4, key.GetStrPrefix(L"pos", L"Str", sz, 10, nullptr));
    EXPECT_STREQ(L"text", sz);
    EXPECT_EQ(3u, key.GetBinSizePrefix(L"pos", L"Bin"));
    EXPECT_EQ(1, key.GetBinPrefix(L"pos", L"Bin", bytes, 4));
    EXPECT_EQ(3, bytes[2]);
    EXPECT_EQ(0, key.GetBinPrefix(L"pos", L"Bin", bytes, 2));

    EXPECT_EQ(1, key.DelValuePrefix(L"pos", L"Bin"));
    EXPECT_FALSE(raw.HasValue(L"posBin"));
    EXPECT_EQ(3u, raw.Values().size());
}

TEST_F(RegKeyPrefix, MissingValuesGiveTheDefaults) {
    wchar_t sz[10];
    EXPECT_EQ(-3, key.GetIntPrefix(L"pos", L"x", -3));
    EXPECT_EQ(3u, key.GetDwordPrefix(L"pos", L"x", 3));
    EXPECT_EQ(2, key.GetStrPrefix(L"pos", L"x", sz, 10, L"no"));
    EXPECT_EQ(0u, key.GetBinSizePrefix(L"pos", L"x"));
    EXPECT_EQ(0, key.GetBinPrefix(L"pos", L"x", sz, 4));
    EXPECT_EQ(1, key.DelValuePrefix(L"pos", L"x"));
}

TEST_F(RegKeyPrefix, WritesCompareFirst) {
    raw.Put(L"pn", REG_BINARY, {5, 0, 0, 0});
    raw.Put(L"pi", REG_BINARY, {6, 0, 0, 0});
    raw.Put(L"ps", REG_BINARY, BytesOf(L"text"));
    raw.Put(L"pb", REG_NONE, {1});
    auto before = raw.Values();
    EXPECT_EQ(1, key.PutDwordPrefix(L"p", L"n", 5));
    EXPECT_EQ(1, key.PutIntPrefix(L"p", L"i", 6));
    EXPECT_EQ(1, key.PutStrPrefix(L"p", L"s", L"text"));
    EXPECT_EQ(1, key.PutBinPrefix(L"p", L"b", "\1", 1));
    EXPECT_EQ(before, raw.Values()); // the other types would not have survived a write
}

TEST_F(RegKeyPrefix, NullsCountAsEmpty) {
    EXPECT_EQ(1, key.PutIntPrefix(nullptr, L"a", 1));
    EXPECT_EQ(1, key.PutIntPrefix(L"b", nullptr, 2));
    EXPECT_EQ(1, key.PutIntPrefix(nullptr, nullptr, 3));
    EXPECT_EQ(1, key.GetInt(L"a", 0));
    EXPECT_EQ(2, key.GetInt(L"b", 0));
    EXPECT_EQ(3, key.GetInt(nullptr, 0)); // the default value
}

TEST_F(RegKeyPrefix, NamesAreCutAt255Characters) {
    for (unsigned n : {253u, 254u, 255u, 256u, 1000u}) {
        std::wstring strPrefix(n, L'p');
        EXPECT_EQ(1, key.PutIntPrefix(strPrefix.c_str(), L"ab", 1));
        EXPECT_TRUE(raw.HasValue((strPrefix + L"ab").substr(0, 255))) << n;
        EXPECT_EQ(1u, raw.Values().size());
        EXPECT_EQ(1, key.GetIntPrefix(strPrefix.c_str(), L"ab", 0));
        EXPECT_EQ(1, key.DelValuePrefix(strPrefix.c_str(), L"ab"));
        EXPECT_EQ(0u, raw.Values().size());
    }
}

TEST_F(RegKeyPrefix, PercentSignsInNamesAreText) {
    EXPECT_EQ(1, key.PutIntPrefix(L"%s%n", L"%d", 1));
    EXPECT_TRUE(raw.HasValue(L"%s%n%d"));
}

TEST_F(RegKeyPrefix, FormatJoinsTheNames) {
    RegKey::pszFmtPrefix = L"%s - %s";
    EXPECT_EQ(1, key.PutIntPrefix(L"a", L"b", 1));
    RegKey::pszFmtPrefix = L"%s%s";
    EXPECT_TRUE(raw.HasValue(L"a - b"));
}
} // namespace
