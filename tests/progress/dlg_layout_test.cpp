// Lines that are not used, and the size of the dialog.

#include "progress/dlg_support.h"
#include "support/test_window.h"

namespace {
constexpr int kLineCount = 4;
constexpr int kMoving[] = {28003, 28004, 28005, 28006, kBarId, IDCANCEL, kFrameId};

/// The rectangles of the template, in pixels of a dialog of that font.
struct TemplateRects {
    explicit TemplateRects(HWND hwndDlg) : hwnd(hwndDlg) {}
    RECT Get(int nId) const {
        switch (nId) {
        case 28003: return Map(16, 16, 168, 8);
        case 28004: return Map(16, 28, 168, 8);
        case 28005: return Map(16, 40, 168, 8);
        case 28006: return Map(16, 52, 168, 8);
        case kBarId: return Map(16, 68, 128, 8);
        case IDCANCEL: return Map(148, 64, 36, 14);
        case kFrameId: return Map(4, 4, 192, 84);
        }
        return {};
    }
    SIZE GetClient() const {
        RECT rc = Map(0, 0, 200, 92);
        return {rc.right, rc.bottom};
    }
    /// What lies between the ends of the last line and of the last one in use.
    int GetUnused(int nLines) const {
        return Get(kLineIds[kLineCount - 1]).bottom - Get(kLineIds[nLines - 1]).bottom;
    }

