// That the platform shows itself as the Windows that the run is for.
#include "support/this_windows.h"

#include <gtest/gtest.h>

namespace {
TEST(ThisWindows, IsTheOneThatTheRunIsFor) {
    const OSVERSIONINFOEXW told = ThisWindows();
    ASSERT_NE(0u, told.dwMajorVersion);
    const NamedWindows* pWanted = WantedWindows();
    const char* pszName = std::getenv("TESSALY_WINDOWS");
    ASSERT_EQ(pszName && *pszName, pWanted != nullptr) << "not in kNamedWindows";
    if (!pWanted) return;
    EXPECT_EQ(pWanted->nMajor, told.dwMajorVersion);
    EXPECT_EQ(pWanted->nMinor, told.dwMinorVersion);
    EXPECT_EQ(pWanted->nBuild, told.dwBuildNumber);
    EXPECT_EQ(pWanted->nServicePack, told.wServicePackMajor);
    EXPECT_EQ(VER_NT_WORKSTATION, told.wProductType);
}
} // namespace
