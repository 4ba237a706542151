#include "runtime/msg.h"
#include "support/message_box_driver.h"
#include <gtest/gtest.h>

TEST(Msg, ShowsTextUnderTheProductsNameAndGivesTheButton) {
    MessageBoxDriver driver({IDYES});
    EXPECT_EQ(IDYES, Msg(nullptr, MB_YESNO | MB_ICONQUESTION, L"Do it?"));
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Tessaly", boxes[0].strTitle);
    EXPECT_EQ(L"Do it?", boxes[0].strText);
    EXPECT_EQ((std::vector<int>{IDYES, IDNO}), boxes[0].buttons);
    EXPECT_EQ(1, boxes[0].bHasIcon);
}

TEST(Msg, IdIsAStringOfTheLibrary) {
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(IDOK, Msg(nullptr, MB_OK, -20102));
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"No updates are available at this time. You are using the latest version available.",
              boxes[0].strText);
}
