#include "richtext/engine/html_probe.h"
#include "richtext/engine/recording_device.h"
#include "support/memory_picture.h"
#include "support/test_window.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>
#include <atomic>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

extern "C" FARPROC __imp_CreateCompatibleDC;

constexpr int kWidth = 200, kHeight = 100;
constexpr COLORREF kBkg = RGB(10, 200, 30), kNothing = RGB(250, 240, 230);
constexpr COLORREF kText = RGB(200, 0, 100);

/// A window with that client area, and a picture to paint it into.
struct PaintStage {
    PaintStage() {
        tools.SetBkgColor(kBkg);
        tools.SetTextColor(kText);
    }
    void Paint(const wchar_t* psz, int erase, int focused) {
        CSDC dc(picture, 1);
        html.OnPaint(window, dc, psz, psz ? static_cast<unsigned>(wcslen(psz)) : 0, erase, &links,
                     &tools, focused);
    }
    int Count(COLORREF cr) const {
        int n = 0;
        for (int y = 0; y < kHeight + 20; ++y)
            for (int x = 0; x < kWidth + 20; ++x) n += picture.Get(x, y) == cr;
        return n;
    }
    std::vector<COLORREF> Pixels() const {
        std::vector<COLORREF> pixels;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) pixels.push_back(picture.Get(x, y));
        return pixels;
    }

    TestWindow window{L"STATIC", nullptr, WS_POPUP};
    MemoryPicture picture{kWidth + 20, kHeight + 20, kNothing};
    DrawHTML html{100};
    DrawHTMLLinks links;
    DrawHTMLTools tools{FontGui};
    int bSized = ::SetWindowPos(window, nullptr, 0, 0, kWidth, kHeight, SWP_NOZORDER);
};

TEST(DrawHTMLPaint, EraseFillsTheClientArea) {
    PaintStage stage;
    stage.Paint(nullptr, 1, 0);
    EXPECT_EQ(kWidth * kHeight, stage.Count(kBkg));
    EXPECT_EQ(kBkg, stage.picture.Get(kWidth - 1, kHeight - 1));
    EXPECT_EQ(kNothing, stage.picture.Get(kWidth, 0));
    EXPECT_EQ(kNothing, stage.picture.Get(0, kHeight));
}

TEST(DrawHTMLPaint, WithoutEraseTheBackgroundStays) {
    PaintStage stage;
    stage.Paint(L"", 0, 0);
    EXPECT_EQ((kWidth + 20) * (kHeight + 20), stage.Count(kNothing));
}

TEST(DrawHTMLPaint, FocusIsADottedFrameInTheTextsColor) {
    PaintStage stage;
    stage.Paint(nullptr, 1, 1);
    int nFrame = 0, nGaps = 0;
    for (int x = 0; x < kWidth; ++x) {
        for (int y : {0, kHeight - 1}) {
            nFrame += stage.picture.Get(x, y) == kText;
            nGaps += stage.picture.Get(x, y) != kText;
        }
    }
    EXPECT_LT(50, nFrame);
    EXPECT_LT(20, nGaps) << "it is dotted";
    int nInside = 0;
    for (int y = 1; y < kHeight - 1; ++y)
        for (int x = 1; x < kWidth - 1; ++x) nInside += stage.picture.Get(x, y) == kBkg;
    EXPECT_EQ((kWidth - 2) * (kHeight - 2), nInside);
}

TEST(DrawHTMLPaint, NoTextLeavesTheLinksAsTheyWere) {
    PaintStage stage;
    stage.Paint(L"<A>link</A>", 1, 0);
    EXPECT_EQ(1u, stage.links.GetLinkCount());
    stage.Paint(nullptr, 1, 0);
    EXPECT_EQ(1u, stage.links.GetLinkCount());
    stage.Paint(L"", 1, 1);
    EXPECT_EQ(1u, stage.links.GetLinkCount());
    stage.Paint(L"no link", 1, 0);
    EXPECT_EQ(0u, stage.links.GetLinkCount());
}

TEST(DrawHTMLPaint, TextIsThatOfBothPasses) {
    const wchar_t* psz =
        L"Some <H>big</H> and <RED>red</RED> words<BR><A>with</A> a link that wraps";
    PaintStage stage, other;
    stage.Paint(psz, 1, 0);
    EXPECT_LT(50, stage.Count(kText));
    EXPECT_LT(10, stage.Count(RGB(128, 0, 0)));
    {
        CSDC dc(other.picture, 1);
        RECT rc = {0, 0, kWidth, kHeight};
        HBRUSH hbr = ::CreateSolidBrush(kBkg);
        ::FillRect(dc, &rc, hbr);
        ::DeleteObject(hbr);
        CompatibleDC measuring(dc);
        const auto nLength = static_cast<unsigned>(wcslen(psz));
        other.html.Draw(DrawMeasure, measuring, &rc, psz, nLength, &other.links, &other.tools);
        other.html.Draw(DrawPaint, dc, &rc, psz, nLength, &other.links, &other.tools);
    }
    EXPECT_EQ(other.Pixels(), stage.Pixels());
    ASSERT_EQ(1u, stage.links.GetLinkCount());
}