  private:
    RECT Map(int x, int y, int cx, int cy) const {
        RECT rc{x, y, cx, cy};
        ::MapDialogRect(hwnd, &rc);
        return {rc.left, rc.top, rc.left + rc.right, rc.top + rc.bottom};
    }
    HWND hwnd;
};

/// Where a control is to be in a dialog that has become so much larger, with that many lines.
RECT ExpectedRect(const TemplateRects& rects, int nId, int nLines, int dx) {
    RECT rc = rects.Get(nId);
    const int dy = -rects.GetUnused(nLines);
    if (nId == IDCANCEL) ::OffsetRect(&rc, dx, dy);
    if (nId == kBarId) ::OffsetRect(&rc, 0, dy);
    if (nId != IDCANCEL) rc.right += dx;
    if (nId == kFrameId) rc.bottom += dy;
    return rc;
}

void ExpectLayout(HWND hwnd, int nLines, int dx) {
    SCOPED_TRACE(testing::Message() << nLines << " lines, " << dx << " wider");
    const TemplateRects rects(hwnd);
    RECT rcClient{};
    ::GetClientRect(hwnd, &rcClient);
    EXPECT_EQ(rcClient.right, rects.GetClient().cx + dx);
    EXPECT_EQ(rcClient.bottom, rects.GetClient().cy - rects.GetUnused(nLines));
    for (int nId : kMoving) {
        SCOPED_TRACE(nId);
        RECT rc{}, rcExpected = ExpectedRect(rects, nId, nLines, dx);
        ::GetWindowRect(::GetDlgItem(hwnd, nId), &rc);
        ::MapWindowPoints(nullptr, hwnd, reinterpret_cast<POINT*>(&rc), 2);
        EXPECT_EQ(rc.left, rcExpected.left);
        EXPECT_EQ(rc.top, rcExpected.top);
        EXPECT_EQ(rc.right, rcExpected.right);
        EXPECT_EQ(rc.bottom, rcExpected.bottom);
    }
    for (int n = 0; n < kLineCount; ++n)
        EXPECT_EQ(IsShown(::GetDlgItem(hwnd, kLineIds[n])), n < nLines) << n;
    for (int nId : {kBarId, int{IDCANCEL}, kFrameId})
        EXPECT_TRUE(IsShown(::GetDlgItem(hwnd, nId))) << nId;
}

SIZE SizeOf(HWND hwnd) {
    RECT rc{};
    ::GetWindowRect(hwnd, &rc);
    return {rc.right - rc.left, rc.bottom - rc.top};
}
void SetSize(HWND hwnd, int cx, int cy) {
    ::SetWindowPos(hwnd, nullptr, 0, 0, cx, cy, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

class ProgressLayout : public ProgressDialogTest {};
class ProgressLayoutOfLines : public ProgressDialogTest, public testing::WithParamInterface<int> {};
} // namespace

TEST_P(ProgressLayoutOfLines, IsLaidOutPixelByPixelAndFollowsTheWidth) {
    const int nLines = GetParam();
    Progress progress(nullptr, 0, 0, static_cast<unsigned>(nLines), 1);
    HWND hwnd = progress.GetDlgHWND();
    ASSERT_TRUE(hwnd);
    ExpectLayout(hwnd, nLines, 0);
    const SIZE size = SizeOf(hwnd);
    SetSize(hwnd, size.cx + 83, size.cy);
    ExpectLayout(hwnd, nLines, 83);
    SetSize(hwnd, size.cx + 84, size.cy + 50); // the height stays
    ExpectLayout(hwnd, nLines, 84);
    SetSize(hwnd, size.cx + 1, size.cy - 20);
    ExpectLayout(hwnd, nLines, 1);
    SetSize(hwnd, size.cx - 40, size.cy); // the template is the smallest width
    ExpectLayout(hwnd, nLines, 0);
}

INSTANTIATE_TEST_SUITE_P(Lines, ProgressLayoutOfLines, testing::Values(1, 2, 3, 4));

TEST_F(ProgressLayout, TwoLinesTakeTwoPitchesLess) {
    Progress four(nullptr, 0, 0, 4, 1);
    HWND hwndFour = four.GetDlgHWND();
    const int cyFour = SizeOf(hwndFour).cy;
    const TemplateRects rects(hwndFour);
    const int nPitches = (rects.Get(28006).bottom - rects.Get(28005).bottom) +
                         (rects.Get(28005).bottom - rects.Get(28004).bottom);
    four.Close();
    Progress two(nullptr, 0, 0, 2, 1);
    EXPECT_EQ(SizeOf(two.GetDlgHWND()).cy, cyFour - nPitches);
}

TEST_F(ProgressLayout, NoCountOfLinesMeansFour) {
    Progress progress(nullptr, 0, 0, 0, 1);
    ExpectLayout(progress.GetDlgHWND(), 4, 0);
}

TEST_F(ProgressLayout, MoreLinesThanThereAreAreFour) {
    Progress progress(nullptr, 0, 0, 7, 1);
    ExpectLayout(progress.GetDlgHWND(), 4, 0);
}

TEST_F(ProgressLayout, CountThatIsSetBeforeTheDialogComesCounts) {
    OpenProgress progress(nullptr, 60000, 0, 4, 1);
    progress.SetLinesCount(2);
    progress.StartThread();
    ExpectLayout(progress.GetDlgHWND(), 2, 0);
}

TEST_F(ProgressLayout, WidthAndPlaceAreKeptFromOneDialogToTheNext) {
    RECT rcLeft{};
    SIZE size{};
    {
        Progress progress(nullptr, 0, 0, 4, 1);
        HWND hwnd = progress.GetDlgHWND();
        size = SizeOf(hwnd);
        ::SetWindowPos(hwnd, nullptr, 111, 77, size.cx + 57, size.cy, SWP_NOZORDER);
        ::GetWindowRect(hwnd, &rcLeft);
    }
    for (int nLines : {4, 2, 1, 3}) { // of their own height, whatever the one before had
        Progress progress(nullptr, 0, 0, static_cast<unsigned>(nLines), 1);
        HWND hwnd = progress.GetDlgHWND();
        ExpectLayout(hwnd, nLines, 57);
        RECT rc{};
        ::GetWindowRect(hwnd, &rc);
        EXPECT_EQ(rc.left, rcLeft.left) << nLines;
        EXPECT_EQ(rc.top, rcLeft.top) << nLines;
        const TemplateRects rects(hwnd);
        EXPECT_EQ(rc.bottom - rc.top, size.cy - rects.GetUnused(nLines));
        EXPECT_TRUE(::IsWindowVisible(hwnd));
    }
    {
        TestWindow parent; // before the stored place goes the middle of a parent
        ::SetWindowPos(parent, nullptr, 300, 200, 600, 400, SWP_NOZORDER | SWP_NOACTIVATE);
        Progress progress(parent, 0, 0, 4, 1);
        HWND hwnd = progress.GetDlgHWND();
        ExpectLayout(hwnd, 4, 57);
        RECT rc{};
        ::GetWindowRect(hwnd, &rc);
        EXPECT_EQ(rc.left, 300 + (600 - (rc.right - rc.left)) / 2);
        EXPECT_EQ(rc.top, 200 + (400 - (rc.bottom - rc.top)) / 2);
    }
}

TEST_F(ProgressLayout, DialogThatWasLeftMinimisedDoesNotComeBackSo) {
    {
        Progress progress;
        HWND hwnd = progress.GetDlgHWND();
        EXPECT_TRUE(WaitUntil([&] { // the dialog's loop shows it once more when it first has a rest
            ::ShowWindow(hwnd, SW_MINIMIZE);
            return HoldsFor([&] { return ::IsIconic(hwnd) != 0; }, 50);
        }));
    }
    Progress progress;
    EXPECT_FALSE(::IsIconic(progress.GetDlgHWND()));
    EXPECT_TRUE(::IsWindowVisible(progress.GetDlgHWND()));
    ExpectLayout(progress.GetDlgHWND(), 4, 0);
}

TEST_F(ProgressLayout, WidthIsKeptInTheRecordOfTheClass) {
    EXPECT_FALSE(ProgressDlg::wpResizing.IsInitialized());
    SIZE size{};
    {
        Progress progress;
        size = SizeOf(progress.GetDlgHWND());
        SetSize(progress.GetDlgHWND(), size.cx + 30, size.cy);
    }
    EXPECT_TRUE(ProgressDlg::wpResizing.IsInitialized());
    const RECT& rc = ProgressDlg::wpResizing.rcNormalPosition;
    EXPECT_EQ(rc.right - rc.left, size.cx + 30);
}

namespace {
/// What a control is told of its place and of being shown, in its order.
struct Told {
    bool bHide, bShow;
    int cx, cy; // -1 if the size stays
};
std::vector<Told> told;
WNDPROC pfnBefore;

LRESULT CALLBACK Record(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg == WM_WINDOWPOSCHANGING) {
        auto* p = reinterpret_cast<const WINDOWPOS*>(lParam);
        bool bSize = !(p->flags & SWP_NOSIZE);
        told.push_back({(p->flags & SWP_HIDEWINDOW) != 0, (p->flags & SWP_SHOWWINDOW) != 0,
                        bSize ? p->cx : -1, bSize ? p->cy : -1});
    }
    return ::CallWindowProcW(pfnBefore, hwnd, uMsg, wParam, lParam);
}
} // namespace

TEST_F(ProgressLayout, ControlThatIsResizedIsHiddenFirstAndShownByTheSameMove) {
    for (int nId : {28003, 28004, kBarId, kFrameId}) {
        SCOPED_TRACE(nId);
        Progress progress(nullptr, 0, 0, 2, 1);
        HWND hwnd = progress.GetDlgHWND(), hwndItem = ::GetDlgItem(hwnd, nId);
        const SIZE size = SizeOf(hwnd), sizeItem = SizeOf(hwndItem);
        told.clear();
        pfnBefore = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hwndItem, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Record)));
        SetSize(hwnd, size.cx + 20, size.cy);
        ::SendMessageW(hwndItem, WM_NULL, 0, 0);
        ::SetWindowLongPtrW(hwndItem, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnBefore));
        ASSERT_EQ(told.size(), 2u);
        EXPECT_TRUE(told[0].bHide);
        EXPECT_EQ(told[0].cx, -1);
        EXPECT_TRUE(told[1].bShow);
        EXPECT_EQ(told[1].cx, sizeItem.cx + 20);
        EXPECT_EQ(told[1].cy, sizeItem.cy);
    }
}

TEST_F(ProgressLayout, HiddenLinesStayHiddenWhenTheDialogIsResized) {
    for (int nId : {28005, 28006}) {
        SCOPED_TRACE(nId);
        Progress progress(nullptr, 0, 0, 2, 1);
        HWND hwnd = progress.GetDlgHWND(), hwndItem = ::GetDlgItem(hwnd, nId);
        const SIZE size = SizeOf(hwnd);
        told.clear();
        pfnBefore = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(hwndItem, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Record)));
        SetSize(hwnd, size.cx + 20, size.cy);
        ::SetWindowLongPtrW(hwndItem, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(pfnBefore));
        for (const Told& t : told) EXPECT_FALSE(t.bShow);
        EXPECT_FALSE(IsShown(hwndItem));
    }
}

TEST_F(ProgressLayout, FocusStaysOnCancelWhenTheDialogIsResized) {
    Progress progress;
    HWND hwnd = progress.GetDlgHWND();
    const SIZE size = SizeOf(hwnd);
    SetSize(hwnd, size.cx + 20, size.cy);
    EXPECT_TRUE(WaitUntil([&] { return FocusOf(hwnd) == ::GetDlgItem(hwnd, IDCANCEL); }));
}
