#include "app/launch/open_html.h"
#include "icons/menu_test_support.h"
#include "icons/tray/recommendations.h"
#include "support/gui_objects.h"
#include "support/test_resource_ids.h"
#include "wnd/menu/csmenu.h"

#include <gtest/gtest.h>
#include <set>

namespace {
struct Recommendations : testing::Test {
    Recommendations() {
        RestartRecommendations();
        menu.CreatePopup();
    }
    ~Recommendations() override { RestartRecommendations(); }
    std::vector<SeenItem> Add() {
        menu.DeleteAll();
        AddRecommendationRows(menu);
        return ItemsOf(menu);
    }
    Recommendation (&rows)[kRecommendations] = GetRecommendationTable();
    CSMenu menu;
};
} // namespace

TEST_F(Recommendations, HaveThreeLinesAnIconAndAPageOfTheirOwn) {
    std::set<std::wstring> urls, headlines;
    std::wstring strSite = pszMyCompanyURL;
    for (const Recommendation& row : rows) {
        std::wstring strUrl = row.pszUrl;
        EXPECT_EQ(0u, strUrl.find(L"https://"));
        EXPECT_EQ(0u, strUrl.find(strSite));
        EXPECT_GT(strUrl.size(), strSite.size());
        urls.insert(strUrl);
        headlines.insert(row.pszLine1);
        EXPECT_NE(L' ', row.pszLine1[0]);
        for (std::wstring str : {row.pszLine2, row.pszLine3}) {
            EXPECT_EQ(3u, str.find_first_not_of(L' ')) << str;
        }
        EXPECT_LT(row.nIconId, 0);
    }
    EXPECT_EQ(5u, urls.size());
    EXPECT_EQ(5u, headlines.size());
}

TEST_F(Recommendations, ComeInTurnFromTheFirstOne) {
    EXPECT_EQ(nullptr, GetRecommendation());
    for (int n = 0; n < 12; ++n) {
        auto items = Add();
        const Recommendation& row = rows[n % 5];
        EXPECT_EQ(&row, GetRecommendation());
        ASSERT_EQ(3u, items.size());
        EXPECT_EQ(row.pszLine1, items[0].strText);
        EXPECT_EQ(row.pszLine2, items[1].strText);
        EXPECT_EQ(row.pszLine3, items[2].strText);
        EXPECT_EQ(100u, items[0].nId);
        EXPECT_EQ(101u, items[1].nId);
        EXPECT_EQ(102u, items[2].nId);
        EXPECT_TRUE(items[0].nState & MFS_DEFAULT);
        EXPECT_FALSE(items[1].nState & MFS_DEFAULT);
    }
}

TEST_F(Recommendations, TextsAreNoFormats) {
    Recommendation saved = rows[0];
    rows[0].pszLine1 = L"100% %s %n";
    rows[0].pszLine2 = L"   %d";
    auto items = Add();
    rows[0] = saved;
    EXPECT_EQ(L"100% %s %n", items[0].strText);
    EXPECT_EQ(L"   %d", items[1].strText);
}

TEST_F(Recommendations, BitmapIsMadeOnceAndKept) {
    Recommendation saved = rows[0];
    rows[0].hbm = nullptr;
    rows[0].nIconId = -IDI_TEST;
    auto items = Add();
    HBITMAP hbm = items[0].hbm;
    ASSERT_NE(nullptr, hbm);
    EXPECT_EQ(hbm, rows[0].hbm);
    BITMAP bm{};
    ::GetObjectW(hbm, sizeof(bm), &bm);
    EXPECT_EQ(::GetSystemMetrics(SM_CXSMICON), bm.bmWidth);
    EXPECT_EQ(::GetSystemMetrics(SM_CYSMICON), bm.bmHeight);
    MenuItemInfo info(MIIM_CHECKMARKS);
    menu.GetItemInfoByID(100, &info);
    EXPECT_EQ(hbm, info.hbmpChecked); // for both states
    int nBefore = CountGdiObjects();
    for (int n = 0; n < 3; ++n) {
        RestartRecommendations();
        EXPECT_EQ(hbm, Add()[0].hbm);
        EXPECT_EQ(nBefore, CountGdiObjects());
    }
    ::DeleteObject(hbm);
    rows[0] = saved;
}

TEST_F(Recommendations, IconOfThePresentModuleHasAPositiveId) {
    Recommendation saved = rows[0];
    rows[0].hbm = nullptr;
    rows[0].nIconId = IDI_TEST;
    HBITMAP hbm = Add()[0].hbm;
    EXPECT_NE(nullptr, hbm);
    EXPECT_EQ(hbm, rows[0].hbm);
    ::DeleteObject(hbm);
    rows[0] = saved;
}

TEST_F(Recommendations, OnlyTheFirstRowHasTheBitmap) {
    auto items = Add();
    EXPECT_EQ(rows[0].hbm, items[0].hbm);
    EXPECT_EQ(nullptr, items[1].hbm);
    EXPECT_EQ(nullptr, items[2].hbm);
}

TEST_F(Recommendations, RowWithoutAnIconHasNoBitmap) {
    Recommendation saved = rows[0];
    rows[0].hbm = nullptr;
    rows[0].nIconId = 0;
    auto items = Add();
    EXPECT_EQ(nullptr, items[0].hbm);
    EXPECT_EQ(nullptr, rows[0].hbm);
    rows[0].nIconId = -31000; // an icon that there is not
    RestartRecommendations();
    items = Add();
    EXPECT_EQ(nullptr, items[0].hbm);
    EXPECT_EQ(3u, items.size());
    rows[0] = saved;
}
