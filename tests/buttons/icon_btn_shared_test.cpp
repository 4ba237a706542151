// What all icon buttons share, and who makes and frees it.
#include "buttons/icon_probe.h"
#include "support/gui_objects.h"

#include <gtest/gtest.h>
#include <atomic>
#include <thread>
#include <vector>

namespace {
using Btn = ProbeIconBtn;

int CountShared() {
    int n = 0;
    for (const NamedPen& pen : kPens) n += *pen.ppen != nullptr;
    for (HBRUSH hbr : {Btn::hbr[0], Btn::hbr[1], Btn::hbrBkg}) n += hbr != nullptr;
    return n;
}

TEST(IconBtn, TheLibraryReservesTheCommonValues) {
    EXPECT_EQ(1, Btn::dwRefCount);
    ProbeIconBtn button(0, 0, kCommonValue, kCommonValue, kCommonValue);
    EXPECT_EQ(5u, button.dwFlags);
    EXPECT_EQ(2, button.xPos);
    EXPECT_EQ(0, button.yPos);
    EXPECT_EQ(2, Btn::dwRefCount);
    EXPECT_EQ(kSharedObjects, CountShared());
}

TEST(IconBtn, FirstButtonSetsTheTone) {
    NothingShared fresh;
    ProbeIconBtn first(0, 0, 7, 11, 12);
    EXPECT_EQ(7u, Btn::dwCommonFlags);
    EXPECT_EQ(11, Btn::dxCommon);
    EXPECT_EQ(12, Btn::dyCommon);
    ProbeIconBtn second(0, 0, 1, 21, 22);
    ProbeIconBtn third(0, 0, kCommonValue, kCommonValue, kCommonValue);
    EXPECT_EQ(1u, second.dwFlags);
    EXPECT_EQ(21, second.xPos);
    EXPECT_EQ(22, second.yPos);
    EXPECT_EQ(7u, third.dwFlags);
    EXPECT_EQ(11, third.xPos);
    EXPECT_EQ(12, third.yPos);
    EXPECT_EQ(3, Btn::dwRefCount);
}

TEST(IconBtn, InitializeBeforeTheFirstButtonSetsTheCommonValues) {
    NothingShared fresh;
    IconBtn::Initialize(3, 5, 6);
    EXPECT_EQ(kSharedObjects, CountShared()) << "it makes everything";
    {
        ProbeIconBtn first(0, 0, 7, 11, 12);
        ProbeIconBtn second(0, 0, kCommonValue, kCommonValue, kCommonValue);
        EXPECT_EQ(3u, second.dwFlags);
        EXPECT_EQ(5, second.xPos);
        EXPECT_EQ(6, second.yPos);
    }
    IconBtn::Initialize(1, 1, 1);
    EXPECT_EQ(3u, Btn::dwCommonFlags) << "only the first call counts";
    IconBtn::Uninitialize();
    EXPECT_EQ(1, Btn::dwRefCount);
    EXPECT_EQ(kSharedObjects, CountShared());
    IconBtn::Uninitialize();
    EXPECT_EQ(0, Btn::dwRefCount);
    EXPECT_EQ(0, CountShared());
}

TEST(IconBtn, TheNextFirstButtonSetsTheToneAnew) {
    NothingShared fresh;
    { ProbeIconBtn button(0, 0, 7, 11, 12); }
    EXPECT_EQ(0, CountShared());
    ProbeIconBtn button(0, 0, 2, 13, 14);
    EXPECT_EQ(2u, Btn::dwCommonFlags);
    EXPECT_EQ(13, Btn::dxCommon);
    EXPECT_EQ(14, Btn::dyCommon);
    EXPECT_EQ(kSharedObjects, CountShared());
}

TEST(IconBtn, CommonValuesStandForFlagsAndForThePlaceOnTheirOwn) {
    ProbeIconBtn ownFlags(0, 0, 1, kCommonValue, 77);
    EXPECT_EQ(1u, ownFlags.dwFlags);
    EXPECT_EQ(2, ownFlags.xPos);
    EXPECT_EQ(0, ownFlags.yPos) << "x alone decides";
    ProbeIconBtn ownPlace(0, 0, kCommonValue, 33, kCommonValue);
    EXPECT_EQ(5u, ownPlace.dwFlags);
    EXPECT_EQ(33, ownPlace.xPos);
    EXPECT_EQ(kCommonValue, ownPlace.yPos);
}

TEST(IconBtn, SharedValuesAreTheSystems) {
    ProbeIconBtn button(0, 0, 3, 0, 0);
    EXPECT_EQ(::GetSysColor(COLOR_BTNFACE), Btn::rgbBk[0]);
    EXPECT_EQ(::GetSysColor(COLOR_BTNHIGHLIGHT), Btn::rgbBk[1]);
    EXPECT_EQ(RGB(187, 0, 0), Btn::rgbHover);
    EXPECT_EQ(::GetSysColor(COLOR_GRAYTEXT), Btn::rgbGray);
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), Btn::rgbText[0]);
    EXPECT_EQ(::GetSysColor(COLOR_BTNTEXT), Btn::rgbText[1]);
    EXPECT_EQ(RGB(0, 0, 187), Btn::rgbLink[0]);
    EXPECT_EQ(RGB(255, 255, 255), Btn::rgbLink[1]);
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), Btn::hFontText);
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), Btn::hFontLink);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), Btn::sizeIcon.cx);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), Btn::sizeIcon.cy);
    EXPECT_EQ(2, Btn::sizeGap.cx);
    EXPECT_EQ(2, Btn::sizeGap.cy);
}

