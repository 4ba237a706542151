#include "support/gui_objects.h"
#include "support/made_icon.h"
#include "support/other_windows.h"
#include "support/told_version.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr unsigned kNowhere = 99;

/// Three items with the ids 21, 22, 23, so that no id is a position.
struct CSMenuItems : testing::Test {
    CSMenuItems() {
        menu.CreatePopup();
        menu.AppendItem(21, L"one");
        menu.AppendItem(22, L"two");
        menu.AppendItem(23, L"three");
    }
    std::wstring TextAt(unsigned nPos) {
        wchar_t sz[64] = {};
        ::GetMenuStringW(menu, nPos, sz, 64, MF_BYPOSITION);
        return sz;
    }
    UINT StateAt(unsigned nPos) { return ::GetMenuState(menu, nPos, MF_BYPOSITION); }

    CSMenu menu;
};

HBITMAP MakeBitmap() { return ::CreateBitmap(16, 16, 1, 1, nullptr); }
} // namespace

TEST_F(CSMenuItems, RecordIsReadAndWrittenByPositionAndById) {
    MenuItemInfo info(MIIM_ID);
    EXPECT_NE(0, menu.GetItemInfoByPos(1, &info));
    EXPECT_EQ(22u, info.wID);
    info.wID = 0;
    EXPECT_NE(0, menu.GetItemInfoByID(23, &info));
    EXPECT_EQ(23u, info.wID);
    EXPECT_NE(0, menu.GetItemInfo(0, 1, &info));
    EXPECT_EQ(21u, info.wID);
    EXPECT_NE(0, menu.GetItemInfo(22, 0, &info));
    EXPECT_EQ(22u, info.wID);

    info.wID = 31;
    EXPECT_NE(0, menu.SetItemInfoByPos(0, &info));
    EXPECT_EQ(31u, menu.GetItemID(0));
    info.wID = 32;
    EXPECT_NE(0, menu.SetItemInfoByID(22, &info));
    EXPECT_EQ(32u, menu.GetItemID(1));
    info.wID = 33;
    EXPECT_NE(0, menu.SetItemInfo(2, 1, &info));
    EXPECT_EQ(33u, menu.GetItemID(2));
    info.wID = 34;
    EXPECT_NE(0, menu.SetItemInfo(33, 0, &info));
    EXPECT_EQ(34u, menu.GetItemID(2));

    EXPECT_EQ(0, menu.GetItemInfoByPos(3, &info));
    EXPECT_EQ(0, menu.GetItemInfoByID(kNowhere, &info));
    EXPECT_EQ(0, menu.SetItemInfoByPos(3, &info));
    EXPECT_EQ(0, menu.SetItemInfoByID(kNowhere, &info));
}

TEST_F(CSMenuItems, ExistenceIsAskedForById) {
    EXPECT_NE(0, menu.ItemExistsByID(22));
    EXPECT_EQ(0, menu.ItemExistsByID(1)); // a position is none
    EXPECT_EQ(0, menu.ItemExistsByID(kNowhere));
    CSMenu sub;
    sub.CreatePopup();
    sub.AppendItem(41, L"inner");
    menu.AppendSubMenu(sub, L"sub");
    sub.Detach();
    EXPECT_NE(0, menu.ItemExistsByID(41)); // ids are looked for in sub-menus
}

TEST_F(CSMenuItems, DataHave64BitsByPositionAndById) {
    constexpr unsigned __int64 kA = 0x123456789ABCDEF0, kB = 0xFFFFFFFFFFFFFFFF, kC = 5;
    EXPECT_EQ(0u, menu.GetItemDataByPos(0));
    EXPECT_NE(0, menu.SetItemDataByPos(0, kA));
    EXPECT_NE(0, menu.SetItemDataByID(22, kB));
    EXPECT_NE(0, menu.SetItemData(2, 1, kC));
    EXPECT_EQ(kA, menu.GetItemDataByID(21));
    EXPECT_EQ(kB, menu.GetItemDataByPos(1));
    EXPECT_EQ(kC, menu.GetItemData(23, 0));
    EXPECT_EQ(kC, menu.GetItemData(2, 1));
    EXPECT_NE(0, menu.SetItemData(23, 0, kA));
    EXPECT_EQ(kA, menu.GetItemDataByPos(2));
    EXPECT_EQ(L"one", TextAt(0)); // nothing else of the item has changed
}

TEST_F(CSMenuItems, DataOfNoItemAreZero) {
    EXPECT_EQ(0u, menu.GetItemDataByPos(3));
    EXPECT_EQ(0u, menu.GetItemDataByID(kNowhere));
    EXPECT_EQ(0u, menu.GetItemData(3, 1));
    EXPECT_EQ(0, menu.SetItemDataByPos(3, 1));
    EXPECT_EQ(0, menu.SetItemDataByID(kNowhere, 1));
}

