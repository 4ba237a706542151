// Buttons as members of a dialog, under the real mouse.
#include "buttons/button_ids.h"
#include "buttons/icon_probe.h"
#include "buttons/image_probe.h"
#include "buttons/message_spy.h"
#include "resources/resource_ids.h"
#include "support/input.h"
#include "support/wait_until.h"
#include "wnd/dialog/csdlg.h"

#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace {
class ButtonDlg : public CSDlg {
  public:
    struct Move {
        unsigned __int64 qwFlags;
        int x, y;
    };

    explicit ButtonDlg(int* pnDeathsSet = nullptr) : pnDeaths(pnDeathsSet) {
        alignMode = 0;
        EnableFullDrag(0);
    }
    ~ButtonDlg() override {
        if (pnDeaths) ++*pnDeaths;
        if (::IsWindow(hWnd)) ::DestroyWindow(hWnd);
    }
    __int64 OnInitDialog(unsigned __int64 wParam, __int64 lParam) override {
        picture.Init(this, IDC_PICTURE, nullptr, 0);
        otherPicture.Init(this, IDC_OTHER_PICTURE, nullptr, 0);
        plain.Init(this, IDC_PLAIN, nullptr, 0);
        link.Init(this, IDC_LINK, nullptr, 0);
        return CSDlg::OnInitDialog(wParam, lParam);
    }
    void OnMouseMove(unsigned __int64 qwFlags, int x, int y) override {
        moves.push_back({qwFlags, x, y});
        if (bDieAtMove) ::DestroyWindow(hWnd);
    }
    void OnButtonClicked(unsigned short nId) override { clicked.push_back(nId); }

    bool Open() {
        if (!Modeless(IDD_BUTTONS, ::GetModuleHandleW(nullptr), nullptr, 1)) return false;
        ::SetWindowPos(hWnd, HWND_TOPMOST, 200, 150, 0, 0, SWP_NOSIZE);
        ::UpdateWindow(hWnd);
        return true;
    }
    /// The middle of an item, in pixels of the screen.
    POINT MiddleOf(int nId) {
        RECT rc{};
        ::GetWindowRect(::GetDlgItem(hWnd, nId), &rc);
        return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
    }

    ProbeImageBtn picture{48, 48, nullptr, -IDB_BUTTON_STRIP_1, 0, 3};
    ProbeImageBtn otherPicture{16, 16, nullptr, -IDI_DLG_CLOSE, IDI_DLG_CLOSE_HOVER, 0, 0, 0, 3};
    ProbeIconBtn plain{static_cast<unsigned>(-IDI_DLG_CLOSE), 0, 3, 0, 0};
    ProbeIconBtn link{static_cast<unsigned>(-IDI_DLG_MINIMIZE),
                      static_cast<unsigned>(-IDI_DLG_MINIMIZE_HOVER), 5, 2, kCommonValue};
    std::vector<Move> moves;
    std::vector<int> clicked;
    bool bDieAtMove = false;

  private:
    int* pnDeaths;
};

constexpr POINT kAway{900, 600};

void MouseTo(POINT pt, DWORD dwFlags = 0) {
    INPUT input = MouseInput(dwFlags, pt);
    EXPECT_EQ(1u, ::SendInput(1, &input, sizeof(input)));
}

/// Moves the mouse there until fnDone gives true; again and again, as an earlier movement that
/// comes late can put the cursor back. (For that reason nothing here waits for the mouse's leaving,
/// which the platform forgets if a window asks for it when the cursor is elsewhere already.)
template <class Fn>
bool MoveUntil(POINT pt, Fn fnDone) {
    constexpr int kTries = 20;
    constexpr DWORD kTryMs = 500;
    for (int n = 0; n < kTries; ++n) {
        MouseTo(kAway);
        MouseTo(pt);
        if (PumpUntil(fnDone, kTryMs)) return true;
    }
    return false;
}

struct ButtonsInDialog : testing::Test {
    void SetUp() override {
        MouseTo(kAway);
        ASSERT_TRUE(dlg.Open());
    }
    void TearDown() override { MouseTo(kAway); }
    POINT InClient(POINT pt) {
        ::ScreenToClient(dlg, &pt);
        return pt;
    }
    ButtonDlg dlg;
};

TEST_F(ButtonsInDialog, AreDrawnByThemselves) {
    for (CSWnd* pButton :
         std::initializer_list<CSWnd*>{&dlg.picture, &dlg.otherPicture, &dlg.plain, &dlg.link}) {
        EXPECT_EQ(static_cast<DWORD>(BS_OWNERDRAW), pButton->GetStyle(0) & BS_TYPEMASK);
        EXPECT_NE(0u, pButton->GetStyle(0) & WS_TABSTOP);
    }
    int nFaces = 0;
    dlg.plain.onDrawButton = [&](HDC hdc, RECT* prc, unsigned state) {
        ++nFaces;
        RECT rcClient{};
        ::GetClientRect(dlg.plain, &rcClient);
        EXPECT_TRUE(::EqualRect(&rcClient, prc));
        EXPECT_EQ(0x2010u, state);
        EXPECT_NE(nullptr, hdc);
    };
    dlg.plain.Invalidate(nullptr, 1);
    EXPECT_TRUE(PumpUntil([&] { return nFaces > 0; }));
}

