#include "support/gui_objects.h"
#include "support/replace_import.h"
#include "support/told_version.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csedit.h"
#include "wnd/control/edit_dialog.h"

#include <gtest/gtest.h>
#include <commctrl.h>

extern "C" FARPROC __imp_RedrawWindow, __imp_CreateSolidBrush;

namespace {
using Message = MessageTap::Message;

constexpr UINT kShowBalloonTip = 5379, kHideBalloonTip = 5380;

// Colours

struct Redraws {
    Redraws() { calls.clear(); }
    struct Call {
        HWND hwnd;
        const RECT* prc;
        HRGN hrgn;
        UINT uFlags;
    };
    static inline std::vector<Call> calls;
    static BOOL WINAPI Redraw(HWND hwnd, const RECT* prc, HRGN hrgn, UINT uFlags) {
        calls.push_back({hwnd, prc, hrgn, uFlags});
        return TRUE;
    }
    int Of(HWND hwnd) const {
        int n = 0;
        for (auto& call : calls) {
            n += call.hwnd == hwnd && !call.prc && !call.hrgn && call.uFlags == 1157;
        }
        return n;
    }
    ReplaceImport replaced{__imp_RedrawWindow, &Redraw};
};

COLORREF ColorOf(HBRUSH hbr) {
    LOGBRUSH info{};
    EXPECT_EQ(static_cast<int>(sizeof(info)), ::GetObjectW(hbr, sizeof(info), &info));
    EXPECT_EQ(static_cast<UINT>(BS_SOLID), info.lbStyle);
    return info.lbColor;
}

TEST(CSEditLook, BackgroundIsGivenToEditAndStaticMessagesAlone) {
    Edits<> t;
    HDC hdc = ::CreateCompatibleDC(nullptr);
    for (bool bBrush : {false, true}) {
        if (bBrush) t.edit.SetBkgColor(RGB(10, 20, 30));
        for (UINT uMsg = 300; uMsg <= 320; ++uMsg) {
            ::SetBkMode(hdc, OPAQUE);
            HBRUSH hbr = reinterpret_cast<HBRUSH>(7);
            bool bAnswers = bBrush && (uMsg == 307 || uMsg == 312);
            EXPECT_EQ(bAnswers ? 1 : 0, t.edit.OnCtlColor(uMsg, hdc, &hbr)) << uMsg;
            EXPECT_EQ(bAnswers ? t.edit.Brush() : reinterpret_cast<HBRUSH>(7), hbr) << uMsg;
            EXPECT_EQ(bAnswers ? TRANSPARENT : OPAQUE, ::GetBkMode(hdc)) << uMsg;
        }
    }
    EXPECT_EQ(RGB(10, 20, 30), ColorOf(t.edit.Brush()));
    ::DeleteDC(hdc);
}

TEST(CSEditLook, EveryColorIsTakenAndShownAtOnce) {
    Edits<> t;
    Redraws redraws;
    t.edit.ClearBkgColor();
    EXPECT_EQ(0, redraws.Of(t.Get())) << "there was none";
    EXPECT_TRUE(Redraws::calls.empty());
    int n = 0;
    for (COLORREF cr : {RGB(255, 0, 0), RGB(0, 0, 0), RGB(255, 255, 255), RGB(255, 0, 0)}) {
        t.edit.SetBkgColor(cr);
        EXPECT_EQ(++n, redraws.Of(t.Get()));
        EXPECT_EQ(cr, ColorOf(t.edit.Brush()));
    }
    t.edit.ClearBkgColor();
    EXPECT_EQ(++n, redraws.Of(t.Get()));
    EXPECT_EQ(nullptr, t.edit.Brush());
    t.edit.ClearBkgColor();
    EXPECT_EQ(n, redraws.Of(t.Get()));
    HBRUSH hbr = nullptr;
    EXPECT_EQ(0, t.edit.OnCtlColor(WM_CTLCOLOREDIT, nullptr, &hbr));
}

TEST(CSEditLook, ColorsLeaveNoBrushes) {
    { Edits<> warm; }
    int nBefore = CountGdiObjects();
    {
        CSEdit edit[3];
        Redraws redraws;
        for (int n = 0; n < 100; ++n) {
            for (auto& e : edit) e.SetBkgColor(static_cast<unsigned>(n));
        }
        EXPECT_EQ(nBefore + 3, CountGdiObjects()) << "one for each";
        edit[0].ClearBkgColor();
        EXPECT_EQ(nBefore + 2, CountGdiObjects());
    }
    EXPECT_EQ(nBefore, CountGdiObjects()) << "the others go with their objects";
}

HBRUSH WINAPI NoBrush(COLORREF) { return nullptr; }

TEST(CSEditLook, BrushThatCannotBeMadeIsNone) {
    Edits<> t;
    t.edit.SetBkgColor(1);
    ReplaceImport replaced(__imp_CreateSolidBrush, &NoBrush);
    t.edit.SetBkgColor(2);
    EXPECT_EQ(nullptr, t.edit.Brush());
    HBRUSH hbr = reinterpret_cast<HBRUSH>(7);
    EXPECT_EQ(0, t.edit.OnCtlColor(WM_CTLCOLOREDIT, nullptr, &hbr));
}

TEST(CSEditLook, DialogPaintsTheEditWithIt) {
    Edits<> t(IDC_CTL_EDIT, 1);
    t.edit.SetBkgColor(RGB(0, 200, 100));
    auto Pixel = [&] {
        RECT rc{};
        ::GetClientRect(t.Get(), &rc);
        HDC hdc = ::GetDC(t.Get());
        COLORREF cr = ::GetPixel(hdc, rc.right / 2, rc.bottom / 2);
        ::ReleaseDC(t.Get(), hdc);
        return cr;
    };
    HDC hdc = ::GetDC(t.Get());
    for (UINT uMsg : {WM_CTLCOLOREDIT, WM_CTLCOLORSTATIC}) {
        EXPECT_EQ(reinterpret_cast<LRESULT>(t.edit.Brush()),
                  ::SendMessageW(t.dialog, uMsg, reinterpret_cast<WPARAM>(hdc),
                                 reinterpret_cast<LPARAM>(t.Get())));
    }
    ::ReleaseDC(t.Get(), hdc);
    EXPECT_TRUE(PumpUntil([&] { return Pixel() == RGB(0, 200, 100); }));
    ::EnableWindow(t.Get(), FALSE);
    EXPECT_TRUE(PumpUntil([&] { return Pixel() == RGB(0, 200, 100); })) << "disabled";
    ::EnableWindow(t.Get(), TRUE);
    t.edit.ClearBkgColor();
    EXPECT_TRUE(PumpUntil([&] { return Pixel() == ::GetSysColor(COLOR_WINDOW); }));
}

// Balloons

struct BalloonCase {
    const char* pszName;
    DWORD nMajor, nMinor;
    bool bHas;
};
using CSEditBalloon = SharedBy<Edits<>, BalloonCase>;
TEST_P(CSEditBalloon, ComesFromWindowsXpOn) {
    auto& row = GetParam();
    auto& t = Get();
    // Read while the message is there: the record is the caller's.
    struct Balloon {
        DWORD cb;
        const wchar_t* pszTitle;
        const wchar_t* pszText;
        int nIcon;
    } seen{};
    static_assert(sizeof(Balloon) == 32);
    WPARAM wSeen = 77;
    t.tap->answer = [&](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg == kHideBalloonTip) return 1;
        if (uMsg != kShowBalloonTip) return std::nullopt;
        seen = *reinterpret_cast<const Balloon*>(lParam);
        wSeen = wParam;
        return 1;
    };
    ToldVersion told(Version(2, row.nMajor, row.nMinor, 1));
    EXPECT_EQ(row.bHas, t.edit.ShowBalloon(L"title", L"text", TTI_WARNING) != 0);
    EXPECT_EQ(row.bHas, t.edit.HideBalloon() != 0);
    if (!row.bHas) {
        EXPECT_TRUE(t.tap->seen.empty());
        return;
    }
    ASSERT_EQ(2u, t.tap->seen.size());
    EXPECT_EQ((Message{kHideBalloonTip, 0, 0}), t.tap->seen[1]);
    EXPECT_EQ(0u, wSeen);
    EXPECT_EQ(32u, seen.cb);
    EXPECT_STREQ(L"title", seen.pszTitle);
    EXPECT_STREQ(L"text", seen.pszText);
    EXPECT_EQ(TTI_WARNING, seen.nIcon);
}
INSTANTIATE_TEST_SUITE_P(
    Version, CSEditBalloon,
    testing::Values(BalloonCase{"NT4", 4, 0, false}, BalloonCase{"Future4", 4, 90, false},
                    BalloonCase{"Windows2000", 5, 0, false}, BalloonCase{"XP", 5, 1, true},
                    BalloonCase{"XPx64", 5, 2, true}, BalloonCase{"Vista", 6, 0, true},
                    BalloonCase{"Windows10", 10, 0, true}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSEditLook, BalloonReportsThePlatformsResult) {
    Edits<> t;
    for (LRESULT lAnswer : {0, 1}) {
        t.tap->answer = [=](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
            return uMsg == kShowBalloonTip || uMsg == kHideBalloonTip ? std::optional(lAnswer)
                                                                      : std::nullopt;
        };
        EXPECT_EQ(lAnswer, t.edit.ShowBalloon(nullptr, nullptr, 0));
        EXPECT_EQ(lAnswer, t.edit.HideBalloon());
    }
}
} // namespace