TEST_F(CSMenuItems, TextIsReadByPositionAndById) {
    EXPECT_EQ(5, menu.GetStrLengthByPos(2));
    EXPECT_EQ(5, menu.GetStrLengthByID(23));
    EXPECT_EQ(0, menu.GetStrLengthByPos(3));
    EXPECT_EQ(0, menu.GetStrLengthByID(kNowhere));
    wchar_t sz[16];
    EXPECT_EQ(5, menu.GetStrByPos(2, sz, 16));
    EXPECT_STREQ(L"three", sz);
    EXPECT_EQ(3, menu.GetStrByID(22, sz, 16));
    EXPECT_STREQ(L"two", sz);
    EXPECT_EQ(3, menu.GetStrByPos(2, sz, 4)); // cut
    EXPECT_STREQ(L"thr", sz);
}

TEST_F(CSMenuItems, TextIsReplacedAndNothingElse) {
    menu.SetItemDataByPos(0, 77);
    menu.CheckItemByPos(0, 1);
    EXPECT_NE(0, menu.SetStrByPos(0, L"eins"));
    EXPECT_NE(0, menu.SetStrByID(22, L"zwei"));
    EXPECT_NE(0, menu.SetStr(2, 1, L"drei"));
    EXPECT_EQ(L"eins", TextAt(0));
    EXPECT_EQ(L"zwei", TextAt(1));
    EXPECT_EQ(L"drei", TextAt(2));
    EXPECT_NE(0, menu.SetStr(23, 0, L"3"));
    EXPECT_EQ(L"3", TextAt(2));
    EXPECT_EQ(77u, menu.GetItemDataByPos(0));
    EXPECT_TRUE(StateAt(0) & MF_CHECKED);
    EXPECT_EQ(21u, menu.GetItemID(0));
    EXPECT_EQ(0, menu.SetStrByPos(3, L"x"));
    EXPECT_EQ(0, menu.SetStrByID(kNowhere, L"x"));
}

TEST_F(CSMenuItems, DeleteTakesTheSubMenuAlongAndRemoveLeavesIt) {
    for (bool byPos : {true, false}) {
        for (bool bDelete : {true, false}) {
            HMENU hmenuSub = ::CreatePopupMenu();
            ::InsertMenuW(menu, 1, MF_BYPOSITION | MF_POPUP, reinterpret_cast<UINT_PTR>(hmenuSub),
                          L"sub");
            MenuItemInfo info(MIIM_ID);
            info.wID = 50;
            menu.SetItemInfoByPos(1, &info);
            int nResult = byPos ? (bDelete ? menu.DeleteItemByPos(1) : menu.RemoveItemByPos(1))
                                : (bDelete ? menu.DeleteItemByID(50) : menu.RemoveItemByID(50));
            EXPECT_NE(0, nResult) << byPos << bDelete;
            EXPECT_EQ(3, menu.GetCount());
            EXPECT_EQ(L"two", TextAt(1));
            EXPECT_EQ(!bDelete, ::IsMenu(hmenuSub) != 0) << byPos << bDelete;
            if (!bDelete) ::DestroyMenu(hmenuSub);
        }
    }
    EXPECT_EQ(0, menu.DeleteItemByPos(3));
    EXPECT_EQ(0, menu.DeleteItemByID(kNowhere));
    EXPECT_EQ(0, menu.RemoveItemByPos(3));
    EXPECT_EQ(0, menu.RemoveItemByID(kNowhere));
}

TEST_F(CSMenuItems, DefaultItemIsSetAndFoundByPositionAndById) {
    EXPECT_EQ(0xFFFFFFFF, menu.GetDefaultPos(0));
    EXPECT_EQ(0xFFFFFFFF, menu.GetDefaultID(0));
    EXPECT_NE(0, menu.SetDefaultByPos(2));
    EXPECT_EQ(2u, menu.GetDefaultPos(0));
    EXPECT_EQ(23u, menu.GetDefaultID(0));
    EXPECT_NE(0, menu.SetDefaultByID(21));
    EXPECT_EQ(0u, menu.GetDefaultPos(0));
    menu.EnableItemByPos(0, 0);
    EXPECT_EQ(0xFFFFFFFF, menu.GetDefaultID(0)); // greyed ones only with the flag
    EXPECT_EQ(21u, menu.GetDefaultID(GMDI_USEDISABLED));
    EXPECT_EQ(0, menu.SetDefaultByPos(3));
    EXPECT_EQ(0, menu.SetDefaultByID(kNowhere));
}

