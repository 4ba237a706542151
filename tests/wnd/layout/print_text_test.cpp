#include "wnd/layout/print_text.h"
#include "support/gui_objects.h"
#include "support/heap_count.h"
#include "support/message_box_driver.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"
#include "wnd/layout/test_printer.h"

#include <objbase.h>
#include <commdlg.h>
#include <gtest/gtest.h>
#include <climits>
#include <memory>
#include <set>
#include <string>
#include <vector>

extern "C" FARPROC __imp_StartDocW, __imp_StartPage, __imp_EndPage, __imp_EndDoc, __imp_DeleteDC;
extern "C" FARPROC __imp_DrawTextExW, __imp_GetDeviceCaps, __imp_GlobalFree, __imp_EnableWindow;

namespace {
/// What the printing functions were called with, and what they shall do. They go on to the
/// platform, unless they shall refuse.
struct PrintCalls {
    std::vector<std::string> order;
    PRINTDLGEXW asked{};
    bool bRootWasEnabled = true, bOtherWasEnabled = false;
    DOCINFOW doc{};
    std::wstring strDocName;
    HGDIOBJ hfont = nullptr;
    RECT rc{};
    UINT uFormat = 0;
    int cchText = 0;
    std::wstring strText;
    std::set<HDC> deleted;
    std::multiset<HGLOBAL> freed;

    std::string strRefuse; // the name of the function that fails
    HRESULT hrAsk = S_OK;
    DWORD dwAction = PD_RESULT_PRINT;
    bool bWithoutContext = false;
    // What the page looks like; 0: as the printer tells.
    int cx = 0, cy = 0, nDpiX = 0, nDpiY = 0;
};
PrintCalls* pCalls = nullptr;
HWND hwndRoot = nullptr, hwndOther = nullptr;
const wchar_t* pszPrinter = nullptr;

template <class Fn>
Fn* OriginalOf(const ReplaceImport* pReplaced) {
    return pReplaced->Original<Fn>();
}
const ReplaceImport *pStartDoc, *pStartPage, *pEndPage, *pEndDoc, *pDeleteDC, *pDrawText, *pCaps,
    *pGlobalFree;

bool Note(const char* pszName) {
    pCalls->order.push_back(pszName);
    return pCalls->strRefuse != pszName;
}

int WINAPI NoteStartDoc(HDC hdc, const DOCINFOW* pDoc) {
    pCalls->doc = *pDoc;
    pCalls->strDocName = pDoc->lpszDocName ? pDoc->lpszDocName : L"(null)";
    pCalls->hfont = ::GetCurrentObject(hdc, OBJ_FONT);
    if (!Note("StartDoc")) return SP_ERROR;
    return OriginalOf<decltype(::StartDocW)>(pStartDoc)(hdc, pDoc);
}
int WINAPI NoteStartPage(HDC hdc) {
    if (!Note("StartPage")) return SP_ERROR;
    return OriginalOf<decltype(::StartPage)>(pStartPage)(hdc);
}
int WINAPI NoteEndPage(HDC hdc) {
    if (!Note("EndPage")) return SP_ERROR;
    return OriginalOf<decltype(::EndPage)>(pEndPage)(hdc);
}
int WINAPI NoteEndDoc(HDC hdc) {
    if (!Note("EndDoc")) return SP_ERROR;
    return OriginalOf<decltype(::EndDoc)>(pEndDoc)(hdc);
}
int WINAPI NoteDrawText(HDC hdc, LPWSTR psz, int cch, LPRECT prc, UINT uFormat,
                        LPDRAWTEXTPARAMS pParams) {
    pCalls->rc = *prc;
    pCalls->uFormat = uFormat;
    pCalls->cchText = cch;
    pCalls->strText = psz;
    Note("DrawText");
    return OriginalOf<decltype(::DrawTextExW)>(pDrawText)(hdc, psz, cch, prc, uFormat, pParams);
}
BOOL WINAPI NoteDeleteDC(HDC hdc) {
    if (::GetDeviceCaps(hdc, TECHNOLOGY) == DT_RASPRINTER) {
        Note("DeleteDC");
        pCalls->deleted.insert(hdc);
    }
    return OriginalOf<decltype(::DeleteDC)>(pDeleteDC)(hdc);
}
HGLOBAL WINAPI NoteGlobalFree(HGLOBAL h) {
    Note("GlobalFree");
    pCalls->freed.insert(h);
    return OriginalOf<decltype(::GlobalFree)>(pGlobalFree)(h);
}
int WINAPI TellCaps(HDC hdc, int nIndex) {
    auto* pfnCaps = OriginalOf<decltype(::GetDeviceCaps)>(pCaps);
    int nTold = 0;
    switch (nIndex) {
    case HORZRES: nTold = pCalls->cx; break;
    case VERTRES: nTold = pCalls->cy; break;
    case LOGPIXELSX: nTold = pCalls->nDpiX; break;
    case LOGPIXELSY: nTold = pCalls->nDpiY; break;
    }
    return nTold && pfnCaps(hdc, TECHNOLOGY) == DT_RASPRINTER ? nTold : pfnCaps(hdc, nIndex);
}

/// A user who chooses the test's printer at once, or does as he is told.
HRESULT WINAPI AnswerAtOnce(LPPRINTDLGEXW pAsk) {
    Note("PrintDlgEx");
    pCalls->asked = *pAsk;
    pCalls->bRootWasEnabled = ::IsWindowEnabled(hwndRoot);
    pCalls->bOtherWasEnabled = ::IsWindowEnabled(hwndOther);
    if (pCalls->hrAsk != S_OK) return pCalls->hrAsk;
    pAsk->dwResultAction = pCalls->dwAction;
    pAsk->hDevMode = ::GlobalAlloc(GMEM_MOVEABLE, sizeof(DEVMODEW));
    pAsk->hDevNames = ::GlobalAlloc(GMEM_MOVEABLE, sizeof(DEVNAMES));
    if (!pCalls->bWithoutContext) {
        pAsk->hDC = ::CreateDCW(L"WINSPOOL", pszPrinter, nullptr, nullptr);
    }
    pCalls->asked.hDC = pAsk->hDC;
    pCalls->asked.hDevMode = pAsk->hDevMode;
    pCalls->asked.hDevNames = pAsk->hDevNames;
    return S_OK;
}

/// A printer, a window and a child of it, and a record of what is called.
struct PrintTextTest : testing::Test {
    PrintTextTest() {
        pCalls = &calls;
        hwndRoot = root;
        hwndOther = hwndChild;
        pStartDoc = &startDoc;
        pStartPage = &startPage;
        pEndPage = &endPage;
        pEndDoc = &endDoc;
        pDeleteDC = &deleteDC;
        pDrawText = &drawText;
        pCaps = &caps;
        pGlobalFree = &globalFree;
    }
    static void SetUpTestSuite() {
        pPrinter = std::make_unique<TestPrinter>();
        pszPrinter = pPrinter->GetName();
    }
    static void TearDownTestSuite() { pPrinter.reset(); }
    void SetUp() override {
        ASSERT_TRUE(pPrinter->IsReady());
        pPrinter->ForgetPrinted();
    }
    ~PrintTextTest() override { pCalls = nullptr; }

