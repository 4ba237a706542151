// Fonts for large captions.
#include "richtext/control/html_dlg.h"
#include "richtext/control/large_text.h"
#include "support/gui_objects.h"
#include "support/test_window.h"

extern "C" FARPROC __imp_CreateFontIndirectW;
extern "C" FARPROC __imp_GetObjectW;

namespace {
/// What fonts were asked for in the length of a block; the platform may refuse some.
class FontRecord {
  public:
    explicit FontRecord(int nRefusedFirst = 0) : replaced(__imp_CreateFontIndirectW, &Record) {
        asked.clear();
        nRefused = nRefusedFirst;
        pfn = replaced.Original<decltype(::CreateFontIndirectW)>();
    }
    const std::vector<LOGFONTW>& Asked() const { return asked; }

  private:
    static HFONT WINAPI Record(const LOGFONTW* plf) {
        asked.push_back(*plf);
        return nRefused-- > 0 ? nullptr : pfn(plf);
    }
    static inline std::vector<LOGFONTW> asked;
    static inline int nRefused = 0;
    static inline decltype(&::CreateFontIndirectW) pfn = nullptr;
    ReplaceImport replaced;
};

/// Has the platform's font another height and weight in the length of a block.
class StockFontIs {
  public:
    static constexpr LONG kWeight = 350;

    explicit StockFontIs(LONG lHeightNew, int nResultNew = sizeof(LOGFONTW))
        : replaced(__imp_GetObjectW, &Get) {
        lHeight = lHeightNew;
        nResult = nResultNew;
        pfn = replaced.Original<decltype(::GetObjectW)>();
    }

