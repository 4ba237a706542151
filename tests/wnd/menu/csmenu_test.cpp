#include "support/gui_objects.h"
#include "support/menu_driver.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

extern "C" FARPROC __imp_GetCursorPos;

namespace {
/// What a menu shows, an item per letter: the text's first character, '|' for a separator, and "!"
/// or "/" in front of an item that begins a column with or without a bar. Sub-menus in brackets.
std::wstring Shape(HMENU hmenu) {
    std::wstring str;
    for (int n = 0; n < ::GetMenuItemCount(hmenu); ++n) {
        wchar_t szText[300] = {};
        MENUITEMINFOW info{};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_FTYPE | MIIM_STRING | MIIM_SUBMENU;
        info.dwTypeData = szText;
        info.cch = 300;
        ::GetMenuItemInfoW(hmenu, static_cast<UINT>(n), TRUE, &info);
        if (info.fType & MFT_MENUBARBREAK) str += L'!';
        if (info.fType & MFT_MENUBREAK) str += L'/';
        str += info.fType & MFT_SEPARATOR ? L'|' : szText[0];
        if (info.hSubMenu) str += L'(' + Shape(info.hSubMenu) + L')';
    }
    return str;
}

void Fill(CSMenu& menu, const std::wstring& strLetters) {
    unsigned nId = 100;
    for (wchar_t ch : strLetters) menu.AppendItem(nId++, L"%c", ch);
}

struct CountedMenu : CSMenu {
    explicit CountedMenu(std::string& strEnds, char chName) : ends(strEnds), ch(chName) {}
    ~CountedMenu() override { ends += ch; }
    CSMenu* CreateSubMenu() override {
        return bNoMemory ? nullptr : new CountedMenu(ends, static_cast<char>(++chNext));
    }
    std::string& ends;
    char ch;
    char chNext = 'a' - 1;
    bool bNoMemory = false;
};
} // namespace

TEST(CSMenuLife, DefaultObjectHasNoMenuAndOwnsWhatItCreates) {
    HMENU hmenu = nullptr;
    {
        CSMenu menu;
        EXPECT_EQ(0, menu.IsReady());
        EXPECT_EQ(0, menu.IsValid());
        EXPECT_EQ(nullptr, static_cast<HMENU>(menu));
        EXPECT_EQ(1, menu.CreatePopup());
        EXPECT_EQ(1, menu.IsReady());
        EXPECT_EQ(1, menu.IsValid());
        hmenu = menu;
        EXPECT_TRUE(::IsMenu(hmenu));
    }
    EXPECT_FALSE(::IsMenu(hmenu));
}

TEST(CSMenuLife, CreateMakesAMenuThatIsOwnedToo) {
    HMENU hmenu = nullptr;
    {
        CSMenu menu;
        EXPECT_EQ(1, menu.Create());
        hmenu = menu;
        EXPECT_TRUE(::IsMenu(hmenu));
    }
    EXPECT_FALSE(::IsMenu(hmenu));
}

TEST(CSMenuLife, MenuThatWasHandedInOrAttachedStays) {
    HMENU hmenu = ::CreatePopupMenu();
    {
        CSMenu menu(hmenu);
        EXPECT_EQ(hmenu, static_cast<HMENU>(menu));
    }
    EXPECT_TRUE(::IsMenu(hmenu));
    {
        CSMenu menu;
        menu.Attach(hmenu);
        EXPECT_EQ(hmenu, static_cast<HMENU>(menu));
    }
    EXPECT_TRUE(::IsMenu(hmenu));
    {
        // The ownership stays as it was: what an attached object creates is not its own.
        CSMenu menu(hmenu);
        menu.CreatePopup();
        EXPECT_NE(hmenu, static_cast<HMENU>(menu));
        HMENU hmenuSecond = menu;
        menu.~CSMenu();
        new (&menu) CSMenu;
        EXPECT_TRUE(::IsMenu(hmenuSecond));
        ::DestroyMenu(hmenuSecond);
    }
    EXPECT_TRUE(::IsMenu(hmenu));
    ::DestroyMenu(hmenu);
}

TEST(CSMenuLife, DestroyTakesTheMenuWhoeverOwnsIt) {
    HMENU hmenu = ::CreatePopupMenu();
    CSMenu menu(hmenu);
    menu.Destroy();
    EXPECT_FALSE(::IsMenu(hmenu));
    EXPECT_EQ(0, menu.IsReady());
    menu.Destroy(); // nothing any more
}

