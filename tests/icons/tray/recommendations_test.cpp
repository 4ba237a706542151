#include "icons/tray/recommendations.h"
#include "app/launch/open_html.h"
#include "icons/menu_test_support.h"
#include "support/gui_objects.h"
#include "support/test_resource_ids.h"
#include "support/this_windows.h"
#include "support/told_version.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <utility>

namespace {
/// A rotation of the test's own, none of it shown yet, and a menu for its rows.
struct Recommendations : testing::Test {
    Recommendations() { menu.CreatePopup(); }
    ~Recommendations() override {
        for (const Recommendation& entry : table)
            if (entry.hbm) ::DeleteObject(entry.hbm);
    }
    std::vector<SeenItem> Add() {
        menu.DeleteAll();
        rotation.AddRows(menu);
        return ItemsOf(menu);
    }
    /// Adds the other entries, so that the first is the next one again.
    void GoRound() {
        for (std::size_t n = 1; n < std::size(table); ++n) Add();
    }

    std::optional<ToldVista> told{std::in_place}; // pictures, whatever this Windows has
    Recommendation table[3] = {
        {nullptr, -IDI_TEST, L"page 1", L"headline 1", L"   line 2 of 1", L"   line 3 of 1"},
        {nullptr, 0, L"page 2", L"headline 2", L"   line 2 of 2", L"   line 3 of 2"},
        {nullptr, IDI_TEST, L"page 3", L"headline 3", L"   line 2 of 3", L"   line 3 of 3"},
    };
    RecommendationRotation rotation{table};
    CSMenu menu;
};
} // namespace

TEST_F(Recommendations, HaveThreeLinesAnIconAndAPageOfTheirOwn) {
    std::set<std::wstring> urls, headlines;
    std::wstring strSite = pszMyCompanyURL;
    for (const Recommendation* pEntry : RecommendationsOfTheMenu()) {
        std::wstring strUrl = pEntry->pszUrl;
        EXPECT_EQ(0u, strUrl.find(L"https://"));
        EXPECT_EQ(0u, strUrl.find(strSite));
        EXPECT_GT(strUrl.size(), strSite.size());
        urls.insert(strUrl);
        headlines.insert(pEntry->pszLine1);
        EXPECT_NE(L' ', pEntry->pszLine1[0]);
        for (std::wstring str : {pEntry->pszLine2, pEntry->pszLine3}) {
            EXPECT_EQ(3u, str.find_first_not_of(L' ')) << str;
        }
        EXPECT_LT(pEntry->nIconId, 0);
    }
    EXPECT_EQ(5u, urls.size());
    EXPECT_EQ(5u, headlines.size());
}

TEST_F(Recommendations, OfTheMenuComeInTurn) {
    auto entries = RecommendationsOfTheMenu();
    for (int n = 0; n < 12; ++n) {
        menu.DeleteAll();
        AddRecommendationRows(menu);
        EXPECT_EQ(entries[n % 5], GetRecommendation());
        EXPECT_EQ(entries[n % 5]->pszLine1, ItemsOf(menu).at(0).strText);
    }
}

TEST_F(Recommendations, ComeInTurnFromTheFirstOne) {
    EXPECT_EQ(nullptr, rotation.GetCurrent());
    for (int n = 0; n < 8; ++n) {
        auto items = Add();
        const Recommendation& entry = table[n % 3];
        EXPECT_EQ(&entry, rotation.GetCurrent());
        ASSERT_EQ(3u, items.size());
        EXPECT_EQ(entry.pszLine1, items[0].strText);
        EXPECT_EQ(entry.pszLine2, items[1].strText);
        EXPECT_EQ(entry.pszLine3, items[2].strText);
        EXPECT_EQ(100u, items[0].nId);
        EXPECT_EQ(101u, items[1].nId);
        EXPECT_EQ(102u, items[2].nId);
        EXPECT_TRUE(items[0].nState & MFS_DEFAULT);
        EXPECT_FALSE(items[1].nState & MFS_DEFAULT);
    }
}

TEST_F(Recommendations, TextsAreNoFormats) {
    table[0].pszLine1 = L"100% %s %n";
    table[0].pszLine2 = L"   %d";
    auto items = Add();
    EXPECT_EQ(L"100% %s %n", items[0].strText);
    EXPECT_EQ(L"   %d", items[1].strText);
}

TEST_F(Recommendations, BitmapIsMadeOnceAndKept) {
    auto items = Add();
    HBITMAP hbm = items[0].hbm;
    ASSERT_NE(nullptr, hbm);
    EXPECT_EQ(hbm, table[0].hbm);
    BITMAP bm{};
    ::GetObjectW(hbm, sizeof(bm), &bm);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), bm.bmWidth);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), bm.bmHeight);
    MenuItemInfo info(MIIM_CHECKMARKS);
    menu.GetItemInfoByID(100, &info);
    EXPECT_EQ(hbm, info.hbmpChecked); // for both states
    GoRound();
    int nBefore = CountGdiObjects();
    for (int n = 0; n < 3; ++n) {
        EXPECT_EQ(hbm, Add()[0].hbm);
        GoRound();
        EXPECT_EQ(nBefore, CountGdiObjects());
    }
}

TEST_F(Recommendations, HaveABitmapFromVistaOn) {
    told.reset();
    auto items = Add();
    ASSERT_EQ(3u, items.size());
    EXPECT_EQ(IsThisWindowsAtLeast(6, 0), items[0].hbm != nullptr);
    EXPECT_EQ(table[0].hbm, items[0].hbm);
}

TEST_F(Recommendations, IconOfThePresentModuleHasAPositiveId) {
    Add();
    Add();
    HBITMAP hbm = Add()[0].hbm;
    EXPECT_NE(nullptr, hbm);
    EXPECT_EQ(hbm, table[2].hbm);
}

TEST_F(Recommendations, OnlyTheFirstRowHasTheBitmap) {
    auto items = Add();
    EXPECT_EQ(table[0].hbm, items[0].hbm);
    EXPECT_EQ(nullptr, items[1].hbm);
    EXPECT_EQ(nullptr, items[2].hbm);
}

TEST_F(Recommendations, RowWithoutAnIconHasNoBitmap) {
    Add();
    EXPECT_EQ(nullptr, Add()[0].hbm);
    EXPECT_EQ(nullptr, table[1].hbm);
    table[2].nIconId = -31000; // an icon that there is not
    auto items = Add();
    EXPECT_EQ(nullptr, items[0].hbm);
    EXPECT_EQ(3u, items.size());
}
