#include "wnd/wait_cursor.h"
#include <gtest/gtest.h>

namespace {
HCURSOR StandardCursor(int nId) { return ::LoadCursorW(nullptr, MAKEINTRESOURCEW(nId)); }
} // namespace

TEST(CSWaitCursor, ShowsTheWaitCursorAndPutsTheFormerOneBack) {
    HCURSOR hcurBefore = ::SetCursor(StandardCursor(32515));
    {
        CSWaitCursor outer;
        EXPECT_EQ(StandardCursor(32514), ::GetCursor());
        {
            CSWaitCursor inner;
            EXPECT_EQ(StandardCursor(32514), ::GetCursor());
        }
        EXPECT_EQ(StandardCursor(32514), ::GetCursor());
    }
    EXPECT_EQ(StandardCursor(32515), ::GetCursor());
    ::SetCursor(hcurBefore);
}