    int Print(LPCWSTR pszText = L"some text", int bFixed = 0, int nLeft = 5, int nTop = 6,
              int nRight = 7, int nBottom = 8) {
        ReplaceFunctions answered;
        answered.Set("PrintDlgExW", &AnswerAtOnce);
        return PrintText(hwndChild, L"the document", pszText, bFixed, 77, nLeft, nTop, nRight,
                         nBottom);
    }
    /// Whatever the user chose has been given back.
    void ExpectAllFreed() {
        if (calls.asked.hDC) {
            EXPECT_EQ(1u, calls.deleted.count(calls.asked.hDC));
        }
        EXPECT_EQ(1u, calls.freed.count(calls.asked.hDevMode));
        EXPECT_EQ(1u, calls.freed.count(calls.asked.hDevNames));
    }

    static inline std::unique_ptr<TestPrinter> pPrinter;
    PrintCalls calls;
    TestWindow root;
    HWND hwndChild = ::CreateWindowExW(0, L"STATIC", L"child", WS_CHILD, 0, 0, 50, 50, root,
                                       nullptr, nullptr, nullptr); // goes with its parent
    ReplaceImport startDoc{__imp_StartDocW, &NoteStartDoc};
    ReplaceImport startPage{__imp_StartPage, &NoteStartPage};
    ReplaceImport endPage{__imp_EndPage, &NoteEndPage};
    ReplaceImport endDoc{__imp_EndDoc, &NoteEndDoc};
    ReplaceImport deleteDC{__imp_DeleteDC, &NoteDeleteDC};
    ReplaceImport drawText{__imp_DrawTextExW, &NoteDrawText};
    ReplaceImport caps{__imp_GetDeviceCaps, &TellCaps};
    ReplaceImport globalFree{__imp_GlobalFree, &NoteGlobalFree};
};

using Order = std::vector<std::string>;

int CountOf(const std::string& str, const std::string& strPart) {
    int n = 0;
    for (std::size_t i = str.find(strPart); i != std::string::npos; i = str.find(strPart, i + 1))
        ++n;
    return n;
}

// With the platform's own dialog

TEST_F(PrintTextTest, PrintsOnePageThroughThePlatformsDialog) {
    MessageBoxDriver driver({IDOK}, L"Print");
    EXPECT_EQ(1, PrintText(root, L"a report", L"first line\nsecond line", 0, 0, 10, 10, 10, 10));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(root, driver.Finish()[0].hwndOwner);
    std::string strPrinted = pPrinter->Printed();
    EXPECT_EQ(0u, strPrinted.find("%!PS-Adobe"));
    EXPECT_EQ(1, CountOf(strPrinted, "%%Title: a report"));
    EXPECT_EQ(1, CountOf(strPrinted, "%%Page: "));
    EXPECT_EQ(1, CountOf(strPrinted, "%%Pages: 1"));
    EXPECT_EQ((Order{"StartDoc", "StartPage", "DrawText", "EndPage", "EndDoc", "DeleteDC"}),
              Order(calls.order.begin(),
                    calls.order.begin() + std::min<std::size_t>(6, calls.order.size())));
    EXPECT_TRUE(::IsWindowEnabled(root));
}

TEST_F(PrintTextTest, WhatDoesNotFitIsNotPrinted) {
    std::wstring strLong; // more than the two inches that the margins leave
    for (int i = 0; i < 60; ++i) strLong += L"x\n";
    MessageBoxDriver driver({IDOK}, L"Print");
    EXPECT_EQ(1, PrintText(root, L"long", strLong.c_str(), 1, 0, 0, 0, 0, 87));
    EXPECT_EQ(1, CountOf(pPrinter->Printed(), "%%Page: "));
    EXPECT_EQ(strLong, calls.strText) << "the platform cuts it";
    EXPECT_LT(calls.rc.bottom, 60 * 13) << "of the font's height";
}

TEST_F(PrintTextTest, UserWhoCancelsPrintsNothing) {
    MessageBoxDriver driver({IDCANCEL}, L"Print");
    EXPECT_EQ(0, PrintText(root, L"doc", L"text", 0, 0, 0, 0, 0, 0));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ("", pPrinter->Printed());
    EXPECT_EQ(0, std::count(calls.order.begin(), calls.order.end(), "StartDoc"));
    EXPECT_TRUE(::IsWindowEnabled(root));
}

TEST_F(PrintTextTest, LeavesNoObjects) {
    // Without the platform's dialog, which keeps something with each run.
    EXPECT_EQ(1, Print()); // what stays is made by the first page
    int nGdi = CountGdiObjects(), nUser = CountUserObjects();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(1, Print());
    calls.dwAction = PD_RESULT_CANCEL;
    EXPECT_EQ(0, Print());
    EXPECT_EQ(nGdi, CountGdiObjects());
    EXPECT_EQ(nUser, CountUserObjects());
}

// What the dialog is asked

TEST_F(PrintTextTest, RecordIsAsTheDialogNeedsIt) {
    EXPECT_EQ(1, Print());
    const PRINTDLGEXW& asked = calls.asked;
    EXPECT_EQ(136u, asked.lStructSize);
    EXPECT_EQ(hwndChild, asked.hwndOwner);
    EXPECT_EQ(0x50010Cu, asked.Flags);
    EXPECT_EQ(1u, asked.nMinPage);
    EXPECT_EQ(1000u, asked.nMaxPage);
    EXPECT_EQ(1u, asked.nCopies);
    EXPECT_EQ(0xFFFFFFFFu, asked.nStartPage);
    EXPECT_EQ(0u, asked.Flags2);
    EXPECT_EQ(0u, asked.ExclusionFlags);
    EXPECT_EQ(0u, asked.nPageRanges);
    EXPECT_EQ(0u, asked.nMaxPageRanges);
    EXPECT_EQ(nullptr, asked.lpPageRanges);
    EXPECT_EQ(nullptr, asked.hInstance);
    EXPECT_EQ(nullptr, asked.lpPrintTemplateName);
    EXPECT_EQ(nullptr, asked.lpCallback);
    EXPECT_EQ(0u, asked.nPropertyPages);
    EXPECT_EQ(nullptr, asked.lphPropertyPages);
}

TEST_F(PrintTextTest, TopmostParentIsDisabledMeanwhileAndEnabledBehind) {
    EXPECT_EQ(1, Print());
    EXPECT_FALSE(calls.bRootWasEnabled);
    EXPECT_TRUE(calls.bOtherWasEnabled) << "the parent alone: the child's own state is its own";
    EXPECT_TRUE(::IsWindowEnabled(root));
    ::EnableWindow(root, FALSE);
    EXPECT_EQ(1, Print());
    EXPECT_TRUE(::IsWindowEnabled(root)) << "whatever it was before";
}

TEST_F(PrintTextTest, ParentIsEnabledAgainWhenTheDialogFails) {
    calls.hrAsk = E_FAIL;
    EXPECT_EQ(0, Print());
    EXPECT_FALSE(calls.bRootWasEnabled);
    EXPECT_TRUE(::IsWindowEnabled(root));
    EXPECT_EQ(Order{"PrintDlgEx"}, calls.order);
}

// What is printed

TEST_F(PrintTextTest, PrintsInOrderAndGivesAllBack) {
    EXPECT_EQ(1, Print(L"words to print"));
    EXPECT_EQ(
        (Order{"PrintDlgEx", "StartDoc", "StartPage", "DrawText", "EndPage", "EndDoc", "DeleteDC"}),
        Order(calls.order.begin(), calls.order.begin() + 7));
    EXPECT_EQ(40, calls.doc.cbSize);
    EXPECT_EQ(L"the document", calls.strDocName);
    EXPECT_EQ(nullptr, calls.doc.lpszOutput);
    EXPECT_EQ(nullptr, calls.doc.lpszDatatype);
    EXPECT_EQ(0u, calls.doc.fwType);
    EXPECT_EQ(L"words to print", calls.strText);
    EXPECT_EQ(-1, calls.cchText);
    EXPECT_EQ(0x80010u, calls.uFormat);
    ExpectAllFreed();
    EXPECT_EQ(1, CountOf(pPrinter->Printed(), "%%Page: "));
}

TEST_F(PrintTextTest, FontIsTheFixedOrTheOtherStockFont) {
    for (int bFixed : {0, 1, -3}) {
        EXPECT_EQ(1, Print(L"text", bFixed));
        EXPECT_EQ(::GetStockObject(bFixed ? 11 : 12), calls.hfont) << bFixed;
    }
}

struct MarginCase {
    const char* pszName;
    int nLeft, nTop, nRight, nBottom;
    RECT rc;
};
class PrintTextMargins : public PrintTextTest, public testing::WithParamInterface<MarginCase> {};
TEST_P(PrintTextMargins, ShrinkThePageByTenthsOfAnInch) {
    calls.cx = 2000;
    calls.cy = 3000;
    calls.nDpiX = 203; // so that a tenth is no whole number
    calls.nDpiY = 606;
    const MarginCase& row = GetParam();
    EXPECT_EQ(1, Print(L"t", 0, row.nLeft, row.nTop, row.nRight, row.nBottom));
    EXPECT_EQ(row.rc.left, calls.rc.left);
    EXPECT_EQ(row.rc.top, calls.rc.top);
    EXPECT_EQ(row.rc.right, calls.rc.right);
    EXPECT_EQ(row.rc.bottom, calls.rc.bottom);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, PrintTextMargins,
    testing::Values(MarginCase{"None", 0, 0, 0, 0, {0, 0, 2000, 3000}},
                    MarginCase{"AnInch", 10, 10, 10, 10, {203, 606, 1797, 2394}},
                    MarginCase{"EachItsOwn", 1, 2, 3, 4, {20, 121, 1940, 2758}},
                    MarginCase{"FractionsAreCut", 5, 5, 5, 5, {101, 303, 1899, 2697}},
                    MarginCase{"Negative", -10, -10, -10, -10, {-203, -606, 2203, 3606}},
                    MarginCase{"MoreThanThePage", 90, 50, 90, 50, {1827, 3030, 173, -30}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(PrintTextTest, ExtremeMarginsPrintAnEmptyPage) {
    for (int nMargin : {INT_MAX, INT_MIN}) {
        EXPECT_EQ(1, Print(L"text", 0, nMargin, nMargin, nMargin, nMargin)) << nMargin;
    }
    calls.freed.clear(); // handles come again
    EXPECT_EQ(1, Print(L"text", 0, INT_MAX, INT_MAX, INT_MIN, INT_MIN));
    EXPECT_GT(calls.rc.left, 100000) << "far off the page";
    ExpectAllFreed();
}

TEST_F(PrintTextTest, EmptyAndMissingTextsGiveAnEmptyPage) {
    EXPECT_EQ(1, Print(L""));
    EXPECT_EQ(L"", calls.strText);
    EXPECT_EQ(1, Print(nullptr));
    EXPECT_EQ(L"", calls.strText);
    EXPECT_EQ(1, CountOf(pPrinter->Printed(), "%%Page: "));
}

TEST_F(PrintTextTest, DocumentNeedsNoName) {
    ReplaceFunctions answered;
    answered.Set("PrintDlgExW", &AnswerAtOnce);
    EXPECT_EQ(1, PrintText(root, nullptr, L"text", 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(L"(null)", calls.strDocName);
}

// What goes wrong

TEST_F(PrintTextTest, OtherActionsPrintNothingButAreCleanedUp) {
    for (DWORD dwAction : {PD_RESULT_CANCEL, PD_RESULT_APPLY, 3}) {
        calls = {};
        calls.dwAction = dwAction;
        EXPECT_EQ(0, Print()) << dwAction;
        EXPECT_EQ(0, std::count(calls.order.begin(), calls.order.end(), "StartDoc"));
        ExpectAllFreed();
    }
}

TEST_F(PrintTextTest, PrinterWithoutAContextPrintsNothing) {
    calls.bWithoutContext = true;
    EXPECT_EQ(0, Print());
    EXPECT_EQ(0, std::count(calls.order.begin(), calls.order.end(), "StartDoc"));
    ExpectAllFreed();
}

struct RefusalCase {
    const char* pszName;
    Order order;
};
class PrintTextRefused : public PrintTextTest, public testing::WithParamInterface<RefusalCase> {};
TEST_P(PrintTextRefused, IsNotPrintedAndCleanedUp) {
    calls.strRefuse = GetParam().pszName;
    EXPECT_EQ(0, Print());
    Order order = calls.order;
    order.resize(std::min(order.size(), GetParam().order.size()));
    EXPECT_EQ(GetParam().order, order);
    ExpectAllFreed();
    EXPECT_TRUE(::IsWindowEnabled(root));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, PrintTextRefused,
    testing::Values(RefusalCase{"StartDoc", {"PrintDlgEx", "StartDoc", "DeleteDC"}},
                    RefusalCase{"StartPage",
                                {"PrintDlgEx", "StartDoc", "StartPage", "EndDoc", "DeleteDC"}},
                    RefusalCase{"EndPage",
                                {"PrintDlgEx", "StartDoc", "StartPage", "DrawText", "EndPage",
                                 "EndDoc", "DeleteDC"}},
                    RefusalCase{"EndDoc",
                                {"PrintDlgEx", "StartDoc", "StartPage", "DrawText", "EndPage",
                                 "EndDoc", "DeleteDC"}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(PrintTextTest, WindowsWithoutTheDialogPrintsNothing) {
    HideFunctions hide{"PrintDlgExW"};
    EXPECT_EQ(0, PrintText(root, L"doc", L"text", 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(Order{}, calls.order);
    EXPECT_TRUE(::IsWindowEnabled(root));
}

TEST_F(PrintTextTest, OutOfMemoryIsTheLastError) {
    ReplaceFunctions answered;
    answered.Set("PrintDlgExW", &AnswerAtOnce);
    ::SetLastError(0);
    FailBlock(1);
    int nPrinted = PrintText(root, L"doc", L"text", 0, 0, 0, 0, 0, 0);
    DWORD dwError = ::GetLastError();
    FailBlock(0);
    EXPECT_EQ(0, nPrinted);
    EXPECT_EQ(0x8007000Eu, dwError);
    EXPECT_EQ(Order{}, calls.order) << "nobody is asked";
    EXPECT_TRUE(::IsWindowEnabled(root));
}

TEST_F(PrintTextTest, WithoutAWindowThePlatformAsksNobody) {
    EXPECT_EQ(0, PrintText(nullptr, L"doc", L"text", 0, 0, 0, 0, 0, 0));
    EXPECT_EQ("", pPrinter->Printed());
}
} // namespace
