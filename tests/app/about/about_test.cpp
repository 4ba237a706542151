#include "app/about/about.h"
#include "app/other_window.h"
#include "support/message_box_driver.h"
#include "wnd/core/company_msg.h"

#include <gtest/gtest.h>
#include <algorithm>
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

int nMostBoxes = 0; // of this thread at one time
int nAskedAgain = 0;

BOOL CALLBACK CountAndClose(HWND hwnd, LPARAM lCount) {
    wchar_t szClass[16] = L"";
    ::GetClassNameW(hwnd, szClass, 16);
    if (wcscmp(szClass, OtherWindow::kDialogClass)) return TRUE;
    ++*reinterpret_cast<int*>(lCount);
    return ::PostMessageW(hwnd, WM_COMMAND, IDOK, 0);
}

/// While the box is up: asks for it once more, and answers what is there then.
void CALLBACK AskAgain(HWND, UINT, UINT_PTR, DWORD) {
    if (nAskedAgain++ == 0) ShowAboutOrActivate();
    int nBoxes = 0;
    ::EnumThreadWindows(::GetCurrentThreadId(), &CountAndClose, reinterpret_cast<LPARAM>(&nBoxes));
    nMostBoxes = std::max(nMostBoxes, nBoxes);
}
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

TEST(ShowAboutOrActivate, AskedAgainWhileItsBoxIsUpShowsNoOther) {
    nMostBoxes = nAskedAgain = 0;
    UINT_PTR nTimer = ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, &AskAgain);
    ShowAboutOrActivate();
    ::KillTimer(nullptr, nTimer);
    EXPECT_LE(1, nAskedAgain);
    EXPECT_EQ(1, nMostBoxes);
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
