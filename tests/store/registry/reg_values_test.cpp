#include "store/registry/reg_values.h"
#include "support/heap_count.h"
#include "support/rect.h"
#include "support/registry.h"

#include <gtest/gtest.h>
#include <cstring>

namespace {
class RegValues : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyValuesTest"};
    RegKey key{raw.Path().c_str(), 1};
    LOGFONTW* plf = nullptr;

    void TearDown() override { RegDelLogFont(plf); }
    static RegBytes FontBytes(std::size_t cb) {
        RegBytes bytes(cb);
        for (std::size_t n = 0; n < cb; ++n) bytes[n] = static_cast<unsigned char>(n + 1);
        return bytes;
    }
};

TEST_F(RegValues, RectIsFourNumbers) {
    RECT rc{-1, 2, 3, -2147483647 - 1};
    EXPECT_EQ(1, RegPutRect(key, &rc, L"pos"));
    const std::map<std::wstring, RegContent> kExpected = {
        {L"posL", {REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}}},
        {L"posT", {REG_DWORD, {2, 0, 0, 0}}},
        {L"posR", {REG_DWORD, {3, 0, 0, 0}}},
        {L"posB", {REG_DWORD, {0, 0, 0, 0x80}}},
    };
    EXPECT_EQ(kExpected, raw.Values());
    RECT rcRead{};
    RegGetRect(key, &rcRead, L"pos");
    EXPECT_EQ(rc, rcRead);
}

TEST_F(RegValues, OnlyTheFieldWithAValueIsRead) {
    raw.PutDword(L"posT", 50);
    RECT rc{1, 2, 3, 4};
    RegGetRect(key, &rc, L"pos");
    EXPECT_EQ((RECT{1, 50, 3, 4}), rc);
    raw.Put(L"posL", REG_BINARY, {7});             // shorter: filled up
    raw.Put(L"posR", REG_BINARY, {7, 0, 0, 0, 0}); // longer: as if missing
    RegGetRect(key, &rc, L"pos");
    EXPECT_EQ((RECT{7, 50, 3, 4}), rc);
}

TEST_F(RegValues, RectIsWrittenOnlyWhereItChanged) {
    for (const wchar_t* psz : {L"posL", L"posT", L"posR", L"posB"})
        raw.Put(psz, REG_BINARY, {5, 0, 0, 0});
    RECT rc{5, 5, 6, 5};
    EXPECT_EQ(1, RegPutRect(key, &rc, L"pos"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), raw.Value(L"posL").dwType);
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), raw.Value(L"posT").dwType);
    EXPECT_EQ((RegContent{REG_DWORD, {6, 0, 0, 0}}), raw.Value(L"posR"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), raw.Value(L"posB").dwType);
}

TEST_F(RegValues, NamesOfARectAreCutAt255Characters) {
    RECT rc{1, 2, 3, 4}, rcRead{};
    std::wstring strFits(254, L'p'), strLong(255, L'p');
    EXPECT_EQ(1, RegPutRect(key, &rc, strFits.c_str()));
    EXPECT_TRUE(raw.HasValue(strFits + L"B"));
    EXPECT_EQ(4u, raw.Values().size());
    RegGetRect(key, &rcRead, strFits.c_str());
    EXPECT_EQ(rc, rcRead);
    EXPECT_EQ(1, RegPutRect(key, &rc, (strLong + L"xyz").c_str()));
    EXPECT_EQ((RegContent{REG_DWORD, {4, 0, 0, 0}}), raw.Value(strLong)); // one name for all
    EXPECT_EQ(5u, raw.Values().size());
}

TEST_F(RegValues, NoPrefixAndNoRect) {
    RECT rc{1, 2, 3, 4};
    EXPECT_EQ(1, RegPutRect(key, &rc, nullptr));
    EXPECT_TRUE(raw.HasValue(L"L"));
    EXPECT_EQ(0, RegPutRect(key, nullptr, L"pos"));
    RegGetRect(key, nullptr, L"pos");
    RegKey none;
    EXPECT_EQ(0, RegPutRect(none, &rc, L"pos"));
    RegGetRect(none, &rc, L"pos");
    EXPECT_EQ((RECT{1, 2, 3, 4}), rc);
}

