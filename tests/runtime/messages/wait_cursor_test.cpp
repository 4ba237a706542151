#include "runtime/messages/wait_cursor.h"
#include "support/replace_import.h"
#include <gtest/gtest.h>

extern "C" FARPROC __imp_SetCursor;

namespace {
HCURSOR WINAPI SetNoCursor(HCURSOR) {
    ::SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}
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

TEST(CSWaitCursor, LeavesTheErrorOfWhatWasWaitedFor) {
    ReplaceImport replaced(__imp_SetCursor, &SetNoCursor);
    {
        CSWaitCursor wait;
        ::SetLastError(ERROR_FILE_NOT_FOUND);
    }
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
}
