#include "app/about.h"
#include "app/other_window.h"
#include "support/message_box_driver.h"
#include "wnd/company_msg.h"

#include <gtest/gtest.h>
#include <atomic>

namespace {
constexpr LPARAM kAboutNumber = 370;

/// A dialog that says that it is the About box, and what it answers to the request to come forward.
struct OpenBox {
    explicit OpenBox(LRESULT nAnswer = 0, LPARAM nNumber = kAboutNumber)
        : window(
              [this, nAnswer, nNumber](HWND, UINT uMsg, WPARAM wParam,
                                       LPARAM lParam) -> std::optional<LRESULT> {
                  if (uMsg != GetMyCompanyMsgId() || lParam != nNumber) return std::nullopt;
                  if (wParam == kCompanyCodeIsDialog) return 1;
                  if (wParam != kCompanyCodeActivate) return std::nullopt;
                  ++nAsked;
                  return nAnswer;
              },
              OtherWindow::kDialogClass, L"About Tessaly") {}
    std::atomic<int> nAsked{0};
    OtherWindow window;
};
} // namespace

TEST(ShowAboutOrActivate, TellsNameVersionAndNotice) {
    MessageBoxDriver driver({IDOK});
    ShowAboutOrActivate();
    auto seen = driver.Finish();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(L"Tessaly v. 1.1\n\nCopyright (c) 2017 Orvanta. All rights reserved.",
              seen[0].strText);
    EXPECT_EQ((std::vector<int>{IDOK}), seen[0].buttons);
    EXPECT_EQ(1, seen[0].bHasIcon);
}

TEST(ShowAboutOrActivate, BringsAnOpenBoxForwardInstead) {
    OpenBox box;
    OtherWindow front;
    ::SetForegroundWindow(front);
    ShowAboutOrActivate();
    EXPECT_EQ(1, box.nAsked);
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == box.window; }));
    EXPECT_FALSE(IsMessageBoxOpen());
}

TEST(ShowAboutOrActivate, RestoresAnOpenBoxThatIsIconic) {
    OpenBox box;
    box.window.Minimise();
    ASSERT_TRUE(::IsIconic(box.window));
    ShowAboutOrActivate();
    EXPECT_FALSE(::IsIconic(box.window));
}

TEST(ShowAboutOrActivate, LeavesABoxAloneThatCameForwardItself) {
    OpenBox box(1);
    box.window.Minimise();
    ShowAboutOrActivate();
    EXPECT_EQ(1, box.nAsked);
    EXPECT_TRUE(::IsIconic(box.window));
}

TEST(ShowAboutOrActivate, DialogsOfOtherNumbersAreNotTaken) {
    OpenBox box(1, 371);
    MessageBoxDriver driver({IDOK});
    ShowAboutOrActivate();
    EXPECT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(0, box.nAsked);
}