enum PenStyle { kAlternate, kDot, kSolid };
struct PenCase {
    const char* pszName;
    PenStyle style;
    const COLORREF* pcr;
};
class IconBtnPen : public testing::TestWithParam<PenCase> {};

TEST_P(IconBtnPen, HasItsStyleAndColour) {
    ProbeIconBtn button(0, 0, 3, 0, 0);
    HPEN hpen = nullptr;
    for (const NamedPen& pen : kPens)
        if (std::string(pen.pszName) == GetParam().pszName) hpen = *pen.ppen;
    ASSERT_NE(nullptr, hpen);
    if (GetParam().style == kAlternate) {
        ASSERT_EQ(static_cast<DWORD>(OBJ_EXTPEN), ::GetObjectType(hpen));
        EXTLOGPEN log{};
        ASSERT_NE(0, ::GetObjectW(hpen, sizeof(log), &log));
        EXPECT_EQ(static_cast<DWORD>(PS_ALTERNATE), log.elpPenStyle & PS_STYLE_MASK);
        EXPECT_EQ(1u, log.elpWidth);
        EXPECT_EQ(static_cast<UINT>(BS_SOLID), log.elpBrushStyle);
        EXPECT_EQ(*GetParam().pcr, log.elpColor);
        return;
    }
    LOGPEN log{};
    ASSERT_NE(0, ::GetObjectW(hpen, sizeof(log), &log));
    EXPECT_EQ(static_cast<UINT>(GetParam().style == kDot ? PS_DOT : PS_SOLID), log.lopnStyle);
    EXPECT_EQ(*GetParam().pcr, log.lopnColor);
}

