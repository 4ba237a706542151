// The fonts of icon buttons, which are derived from fonts.
#include "buttons/icon_probe.h"
#include "support/gui_objects.h"
#include "wnd/draw/font_util.h"

#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_CreateFontIndirectW;

namespace {
using Btn = ProbeIconBtn;

LOGFONTW Describe(HFONT hfont) {
    LOGFONTW lf{};
    EXPECT_NE(0, ::GetObjectW(hfont, sizeof(lf), &lf));
    return lf;
}
bool IsFont(HFONT hfont) { return ::GetObjectType(hfont) == OBJ_FONT; }

/// Which faces are asked for; fonts of a face in strRefused are not to be had.
class FontMaker {
  public:
    FontMaker() : create(__imp_CreateFontIndirectW, &Create) { pNow = this; }
    ~FontMaker() { pNow = nullptr; }

    std::wstring strRefused; // "*": of any
    std::wstring strAsked;

  private:
    static HFONT WINAPI Create(const LOGFONTW* plf) {
        pNow->strAsked += std::wstring(plf->lfFaceName) + L";";
        if (pNow->strRefused == L"*" || pNow->strRefused == plf->lfFaceName) return nullptr;
        return pNow->create.Original<decltype(::CreateFontIndirectW)>()(plf);
    }
    static inline FontMaker* pNow = nullptr;
    ReplaceImport create;
};

struct IconBtnFont : testing::Test {
    void SetUp() override {
        LOGFONTW lf{};
        lf.lfHeight = -15;
        lf.lfWeight = FW_MEDIUM;
        wcscpy(lf.lfFaceName, L"Tahoma");
        lf.lfQuality = ANTIALIASED_QUALITY;
        hfontSource = ::CreateFontIndirectW(&lf);
    }
    void TearDown() override {
        ::DeleteObject(hfontSource);
        ::DeleteObject(hfontTarget);
    }
    void Derive(int nAdd, long nWeight, int bItalic, int bStrikeOut, const wchar_t* pszFace) {
        Btn::DoSetFontProperties(hfontTarget, hfontSource, nAdd, nWeight, bItalic, bStrikeOut,
                                 pszFace);
    }