TEST_F(ButtonsInDialog, ShowTheirPicture) {
    RECT rc{};
    ::GetClientRect(dlg.picture, &rc);
    HDC hdc = ::GetDC(dlg.picture);
    dlg.picture.Redraw(RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    COLORREF cr = ::GetPixel(hdc, rc.right / 2, rc.bottom / 2);
    COLORREF crEdge = ::GetPixel(hdc, 0, 0);
    ::ReleaseDC(dlg.picture, hdc);
    EXPECT_NE(crEdge, cr);
    EXPECT_NE(RGB(255, 0, 255), cr);
}

TEST_F(ButtonsInDialog, APictureHoversUnderTheMouseAndTellsTheDialog) {
    POINT pt = dlg.MiddleOf(IDC_PICTURE);
    ASSERT_TRUE(MoveUntil(pt, [&] { return dlg.picture.bHover == 1; }));
    ASSERT_FALSE(dlg.moves.empty());
    POINT ptClient = InClient(pt);
    EXPECT_EQ(ptClient.x, dlg.moves.back().x);
    EXPECT_EQ(ptClient.y, dlg.moves.back().y);
    EXPECT_EQ(0u, dlg.moves.back().qwFlags);
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_HAND), ::GetCursor());

    TRACKMOUSEEVENT track{sizeof(track), TME_QUERY, nullptr, 0};
    EXPECT_TRUE(PumpUntil([&] {
        return ::TrackMouseEvent(&track) && track.hwndTrack == dlg.picture &&
               track.dwFlags == TME_LEAVE;
    }));
    ::SendMessageW(dlg.picture, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(0, dlg.picture.bHover);
}