INSTANTIATE_TEST_SUITE_P(Pens, IconBtnPen,
                         testing::Values(PenCase{"hoverDotted", kAlternate, &Btn::rgbHover},
                                         PenCase{"hoverDashed", kDot, &Btn::rgbHover},
                                         PenCase{"hoverSolid", kSolid, &Btn::rgbHover},
                                         PenCase{"linkDotted", kAlternate, &Btn::rgbLink[0]},
                                         PenCase{"linkDashed", kDot, &Btn::rgbLink[0]},
                                         PenCase{"linkSolid", kSolid, &Btn::rgbLink[0]},
                                         PenCase{"grayDotted", kAlternate, &Btn::rgbGray},
                                         PenCase{"grayDashed", kDot, &Btn::rgbGray},
                                         PenCase{"bkg", kSolid, &Btn::rgbBk[0]},
                                         PenCase{"focusText", kAlternate, &Btn::rgbText[0]},
                                         PenCase{"focusLink", kSolid, &Btn::rgbText[0]},
                                         PenCase{"focusBkg", kAlternate, &Btn::rgbBk[0]}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(IconBtn, BrushesAreSolid) {
    ProbeIconBtn button(0, 0, 3, 0, 0);
    const struct {
        HBRUSH hbr;
        COLORREF cr;
    } rows[] = {
        {Btn::hbr[0], Btn::rgbBk[0]}, {Btn::hbr[1], Btn::rgbBk[1]}, {Btn::hbrBkg, Btn::rgbBk[0]}};
    for (const auto& row : rows) {
        LOGBRUSH log{};
        ASSERT_NE(0, ::GetObjectW(row.hbr, sizeof(log), &log));
        EXPECT_EQ(static_cast<UINT>(BS_SOLID), log.lbStyle);
        EXPECT_EQ(row.cr, log.lbColor);
    }
    EXPECT_NE(Btn::hbr[0], Btn::hbrBkg);
}

TEST(IconBtn, LinkColoursLeavePensThatAreMade) {
    ProbeIconBtn button(0, 0, 3, 0, 0);
    IconBtn::SetLinkColor(RGB(1, 2, 3));
    IconBtn::SetActiveLinkColor(RGB(4, 5, 6));
    EXPECT_EQ(RGB(1, 2, 3), Btn::rgbLink[0]);
    EXPECT_EQ(RGB(4, 5, 6), Btn::rgbLink[1]);
    LOGPEN log{};
    ::GetObjectW(Btn::penLinkSolid, sizeof(log), &log);
    EXPECT_EQ(RGB(0, 0, 187), log.lopnColor);
    IconBtn::SetLinkColor(RGB(0, 0, 187));
    IconBtn::SetActiveLinkColor(RGB(255, 255, 255));
}

TEST(IconBtn, UninitializeLeavesTheFonts) {
    NothingShared fresh;
    { ProbeIconBtn button(0, 0, 3, 0, 0); }
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), Btn::hFontText);
    EXPECT_EQ(::GetStockObject(DEFAULT_GUI_FONT), Btn::hFontLink);
    IconBtn::SetTextFontProperties(3, 0, 0, 0, nullptr);
    HFONT hfont = Btn::hFontText;
    { ProbeIconBtn button(0, 0, 3, 0, 0); }
    EXPECT_EQ(hfont, Btn::hFontText);
    EXPECT_EQ(static_cast<DWORD>(OBJ_FONT), ::GetObjectType(hfont));
}

TEST(IconBtn, MakesTheSharedObjectsOnceForAnyNumber) {
    NothingShared fresh;
    int nBefore = CountGdiObjects();
    {
        std::vector<std::unique_ptr<ProbeIconBtn>> buttons;
        for (int i = 0; i < 100; ++i)
            buttons.push_back(std::make_unique<ProbeIconBtn>(0u, 0u, 3ul, 0, 0));
        EXPECT_EQ(100, Btn::dwRefCount);
        EXPECT_EQ(nBefore + kSharedObjects, CountGdiObjects());
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

// Threads

template <class Fn>
void OnThreads(int nThreads, Fn fn) {
    std::atomic<int> nReady = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < nThreads; ++i)
        threads.emplace_back([&] {
            for (++nReady; nReady < nThreads;) std::this_thread::yield();
            fn();
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(IconBtn, PairsOnSeveralThreadsLeaveTheCountAsItWas) {
    ProbeIconBtn held(0, 0, 3, 0, 0);
    long nBefore = Btn::dwRefCount;
    int nObjects = CountGdiObjects();
    OnThreads(8, [] {
        for (int i = 0; i < 300; ++i) {
            IconBtn::Initialize(1, 2, 3);
            { ProbeIconBtn button(0, 0, 3, 0, 0); }
            IconBtn::Uninitialize();
        }
    });
    EXPECT_EQ(nBefore, Btn::dwRefCount);
    EXPECT_EQ(kSharedObjects, CountShared());
    EXPECT_EQ(nObjects, CountGdiObjects());
    EXPECT_EQ(5u, Btn::dwCommonFlags);
}

TEST(IconBtn, FirstButtonsOnSeveralThreadsMakeOneSet) {
    for (int nRound = 0; nRound < 40; ++nRound) {
        NothingShared fresh;
        int nBefore = CountGdiObjects();
        IconBtn::ReserveCommon(5, 2, 0); // as the library's start does
        OnThreads(4, [] { ProbeIconBtn button(0, 0, 3, 0, 0); });
        ASSERT_EQ(nBefore + kSharedObjects, CountGdiObjects()) << nRound;
        IconBtn::Uninitialize();
        ASSERT_EQ(nBefore, CountGdiObjects()) << nRound;
    }
}
} // namespace