TEST(DrawHTMLPaint, LineHeightsOfAnEarlierTextAreForgotten) {
    PaintStage stage, fresh;
    stage.Paint(L"<H><H><H>high</H></H></H><BR><H><H>high</H></H><BR>x", 1, 0);
    stage.Paint(L"a<BR>b<BR>c", 1, 0);
    fresh.Paint(L"a<BR>b<BR>c", 1, 0);
    EXPECT_EQ(fresh.Pixels(), stage.Pixels());
}

HDC WINAPI NoCompatibleDC(HDC) { return nullptr; }

TEST(DrawHTMLPaint, WithoutAMemoryContextTheDisplayMeasures) {
    const wchar_t* psz = L"a <H>b</H> c<BR><I>d e f</I>";
    PaintStage stage, usual;
    usual.Paint(psz, 1, 0);
    ReplaceImport noMemory(__imp_CreateCompatibleDC, &NoCompatibleDC);
    stage.Paint(psz, 1, 0);
    EXPECT_EQ(usual.Pixels(), stage.Pixels());
}

TEST(DrawHTMLPaint, MeasuringIsNotSeen) {
    // Line 1 is measured at its top, and painted lower: each letter is there once.
    PaintStage stage;
    stage.Paint(L"a <H><H><H><H>b</H></H></H></H>", 1, 0);
    int nTop = kHeight;
    for (int y = kHeight - 1; y >= 0; --y)
        for (int x = 0; x < 7; ++x)
            if (stage.picture.Get(x, y) == kText) nTop = y;
    EXPECT_LT(15, nTop) << "the small letter stands on the line's bottom edge";
}

TEST(DrawHTMLPaint, TextTallerThanTheWindowHasTheMark) {
    PaintStage stage;
    std::wstring str;
    for (int i = 0; i < 50; ++i) str += L"x<BR>";
    stage.Paint(str.c_str(), 1, 0);
    for (int dx : {3, 5, 7})
        EXPECT_EQ(RGB(0, 0, 0), stage.picture.Get(kWidth - dx, kHeight - 1)) << dx;
    EXPECT_EQ(kBkg, stage.picture.Get(kWidth - 4, kHeight - 1));
    stage.Paint(L"x", 1, 0);
    EXPECT_EQ(kBkg, stage.picture.Get(kWidth - 3, kHeight - 1));
}

TEST(DrawHTMLCopies, HaveTheMembersAndGoOnAlone) {
    HtmlStage stage;
    RECT rc = {30, 7, 500, 500};
    stage.html.SetLinkCmdID(70);
    stage.Draw(DrawMeasure, L"<H>x</H><NOBR>", &rc);
    DrawHTML copy(stage.html);
    DrawHTML assigned(1);
    assigned = stage.html;
    stage.html.SetLinkCmdID(80);
    rc = {0, 0, 50, 50};
    stage.Draw(DrawMeasure, L"<BIG>x</BIG></NOBR>", &rc);
    for (DrawHTML* pHtml : {&copy, &assigned}) {
        stage.device.TakeRuns();
        EXPECT_EQ(24, pHtml->Draw(DrawPaint, stage.device, nullptr, L"<A>a  b</A>", 100,
                                  &stage.links, &stage.tools))
            << "the line's height was copied";
        auto runs = stage.device.TakeRuns();
        ASSERT_EQ(1u, runs.size());
        EXPECT_EQ(30, runs[0].x) << "and the rectangle";
        EXPECT_EQ(L"a  b", runs[0].strText) << "and that nothing breaks";
        EXPECT_EQ(70u,
                  stage.links.GetLinkCount() ? stage.html.GetLinkAreaID(&stage.links, 1, 1) : 0);
    }
}

TEST(DrawHTMLCopies, AssignmentToItselfChangesNothing) {
    HtmlStage stage;
    RECT rc = {30, 7, 500, 500};
    stage.Draw(DrawMeasure, L"<B>x", &rc);
    DrawHTML& same = stage.html;
    stage.html = same;
    stage.device.TakeRuns();
    stage.Draw(DrawPaint, L"y", nullptr);
    auto runs = stage.device.TakeRuns();
    ASSERT_EQ(1u, runs.size());
    EXPECT_EQ(30, runs[0].x);
}

// --- threads: texts are recorded for the thread that draws them ---

using ThreadRun = std::tuple<int, int, std::wstring>;
thread_local std::vector<ThreadRun>* pRunsOfThread; // null: nobody looks at them
std::atomic<bool> bHoldFirstText, bTextIsHeld;

