#include "icons/agent/library_hold.h"
#include <gtest/gtest.h>

namespace {

// Whether the reference keeps a library mapped shows only with the library itself, in the tests
// with a shell of its own; here the code is the program's.

TEST(LibraryHold, HoldsNothingAtFirst) {
    constinit static LibraryHold hold;
    EXPECT_FALSE(hold.IsHeld());
    hold.Release();
    EXPECT_FALSE(hold.IsHeld());
}

TEST(LibraryHold, TakesOneReferenceHoweverOftenItIsAsked) {
    LibraryHold hold;
    hold.Take();
    EXPECT_TRUE(hold.IsHeld());
    hold.Take();
    EXPECT_TRUE(hold.IsHeld());
    hold.Release();
    EXPECT_FALSE(hold.IsHeld());
    hold.Release();
    EXPECT_FALSE(hold.IsHeld());
}

TEST(LibraryHold, CanBeTakenAgain) {
    LibraryHold hold;
    for (int i = 0; i < 5; ++i) {
        hold.Take();
        EXPECT_TRUE(hold.IsHeld());
        hold.Release();
        EXPECT_FALSE(hold.IsHeld());
    }
}

} // namespace