TEST_F(RegValues, FontIsReadFromExactly92Bytes) {
    for (std::size_t cb : {0u, 1u, 91u, 92u, 93u, 184u}) {
        raw.Put(L"font", REG_BINARY, FontBytes(cb));
        for (int bAllocated : {0, 1}) {
            SCOPED_TRACE(testing::Message() << cb << " bytes, allocated " << bAllocated);
            RegDelLogFont(plf);
            if (bAllocated) {
                ASSERT_EQ(1, RegNewLogFont(plf));
            }
            LOGFONTW* plfBefore = plf;
            EXPECT_EQ(cb == 92, RegGetLogFont(key, L"font", plf));
            EXPECT_EQ(cb == 92, plf != nullptr);
            if (!plf) continue;
            EXPECT_EQ(0, std::memcmp(plf, FontBytes(92).data(), 92));
            if (bAllocated) {
                EXPECT_EQ(plfBefore, plf);
            }
        }
    }
}

TEST_F(RegValues, MissingFontFreesTheOldOne) {
    EXPECT_EQ(0, RegGetLogFont(key, L"font", plf));
    EXPECT_EQ(nullptr, plf);
    ASSERT_EQ(1, RegNewLogFont(plf));
    EXPECT_EQ(0, RegGetLogFont(key, L"font", plf));
    EXPECT_EQ(nullptr, plf);
}

TEST_F(RegValues, FontsAreGivenBack) {
    raw.Put(L"font", REG_BINARY, FontBytes(92));
    raw.Put(L"short", REG_BINARY, FontBytes(91));
    long nBefore = CountLiveBlocks();
    EXPECT_EQ(1, RegGetLogFont(key, L"font", plf));
    EXPECT_EQ(1, RegGetLogFont(key, L"font", plf)); // into the same one
    EXPECT_EQ(nBefore + 1, CountLiveBlocks());
    EXPECT_EQ(0, RegGetLogFont(key, L"short", plf));
    EXPECT_EQ(nBefore, CountLiveBlocks());
    ASSERT_EQ(1, RegNewLogFont(plf));
    EXPECT_EQ(nBefore + 1, CountLiveBlocks());
    RegDelLogFont(plf);
    EXPECT_EQ(nBefore, CountLiveBlocks());
}

TEST_F(RegValues, FontOfAnyTypeIsRead) {
    raw.Put(L"", REG_NONE, FontBytes(92));
    ASSERT_EQ(1, RegGetLogFont(key, nullptr, plf));
    EXPECT_EQ(0, std::memcmp(plf, FontBytes(92).data(), 92));
}

TEST_F(RegValues, FontIsWrittenAndDeleted) {
    LOGFONTW lf;
    std::memcpy(&lf, FontBytes(92).data(), 92);
    EXPECT_EQ(1, RegPutLogFont(key, L"font", &lf));
    EXPECT_EQ((RegContent{REG_BINARY, FontBytes(92)}), raw.Value(L"font"));
    EXPECT_EQ(1, RegPutLogFont(key, L"font", nullptr));
    EXPECT_FALSE(raw.HasValue(L"font"));
    EXPECT_EQ(1, RegPutLogFont(key, L"font", nullptr));
    RegKey none;
    EXPECT_EQ(0, RegPutLogFont(none, L"font", &lf));
}

TEST_F(RegValues, EqualFontIsNotWritten) {
    LOGFONTW lf;
    std::memcpy(&lf, FontBytes(92).data(), 92);
    raw.Put(L"font", REG_NONE, FontBytes(92));
    EXPECT_EQ(1, RegPutLogFont(key, L"font", &lf));
    EXPECT_EQ((RegContent{REG_NONE, FontBytes(92)}), raw.Value(L"font"));
}

TEST_F(RegValues, FontIsFreedAndForgotten) {
    RegDelLogFont(plf);
    EXPECT_EQ(nullptr, plf);
    ASSERT_EQ(1, RegNewLogFont(plf));
    plf->lfHeight = 12;
    RegDelLogFont(plf);
    EXPECT_EQ(nullptr, plf);
}
} // namespace