TEST(CSMenuLife, DetachForgetsTheMenuWithoutDestroyingIt) {
    CSMenu menu;
    menu.CreatePopup();
    HMENU hmenu = menu;
    menu.Detach();
    EXPECT_EQ(0, menu.IsReady());
    EXPECT_TRUE(::IsMenu(hmenu));
    ::DestroyMenu(hmenu);
}

TEST(CSMenuLife, NullObjectHasANullMenu) {
    CSMenu* volatile pNone = nullptr;
    EXPECT_EQ(nullptr, static_cast<HMENU>(*pNone));
}

TEST(CSMenuLife, ItemRecordIsZeroButForSizeAndMask) {
    MenuItemInfo info(MIIM_DATA | MIIM_STRING);
    MENUITEMINFOW expected{};
    expected.cbSize = 80;
    expected.fMask = 32 | 64;
    EXPECT_EQ(0, memcmp(&expected, static_cast<MENUITEMINFOW*>(&info), sizeof(expected)));
}

TEST(CSMenuBuilding, AppendItemFormatsItsText) {
    CSMenu menu;
    menu.CreatePopup();
    EXPECT_NE(0, menu.AppendItem(7, L"%s %d %%", L"text", 5));
    wchar_t sz[300];
    EXPECT_EQ(8, menu.GetStrByPos(0, sz, 300));
    EXPECT_STREQ(L"text 5 %", sz);
    EXPECT_EQ(7u, menu.GetItemID(0));
}

TEST(CSMenuBuilding, AppendItemCutsItsTextAt260Characters) {
    CSMenu menu;
    menu.CreatePopup();
    for (size_t cch : {259u, 260u, 261u, 1000u}) {
        menu.DeleteAll();
        EXPECT_NE(0, menu.AppendItem(7, L"%s", std::wstring(cch, L'x').c_str()));
        EXPECT_EQ(static_cast<int>(std::min<size_t>(cch, 260)), menu.GetStrLengthByPos(0));
    }
}

TEST(CSMenuBuilding, AppendSubMenuShowsItsFormatAsItStands) {
    CSMenu menu, sub;
    menu.CreatePopup();
    sub.CreatePopup();
    EXPECT_NE(0, menu.AppendSubMenu(sub, L"%s of 100%% %n", L"argument"));
    EXPECT_EQ(sub, menu.GetSubMenu(0));
    wchar_t sz[300];
    menu.GetStrByPos(0, sz, 300);
    EXPECT_STREQ(L"%s of 100%% %n", sz);
    sub.Detach();
}

TEST(CSMenuBuilding, SeparatorHasNoText) {
    CSMenu menu;
    menu.CreatePopup();
    EXPECT_NE(0, menu.AppendSeparator());
    EXPECT_EQ(L"|", Shape(menu));
    EXPECT_EQ(0, menu.GetStrLengthByPos(0));
}

TEST(CSMenuBuilding, WithoutAMenuNothingSucceeds) {
    CSMenu menu;
    EXPECT_EQ(0, menu.AppendItem(1, L"text"));
    EXPECT_EQ(0, menu.AppendSeparator());
    EXPECT_EQ(-1, menu.GetCount());
    EXPECT_EQ(nullptr, menu.GetSubMenu(0));
    EXPECT_EQ(0, menu.InsertSeparatorByPos(0));
    EXPECT_EQ(0u, menu.GetItemDataByPos(0));
    EXPECT_EQ(0, menu.SetBreakByPos(0, 1));
    EXPECT_EQ(0, menu.ItemExistsByID(1));
    EXPECT_EQ(0xFFFFFFFF, menu.FindStrPos(L"text"));
    menu.DeleteAll();
    menu.InsertBreaks(10, 1);
}

TEST(CSMenuBuilding, DeleteAllEmptiesTheMenuWithItsSubMenus) {
    CSMenu menu, sub;
    menu.CreatePopup();
    menu.DeleteAll(); // of an empty menu nothing
    EXPECT_EQ(0, menu.GetCount());
    sub.CreatePopup();
    HMENU hmenuSub = sub;
    Fill(menu, L"abc");
    menu.AppendSubMenu(sub, L"sub");
    sub.Detach();
    menu.DeleteAll();
    EXPECT_EQ(0, menu.GetCount());
    EXPECT_FALSE(::IsMenu(hmenuSub));
    EXPECT_EQ(1, menu.IsReady());
}

