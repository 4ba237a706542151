#include "support/menu_driver.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

extern "C" FARPROC __imp_GetCursorPos;

namespace {
POINT ptTestCursor{};
BOOL WINAPI TestCursorPos(POINT* ppt) {
    *ppt = ptTestCursor;
    return TRUE;
}

/// Where menus of the product's find the cursor. The real one may be moved by what is still on its
/// way from the display; the end-to-end tests open menus at that.
class TestCursor {
  public:
    explicit TestCursor(POINT pt) : replaced(__imp_GetCursorPos, &TestCursorPos) {
        ptTestCursor = pt;
    }

  private:
    ReplaceImport replaced;
};

struct AdjustingMenu : CSMenu {
    using CSMenu::AdjustPointForTrayIcon;
};

/// A visible window in front, with a control 50, and a popup of three items with a sub-menu.
struct CSMenuTrack : testing::Test {
    CSMenuTrack() {
        hwndCtrl = ::CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE, 20, 30, 61, 41,
                                     owner, reinterpret_cast<HMENU>(50), nullptr, nullptr);
        ::SetWindowPos(owner, HWND_TOP, 100, 100, 300, 200, SWP_SHOWWINDOW);
        ::SetForegroundWindow(owner);
        menu.CreatePopup();
        menu.AppendItem(11, L"&One");
        menu.AppendItem(12, L"&Two");
        sub.CreatePopup();
        sub.AppendItem(21, L"&Inner");
        menu.AppendSubMenu(sub, L"&Sub");
        sub.Detach(); // it goes with its parent
        PutCursor({600, 400});
    }
    RECT CtrlRect() {
        RECT rc{};
        ::GetWindowRect(hwndCtrl, &rc);
        return rc;
    }

    TestWindow owner;
    HWND hwndCtrl = nullptr;
    CSMenu menu, sub;
};

void ExpectPlace(POINT pt, RECT rc) {
    EXPECT_EQ(pt.x, rc.left);
    EXPECT_EQ(pt.y, rc.top);
}
} // namespace

TEST_F(CSMenuTrack, KeysChooseAnItem) {
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press(VK_DOWN, VK_DOWN, VK_RETURN); });
    EXPECT_EQ(12, menu.Track(owner, POINT{200, 200}));
    EXPECT_TRUE(driver.Finish());
}

TEST_F(CSMenuTrack, ALetterChoosesAnItem) {
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press('O'); });
    EXPECT_EQ(11, menu.Track(owner, POINT{200, 200}));
    EXPECT_TRUE(driver.Finish());
}

TEST_F(CSMenuTrack, KeysChooseFromASubMenu) {
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press('S', 'I'); });
    EXPECT_EQ(21, menu.Track(owner, POINT{200, 200}));
    EXPECT_TRUE(driver.Finish());
}

TEST_F(CSMenuTrack, EscapeAndAClickElsewhereGiveZero) {
    {
        MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press(VK_ESCAPE); });
        EXPECT_EQ(0, menu.Track(owner, POINT{200, 200}));
        EXPECT_TRUE(driver.Finish());
    }
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Click({700, 500}); });
    EXPECT_EQ(0, menu.Track(owner, POINT{200, 200}));
    EXPECT_TRUE(driver.Finish());
}

TEST_F(CSMenuTrack, BothMouseButtonsChooseAnItem) {
    for (bool bRight : {false, true}) {
        MenuDriver driver(owner,
                          [&](MenuDriver& hands) { hands.Click(hands.PlaceOf(menu, 1), bRight); });
        EXPECT_EQ(12, menu.Track(owner, POINT{200, 200})) << bRight;
        EXPECT_TRUE(driver.Finish());
    }
}

TEST_F(CSMenuTrack, PointIsTheMenusPlace) {
    RECT rc{};
    MenuDriver driver(owner, [&](MenuDriver& hands) {
        rc = hands.FirstPopup();
        hands.Press(VK_ESCAPE);
    });
    menu.Track(owner, POINT{213, 147});
    EXPECT_TRUE(driver.Finish());
    ExpectPlace({213, 147}, rc);
}

TEST_F(CSMenuTrack, OpensAtTheCursorWithoutAControlAndAtTheControlsCentreFromOutside) {
    RECT rcCtrl = CtrlRect();
    POINT ptCentre{(rcCtrl.left + rcCtrl.right) / 2, (rcCtrl.top + rcCtrl.bottom) / 2};
    const struct {
        const char* pszName;
        unsigned nCtrlId;
        POINT ptCursor;
        POINT ptMenu;
    } rows[] = {
        {"no control", 0, {600, 400}, {600, 400}},
        {"no control, cursor over one", 0, {rcCtrl.left, rcCtrl.top}, {rcCtrl.left, rcCtrl.top}},
        {"control does not exist", 51, {600, 400}, {600, 400}},
        {"outside", 50, {600, 400}, ptCentre},
        {"left and top edge are inside", 50, {rcCtrl.left, rcCtrl.top}, {rcCtrl.left, rcCtrl.top}},
        {"last pixel is inside",
         50,
         {rcCtrl.right - 1, rcCtrl.bottom - 1},
         {rcCtrl.right - 1, rcCtrl.bottom - 1}},
        {"right edge is outside", 50, {rcCtrl.right, rcCtrl.top}, ptCentre},
        {"bottom edge is outside", 50, {rcCtrl.left, rcCtrl.bottom}, ptCentre},
        {"left of it is outside", 50, {rcCtrl.left - 1, rcCtrl.top}, ptCentre},
        {"above it is outside", 50, {rcCtrl.left, rcCtrl.top - 1}, ptCentre},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.pszName);
        TestCursor cursor(row.ptCursor);
        RECT rc{};
        MenuDriver driver(owner, [&](MenuDriver& hands) {
            rc = hands.FirstPopup();
            hands.Press(VK_ESCAPE);
        });
        EXPECT_EQ(0, menu.Track(owner, row.nCtrlId));
        EXPECT_TRUE(driver.Finish());
        ExpectPlace(row.ptMenu, rc);
    }
}

