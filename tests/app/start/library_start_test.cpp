#include "app/identity/product_info.h"
#include "app/start/library_start.h"
#include "runtime/base/current_product.h"
#include "runtime/system/wts_api32.h"
#include "shell/namespace/pidl.h"
#include "shell/subclass/shell_subclass.h"
#include <gtest/gtest.h>

namespace {
/// The start asks for the module and does not load it; this program may not have it.
int HasControlsModule() { return ::GetModuleHandleW(L"COMCTL32") != nullptr; }
} // namespace

TEST(LibraryStart, MakesWhatTheLibraryNeeds) {
    EXPECT_EQ(::GetModuleHandleW(nullptr), GetLibraryInstance());
    EXPECT_STREQ(L"HKCU\\SOFTWARE\\Orvanta\\Tessaly", GetMyProductInfo().GetAppRootKey());
    EXPECT_STREQ(L"TSLY", ShellSubclass::GetTag());
    EXPECT_EQ(HasControlsModule(), ShellSubclass::IsReady());
    // Without a living object it gives 0, and 0 is no session with a user.
    EXPECT_NE(0u, WtsApi32::WTSGetActiveConsoleSessionId());
}

TEST(LibraryStart, CanFollowAStopAgain) {
    GetMyProductInfo().PushAppRootKey(L"HKCU\\pushed");
    LibraryStop();
    EXPECT_STREQ(L"HKCU\\SOFTWARE\\Orvanta\\Tessaly", GetMyProductInfo().GetAppRootKey());
    EXPECT_EQ(0u, WtsApi32::WTSGetActiveConsoleSessionId());
    LibraryStop(); // nothing is undone twice
    LibraryStart(::GetModuleHandleW(nullptr));
    LibraryStart(::GetModuleHandleW(nullptr)); // nothing is made twice
    EXPECT_NE(0u, WtsApi32::WTSGetActiveConsoleSessionId());
    EXPECT_EQ(HasControlsModule(), ShellSubclass::IsReady());
    EXPECT_NE(nullptr, GetShellMalloc());
}
