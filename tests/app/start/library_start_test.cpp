#include "app/identity/product_info.h"
#include "app/start/library_start.h"
#include "buttons/icon_btn.h"
#include "runtime/base/current_product.h"
#include "runtime/system/wts_api32.h"
#include "shell/namespace/shell_malloc.h"
#include "shell/subclass/shell_subclass.h"
#include "support/gui_objects.h"
#include <gtest/gtest.h>

namespace {
/// The start asks for the module and does not load it; this program may not have it.
int HasControlsModule() { return ::GetModuleHandleW(L"COMCTL32") != nullptr; }

struct CommonButton : IconBtn {
    CommonButton() : IconBtn(0, 0, kCommon, kCommon, kCommon) {}
    using IconBtn::dwFlags;
    using IconBtn::xPos;
    using IconBtn::yPos;
};
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

TEST(LibraryStart, MakesNoDrawingObjects) {
    LibraryStop();
    int nBefore = CountGdiObjects();
    LibraryStart(::GetModuleHandleW(nullptr));
    EXPECT_EQ(nBefore, CountGdiObjects());
}

TEST(LibraryStart, FixesWhatIconButtonsHaveInCommon) {
    LibraryStop();
    int nBefore = CountGdiObjects();
    LibraryStart(::GetModuleHandleW(nullptr));
    {
        IconBtn first(0, 0, kIconCenterVertically, 30, 40); // does not set the tone
        CommonButton button;
        EXPECT_EQ(5u, button.dwFlags);
        EXPECT_EQ(2, button.xPos);
        EXPECT_EQ(0, button.yPos);
        EXPECT_LT(nBefore, CountGdiObjects());
    }
    LibraryStop(); // the buttons' pens and brushes go with the library's reference
    EXPECT_EQ(nBefore, CountGdiObjects());
    LibraryStart(::GetModuleHandleW(nullptr));
}
