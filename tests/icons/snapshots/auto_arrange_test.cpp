#include "icons/snapshots/auto_arrange.h"
#include "icons/folder_view_test_support.h"
#include "icons/icons_test_support.h"
#include "support/message_box_driver.h"

#include <gtest/gtest.h>
#include <shlobj.h>

namespace {
constexpr LONG_PTR kStyle = LVS_AUTOARRANGE;
const DWORD kFlags = FWF_AUTOARRANGE | FWF_DESKTOP | FWF_SNAPTOGRID;
const DWORD kFlagsCleared = FWF_DESKTOP | FWF_SNAPTOGRID;

/// A list view in a view whose folder view is a double.
class AutoArrangeOfTheFolderView : public testing::Test {
  protected:
    void SetStyle() {
        ::SetWindowLongPtrW(hwnd(), GWL_STYLE, ::GetWindowLongPtrW(hwnd(), GWL_STYLE) | kStyle);
    }
    bool HasStyle() const { return ::GetWindowLongPtrW(hwnd(), GWL_STYLE) & kStyle; }
    HWND hwnd() const { return view.hwndListView; }
    /// The result, with the one answer that every question gets; *pnAsked is their number.
    bool Clear(int nAnswer, std::size_t* pnAsked) {
        MessageBoxDriver driver({nAnswer, nAnswer});
        bool bCleared = ClearAutoArrange(hwnd());
        *pnAsked = driver.Finish().size();
        return bCleared;
    }