BOOL WINAPI RecordForThread(HDC, int x, int y, LPCWSTR psz, int cch) {
    if (pRunsOfThread)
        pRunsOfThread->emplace_back(x, y, std::wstring(psz, static_cast<std::size_t>(cch)));
    if (psz[0] == L'!') {
        bTextIsHeld = true;
        WaitUntil([] { return !bHoldFirstText; });
    }
    return TRUE;
}

BOOL WINAPI TenPixelsEach(HDC, LPCWSTR, int cch, LPSIZE pSize) {
    *pSize = {10 * cch, 20};
    return TRUE;
}

class ThreadStage {
  public:
    ThreadStage() : hdc(::CreateCompatibleDC(nullptr)) {}
    ~ThreadStage() { ::DeleteDC(hdc); }
    int Draw(DrawHTML& html, DrawMode mode, const std::wstring& str, RECT rc) {
        return html.Draw(mode, hdc, &rc, str.c_str(), static_cast<unsigned>(str.size()), &links,
                         &tools);
    }
    DrawHTMLLinks links;

  private:
    HDC hdc;
    DrawHTMLTools tools{FontGui};
};

TEST(DrawHTMLThreads, PassesOfTwoThreadsDoNotMix) {
    ReplaceImport textOut(__imp_TextOutW, &RecordForThread);
    ReplaceImport extent(__imp_GetTextExtentPoint32W, &TenPixelsEach);
    const std::wstring strFirst = L"one <B>two</B> three four <A>five six</A> seven eight nine ten";
    const std::wstring strSecond =
        L"<CENTER>some</CENTER><BR>other <I>words<BR>that</I> <A1>are</A1>";
    const RECT rcFirst = {10, 5, 112, 2000}, rcSecond = {1000, 500, 1300, 3000};
    DrawHTML shared(100);
    auto rounds = [&](const std::wstring& str, RECT rc, int& nBad) {
        ThreadStage stage;
        DrawHTML own(100);
        std::vector<ThreadRun> runs;
        pRunsOfThread = &runs;
        // Measuring depends on nothing that was there before.
        const int nHeight = stage.Draw(own, DrawMeasure, str, rc);
        const std::vector<ThreadRun> expected = std::exchange(runs, {});
        for (int i = 0; i < 60; ++i) {
            const int nDrawn = stage.Draw(shared, DrawMeasure, str, rc);
            if (nDrawn != nHeight || runs != expected) ++nBad;
            if (stage.links.GetLinkCount() != 1) ++nBad;
            runs.clear();
        }
        pRunsOfThread = nullptr;
    };
    int nBadFirst = 0, nBadSecond = 0;
    std::thread first([&] { rounds(strFirst, rcFirst, nBadFirst); });
    std::thread second([&] { rounds(strSecond, rcSecond, nBadSecond); });
    first.join();
    second.join();
    EXPECT_EQ(0, nBadFirst);
    EXPECT_EQ(0, nBadSecond);
}

TEST(DrawHTMLThreads, PassWaitsForThePassOfAnotherThread) {
    ReplaceImport textOut(__imp_TextOutW, &RecordForThread);
    ReplaceImport extent(__imp_GetTextExtentPoint32W, &TenPixelsEach);
    DrawHTML html(0);
    std::atomic<bool> bSecondDone = false;
    bHoldFirstText = true;
    bTextIsHeld = false;
    std::thread first([&] { ThreadStage().Draw(html, DrawMeasure, L"!held", TallRect()); });
    EXPECT_TRUE(WaitUntil([] { return bTextIsHeld.load(); }));
    std::thread second([&] {
        ThreadStage().Draw(html, DrawMeasure, L"other", TallRect());
        bSecondDone = true;
    });
    EXPECT_TRUE(HoldsFor([&] { return !bSecondDone; }, 100));
    bHoldFirstText = false;
    EXPECT_TRUE(WaitUntil([&] { return bSecondDone.load(); }));
    first.join();
    second.join();
}

TEST(DrawHTMLThreads, CopyHasALockOfItsOwn) {
    ReplaceImport textOut(__imp_TextOutW, &RecordForThread);
    ReplaceImport extent(__imp_GetTextExtentPoint32W, &TenPixelsEach);
    DrawHTML html(0);
    bHoldFirstText = true;
    bTextIsHeld = false;
    std::thread first([&] { ThreadStage().Draw(html, DrawMeasure, L"!held", TallRect()); });
    EXPECT_TRUE(WaitUntil([] { return bTextIsHeld.load(); }));
    std::atomic<bool> bDone = false;
    std::thread second([&] {
        DrawHTML copy(html), assigned(0);
        assigned = html;
        ThreadStage().Draw(copy, DrawMeasure, L"a", TallRect());
        ThreadStage().Draw(assigned, DrawMeasure, L"b", TallRect());
        bDone = true;
    });
    EXPECT_TRUE(WaitUntil([&] { return bDone.load(); })) << "although the original is in a pass";
    bHoldFirstText = false;
    first.join();
    second.join();
}
