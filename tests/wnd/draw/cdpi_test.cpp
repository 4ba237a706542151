#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "wnd/draw/cdpi.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <cstring>
#include <functional>
#include <iterator>

extern "C" FARPROC __imp_GetDC;

namespace cdpi_detail {
extern INT_PTR nGetDpiForMonitor; // what the first search found
}

namespace {
/// A Windows with or without a GetDpiForMonitor that tells what it is told to.
class FakeMonitorDpi {
  public:
    FakeMonitorDpi() {
        Reset();
        SetRuntimeLookup(&Lookup);
        ForgetSearch();
    }
    ~FakeMonitorDpi() {
        SetRuntimeLookup(nullptr);
        CDPI::SetWindow(nullptr);
        ForgetSearch();
    }
    FakeMonitorDpi(const FakeMonitorDpi&) = delete;
    FakeMonitorDpi& operator=(const FakeMonitorDpi&) = delete;

    static void Forget() { PCDPI()->Invalidate(); }
    static void ForgetSearch() {
        cdpi_detail::nGetDpiForMonitor = 0;
        Forget();
    }
    void Set(unsigned nNewX, unsigned nNewY) {
        nX = nNewX;
        nY = nNewY;
        Forget();
    }

    static inline unsigned nX, nY;
    static inline const char* pszExported; // the name under which it is there, null for none
    static inline HRESULT hr;
    static inline int nCalls, nSearches;
    static inline HMONITOR hmonitorSeen;
    static inline int nTypeSeen;