TEST_F(CSMenuItems, CheckingGivesTheEarlierState) {
    EXPECT_EQ(0u, menu.CheckItemByPos(1, 1));
    EXPECT_TRUE(StateAt(1) & MF_CHECKED);
    EXPECT_EQ(8u, menu.CheckItemByID(22, 0));
    EXPECT_FALSE(StateAt(1) & MF_CHECKED);
    EXPECT_EQ(0u, menu.CheckItemByID(22, 2)); // any non-zero value
    EXPECT_EQ(8u, menu.CheckItemByPos(1, 0));
    EXPECT_EQ(0xFFFFFFFF, menu.CheckItemByPos(3, 1));
    EXPECT_EQ(0xFFFFFFFF, menu.CheckItemByID(kNowhere, 1));
}

TEST_F(CSMenuItems, RadioMarkIsOnOneItemOfTheRange) {
    EXPECT_NE(0, menu.CheckRadioItemByPos(0, 2, 1));
    EXPECT_FALSE(StateAt(0) & MF_CHECKED);
    EXPECT_TRUE(StateAt(1) & MF_CHECKED);
    EXPECT_NE(0, menu.CheckRadioItemByID(21, 23, 23));
    EXPECT_FALSE(StateAt(1) & MF_CHECKED);
    EXPECT_TRUE(StateAt(2) & MF_CHECKED);
    MenuItemInfo info(MIIM_FTYPE);
    menu.GetItemInfoByPos(2, &info);
    EXPECT_TRUE(info.fType & MFT_RADIOCHECK);
}

TEST_F(CSMenuItems, EnablingGreysAndGivesTheEarlierState) {
    EXPECT_EQ(0, menu.EnableItemByPos(1, 0));
    EXPECT_TRUE(StateAt(1) & MF_GRAYED);
    EXPECT_EQ(1, menu.EnableItemByID(22, 1));
    EXPECT_FALSE(StateAt(1) & MF_GRAYED);
    EXPECT_EQ(0, menu.EnableItemByID(22, 0));
    EXPECT_EQ(1, menu.EnableItemByPos(1, -1)); // any non-zero value
    EXPECT_FALSE(StateAt(1) & MF_GRAYED);
    EXPECT_EQ(-1, menu.EnableItemByPos(3, 0));
    EXPECT_EQ(-1, menu.EnableItemByID(kNowhere, 0));
}

TEST_F(CSMenuItems, ItemsAreInsertedBeforeAPositionOrAnId) {
    EXPECT_NE(0, menu.InsertItemByPos(1, 31, L"by pos", MF_GRAYED));
    EXPECT_NE(0, menu.InsertItemByID(23, 32, L"by id", MF_CHECKED));
    EXPECT_NE(0, menu.InsertItemByPos(0xFFFFFFFF, 33, L"end", 0));
    const unsigned kIds[] = {21, 31, 22, 32, 23, 33};
    for (int n = 0; n < 6; ++n) EXPECT_EQ(kIds[n], menu.GetItemID(n));
    EXPECT_TRUE(StateAt(1) & MF_GRAYED);
    EXPECT_TRUE(StateAt(3) & MF_CHECKED);
    EXPECT_EQ(L"by id", TextAt(3));
}

TEST_F(CSMenuItems, SubMenusAndSeparatorsAreInsertedBeforeAPositionOrAnId) {
    HMENU hmenuA = ::CreatePopupMenu(), hmenuB = ::CreatePopupMenu();
    EXPECT_NE(0, menu.InsertSubmenuByPos(0, hmenuA, L"A", MF_GRAYED));
    EXPECT_NE(0, menu.InsertSubmenuByID(22, hmenuB, L"B", 0));
    EXPECT_EQ(hmenuA, menu.GetSubMenu(0));
    EXPECT_EQ(hmenuB, menu.GetSubMenu(2));
    EXPECT_EQ(nullptr, menu.GetSubMenu(1));
    EXPECT_EQ(L"B", TextAt(2));
    EXPECT_TRUE(StateAt(0) & MF_GRAYED);
    EXPECT_NE(0, menu.InsertSeparatorByPos(1));
    EXPECT_NE(0, menu.InsertSeparatorByID(23));
    EXPECT_TRUE(StateAt(1) & MF_SEPARATOR);
    EXPECT_TRUE(StateAt(5) & MF_SEPARATOR);
    EXPECT_EQ(7, menu.GetCount());
}

TEST_F(CSMenuItems, BitmapsAreSetForBothStates) {
    HBITMAP hbmOff = MakeBitmap(), hbmOn = MakeBitmap();
    MenuItemInfo info(MIIM_CHECKMARKS);
    EXPECT_NE(0, menu.SetItemBitmapsByPos(0, hbmOff, hbmOn));
    menu.GetItemInfoByPos(0, &info);
    EXPECT_EQ(hbmOff, info.hbmpUnchecked);
    EXPECT_EQ(hbmOn, info.hbmpChecked);
    EXPECT_NE(0, menu.SetItemBitmapsByID(22, hbmOn, nullptr));
    menu.GetItemInfoByPos(1, &info);
    EXPECT_EQ(hbmOn, info.hbmpUnchecked);
    EXPECT_EQ(nullptr, info.hbmpChecked);
    EXPECT_EQ(0, menu.SetItemBitmapsByPos(3, hbmOff, hbmOn));
    EXPECT_EQ(0, menu.SetItemBitmapsByID(kNowhere, hbmOff, hbmOn));
    ::DeleteObject(hbmOff);
    ::DeleteObject(hbmOn);
}

