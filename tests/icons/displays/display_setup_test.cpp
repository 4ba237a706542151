#include "icons/displays/display_setup.h"
#include "icons/displays_test_support.h"

#include <gtest/gtest.h>
#include <memory>

namespace {
const FakeDisplay kPrimary{{0, 0, 1920, 1080}, true};

std::wstring TextOf(const DisplaySetup& setup) {
    wchar_t szText[kSetupTextSize] = L"untouched";
    setup.FormatText(szText);
    return szText;
}

std::wstring ReadText(std::vector<FakeDisplay> list) {
    FakeDisplays displays(std::move(list));
    DisplaySetup setup;
    EXPECT_EQ(!displays.displays.empty(), setup.Read());
    return TextOf(setup);
}

struct TextCase {
    const char* pszName;
    std::vector<FakeDisplay> displays;
    const wchar_t* pszText;
};
class DisplaySetupText : public testing::TestWithParam<TextCase> {};

TEST_P(DisplaySetupText, NamesThePrimaryOneFirstAndTheOthersByPlace) {
    EXPECT_EQ(GetParam().pszText, ReadText(GetParam().displays));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DisplaySetupText,
    testing::Values(
        TextCase{"One", {kPrimary}, L"1920x1080+0+0@96"},
        TextCase{
            "Two", {kPrimary, {{1920, 0, 3200, 1024}}}, L"1920x1080+0+0@96 1280x1024+1920+0@96"},
        TextCase{"PrimaryListedLast",
                 {{{1920, 0, 3200, 1024}}, kPrimary},
                 L"1920x1080+0+0@96 1280x1024+1920+0@96"},
        TextCase{"LeftAndAbove",
                 {{{-100, 5, 0, 105}}, kPrimary, {{-100, -200, 0, 0}, false, 144}},
                 L"1920x1080+0+0@96 100x200-100-200@144 100x100-100+5@96"},
        TextCase{"NoPrimary", {{{5, 0, 10, 5}}, {{0, 0, 5, 5}}}, L"5x5+0+0@96 5x5+5+0@96"},
        TextCase{"SameTwice", {kPrimary, {{0, 0, 1920, 1080}, false, 144}}, L"1920x1080+0+0@96"},
        TextCase{"None", {}, L""}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(DisplaySetup, OfAsManyDisplaysAsThereMayBeIsTold) {
    std::vector<FakeDisplay> list;
    for (LONG n = 0; n < static_cast<LONG>(kMaxDisplays); ++n)
        list.push_back({{-2000000000 + n, -2000000000, 147483647, 147483647}, false, 4000000000});
    std::wstring strText = ReadText(list);
    EXPECT_EQ(kMaxDisplays - 1, std::count(strText.begin(), strText.end(), L' '));
    EXPECT_TRUE(strText.ends_with(L"@4000000000"));
    FakeDisplays displays(list);
    displays.displays.push_back(kPrimary);
    DisplaySetup setup;
    EXPECT_FALSE(setup.Read());
    EXPECT_EQ(L"", TextOf(setup));
    EXPECT_TRUE(setup.GetName().IsEmpty());
}

TEST(DisplaySetup, ForgetsWhatItHeldWhenItCannotBeRead) {
    FakeDisplays displays({kPrimary, {{1920, 0, 3200, 1024}}});
    DisplaySetup setup;
    ASSERT_TRUE(setup.Read());
    displays.displays[1].bGone = true;
    EXPECT_FALSE(setup.Read());
    EXPECT_EQ(L"", TextOf(setup));
    EXPECT_FALSE(setup.Contains(5, 5));
    displays.displays.clear();
    EXPECT_FALSE(setup.Read());
}

TEST(DisplaySetup, HasTheSystemsScaleWhereNoneIsToldByDisplay) {
    FakeDisplays displays({{{0, 0, 800, 600}, true, 288}});
    HDC hdc = ::GetDC(nullptr);
    std::wstring strText = L"800x600+0+0@" + std::to_wstring(::GetDeviceCaps(hdc, LOGPIXELSX));
    ::ReleaseDC(nullptr, hdc);
    DisplaySetup setup;
    displays.hrDpi = E_INVALIDARG;
    ASSERT_TRUE(setup.Read());
    EXPECT_EQ(strText, TextOf(setup));
    displays.hrDpi = S_OK;
    displays.displays[0].nDpi = 0;
    ASSERT_TRUE(setup.Read());
    EXPECT_EQ(strText, TextOf(setup));
    displays.windows.Hide("GetDpiForMonitor");
    ASSERT_TRUE(setup.Read());
    EXPECT_EQ(strText, TextOf(setup));
}

TEST(DisplaySetup, IsToldOfTheDisplaysThatThereAre) {
    DisplaySetup setup;
    ASSERT_TRUE(setup.Read());
    std::wstring strStart = std::to_wstring(::GetSystemMetrics(SM_CXSCREEN)) + L"x" +
                            std::to_wstring(::GetSystemMetrics(SM_CYSCREEN)) + L"+0+0@";
    EXPECT_TRUE(TextOf(setup).starts_with(strStart)) << testing::PrintToString(TextOf(setup));
}

// The name

TEST(DisplaySetup, IsNamedByTheDigestOfItsText) {
    FakeDisplays displays;
    EXPECT_STREQ(L"1D2B558CF9612C0FC8DC426E2890B2A2", ReadSetupName().sz);
    EXPECT_EQ(DisplaysKey::NameOfText(L"1920x1080+0+0@96"), ReadSetupName().sz);
    displays.displays[0].nDpi = 120;
    EXPECT_EQ(DisplaysKey::NameOfText(L"1920x1080+0+0@120"), ReadSetupName().sz);
    displays.displays.clear();
    EXPECT_TRUE(ReadSetupName().IsEmpty());
}

TEST(DisplaySetup, WithoutANameIsLikeNoOther) {
    SetupName none;
    EXPECT_FALSE(none == none);
    EXPECT_FALSE(MakeSetupName(L"a") == none);
    EXPECT_TRUE(MakeSetupName(L"a") == MakeSetupName(L"a"));
    EXPECT_FALSE(MakeSetupName(L"a") == MakeSetupName(L"b"));
}

// Places

TEST(DisplaySetup, ContainsWhatADisplayShows) {
    FakeDisplays displays({kPrimary, {{-100, -100, 0, 0}}});
    DisplaySetup setup;
    ASSERT_TRUE(setup.Read());
    for (auto [x, y] : {std::pair{0, 0}, {1919, 1079}, {-1, -1}, {-100, -100}})
        EXPECT_TRUE(setup.Contains(x, y)) << x << " " << y;
    for (auto [x, y] : {std::pair{1920, 0}, {0, 1080}, {-1, 0}, {0, -1}, {-101, -50}, {-50, -101}})
        EXPECT_FALSE(setup.Contains(x, y)) << x << " " << y;
    EXPECT_FALSE(setup.Contains(1ll << 32, 0));
    EXPECT_FALSE(setup.Contains(0, -(1ll << 32)));
}

// True pixels

std::vector<INT_PTR> contexts;
void* WINAPI SetContext(void* p) {
    contexts.push_back(reinterpret_cast<INT_PTR>(p));
    return reinterpret_cast<void*>(INT_PTR{77});
}
void* WINAPI RefuseContext(void* p) {
    contexts.push_back(reinterpret_cast<INT_PTR>(p));
    return nullptr;
}

TEST(TruePixels, AreAskedForByTheThreadAndGivenBack) {
    ReplaceFunctions windows;
    windows.Set("SetThreadDpiAwarenessContext", &SetContext);
    contexts.clear();
    {
        TruePixels pixels;
        EXPECT_EQ(std::vector<INT_PTR>{-3}, contexts);
    }
    EXPECT_EQ((std::vector<INT_PTR>{-3, 77}), contexts);
    windows.Set("SetThreadDpiAwarenessContext", &RefuseContext);
    contexts.clear();
    { TruePixels pixels; }
    EXPECT_EQ(std::vector<INT_PTR>{-3}, contexts); // nothing to give back
    windows.Hide("SetThreadDpiAwarenessContext");
    { TruePixels pixels; }
    EXPECT_EQ(1u, contexts.size());
}

TEST(TruePixels, AreWhatASetupIsReadIn) {
    FakeDisplays displays;
    displays.windows.Set("SetThreadDpiAwarenessContext", &SetContext);
    contexts.clear();
    DisplaySetup setup;
    EXPECT_TRUE(setup.Read());
    EXPECT_EQ((std::vector<INT_PTR>{-3, 77}), contexts);
}
} // namespace