    TestView view;
    FakeBuild build{kFirstBuildInCharge};
    FakeFolderView shell{view.wndView};
    std::size_t nAsked = 0;
};

TEST_F(AutoArrangeOfTheFolderView, IsAskedAboutAndClearedAfterAYes) {
    shell.dwFlags = kFlags;
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_EQ((std::vector<std::pair<DWORD, DWORD>>{{FWF_AUTOARRANGE, 0}}), shell.flagChanges);
    EXPECT_EQ(kFlagsCleared, shell.dwFlags);
    EXPECT_FALSE(HasStyle());
}

TEST_F(AutoArrangeOfTheFolderView, StaysAfterANo) {
    shell.dwFlags = kFlags;
    EXPECT_FALSE(Clear(IDNO, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_TRUE(shell.flagChanges.empty());
}

TEST_F(AutoArrangeOfTheFolderView, AndOfTheListViewIsOneQuestion) {
    shell.dwFlags = kFlags;
    SetStyle();
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_EQ(kFlagsCleared, shell.dwFlags);
    EXPECT_FALSE(HasStyle());
}

TEST_F(AutoArrangeOfTheFolderView, AndOfTheListViewStayAfterANo) {
    shell.dwFlags = kFlags;
    SetStyle();
    EXPECT_FALSE(Clear(IDNO, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_EQ(kFlags, shell.dwFlags);
    EXPECT_TRUE(HasStyle());
}

TEST_F(AutoArrangeOfTheFolderView, IsClearedWhereOnlyTheListViewSaysSo) {
    SetStyle();
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_FALSE(HasStyle());
    EXPECT_EQ((std::vector<std::pair<DWORD, DWORD>>{{FWF_AUTOARRANGE, 0}}), shell.flagChanges);
}

TEST_F(AutoArrangeOfTheFolderView, IsNotAskedAboutWhileItIsOff) {
    shell.dwFlags = kFlagsCleared;
    EXPECT_TRUE(Clear(IDNO, &nAsked));
    EXPECT_EQ(0u, nAsked);
    EXPECT_EQ(1, shell.CountOf(Step::GetFlags));
    EXPECT_TRUE(shell.flagChanges.empty());
}

TEST_F(AutoArrangeOfTheFolderView, IsLookedAtWithComAndWithoutLeavingIt) {
    Clear(IDNO, &nAsked);
    EXPECT_TRUE(shell.bHadCom);
    EXPECT_EQ(S_OK, ::CoInitialize(nullptr)) << "the thread has COM already";
    ::CoUninitialize();
}

TEST_F(AutoArrangeOfTheFolderView, IsClearedInTheViewThatIsThereAfterTheQuestion) {
    shell.dwFlags = kFlags;
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_EQ(2, shell.CountOf(Step::Create)); // the shell may start again during the question
}

TEST_F(AutoArrangeOfTheFolderView, OfAnotherWindowIsNoMatter) {
    shell.dwFlags = kFlags;
    shell.hwndView = hwnd();
    EXPECT_TRUE(Clear(IDNO, &nAsked));
    EXPECT_EQ(0u, nAsked);
}

TEST_F(AutoArrangeOfTheFolderView, WithoutAListViewIsNotLookedFor) {
    shell.dwFlags = kFlags;
    EXPECT_TRUE(ClearAutoArrange(nullptr));
    EXPECT_EQ(0, shell.CountOf(Step::Create));
}

TEST_F(AutoArrangeOfTheFolderView, ThatRefusesLeavesTheListViewsAnswer) {
    shell.dwFlags = kFlags;
    shell.failing = Step::SetFlags;
    SetStyle();
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_FALSE(HasStyle());
}

class AutoArrangeFailing : public AutoArrangeOfTheFolderView,
                           public testing::WithParamInterface<std::tuple<Step, HRESULT>> {
  protected:
    void SetUp() override {
        shell.dwFlags = kFlags;
        shell.failing = std::get<0>(GetParam());
        shell.hrFailing = std::get<1>(GetParam());
    }
};

TEST_P(AutoArrangeFailing, LeavesTheAnswerToTheListViewsOff) {
    EXPECT_TRUE(Clear(IDNO, &nAsked));
    EXPECT_EQ(0u, nAsked);
    EXPECT_EQ(1, shell.CountOf(std::get<0>(GetParam())));
    EXPECT_EQ(0, shell.CountOfLoans());
}

TEST_P(AutoArrangeFailing, LeavesTheAnswerToTheListViewsOn) {
    SetStyle();
    EXPECT_TRUE(Clear(IDYES, &nAsked));
    EXPECT_EQ(1u, nAsked);
    EXPECT_FALSE(HasStyle());
    EXPECT_EQ(0, shell.CountOfLoans());
}

INSTANTIATE_TEST_SUITE_P(Steps, AutoArrangeFailing,
                         testing::Combine(testing::Values(Step::Create, Step::FindWindow,
                                                          Step::Services, Step::Browser, Step::View,
                                                          Step::Window, Step::FolderView,
                                                          Step::FolderView2, Step::GetFlags),
                                          testing::Values(E_FAIL, S_FALSE)),
                         [](const auto& row) {
                             bool bFails = FAILED(std::get<1>(row.param));
                             return StepName(std::get<0>(row.param)) +
                                    (bFails ? "Fails" : "GivesNothing");
                         });

TEST(AutoArrangeBefore1809, DoesNotLookAtTheFolderView) {
    TestView view;
    for (DWORD dwBuild : {0ul, 3790ul, 7601ul, kFirstBuildInCharge - 1}) {
        FakeBuild build(dwBuild);
        FakeFolderView shell(view.wndView);
        shell.dwFlags = kFlags;
        MessageBoxDriver driverOff({IDNO});
        EXPECT_TRUE(ClearAutoArrange(view.hwndListView));
        EXPECT_TRUE(driverOff.Finish().empty());
        ::SetWindowLongPtrW(view.hwndListView, GWL_STYLE,
                            ::GetWindowLongPtrW(view.hwndListView, GWL_STYLE) | kStyle);
        MessageBoxDriver driver({IDYES});
        EXPECT_TRUE(ClearAutoArrange(view.hwndListView));
        EXPECT_EQ(1u, driver.Finish().size());
        EXPECT_EQ(0, shell.CountOf(Step::Create)) << dwBuild;
    }
}
} // namespace