    HFONT hfontSource = nullptr, hfontTarget = nullptr;
};

TEST_F(IconBtnFont, WithNothingToChangeIsACopy) {
    Derive(0, 0, 0, 0, nullptr);
    ASSERT_TRUE(IsFont(hfontTarget));
    EXPECT_NE(hfontSource, hfontTarget);
    LOGFONTW lf = Describe(hfontTarget), lfSource = Describe(hfontSource);
    EXPECT_EQ(0, memcmp(&lf, &lfSource, offsetof(LOGFONTW, lfFaceName)));
    EXPECT_STREQ(L"Tahoma", lf.lfFaceName);
}

struct HeightCase {
    const char* pszName;
    long nHeight;
    int nAdd;
    long nExpected;
};
class IconBtnFontHeight : public testing::TestWithParam<HeightCase> {};

TEST_P(IconBtnFontHeight, GrowsInBothMeaningsOfItsSign) {
    LOGFONTW lf{};
    lf.lfHeight = GetParam().nHeight;
    HFONT hfontSource = ::CreateFontIndirectW(&lf), hfontTarget = nullptr;
    Btn::DoSetFontProperties(hfontTarget, hfontSource, GetParam().nAdd, 0, 0, 0, nullptr);
    EXPECT_EQ(GetParam().nExpected, Describe(hfontTarget).lfHeight);
    ::DeleteObject(hfontTarget);
    ::DeleteObject(hfontSource);
    AddToFontHeight(lf, GetParam().nAdd);
    EXPECT_EQ(GetParam().nExpected, lf.lfHeight);
}

INSTANTIATE_TEST_SUITE_P(
    Heights, IconBtnFontHeight,
    testing::Values(HeightCase{"Negative", -11, 3, -14}, HeightCase{"Positive", 16, 3, 19},
                    HeightCase{"Zero", 0, 3, -3}, HeightCase{"SmallerNegative", -11, -3, -8},
                    HeightCase{"SmallerPositive", 16, -3, 13}, HeightCase{"Same", -11, 0, -11},
                    HeightCase{"SamePositive", 16, 0, 16}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(IconBtnFont, TakesWeightItalicAndStrikeOutWhereTheyAreNotZero) {
    Derive(0, FW_BOLD, 1, 0, nullptr);
    LOGFONTW lf = Describe(hfontTarget);
    EXPECT_EQ(FW_BOLD, lf.lfWeight);
    EXPECT_NE(0, lf.lfItalic);
    EXPECT_EQ(0, lf.lfStrikeOut);
    EXPECT_EQ(-15, lf.lfHeight);
    Derive(0, 0, 0, 256, nullptr);
    lf = Describe(hfontTarget);
    EXPECT_EQ(FW_MEDIUM, lf.lfWeight);
    EXPECT_EQ(0, lf.lfItalic);
    EXPECT_NE(0, lf.lfStrikeOut);
}

TEST_F(IconBtnFont, KeepsItalicAndStrikeOutOfItsSource) {
    LOGFONTW lf{};
    lf.lfItalic = lf.lfStrikeOut = TRUE;
    HFONT hfontItalic = ::CreateFontIndirectW(&lf);
    Btn::DoSetFontProperties(hfontTarget, hfontItalic, 0, 0, 0, 0, nullptr);
    ::DeleteObject(hfontItalic);
    lf = Describe(hfontTarget);
    EXPECT_NE(0, lf.lfItalic);
    EXPECT_NE(0, lf.lfStrikeOut);
}

TEST_F(IconBtnFont, TakesAFaceUnlessItIsEmpty) {
    Derive(0, 0, 0, 0, L"Courier New");
    EXPECT_STREQ(L"Courier New", Describe(hfontTarget).lfFaceName);
    Derive(0, 0, 0, 0, L"");
    EXPECT_STREQ(L"Tahoma", Describe(hfontTarget).lfFaceName);
}

TEST_F(IconBtnFont, CutsAFaceToWhatADescriptionHolds) {
    std::wstring strLong(100, L'x');
    Derive(0, 0, 0, 0, strLong.c_str());
    EXPECT_EQ(std::wstring(31, L'x'), Describe(hfontTarget).lfFaceName);
    Derive(0, 0, 0, 0, strLong.substr(0, 31).c_str());
    EXPECT_EQ(std::wstring(31, L'x'), Describe(hfontTarget).lfFaceName);
}

TEST_F(IconBtnFont, GoesBackToTheEarlierFaceOnce) {
    FontMaker maker;
    maker.strRefused = L"Refused";
    Derive(2, FW_BOLD, 0, 0, L"Refused");
    EXPECT_EQ(L"Refused;Tahoma;", maker.strAsked);
    LOGFONTW lf = Describe(hfontTarget);
    EXPECT_STREQ(L"Tahoma", lf.lfFaceName);
    EXPECT_EQ(-17, lf.lfHeight);
    EXPECT_EQ(FW_BOLD, lf.lfWeight);
}

TEST_F(IconBtnFont, GivesUpWhenTheEarlierFaceFailsToo) {
    Derive(0, 0, 0, 0, nullptr);
    HFONT hfontBefore = hfontTarget;
    FontMaker maker;
    maker.strRefused = L"*";
    Derive(0, 0, 0, 0, L"Refused");
    EXPECT_EQ(L"Refused;Tahoma;", maker.strAsked);
    EXPECT_EQ(nullptr, hfontTarget);
    EXPECT_FALSE(IsFont(hfontBefore));
    maker.strAsked.clear();
    Derive(0, 0, 0, 0, nullptr);
    EXPECT_EQ(L"Tahoma;", maker.strAsked) << "no other face to go back to";
}

TEST_F(IconBtnFont, DeletesTheOldOne) {
    int nBefore = CountGdiObjects();
    for (int i = 0; i < 20; ++i) Derive(i, 0, 0, 0, nullptr);
    EXPECT_EQ(nBefore + 1, CountGdiObjects());
    EXPECT_EQ(-15, Describe(hfontSource).lfHeight) << "the source stays";
}

TEST_F(IconBtnFont, CanBeDerivedFromItself) {
    Derive(0, 0, 0, 0, nullptr);
    for (int i = 0; i < 3; ++i)
        Btn::DoSetFontProperties(hfontTarget, hfontTarget, 2, 0, 0, 0, nullptr);
    EXPECT_EQ(-21, Describe(hfontTarget).lfHeight);
}

TEST_F(IconBtnFont, OfASourceThatCantBeReadStaysAsItIs) {
    Derive(0, 0, 0, 0, nullptr);
    HFONT hfontBefore = hfontTarget, hfontNone = nullptr;
    HFONT hfontDeleted = ::CreateFontIndirectW(&static_cast<const LOGFONTW&>(LOGFONTW{}));
    ::DeleteObject(hfontDeleted);
    Btn::DoSetFontProperties(hfontTarget, hfontNone, 2, 0, 0, 0, nullptr);
    EXPECT_EQ(hfontBefore, hfontTarget);
    Btn::DoSetFontProperties(hfontTarget, hfontDeleted, 2, 0, 0, 0, nullptr);
    EXPECT_EQ(hfontBefore, hfontTarget);
    EXPECT_TRUE(IsFont(hfontTarget));
}

TEST_F(IconBtnFont, OfAllPlainButtonsIsDerivedFromItself) {
    NothingShared fresh;
    ProbeIconBtn button(0, 0, 3, 0, 0);
    auto hfontStock = static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    LOGFONTW lf = Describe(hfontStock);
    IconBtn::SetTextFontProperties(2, FW_BOLD, 0, 0, nullptr);
    IconBtn::SetTextFontProperties(3, 0, 1, 0, L"Tahoma");
    LOGFONTW lfText = Describe(Btn::hFontText);
    AddToFontHeight(lf, 5);
    EXPECT_EQ(lf.lfHeight, lfText.lfHeight) << "both changes";
    EXPECT_EQ(FW_BOLD, lfText.lfWeight);
    EXPECT_NE(0, lfText.lfItalic);
    EXPECT_STREQ(L"Tahoma", lfText.lfFaceName);
    EXPECT_EQ(hfontStock, Btn::hFontLink) << "links keep theirs";
    EXPECT_TRUE(IsFont(hfontStock));
}

TEST_F(IconBtnFont, OfAllLinksIsDerivedFromItself) {
    NothingShared fresh;
    ProbeIconBtn button(0, 0, 5, 0, 0);
    auto hfontStock = static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    LOGFONTW lf = Describe(hfontStock);
    IconBtn::SetLinkFontProperties(2, 0, 0, 1, nullptr);
    IconBtn::SetLinkFontProperties(3, FW_THIN, 0, 0, nullptr);
    LOGFONTW lfLink = Describe(Btn::hFontLink);
    AddToFontHeight(lf, 5);
    EXPECT_EQ(lf.lfHeight, lfLink.lfHeight);
    EXPECT_EQ(FW_THIN, lfLink.lfWeight);
    EXPECT_NE(0, lfLink.lfStrikeOut);
    EXPECT_EQ(hfontStock, Btn::hFontText) << "plain buttons keep theirs";
}

TEST_F(IconBtnFont, CanBeSetBeforeTheFirstButton) {
    NothingShared fresh;
    IconBtn::SetLinkFontProperties(2, 0, 0, 0, nullptr);
    IconBtn::SetTextFontProperties(4, 0, 0, 0, nullptr);
    LOGFONTW lfLink = Describe(static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT)));
    LOGFONTW lfText = lfLink;
    AddToFontHeight(lfLink, 2);
    AddToFontHeight(lfText, 4);
    ProbeIconBtn button(0, 0, 5, 0, 0);
    EXPECT_EQ(lfLink.lfHeight, Describe(Btn::hFontLink).lfHeight);
    EXPECT_EQ(lfText.lfHeight, Describe(Btn::hFontText).lfHeight);
}

TEST_F(IconBtnFont, OfOneButtonIsDerivedFromThatOfItsLook) {
    NothingShared fresh;
    ProbeIconBtn plain(0, 0, 3, 0, 0), link(0, 0, 4, 0, 0);
    IconBtn::SetTextFontProperties(10, 0, 0, 0, nullptr);
    IconBtn::SetLinkFontProperties(20, 0, 0, 0, nullptr);
    HFONT hfontText = Btn::hFontText, hfontLink = Btn::hFontLink;
    LOGFONTW lfText = Describe(hfontText), lfLink = Describe(hfontLink);
    plain.SetThisFontProperties(1, FW_BOLD, 0, 0, nullptr);
    link.SetThisFontProperties(1, FW_BOLD, 0, 0, nullptr);
    AddToFontHeight(lfText, 1);
    AddToFontHeight(lfLink, 1);
    EXPECT_EQ(lfText.lfHeight, Describe(plain.hFontThis).lfHeight);
    EXPECT_EQ(lfLink.lfHeight, Describe(link.hFontThis).lfHeight);
    EXPECT_EQ(FW_BOLD, Describe(link.hFontThis).lfWeight);

    link.SetThisFontProperties(1, 0, 0, 0, nullptr);
    EXPECT_EQ(lfLink.lfHeight, Describe(link.hFontThis).lfHeight) << "not from its own";
    EXPECT_NE(FW_BOLD, Describe(link.hFontThis).lfWeight);
    EXPECT_EQ(hfontText, Btn::hFontText);
    EXPECT_EQ(hfontLink, Btn::hFontLink);
}

TEST(FontUtil, WithoutAFaceAsksForTheDescriptionsOwn) {
    FontMaker maker;
    LOGFONTW lf{};
    wcscpy(lf.lfFaceName, L"Tahoma");
    for (const wchar_t* pszFace : {static_cast<const wchar_t*>(nullptr), L""}) {
        HFONT hfont = CreateFontWithFace(lf, pszFace);
        EXPECT_TRUE(IsFont(hfont));
        ::DeleteObject(hfont);
    }
    EXPECT_EQ(L"Tahoma;Tahoma;", maker.strAsked);
    EXPECT_STREQ(L"Tahoma", lf.lfFaceName);
}

TEST(FontUtil, GoesBackToTheDescriptionsFace) {
    FontMaker maker;
    maker.strRefused = L"Refused";
    LOGFONTW lf{};
    wcscpy(lf.lfFaceName, L"Tahoma");
    HFONT hfont = CreateFontWithFace(lf, L"Refused");
    EXPECT_STREQ(L"Tahoma", Describe(hfont).lfFaceName);
    ::DeleteObject(hfont);
    maker.strRefused = L"*";
    EXPECT_EQ(nullptr, CreateFontWithFace(lf, L"Refused"));
    EXPECT_EQ(nullptr, CreateFontWithFace(lf, nullptr));
    EXPECT_EQ(L"Refused;Tahoma;Refused;Tahoma;Tahoma;", maker.strAsked);
}
} // namespace
