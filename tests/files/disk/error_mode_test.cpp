#include "files/disk/error_mode.h"

#include <gtest/gtest.h>
#include <type_traits>

static_assert(!std::is_copy_constructible_v<ErrorModeSuppressor>);

namespace {
UINT CurrentMode() {
    UINT nMode = ::SetErrorMode(0);
    ::SetErrorMode(nMode);
    return nMode;
}

class ErrorModeTest : public testing::Test {
  protected:
    ~ErrorModeTest() override { ::SetErrorMode(nBefore); }
    UINT nBefore = ::SetErrorMode(SEM_NOOPENFILEERRORBOX);
};
using ErrorMode = ErrorModeTest;

TEST_F(ErrorMode, NoFloppyDiskErrorFailsCriticalErrorsForItsLifetime) {
    {
        NoFloppyDiskError guard;
        EXPECT_EQ(static_cast<UINT>(SEM_FAILCRITICALERRORS), CurrentMode());
    }
    EXPECT_EQ(static_cast<UINT>(SEM_NOOPENFILEERRORBOX), CurrentMode());
}

TEST_F(ErrorMode, SuppressorSetsTheGivenMode) {
    for (UINT nMode : {UINT{0}, UINT{SEM_FAILCRITICALERRORS}, UINT{SEM_NOGPFAULTERRORBOX}}) {
        {
            ErrorModeSuppressor guard(nMode);
            EXPECT_EQ(nMode, CurrentMode());
        }
        EXPECT_EQ(static_cast<UINT>(SEM_NOOPENFILEERRORBOX), CurrentMode());
    }
}

TEST_F(ErrorMode, NestedGuardsComeBackInOrder) {
    ErrorModeSuppressor outer(0);
    { NoFloppyDiskError inner; }
    EXPECT_EQ(0u, CurrentMode());
}
} // namespace
