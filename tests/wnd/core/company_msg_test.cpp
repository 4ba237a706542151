#include "support/test_window.h"
#include "support/wait_until.h"
#include "wnd/core/company_msg.h"
#include <gtest/gtest.h>

TEST(CompanyMsg, IsTheRegisteredMessage) {
    UINT nId = GetMyCompanyMsgId();
    EXPECT_EQ(::RegisterWindowMessageW(L"OrvantaMessage"), nId);
    EXPECT_GE(nId, 0xC000u);
    EXPECT_EQ(nId, GetMyCompanyMsgId());
}

TEST(CompanyMsg, IsSentAndPostedToTheWindow) {
    int nReceived = 0;
    TestWindow window([&](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != GetMyCompanyMsgId()) return std::nullopt;
        ++nReceived;
        return static_cast<LRESULT>(wParam) * 1000 + lParam;
    });
    EXPECT_EQ(3005, SendMyCompanyMsg(window, kCompanyCodeActivate, 5));
    EXPECT_EQ(1, nReceived);
    EXPECT_EQ(1, PostMyCompanyMsg(window, kCompanyCodeActivate, 5));
    EXPECT_EQ(1, nReceived);
    EXPECT_TRUE(PumpUntil([&] { return nReceived == 2; }));
}

TEST(CompanyMsg, NoWindowGivesZero) {
    EXPECT_EQ(0, SendMyCompanyMsg(nullptr, kCompanyCodeActivate, 5));
    EXPECT_EQ(0, PostMyCompanyMsg(nullptr, kCompanyCodeActivate, 5));
    TestWindow window;
    HWND hwndGone = window;
    window.Destroy();
    EXPECT_EQ(0, SendMyCompanyMsg(hwndGone, kCompanyCodeActivate, 5));
    EXPECT_EQ(0, PostMyCompanyMsg(hwndGone, kCompanyCodeActivate, 5));
}

TEST(CompanyMsg, CodesHaveTheirNumbers) {
    EXPECT_EQ(1u, kCompanyCodeClose);
    EXPECT_EQ(3u, kCompanyCodeActivate);
    EXPECT_EQ(16u, kCompanyCodeShutDown);
    EXPECT_EQ(100u, kCompanyCodeHelp);
    EXPECT_EQ(121u, kCompanyCodeIsDialog);
    EXPECT_EQ(0x8374B3, kActivateDone);
}
