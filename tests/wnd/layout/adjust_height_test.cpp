#include "wnd/layout/layout_probe.h"
#include "wnd/layout/recorded_positions.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {
constexpr int kAir = 20;

/// A hidden dialog with a label of 120 by 40 pixels.
struct AdjustHeight : testing::Test {
    AdjustHeight() {
        EXPECT_TRUE(dlg.Make(IDD_LAYOUT_ITEMS));
        PlaceItem(dlg, IDC_LAYOUT_LABEL, {10, 10, 130, 50});
        rcBefore = WindowRect(dlg);
    }
    /// The text's size in that width, by the platform.
    SIZE Measure(const std::wstring& strText, int cx = 120) {
        HWND label = ::GetDlgItem(dlg, IDC_LAYOUT_LABEL);
        HDC hdc = ::GetDC(label);
        HGDIOBJ before =
            ::SelectObject(hdc, reinterpret_cast<HFONT>(::SendMessageW(label, WM_GETFONT, 0, 0)));
        RECT rc = {0, 0, cx, 40};
        ::DrawTextW(hdc, strText.c_str(), -1, &rc,
                    DT_CALCRECT | DT_WORDBREAK | DT_NOFULLWIDTHCHARBREAK);
        ::SelectObject(hdc, before);
        ::ReleaseDC(label, hdc);
        return {Width(rc), Height(rc)};
    }
    void Adjust(const std::wstring& strText) {
        ::SetDlgItemTextW(dlg, IDC_LAYOUT_LABEL, strText.c_str());
        dlg.AdjustHeight(IDC_LAYOUT_LABEL);
    }
    void ExpectGrownBy(int dw, int dh) {
        RECT rc = WindowRect(dlg);
        EXPECT_EQ(dw, Width(rc) - Width(rcBefore));
        EXPECT_EQ(dh, Height(rc) - Height(rcBefore));
        EXPECT_EQ(rcBefore.left, rc.left);
        EXPECT_EQ(rcBefore.top, rc.top);
    }
    LayoutDlg dlg;
    RECT rcBefore{};
};

std::wstring Words(int n) {
    std::wstring str;
    for (int i = 0; i < n; ++i) str += L"some words ";
    return str;
}

TEST_F(AdjustHeight, TextThatFitsChangesNothing) {
    RecordedPositions recorded;
    Adjust(L"short");
    EXPECT_TRUE(recorded.Calls().empty());
    Adjust(L"");
    ExpectGrownBy(0, 0);
}

TEST_F(AdjustHeight, GrowsByWhatIsMissingAndSomeAir) {
    const std::wstring str = Words(20);
    const SIZE size = Measure(str);
    ASSERT_LT(40, size.cy);
    ASSERT_GE(120, size.cx);
    RecordedPositions recorded;
    Adjust(str);
    ExpectGrownBy(0, size.cy - 40 + kAir);
    EXPECT_EQ(std::vector<UINT>{SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE}, recorded.FlagsOf(dlg));
    EXPECT_EQ((RECT{10, 10, 130, 50}), ItemRect(dlg, IDC_LAYOUT_LABEL)) << "the label stays";
}

TEST_F(AdjustHeight, GrowsInWidthForALongWord) {
    const std::wstring str(60, L'w');
    const SIZE size = Measure(str);
    ASSERT_LT(120, size.cx);
    ASSERT_GT(40, size.cy);
    Adjust(str);
    ExpectGrownBy(size.cx - 120, std::max(0, static_cast<int>(size.cy) - 40 + kAir));
}

TEST_F(AdjustHeight, WidthAloneTakesNoHeightFromAHighControl) {
    PlaceItem(dlg, IDC_LAYOUT_LABEL, {10, 10, 130, 110});
    const std::wstring str(60, L'w');
    const SIZE size = Measure(str);
    ASSERT_GT(100 - kAir, size.cy);
    Adjust(str);
    ExpectGrownBy(size.cx - 120, 0);
}

TEST_F(AdjustHeight, OnlyTheBeginningOfALongTextCounts) {
    const std::wstring str = Words(1000);
    Adjust(str);
    const int dh = Height(WindowRect(dlg)) - Height(rcBefore);
    EXPECT_LE(Measure(str.substr(0, 1000)).cy - 40 + kAir, dh);
    EXPECT_GE(Measure(str.substr(0, 1024)).cy - 40 + kAir, dh);
}

TEST_F(AdjustHeight, TakesTheControlsFont) {
    HFONT hfont =
        ::CreateFontW(60, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"Tahoma");
    ::SendDlgItemMessageW(dlg, IDC_LAYOUT_LABEL, WM_SETFONT, reinterpret_cast<WPARAM>(hfont), 0);
    const SIZE size = Measure(L"high");
    ASSERT_LT(40, size.cy);
    Adjust(L"high");
    ExpectGrownBy(std::max(0, static_cast<int>(size.cx) - 120), size.cy - 40 + kAir);
    ::SendDlgItemMessageW(dlg, IDC_LAYOUT_LABEL, WM_SETFONT, 0, 0);
    ::DeleteObject(hfont);
}

TEST_F(AdjustHeight, MissingItemHasNoText) {
    dlg.AdjustHeight(4711);
    ExpectGrownBy(0, 0);
}

TEST_F(AdjustHeight, ResizableDialogIsToldOfItsGrowth) {
    LayoutDlg sizing;
    ASSERT_TRUE(sizing.MakeSizing());
    PlaceItem(sizing, IDC_LAYOUT_BUTTON, {10, 10, 40, 14});
    ::SetDlgItemTextW(sizing, IDC_LAYOUT_BUTTON, L"some words");
    sizing.AdjustHeight(IDC_LAYOUT_BUTTON);
    EXPECT_EQ(1, sizing.nResizes);
    EXPECT_LT(kAir, sizing.nSumDh);
    EXPECT_EQ(sizing.curHeight - sizing.minHeight, sizing.nSumDh);
}
} // namespace