  private:
    static void Reset() {
        nX = nY = 96;
        pszExported = "GetDpiForMonitor";
        hr = S_OK;
        nCalls = nSearches = 0;
        hmonitorSeen = nullptr;
        nTypeSeen = -1;
    }
    static HRESULT WINAPI GetDpi(HMONITOR hmonitor, int nType, UINT* px, UINT* py) {
        ++nCalls;
        hmonitorSeen = hmonitor;
        nTypeSeen = nType;
        if (FAILED(hr)) return hr;
        *px = nX;
        *py = nY;
        return hr;
    }
    static FARPROC Lookup(const wchar_t* pszModule, const char* pszName) {
        EXPECT_STREQ(L"Shcore.dll", pszModule);
        ++nSearches;
        if (!pszExported || std::strcmp(pszExported, pszName) != 0) return nullptr;
        return AsProc(&GetDpi);
    }
};

int ScreenDpi() {
    HDC hdc = ::GetDC(nullptr);
    int n = ::GetDeviceCaps(hdc, LOGPIXELSX);
    ::ReleaseDC(nullptr, hdc);
    return n;
}

TEST(CDPI, PointsAreOf96DotsBeforeTheFirstQuestion) {
    FakeMonitorDpi fake;
    fake.Set(192, 144);
    CDPI dpi;
    EXPECT_EQ(96, dpi.PointsToPixels(72));
    EXPECT_EQ(72, dpi.PixelsToPoints(96));
    EXPECT_EQ(0, fake.nCalls);
    EXPECT_EQ(144, dpi.GetDPIY());
    EXPECT_EQ(144, dpi.PointsToPixels(72));
    EXPECT_EQ(72, dpi.PixelsToPoints(144));
    EXPECT_EQ(3, dpi.PointsToPixels(1) + dpi.PixelsToPoints(1)) << "rounded: 2 and 0.5";
}

TEST(CDPI, ReadsOnceUntilInvalidated) {
    FakeMonitorDpi fake;
    fake.Set(120, 144);
    EXPECT_EQ(120, PCDPI()->GetDPIX());
    EXPECT_EQ(144, PCDPI()->GetDPIY());
    EXPECT_EQ(1, fake.nCalls);
    fake.nX = 168;
    EXPECT_EQ(120, PCDPI()->GetDPIX());
    PCDPI()->Invalidate();
    EXPECT_EQ(168, PCDPI()->GetDPIX());
    EXPECT_EQ(2, fake.nCalls);
}

TEST(CDPI, AsksForTheEffectiveValueOfTheWindowsMonitor) {
    FakeMonitorDpi fake;
    PlainWnd wnd;
    CDPI::SetWindow(wnd);
    PCDPI()->GetDPIX();
    EXPECT_EQ(::MonitorFromWindow(wnd, MONITOR_DEFAULTTONEAREST), fake.hmonitorSeen);
    EXPECT_EQ(0, fake.nTypeSeen);
    CDPI::SetWindow(nullptr);
    fake.hmonitorSeen = nullptr;
    PCDPI()->GetDPIX();
    EXPECT_EQ(::MonitorFromWindow(nullptr, MONITOR_DEFAULTTOPRIMARY), fake.hmonitorSeen);
}

TEST(CDPI, OnlyAnotherWindowHasItReadAgain) {
    FakeMonitorDpi fake;
    PlainWnd wnd;
    PCDPI()->GetDPIX();
    CDPI::SetWindow(nullptr);
    PCDPI()->GetDPIX();
    EXPECT_EQ(1, fake.nCalls) << "the same window";
    CDPI::SetWindow(wnd);
    PCDPI()->GetDPIX();
    EXPECT_EQ(2, fake.nCalls);
    CDPI::SetWindow(wnd);
    PCDPI()->GetDPIX();
    EXPECT_EQ(2, fake.nCalls);
}

TEST(CDPI, WithoutTheFunctionTheContextTells) {
    FakeMonitorDpi fake;
    fake.pszExported = nullptr;
    EXPECT_EQ(ScreenDpi(), PCDPI()->GetDPIX());
    EXPECT_EQ(ScreenDpi(), PCDPI()->GetDPIY());
    UINT nX = 7, nY = 7;
    EXPECT_EQ(static_cast<long>(0x80004001), CDPI::MyGetDPIForMonitor(nullptr, 0, &nX, &nY));
    EXPECT_EQ(7u, nX);
}

TEST(CDPI, FailedFunctionFallsBackToTheContext) {
    FakeMonitorDpi fake;
    fake.Set(300, 300);
    fake.hr = E_INVALIDARG;
    EXPECT_EQ(ScreenDpi(), PCDPI()->GetDPIX());
    EXPECT_EQ(1, fake.nCalls);
}

TEST(CDPI, WithoutAnyContextTheValuesStay) {
    FakeMonitorDpi fake;
    fake.Set(120, 144);
    CDPI dpi;
    EXPECT_EQ(120, dpi.GetDPIX());
    dpi.Invalidate();
    fake.hr = E_FAIL;
    HDC(WINAPI * pfnNone)(HWND) = [](HWND) -> HDC { return nullptr; };
    ReplaceImport replaced(__imp_GetDC, pfnNone);
    EXPECT_EQ(120, dpi.GetDPIX());
    EXPECT_EQ(144, dpi.GetDPIY());
    EXPECT_EQ(2, fake.nCalls) << "and count as read";
}

TEST(CDPI, FailedSearchIsRememberedWhateverIsLoadedLater) {
    FakeMonitorDpi fake;
    fake.pszExported = nullptr;
    UINT nX = 0, nY = 0;
    EXPECT_EQ(E_NOTIMPL, CDPI::MyGetDPIForMonitor(nullptr, 0, &nX, &nY));
    EXPECT_EQ(2, fake.nSearches) << "both spellings";
    fake.pszExported = "GetDpiForMonitor";
    fake.Set(240, 240);
    EXPECT_EQ(E_NOTIMPL, CDPI::MyGetDPIForMonitor(nullptr, 0, &nX, &nY));
    EXPECT_EQ(2, fake.nSearches);
    EXPECT_EQ(ScreenDpi(), PCDPI()->GetDPIX());
    EXPECT_EQ(0, fake.nCalls);
}

TEST(CDPI, FindsTheOtherSpellingToo) {
    FakeMonitorDpi fake;
    fake.pszExported = "GetDPIForMonitor";
    fake.Set(144, 144);
    EXPECT_EQ(144, PCDPI()->GetDPIX());
    EXPECT_EQ(2, fake.nSearches);
    PCDPI()->Invalidate();
    EXPECT_EQ(144, PCDPI()->GetDPIX());
    EXPECT_EQ(2, fake.nSearches) << "the function is remembered";
}

TEST(CDPI, AsksTheModuleThatIsLoadedAndLoadsNone) {
    FakeMonitorDpi::ForgetSearch();
    bool bLoaded = ::GetModuleHandleW(L"Shcore.dll") != nullptr;
    UINT nX = 7, nY = 7;
    HMONITOR hmonitor = ::MonitorFromWindow(nullptr, MONITOR_DEFAULTTOPRIMARY);
    EXPECT_EQ(bLoaded ? S_OK : E_NOTIMPL, CDPI::MyGetDPIForMonitor(hmonitor, 0, &nX, &nY));
    UINT nExpected = bLoaded ? static_cast<UINT>(ScreenDpi()) : 7;
    EXPECT_EQ(nExpected, nX);
    EXPECT_EQ(nExpected, nY);
    EXPECT_EQ(bLoaded, ::GetModuleHandleW(L"Shcore.dll") != nullptr);
}

TEST(CDPI, FieldsAreTheFlagAndTheTwoValues) {
    FakeMonitorDpi fake;
    fake.Set(120, 144);
    struct Layout {
        char isInit;
        int dpiX, dpiY;
    } layout;
    static_assert(sizeof(CDPI) == sizeof(Layout));
    CDPI dpi;
    auto fnLook = [&] {
        std::memcpy(&layout, static_cast<const void*>(&dpi), sizeof(layout));
        return std::vector<int>{layout.isInit, layout.dpiX, layout.dpiY};
    };
    EXPECT_EQ((std::vector<int>{0, 96, 96}), fnLook());
    dpi.GetDPIY();
    EXPECT_EQ((std::vector<int>{1, 120, 144}), fnLook());
    dpi.Invalidate();
    EXPECT_EQ((std::vector<int>{0, 120, 144}), fnLook()) << "only the flag";
}

TEST(CDPI, EveryQuestionReadsTheValuesFirst) {
    FakeMonitorDpi fake;
    RECT rc{};
    SIZE size{};
    const std::function<void(CDPI&)> questions[] = {
        [](CDPI& dpi) { dpi.GetDPIX(); },
        [](CDPI& dpi) { dpi.GetDPIY(); },
        [](CDPI& dpi) { dpi.IsCustom(); },
        [](CDPI& dpi) { dpi.ScaleX(1); },
        [](CDPI& dpi) { dpi.ScaleY(1); },
        [](CDPI& dpi) { dpi.UnscaleX(1); },
        [](CDPI& dpi) { dpi.UnscaleY(1); },
        [&](CDPI& dpi) { dpi.ScaleRect(&rc); },
        [&](CDPI& dpi) { dpi.ScaleSize(&size); },
        [](CDPI& dpi) { dpi.ScaledScreenWidth(); },
        [](CDPI& dpi) { dpi.ScaledScreenHeight(); },
        [](CDPI& dpi) { dpi.IsResolutionAtLeast(1, 1); },
        [](CDPI& dpi) { dpi.ShouldAdjustForSkin(); },
        [](CDPI& dpi) { dpi.GetAdjustedSysIconSize(); },
        [](CDPI& dpi) { dpi.GetAdjustedIconSize48_64(); },
    };
    for (std::size_t i = 0; i < std::size(questions); ++i) {
        CDPI dpi;
        fake.nCalls = 0;
        questions[i](dpi);
        EXPECT_EQ(1, fake.nCalls) << i;
    }
}

TEST(CDPI, ZeroIsNotTaken) {
    FakeMonitorDpi fake;
    fake.Set(0, 0);
    CDPI dpi;
    EXPECT_EQ(96, dpi.GetDPIX());
    EXPECT_EQ(96, dpi.GetDPIY());
    EXPECT_EQ(5, dpi.UnscaleX(5));
}

TEST(CDPI, AgreesWithThePlatformsScreen) {
    CDPI dpi;
    EXPECT_EQ(ScreenDpi(), dpi.GetDPIX());
    EXPECT_EQ(dpi.GetDPIX() != 96, dpi.IsCustom());
}

TEST(CDPI, IsCustomByEitherAxis) {
    FakeMonitorDpi fake;
    EXPECT_EQ(0, PCDPI()->IsCustom());
    fake.Set(97, 96);
    EXPECT_EQ(1, PCDPI()->IsCustom());
    fake.Set(96, 95);
    EXPECT_EQ(1, PCDPI()->IsCustom());
}

TEST(CDPI, ScalesEachAxisByItsOwnRoundingToTheNearest) {
    FakeMonitorDpi fake;
    fake.Set(144, 192);
    CDPI dpi;
    EXPECT_EQ(15, dpi.ScaleX(10));
    EXPECT_EQ(2, dpi.ScaleX(1)) << "1.5";
    EXPECT_EQ(20, dpi.ScaleY(10));
    EXPECT_EQ(-15, dpi.ScaleX(-10));
    EXPECT_EQ(1, dpi.UnscaleX(1)) << "0.67";
    EXPECT_EQ(10, dpi.UnscaleX(15));
    EXPECT_EQ(5, dpi.UnscaleY(10));
    EXPECT_EQ(-1, dpi.ScaleX(0x7FFFFFFF)) << "too much for 32 bits";
    EXPECT_EQ(0x7FFFFFFE, dpi.ScaleX(0x55555554)) << "the greatest even result";
    EXPECT_EQ(0, dpi.ScaleX(0));
    RECT rc{2, 3, 4, 5};
    dpi.ScaleRect(&rc);
    EXPECT_EQ(3, rc.left);
    EXPECT_EQ(6, rc.top);
    EXPECT_EQ(6, rc.right);
    EXPECT_EQ(10, rc.bottom);
    SIZE size{2, 3};
    dpi.ScaleSize(&size);
    EXPECT_EQ(3, size.cx);
    EXPECT_EQ(6, size.cy);
}

TEST(CDPI, TellsTheScreenInDesignUnits) {
    FakeMonitorDpi fake;
    fake.Set(192, 144);
    int cx = ::MulDiv(::GetSystemMetrics(SM_CXSCREEN), 96, 192);
    int cy = ::MulDiv(::GetSystemMetrics(SM_CYSCREEN), 96, 144);
    EXPECT_EQ(cx, PCDPI()->ScaledScreenWidth());
    EXPECT_EQ(cy, PCDPI()->ScaledScreenHeight());
    EXPECT_TRUE(PCDPI()->IsResolutionAtLeast(cx, cy));
    EXPECT_FALSE(PCDPI()->IsResolutionAtLeast(cx + 1, cy));
    EXPECT_FALSE(PCDPI()->IsResolutionAtLeast(cx, cy + 1));
}

struct DpiCase {
    unsigned nX, nY;
    int nSkin, nSysIcon, nIcon48_64;
};
class CDPISteps : public testing::TestWithParam<DpiCase> {};
TEST_P(CDPISteps, DecideByTheDpi) {
    const DpiCase& row = GetParam();
    FakeMonitorDpi fake;
    fake.Set(row.nX, row.nY);
    EXPECT_EQ(row.nSkin, PCDPI()->ShouldAdjustForSkin());
    EXPECT_EQ(row.nSysIcon, PCDPI()->GetAdjustedSysIconSize());
    EXPECT_EQ(row.nIcon48_64, PCDPI()->GetAdjustedIconSize48_64());
}
INSTANTIATE_TEST_SUITE_P(Cases, CDPISteps,
                         testing::Values(DpiCase{96, 96, 0, 16, 48}, DpiCase{97, 96, 1, 16, 48},
                                         DpiCase{112, 96, 1, 16, 48}, DpiCase{113, 113, 0, 16, 48},
                                         DpiCase{96, 97, 1, 16, 48}, DpiCase{113, 112, 1, 16, 48},
                                         DpiCase{119, 200, 0, 16, 48}, DpiCase{120, 96, 0, 24, 48},
                                         DpiCase{143, 200, 0, 24, 48}, DpiCase{144, 96, 0, 24, 64},
                                         DpiCase{191, 96, 0, 24, 64}, DpiCase{192, 96, 0, 32, 64}),
                         [](const auto& row) {
                             return std::to_string(row.param.nX) + "by" +
                                    std::to_string(row.param.nY);
                         });
} // namespace