TEST_F(CSMenuItems, HelpIdIsKept) {
    EXPECT_EQ(0u, menu.GetHelpId());
    EXPECT_NE(0, menu.SetHelpId(1234));
    EXPECT_EQ(1234u, menu.GetHelpId());
}

TEST_F(CSMenuItems, ShieldIsOneSmallBitmapForAllItems) {
    ToldVista told;
    MenuItemInfo first(MIIM_CHECKMARKS), second(MIIM_CHECKMARKS);
    if (!::LoadImageW(nullptr, MAKEINTRESOURCEW(32518), IMAGE_ICON, 0, 0, LR_SHARED)) {
        EXPECT_EQ(0, menu.SetShieldIconByID(21)); // and again the next time
        EXPECT_EQ(0, menu.SetShieldIconByID(21));
        menu.GetItemInfoByPos(0, &first);
        EXPECT_EQ(nullptr, first.hbmpUnchecked);
        GTEST_SKIP() << "this platform has no shield";
    }
    ASSERT_NE(0, menu.SetShieldIconByID(21));
    int nBefore = CountGdiObjects();
    EXPECT_NE(0, menu.SetShieldIconByID(23));
    EXPECT_EQ(nBefore, CountGdiObjects());
    menu.GetItemInfoByPos(0, &first);
    menu.GetItemInfoByPos(2, &second);
    EXPECT_NE(nullptr, first.hbmpUnchecked);
    EXPECT_EQ(first.hbmpUnchecked, first.hbmpChecked);
    EXPECT_EQ(first.hbmpUnchecked, second.hbmpUnchecked);
    auto pixels = PixelsOf(first.hbmpUnchecked);
    ASSERT_EQ(16u * 16, pixels.size());
    EXPECT_EQ(0u, pixels[0] >> 24);             // outside the shield
    EXPECT_EQ(0xFFu, pixels[7 * 16 + 8] >> 24); // its middle
    EXPECT_EQ(0, menu.SetShieldIconByID(kNowhere));
}

struct OtherWindowsCase {
    const char* pszName;
    const wchar_t* pszVersion;
    const char* pszOutput; // of menu_probe
};
class CSMenuBitmapsOn : public testing::TestWithParam<OtherWindowsCase> {};
TEST_P(CSMenuBitmapsOn, AreMadeFromWindowsVistaOn) {
    if (!CanShowOtherWindows()) GTEST_SKIP() << "a real Windows does not show itself as another";
    EXPECT_EQ(GetParam().pszOutput,
              OutputOnOtherWindows(L"menu_probe.exe", GetParam().pszVersion).substr(0, 3));
}
INSTANTIATE_TEST_SUITE_P(Cases, CSMenuBitmapsOn,
                         testing::Values(OtherWindowsCase{"XP", L"winxp64", "1 0"},
                                         OtherWindowsCase{"Server2003", L"win2003", "1 0"},
                                         OtherWindowsCase{"Vista", L"vista", "1 1"},
                                         OtherWindowsCase{"Windows10", L"win10", "1 1"}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSMenuBitmaps, StaticMembersDoWhatTheSharedRoutinesDo) {
    ToldVista told;
    MadeIcon icon(1, 1, {0x80FF0000});
    HBITMAP hbm = CSMenu::GenerateBitmap(icon.Get());
    EXPECT_EQ((std::vector<Pixel>{0x80800000}), PixelsOf(hbm));
    ::DeleteObject(hbm);
    EXPECT_EQ(nullptr, CSMenu::GenerateBitmap(nullptr));

    SIZE size{2, 3};
    void* pBits = nullptr;
    EXPECT_EQ(0, CSMenu::Create32BitHBITMAP(nullptr, &size, &pBits, &hbm));
    EXPECT_EQ(6u, PixelsOf(hbm).size());
    EXPECT_NE(nullptr, pBits);
    ::DeleteObject(hbm);
    size.cx = 0;
    EXPECT_EQ(static_cast<long>(0x8007000E),
              CSMenu::Create32BitHBITMAP(nullptr, &size, nullptr, &hbm));

    BITMAPINFO info;
    CSMenu::InitBitmapInfo(&info, sizeof(info), 4, 5, 24);
    EXPECT_EQ(4, info.bmiHeader.biWidth);
    EXPECT_EQ(24, info.bmiHeader.biBitCount);
}