  private:
    static int WINAPI Get(HANDLE h, int cb, void* pv) {
        if (h != ::GetStockObject(ANSI_VAR_FONT)) return pfn(h, cb, pv);
        if (nResult == 0) return 0;
        pfn(h, cb, pv);
        static_cast<LOGFONTW*>(pv)->lfHeight = lHeight;
        static_cast<LOGFONTW*>(pv)->lfWeight = kWeight;
        return nResult;
    }
    static inline LONG lHeight = 0;
    static inline int nResult = 0;
    static inline decltype(&::GetObjectW) pfn = nullptr;
    ReplaceImport replaced;
};

LOGFONTW StockFont() {
    LOGFONTW lf{};
    ::GetObjectW(::GetStockObject(ANSI_VAR_FONT), sizeof(lf), &lf);
    return lf;
}
struct ProbeText : LargeStaticTextCtl {
    using LargeStaticTextCtl::hFont;
    using LargeStaticTextCtl::LargeStaticTextCtl;
    using LargeStaticTextCtl::lWeight;
    using LargeStaticTextCtl::nAdd;
    using LargeStaticTextCtl::nMultiplier;
    using LargeStaticTextCtl::pszFaceName;
};
/// The font that a set-up asks for.
LOGFONTW AskedBy(int nMultiplier, int nAdd, long lWeight, const wchar_t* pszFace) {
    FontRecord record;
    LargeStaticTextCtl text(nMultiplier, nAdd, lWeight, pszFace);
    EXPECT_EQ(1u, record.Asked().size());
    return record.Asked().empty() ? LOGFONTW{} : record.Asked()[0];
}

TEST(LargeText, DefaultIsTwiceAsLargeAndTwoMoreAndBold) {
    ProbeText text;
    EXPECT_EQ(2, text.nMultiplier);
    EXPECT_EQ(2, text.nAdd);
    EXPECT_EQ(700, text.lWeight);
    EXPECT_EQ(nullptr, text.pszFaceName);
    ASSERT_NE(nullptr, text.hFont);
    LOGFONTW lf{};
    ::GetObjectW(text.hFont, sizeof(lf), &lf);
    const LOGFONTW lfStock = StockFont();
    EXPECT_EQ(std::abs(lfStock.lfHeight) * 2 + 2, std::abs(lf.lfHeight));
    EXPECT_EQ(700, lf.lfWeight);
    EXPECT_STREQ(lfStock.lfFaceName, lf.lfFaceName);
}

TEST(LargeText, PageTitleIsTheSameInItsOwnFace) {
    FontRecord record;
    LargePageTitle title;
    ASSERT_LE(1u, record.Asked().size());
    const LOGFONTW& lf = record.Asked().back();
    EXPECT_STREQ(L"Segoe", lf.lfFaceName);
    EXPECT_EQ(700, lf.lfWeight);
    EXPECT_EQ(std::abs(StockFont().lfHeight) * 2 + 2, std::abs(lf.lfHeight));
    EXPECT_EQ(sizeof(LargeStaticTextCtl), sizeof(LargePageTitle));
}

TEST(LargeText, QualityIsAntialiased) { EXPECT_EQ(4, AskedBy(1, 0, 400, nullptr).lfQuality); }

TEST(LargeText, Weight400KeepsThePlatformFonts) {
    {
        StockFontIs stock(12);
        EXPECT_EQ(StockFontIs::kWeight, AskedBy(1, 0, 400, nullptr).lfWeight);
    }
    EXPECT_EQ(StockFont().lfWeight, AskedBy(1, 0, 400, nullptr).lfWeight);
    EXPECT_EQ(0, AskedBy(1, 0, 0, nullptr).lfWeight);
    EXPECT_EQ(399, AskedBy(1, 0, 399, nullptr).lfWeight);
    EXPECT_EQ(900, AskedBy(1, 0, 900, nullptr).lfWeight);
}

TEST(LargeText, MultiplierOf0And1KeepTheHeight) {
    const LONG lHeight = StockFont().lfHeight;
    EXPECT_EQ(lHeight, AskedBy(0, 0, 400, nullptr).lfHeight);
    EXPECT_EQ(lHeight, AskedBy(1, 0, 400, nullptr).lfHeight);
    EXPECT_EQ(lHeight * 3, AskedBy(3, 0, 400, nullptr).lfHeight);
    EXPECT_EQ(-lHeight, AskedBy(-1, 0, 400, nullptr).lfHeight);
}

TEST(LargeText, AdditionGrowsTheHeightInBothSignsAfterTheMultiplication) {
    {
        StockFontIs stock(12);
        EXPECT_EQ(12 + 3, AskedBy(1, 3, 400, nullptr).lfHeight);
        EXPECT_EQ(12 * 2 + 3, AskedBy(2, 3, 400, nullptr).lfHeight);
        EXPECT_EQ(12 - 3, AskedBy(1, -3, 400, nullptr).lfHeight);
        EXPECT_EQ(-12 - 3, AskedBy(-1, 3, 400, nullptr).lfHeight);
    }
    {
        StockFontIs stock(-12);
        EXPECT_EQ(-12 - 3, AskedBy(1, 3, 400, nullptr).lfHeight);
        EXPECT_EQ(-12 * 2 - 3, AskedBy(2, 3, 400, nullptr).lfHeight);
    }
    StockFontIs stock(0);
    EXPECT_EQ(-3, AskedBy(2, 3, 400, nullptr).lfHeight); // no height counts as negative
}

TEST(LargeText, FaceIsTakenUpTo31Characters) {
    EXPECT_STREQ(L"Tahoma", AskedBy(1, 0, 400, L"Tahoma").lfFaceName);
    EXPECT_STREQ(StockFont().lfFaceName, AskedBy(1, 0, 400, L"").lfFaceName);
    EXPECT_STREQ(StockFont().lfFaceName, AskedBy(1, 0, 400, nullptr).lfFaceName);
    EXPECT_STREQ(std::wstring(31, L'f').c_str(),
                 AskedBy(1, 0, 400, std::wstring(40, L'f').c_str()).lfFaceName);
}

TEST(LargeText, RefusedFaceIsTriedOnceMoreWithThePlatforms) {
    FontRecord record(1);
    ProbeText text(2, 2, 700, L"Segoe");
    ASSERT_EQ(2u, record.Asked().size());
    EXPECT_STREQ(L"Segoe", record.Asked()[0].lfFaceName);
    EXPECT_STREQ(StockFont().lfFaceName, record.Asked()[1].lfFaceName);
    EXPECT_EQ(record.Asked()[0].lfHeight, record.Asked()[1].lfHeight);
    EXPECT_EQ(700, record.Asked()[1].lfWeight);
    EXPECT_NE(nullptr, text.hFont);
}

TEST(LargeText, WithoutAFaceARefusedFontIsNotTriedAgain) {
    FontRecord record(1);
    ProbeText text(2, 2, 700, nullptr);
    EXPECT_EQ(1u, record.Asked().size());
    EXPECT_EQ(nullptr, text.hFont);
}

TEST(LargeText, FontThatIsRefusedTwiceIsNone) {
    FontRecord record(2);
    ProbeText text(2, 2, 700, L"Segoe");
    EXPECT_EQ(2u, record.Asked().size());
    EXPECT_EQ(nullptr, text.hFont);
}

TEST(LargeText, WithoutThePlatformsFontOnlyTheArgumentsAreKept) {
    ProbeText text;
    HFONT hfont = text.hFont;
    StockFontIs stock(0, 0);
    FontRecord record;
    text.Setup(3, 4, 500, L"Tahoma");
    EXPECT_EQ(0u, record.Asked().size());
    EXPECT_EQ(hfont, text.hFont);
    EXPECT_EQ(3, text.nMultiplier);
    EXPECT_EQ(4, text.nAdd);
    EXPECT_EQ(500, text.lWeight);
    EXPECT_STREQ(L"Tahoma", text.pszFaceName);
}

TEST(LargeText, SetupAgainReplacesTheFontAndTheEndDeletesIt) {
    HFONT hfontFirst, hfontLast;
    {
        ProbeText text;
        hfontFirst = text.hFont;
        text.Setup(3, 0, 400, L"Tahoma");
        hfontLast = text.hFont;
        LOGFONTW lf{};
        EXPECT_NE(0, ::GetObjectW(hfontLast, sizeof(lf), &lf));
        EXPECT_EQ(StockFont().lfHeight * 3, lf.lfHeight);
    }
    EXPECT_EQ(0u, ::GetObjectType(hfontFirst));
    EXPECT_EQ(0u, ::GetObjectType(hfontLast));
}

TEST(LargeText, NoFontIsLeft) {
    { LargePageTitle title; } // what the platform loads with it
    const int nBefore = CountGdiObjects();
    for (int i = 0; i < 50; ++i) {
        LargeStaticTextCtl text;
        for (int n = 0; n < 5; ++n) text.Setup(n, n, 100 * n, n % 2 ? L"Tahoma" : nullptr);
        LargePageTitle title;
    }
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(LargeText, InitGivesTheFontToTheItemAndRedrawsIt) {
    LPARAM lRedraw = -1;
    WPARAM wFont = 0;
    TestWindow child([&](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != WM_SETFONT) return {};
        wFont = wParam;
        lRedraw = lParam;
        return 0;
    });
    TestWindow parent;
    ::SetWindowLongPtrW(child, GWL_STYLE, WS_CHILD);
    ::SetParent(child, parent);
    ::SetWindowLongPtrW(child, GWLP_ID, 77);
    ProbeText text;
    text.Init(parent, 77);
    EXPECT_EQ(reinterpret_cast<WPARAM>(text.hFont), wFont);
    EXPECT_EQ(TRUE, lRedraw);
    text.Init(parent, 78); // no such item
    text.Init(nullptr, 77);
}

TEST(LargeText, StaticOfADialogIsDrawnInIt) {
    HtmlDlg dlg;
    ProbeText text;
    dlg.onInit = [&](HtmlDlg& d) { text.Init(d.hWnd, IDC_HTML_BOLD); };
    ASSERT_TRUE(dlg.Show(IDD_HTML_POPUP));
    EXPECT_EQ(reinterpret_cast<LRESULT>(text.hFont),
              dlg.SendDlgItemMsg(IDC_HTML_BOLD, WM_GETFONT, 0, 0));
}
} // namespace