TEST_F(ButtonsInDialog, APressEndsTheHoverUntilTheMouseMoves) {
    POINT pt = dlg.MiddleOf(IDC_PICTURE);
    ASSERT_TRUE(MoveUntil(pt, [&] { return dlg.picture.bHover == 1; }));
    int nDown = 0, nUp = 0;
    MessageSpy spy(dlg.picture);
    spy.onMessage = [&](UINT uMsg) {
        nDown += uMsg == WM_LBUTTONDOWN;
        nUp += uMsg == WM_LBUTTONUP;
    };
    ::SendMessageW(dlg.picture, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
    EXPECT_EQ(0, dlg.picture.bHover);
    ::SendMessageW(dlg.picture, WM_LBUTTONUP, 0, MAKELPARAM(20, 20));
    EXPECT_EQ(0, dlg.picture.bHover);
    EXPECT_EQ(1, nDown);
    EXPECT_EQ(1, nUp);
    EXPECT_EQ(std::vector<int>{IDC_PICTURE}, dlg.clicked);
    EXPECT_TRUE(MoveUntil({pt.x + 3, pt.y + 3}, [&] { return dlg.picture.bHover == 1; }));
}

TEST_F(ButtonsInDialog, AreClickedByTheRealMouse) {
    for (int nId : {IDC_PICTURE, IDC_PLAIN, IDC_LINK}) {
        dlg.clicked.clear();
        POINT pt = dlg.MiddleOf(nId);
        MouseTo(pt, MOUSEEVENTF_LEFTDOWN);
        MouseTo(pt, MOUSEEVENTF_LEFTUP);
        EXPECT_TRUE(PumpUntil([&] { return !dlg.clicked.empty(); })) << nId;
        EXPECT_EQ(std::vector<int>{nId}, dlg.clicked);
    }
}

TEST_F(ButtonsInDialog, ArePressedBySpace) {
    for (int nId : {IDC_PICTURE, IDC_PLAIN, IDC_LINK}) {
        dlg.clicked.clear();
        HWND hwnd = ::GetDlgItem(dlg, nId);
        ::SetFocus(hwnd);
        ::SendMessageW(hwnd, WM_KEYDOWN, VK_SPACE, 0);
        EXPECT_TRUE(dlg.clicked.empty()) << "not yet";
        ::SendMessageW(hwnd, WM_KEYUP, VK_SPACE, 0);
        EXPECT_EQ(std::vector<int>{nId}, dlg.clicked);
    }
}

// The check that was set by a message is the one that is drawn.
TEST_F(ButtonsInDialog, ACheckedPlainButtonLooksSo) {
    unsigned uState = 0;
    dlg.plain.onDrawButton = [&](HDC, RECT*, unsigned state) { uState = state; };
    for (unsigned uCheck : {BST_CHECKED, BST_UNCHECKED}) {
        dlg.CheckDlgButton(IDC_PLAIN, uCheck);
        EXPECT_EQ(uCheck, dlg.IsDlgButtonChecked(IDC_PLAIN));
        ::UpdateWindow(dlg.plain);
        EXPECT_EQ(uCheck ? 0x2410u : 0x2010u, uState);
    }
}

TEST_F(ButtonsInDialog, ALinkHoversUnderTheMouseAPlainButtonDoesNot) {
    ASSERT_TRUE(MoveUntil(dlg.MiddleOf(IDC_LINK), [&] { return dlg.link.bHover == 1; }));
    EXPECT_EQ(::LoadCursorW(nullptr, IDC_HAND), ::GetCursor());
    int nMoves = 0;
    MessageSpy spy(dlg.plain);
    spy.onMessage = [&](UINT uMsg) { nMoves += uMsg == WM_MOUSEMOVE; };
    ASSERT_TRUE(MoveUntil(dlg.MiddleOf(IDC_PLAIN), [&] {
        return nMoves > 0 && ::GetCursor() == ::LoadCursorW(nullptr, IDC_ARROW);
    }));
    EXPECT_EQ(0, dlg.plain.bHover);
}

TEST_F(ButtonsInDialog, ThePointIsConvertedWhereverTheButtonStands) {
    ::SetWindowPos(dlg.otherPicture, nullptr, 123, 45, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    const struct { int x, y; } rows[] = {{0, 0}, {5, 7}, {-3, -4}, {32767, -32768}};
    for (const auto& row : rows) {
        dlg.moves.clear();
        ::SendMessageW(dlg.otherPicture, WM_MOUSEMOVE, MK_SHIFT, MAKELPARAM(row.x, row.y));
        ASSERT_EQ(1u, dlg.moves.size());
        EXPECT_EQ(123 + row.x, dlg.moves[0].x);
        EXPECT_EQ(45 + row.y, dlg.moves[0].y);
        EXPECT_EQ(static_cast<unsigned __int64>(MK_SHIFT), dlg.moves[0].qwFlags);
    }
}

TEST_F(ButtonsInDialog, TheDefaultHandlesAMovementBeforeTheDialogSeesIt) {
    MessageSpy spy(dlg.picture);
    spy.onMessage = [&](UINT uMsg) {
        if (uMsg != WM_MOUSEMOVE) return;
        EXPECT_TRUE(dlg.moves.empty());
    };
    ::SendMessageW(dlg.picture, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, dlg.moves.size());
    spy.onMessage = nullptr;
    dlg.moves.clear();
    ::SendMessageW(dlg.picture, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, dlg.moves.size()) << "also while it hovers";
}

// What a link shows as it gets and loses mouse and focus is the same as when it is painted anew.
TEST_F(ButtonsInDialog, ALinkInItsWindowIsWipedWithoutErasing) {
    auto Read = [&] {
        ::UpdateWindow(dlg.link);
        RECT rc{};
        ::GetClientRect(dlg.link, &rc);
        std::vector<COLORREF> pixels;
        HDC hdc = ::GetDC(dlg.link);
        for (int y = 0; y < rc.bottom; ++y)
            for (int x = 0; x < rc.right; ++x) pixels.push_back(::GetPixel(hdc, x, y));
        ::ReleaseDC(dlg.link, hdc);
        return pixels;
    };
    auto Anew = [&] {
        dlg.link.Redraw(RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        return Read();
    };
    ::SetFocus(dlg.plain);
    auto atRest = Anew();
    ::SendMessageW(dlg.link, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    auto hovering = Read();
    EXPECT_NE(atRest, hovering);
    EXPECT_EQ(Anew(), hovering);
    ::SendMessageW(dlg.link, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(atRest, Read());
}

TEST_F(ButtonsInDialog, EndWithADialogThatClosesAtAMovement) {
    dlg.bDieAtMove = true;
    ::SendMessageW(dlg.picture, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, dlg.moves.size());
    EXPECT_EQ(0, dlg.picture.IsReady());
    EXPECT_EQ(0, dlg.picture.bHover);
}

TEST(ButtonsInDialogs, EndWithADialogThatDeletesItselfAtAMovement) {
    int nDeaths = 0;
    auto* pDlg = new ButtonDlg(&nDeaths);
    pDlg->autoDelete = 1;
    ASSERT_TRUE(pDlg->Open());
    pDlg->bDieAtMove = true;
    ::SendMessageW(pDlg->picture, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1, nDeaths);
    EXPECT_EQ(1, ProbeIconBtn::dwRefCount);
}

TEST(ButtonsInDialogs, CanBeLoadedAnewBeforeTheyAreTied) {
    ButtonDlg dlg;
    dlg.picture.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_3, 0, 3);
    ASSERT_TRUE(dlg.Open());
    dlg.picture.Check(1);
    EXPECT_EQ(1, dlg.picture.IsChecked());
    dlg.picture.LoadBmp(48, 48, nullptr, -IDB_BUTTON_STRIP_2, 021, 3);
    EXPECT_EQ(0, dlg.picture.IsChecked());
    EXPECT_EQ((std::vector<int>{0, 1, -1, -1, -1}), dlg.picture.Indices());
}
} // namespace