TEST_F(CSMenuTrack, NoMenuGivesZeroAtOnce) {
    CSMenu none;
    EXPECT_EQ(0, none.Track(owner, POINT{1, 1}));
    EXPECT_EQ(0, none.Track(owner, 50u));
    EXPECT_EQ(0, none.Track2(owner, 1));
}

TEST_F(CSMenuTrack, PointMovesAwayFromTheNearestEdges) {
    AdjustingMenu adjusting;
    int cx = ::GetSystemMetrics(SM_CXSCREEN), cy = ::GetSystemMetrics(SM_CYSCREEN);
    int dx = ::GetSystemMetrics(SM_CXSMICON), dy = ::GetSystemMetrics(SM_CYSMICON);
    const struct {
        POINT pt, ptMoved;
    } rows[] = {
        {{0, 0}, {dx, dy}},
        {{cx - 1, cy - 1}, {cx - 1 - dx, cy - 1 - dy}},
        {{cx - 1, 0}, {cx - 1 - dx, dy}},
        {{0, cy - 1}, {dx, cy - 1 - dy}},
        {{cx / 2, cy / 2}, {cx / 2 - dx, cy / 2 - dy}}, // half the width belongs to the right
        {{cx / 2 - 1, cy / 2 - 1}, {cx / 2 - 1 + dx, cy / 2 - 1 + dy}},
    };
    for (const auto& row : rows) {
        POINT pt = row.pt;
        adjusting.AdjustPointForTrayIcon(pt);
        EXPECT_EQ(row.ptMoved.x, pt.x) << row.pt.x;
        EXPECT_EQ(row.ptMoved.y, pt.y) << row.pt.y;
    }
}

namespace {
/// A hidden owner that writes down what Track2 does to it.
struct CSMenuTrack2 : testing::Test {
    CSMenuTrack2() {
        menu.CreatePopup();
        menu.AppendItem(11, L"&One");
        ::ShowWindow(front, SW_SHOW);
        ::SetForegroundWindow(front);
        PutCursor({600, 400});
    }
    std::optional<LRESULT> OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) {
        if (uMsg == WM_WINDOWPOSCHANGING) {
            auto* pPos = reinterpret_cast<WINDOWPOS*>(lParam);
            constexpr UINT kTold = SWP_NOSIZE | SWP_NOMOVE | SWP_NOREDRAW;
            if ((pPos->flags & kTold) == kTold && !(pPos->flags & SWP_NOZORDER)) {
                if (pPos->hwndInsertAfter == HWND_TOP) events += "top ";
                if (pPos->hwndInsertAfter == HWND_BOTTOM) events += "bottom ";
            }
        }
        if (uMsg == WM_ACTIVATE) events += LOWORD(wParam) ? "active " : "inactive ";
        if (uMsg == WM_ENTERMENULOOP) {
            events += ::GetForegroundWindow() == owner ? "menu " : "menu-not-in-front ";
        }
        if (uMsg == WM_EXITMENULOOP) events += "end ";
        return std::nullopt;
    }

    std::string events;
    TestWindow front;
    TestWindow owner{[this](UINT u, WPARAM w, LPARAM l) { return OnMessage(u, w, l); }};
    CSMenu menu;
};
} // namespace

TEST_F(CSMenuTrack2, BringsTheOwnerToTheFrontForTheMenuAndTheFormerWindowAfterwards) {
    ASSERT_EQ(front.Get(), ::GetForegroundWindow());
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press('O'); });
    EXPECT_EQ(11, menu.Track2(owner, 0));
    EXPECT_TRUE(driver.Finish());
    EXPECT_EQ(front.Get(), ::GetForegroundWindow());
    EXPECT_FALSE(::IsWindowVisible(owner));
    // The order of the steps; what the platform adds in between is its own affair.
    size_t nAt = 0;
    for (const char* psz : {"top ", "active ", "menu ", "end ", "bottom ", "inactive "}) {
        nAt = events.find(psz, nAt);
        ASSERT_NE(std::string::npos, nAt) << psz << " in: " << events;
    }
}

TEST_F(CSMenuTrack2, OpensAtTheCursorAndForATrayIconBesideIt) {
    int dx = ::GetSystemMetrics(SM_CXSMICON), dy = ::GetSystemMetrics(SM_CYSMICON);
    for (int forTrayIcon : {0, 1, -1}) {
        TestCursor cursor({600, 400}); // right of the middle, below it
        RECT rc{};
        MenuDriver driver(owner, [&](MenuDriver& hands) {
            rc = hands.FirstPopup();
            hands.Press(VK_ESCAPE);
        });
        EXPECT_EQ(0, menu.Track2(owner, forTrayIcon));
        EXPECT_TRUE(driver.Finish());
        ExpectPlace(forTrayIcon ? POINT{600 - dx, 400 - dy} : POINT{600, 400}, rc);
    }
}

TEST_F(CSMenuTrack2, PutsTheFormerWindowInFrontAlsoWhenNothingWasChosen) {
    MenuDriver driver(owner, [](MenuDriver& hands) { hands.Press(VK_ESCAPE); });
    EXPECT_EQ(0, menu.Track2(owner, 1));
    EXPECT_TRUE(driver.Finish());
    EXPECT_EQ(front.Get(), ::GetForegroundWindow());
}