TEST(CSMenuSubMenus, AreMadeByTheVirtualOperationAndEndInTheirOrder) {
    std::string ends;
    {
        CountedMenu menu(ends, 'M');
        CSMenu* pFirst = menu.MakeSubMenu();
        CSMenu* pSecond = menu.MakeSubMenu();
        ASSERT_NE(nullptr, dynamic_cast<CountedMenu*>(pFirst));
        EXPECT_EQ(0, pFirst->IsReady());
        EXPECT_NE(nullptr, pSecond);
        pSecond->MakeSubMenu();
        EXPECT_EQ("", ends);
    }
    EXPECT_EQ("Maba", ends); // the second's own sub-menu is an 'a' too and goes after it
}

TEST(CSMenuSubMenus, NothingIsAddedWhenNoneCanBeMade) {
    std::string ends;
    {
        CountedMenu menu(ends, 'M');
        menu.bNoMemory = true;
        EXPECT_EQ(nullptr, menu.MakeSubMenu());
    }
    EXPECT_EQ("M", ends);
}

TEST(CSMenuSubMenus, DefaultOnesAreEmptyPopupsThatOwnTheirMenus) {
    HMENU hmenuFree = nullptr, hmenuAppended = nullptr;
    int nBefore = CountUserObjects();
    {
        CSMenu menu;
        menu.CreatePopup();
        CSMenu* pFree = menu.MakeSubMenu();
        CSMenu* pAppended = menu.MakeSubMenu();
        pFree->CreatePopup();
        pAppended->CreatePopup();
        hmenuFree = *pFree;
        hmenuAppended = *pAppended;
        menu.AppendSubMenu(*pAppended, L"sub");
        EXPECT_EQ(nBefore + 3, CountUserObjects());
    }
    EXPECT_FALSE(::IsMenu(hmenuFree));
    EXPECT_FALSE(::IsMenu(hmenuAppended));
    EXPECT_EQ(nBefore, CountUserObjects());
}

TEST(CSMenuBreaks, SetBreakStartsAColumnAndKeepsTheText) {
    CSMenu menu;
    menu.CreatePopup();
    Fill(menu, L"abcd");
    std::wstring strLong(500, L'x');
    menu.SetStrByPos(3, strLong.c_str());
    EXPECT_NE(0, menu.SetBreakByPos(1, 1));
    EXPECT_NE(0, menu.SetBreakByID(102, 0));
    EXPECT_NE(0, menu.SetBreak(3, 1, -1));
    EXPECT_EQ(L"a!b/c!x", Shape(menu));
    EXPECT_EQ(500, menu.GetStrLengthByPos(3));
    EXPECT_EQ(103u, menu.GetItemID(3)); // and everything else
    EXPECT_EQ(0, menu.SetBreakByPos(4, 1));
    EXPECT_EQ(0, menu.SetBreakByID(999, 1));
}

TEST(CSMenuBreaks, SetBreakKeepsTheSubMenu) {
    CSMenu menu, sub;
    menu.CreatePopup();
    sub.CreatePopup();
    Fill(sub, L"z");
    menu.AppendSubMenu(sub, L"sub");
    sub.Detach();
    EXPECT_NE(0, menu.SetBreakByPos(0, 0));
    EXPECT_EQ(L"/s(z)", Shape(menu));
}

TEST(CSMenuBreaks, SetBreakKeepsItemsWithoutATextAsTheyAre) {
    CSMenu menu;
    menu.CreatePopup();
    menu.AppendItem(5, L"");
    menu.AppendSeparator();
    ::AppendMenuW(menu, MF_OWNERDRAW, 6, reinterpret_cast<LPCWSTR>(0x1234));
    for (unsigned nPos = 0; nPos < 3; ++nPos) {
        MenuItemInfo before(MIIM_TYPE | MIIM_ID), after(MIIM_TYPE | MIIM_ID);
        menu.GetItemInfoByPos(nPos, &before);
        EXPECT_NE(0, menu.SetBreakByPos(nPos, 1));
        menu.GetItemInfoByPos(nPos, &after);
        EXPECT_EQ(before.fType | MFT_MENUBARBREAK, after.fType) << nPos;
        EXPECT_EQ(before.dwTypeData, after.dwTypeData) << nPos;
        EXPECT_EQ(before.wID, after.wID) << nPos;
    }
}

TEST(CSMenuBreaks, MenuThatFitsGetsNoneNorItsSubMenus) {
    CSMenu menu, sub;
    menu.CreatePopup();
    sub.CreatePopup();
    Fill(sub, L"0123456789abcdef");
    Fill(menu, L"abcdefghi");
    menu.AppendSubMenu(sub, L"j");
    sub.Detach();
    std::wstring strBefore = Shape(menu);
    menu.InsertBreaks(10, 1);
    EXPECT_EQ(strBefore, Shape(menu));
    Fill(menu, L"k"); // the 11th
    menu.InsertBreaks(10, 1);
    EXPECT_EQ(L"abcdefghij(0123456789!|abcdef)!|k", Shape(menu));
}

struct ColumnsCase {
    const char* pszName;
    const wchar_t* pszItems;
    int every, bar;
    const wchar_t* pszShape;
};
class CSMenuColumns : public testing::TestWithParam<ColumnsCase> {};
TEST_P(CSMenuColumns, EveryFurtherOneHasOneItemFewer) {
    CSMenu menu;
    menu.CreatePopup();
    Fill(menu, GetParam().pszItems);
    menu.InsertBreaks(GetParam().every, GetParam().bar);
    EXPECT_EQ(GetParam().pszShape, Shape(menu));
}
INSTANTIATE_TEST_SUITE_P(Cases, CSMenuColumns,
                         testing::Values(ColumnsCase{"NoItem", L"", 3, 1, L""},
                                         ColumnsCase{"OneFullColumn", L"abc", 3, 1, L"abc"},
                                         ColumnsCase{"OneItemMore", L"abcd", 3, 1, L"abc!|d"},
                                         ColumnsCase{"WithoutABar", L"abcde", 3, 0, L"abc/|de"},
                                         ColumnsCase{"TwoBreaks", L"abcdef", 3, 0, L"abc/|de/|f"},
                                         ColumnsCase{"AnyBar", L"abcdefgh", 3, 5,
                                                     L"abc!|de!|fg!|h"},
                                         ColumnsCase{"EveryTwo", L"abcd", 2, 1, L"ab!|c!|d"},
                                         ColumnsCase{"EveryFourOfFour", L"abcd", 4, 1, L"abcd"}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSMenuBreaks, ColumnsWithoutRoomForAnItemAreNotMade) {
    CSMenu menu;
    menu.CreatePopup();
    Fill(menu, L"abcd");
    for (int every : {1, 0, -1, INT_MIN}) menu.InsertBreaks(every, 1);
    EXPECT_EQ(L"abcd", Shape(menu));
}

TEST(CSMenuBreaks, SubMenuAtAColumnsStartIsVisitedOnce) {
    CSMenu menu, sub;
    menu.CreatePopup();
    sub.CreatePopup();
    Fill(sub, L"12345");
    Fill(menu, L"abc");
    menu.AppendSubMenu(sub, L"d");
    sub.Detach();
    menu.InsertBreaks(3, 1);
    EXPECT_EQ(L"abc!|d(123!|45)", Shape(menu));
}

TEST(CSMenuBreaks, AnyTreeKeepsItsItemsInTheirOrder) {
    std::mt19937 random(20171103);
    for (int nRound = 0; nRound < 60; ++nRound) {
        CSMenu menu;
        menu.CreatePopup();
        int nItems = static_cast<int>(random() % 30), every = 2 + static_cast<int>(random() % 8);
        std::wstring strItems;
        std::vector<int> subSizes;
        for (int n = 0; n < nItems; ++n) {
            auto ch = static_cast<wchar_t>(L'A' + n);
            strItems += ch;
            if (random() % 4) {
                menu.AppendItem(1, L"%c", ch);
                continue;
            }
            CSMenu sub;
            sub.CreatePopup();
            subSizes.push_back(static_cast<int>(random() % 12));
            Fill(sub, std::wstring(static_cast<size_t>(subSizes.back()), L'z'));
            std::wstring strText(1, ch);
            menu.AppendSubMenu(sub, strText.c_str());
            sub.Detach();
        }
        menu.InsertBreaks(every, 0);
        // The separators that are due, counted as the layout tells: one per column but the first.
        auto Expected = [&](int n) {
            return n > every ? n + (n - every - 1) / (every - 1) + 1 : n;
        };
        ASSERT_EQ(Expected(nItems), menu.GetCount()) << nItems << " " << every;
        std::wstring strSeen;
        size_t nSub = 0;
        for (int n = 0; n < menu.GetCount(); ++n) {
            wchar_t sz[8] = {};
            menu.GetStrByPos(static_cast<unsigned>(n), sz, 8);
            strSeen += sz;
            EXPECT_EQ(n && n % every == 0, !*sz);
            if (HMENU hmenuSub = menu.GetSubMenu(n)) {
                int nBefore = subSizes[nSub++];
                EXPECT_EQ(nItems > every ? Expected(nBefore) : nBefore,
                          ::GetMenuItemCount(hmenuSub));
            }
        }
        EXPECT_EQ(strItems, strSeen);
    }
}

TEST(CSMenuSearch, FindsTheFirstTextWithoutRegardToCase) {
    CSMenu menu;
    menu.CreatePopup();
    menu.AppendItem(5, L"Alpha");
    menu.AppendSeparator();
    menu.AppendItem(6, L"&Beta\tCtrl+B");
    menu.AppendItem(7, L"alpha");
    menu.AppendItem(8, L"%s", std::wstring(260, L'y').c_str());
    menu.AppendItem(9, L"\u00C4rger");
    EXPECT_EQ(0u, menu.FindStrPos(L"ALPHA"));
    EXPECT_EQ(5u, menu.FindStrID(L"alpha"));
    EXPECT_EQ(2u, menu.FindStrPos(L"&beta\tctrl+b"));
    EXPECT_EQ(6u, menu.FindStrID(L"&Beta\tCtrl+B"));
    EXPECT_EQ(4u, menu.FindStrPos(std::wstring(260, L'Y').c_str()));
    EXPECT_EQ(9u, menu.FindStrID(L"\u00E4RGER"));
    for (const wchar_t* psz : {L"Alph", L"Alphas", L"Beta", L"", L"x"}) {
        EXPECT_EQ(0xFFFFFFFF, menu.FindStrPos(psz)) << psz;
        EXPECT_EQ(0xFFFFFFFF, menu.FindStrID(psz)) << psz;
    }
    EXPECT_EQ(0xFFFFFFFF, menu.FindStrPos(nullptr));
}

TEST(CSMenuSearch, FindsTextsLongerThanAnyItemIsAppendedWith) {
    CSMenu menu;
    menu.CreatePopup();
    menu.AppendItem(5, L"a");
    menu.AppendItem(6, L"b");
    menu.SetStrByPos(0, std::wstring(3000, L'q').c_str());
    EXPECT_EQ(0u, menu.FindStrPos(std::wstring(3000, L'Q').c_str()));
    EXPECT_EQ(0xFFFFFFFF, menu.FindStrPos(std::wstring(2999, L'Q').c_str()));
    EXPECT_EQ(6u, menu.FindStrID(L"B"));
}

TEST(CSMenuSearch, EmptyMenuHoldsNothing) {
    CSMenu menu;
    menu.CreatePopup();
    EXPECT_EQ(0xFFFFFFFF, menu.FindStrPos(L"a"));
    EXPECT_EQ(0xFFFFFFFF, menu.FindStrID(L""));
}

TEST(CSMenuSearch, IdOfASubMenuIsThePlatforms) {
    CSMenu menu, sub;
    menu.CreatePopup();
    sub.CreatePopup();
    menu.AppendSubMenu(sub, L"sub");
    sub.Detach();
    EXPECT_EQ(0u, menu.FindStrPos(L"sub"));
    EXPECT_EQ(::GetMenuItemID(menu, 0), menu.FindStrID(L"sub"));
}

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

/// Where the cursor is when the menu is asked for.
enum class CursorAt { Elsewhere, FirstPixel, LastPixel, RightEdge, BottomEdge, LeftOfIt, AboveIt };
struct TrackPlaceCase {
    const char* pszName;
    unsigned nCtrlId;
    CursorAt where;
    bool bAtTheCursor; // the menu opens there, else in the middle of the control
};
struct CSMenuTrackPlace : CSMenuTrack, testing::WithParamInterface<TrackPlaceCase> {
    static POINT CursorPlace(const RECT& rc) {
        switch (GetParam().where) {
        case CursorAt::FirstPixel: return {rc.left, rc.top};
        case CursorAt::LastPixel: return {rc.right - 1, rc.bottom - 1};
        case CursorAt::RightEdge: return {rc.right, rc.top};
        case CursorAt::BottomEdge: return {rc.left, rc.bottom};
        case CursorAt::LeftOfIt: return {rc.left - 1, rc.top};
        case CursorAt::AboveIt: return {rc.left, rc.top - 1};
        case CursorAt::Elsewhere: break;
        }
        return {600, 400};
    }
};
TEST_P(CSMenuTrackPlace, IsTheCursorsOrTheControlsCentre) {
    RECT rcCtrl = CtrlRect();
    POINT ptCursor = CursorPlace(rcCtrl);
    POINT ptCentre{(rcCtrl.left + rcCtrl.right) / 2, (rcCtrl.top + rcCtrl.bottom) / 2};
    TestCursor cursor(ptCursor);
    RECT rc{};
    MenuDriver driver(owner, [&](MenuDriver& hands) {
        rc = hands.FirstPopup();
        hands.Press(VK_ESCAPE);
    });
    EXPECT_EQ(0, menu.Track(owner, GetParam().nCtrlId));
    EXPECT_TRUE(driver.Finish());
    ExpectPlace(GetParam().bAtTheCursor ? ptCursor : ptCentre, rc);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, CSMenuTrackPlace,
    testing::Values(TrackPlaceCase{"NoControl", 0, CursorAt::Elsewhere, true},
                    TrackPlaceCase{"NoControlAndTheCursorOverOne", 0, CursorAt::FirstPixel, true},
                    TrackPlaceCase{"ControlThatDoesNotExist", 51, CursorAt::Elsewhere, true},
                    TrackPlaceCase{"Outside", 50, CursorAt::Elsewhere, false},
                    TrackPlaceCase{"LeftAndTopEdgeAreInside", 50, CursorAt::FirstPixel, true},
                    TrackPlaceCase{"LastPixelIsInside", 50, CursorAt::LastPixel, true},
                    TrackPlaceCase{"RightEdgeIsOutside", 50, CursorAt::RightEdge, false},
                    TrackPlaceCase{"BottomEdgeIsOutside", 50, CursorAt::BottomEdge, false},
                    TrackPlaceCase{"LeftOfItIsOutside", 50, CursorAt::LeftOfIt, false},
                    TrackPlaceCase{"AboveItIsOutside", 50, CursorAt::AboveIt, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(CSMenuTrack, NoMenuGivesZeroAtOnce) {
    CSMenu none;
    EXPECT_EQ(0, none.Track(owner, POINT{1, 1}));
    EXPECT_EQ(0, none.Track(owner, 50u));
    EXPECT_EQ(0, none.Track2(owner, 1));
}

const int kScreenWidth = ::GetSystemMetrics(SM_CXSCREEN);
const int kScreenHeight = ::GetSystemMetrics(SM_CYSCREEN);

struct EdgeCase {
    const char* pszName;
    POINT pt;
    int nRight, nDown; // in which direction it moves, 1 or -1
};
class AdjustPointForTrayIcon : public testing::TestWithParam<EdgeCase> {};
TEST_P(AdjustPointForTrayIcon, MovesAwayFromTheNearestEdges) {
    const EdgeCase& row = GetParam();
    AdjustingMenu adjusting;
    POINT pt = row.pt;
    adjusting.AdjustPointForTrayIcon(pt);
    EXPECT_EQ(row.pt.x + row.nRight * ::GetSystemMetrics(SM_CXSMICON), pt.x);
    EXPECT_EQ(row.pt.y + row.nDown * ::GetSystemMetrics(SM_CYSMICON), pt.y);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, AdjustPointForTrayIcon,
    testing::Values(
        EdgeCase{"TopLeft", {0, 0}, 1, 1},
        EdgeCase{"BottomRight", {kScreenWidth - 1, kScreenHeight - 1}, -1, -1},
        EdgeCase{"TopRight", {kScreenWidth - 1, 0}, -1, 1},
        EdgeCase{"BottomLeft", {0, kScreenHeight - 1}, 1, -1},
        // Half the width belongs to the right.
        EdgeCase{"Middle", {kScreenWidth / 2, kScreenHeight / 2}, -1, -1},
        EdgeCase{"JustBeforeTheMiddle", {kScreenWidth / 2 - 1, kScreenHeight / 2 - 1}, 1, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

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
