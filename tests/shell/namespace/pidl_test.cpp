#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

namespace {
TEST(GetPidlOf, FileGivesAListThatLeadsBackToIt) {
    TempFolder folder;
    std::wstring strFile = folder.MakeFile(L"one.txt", "x");
    ITEMIDLIST* pidl = GetPidlOf(strFile.c_str());
    ASSERT_NE(nullptr, pidl);
    wchar_t szPath[MAX_PATH] = {};
    EXPECT_TRUE(::SHGetPathFromIDListW(pidl, szPath));
    EXPECT_EQ(0, ::lstrcmpiW(strFile.c_str(), szPath));
    ShellFree(pidl);
}

TEST(GetPidlOf, TextThatNamesNothingGivesNull) {
    TempFolder folder;
    EXPECT_EQ(nullptr, GetPidlOf(folder.File(L"missing.txt").c_str()));
    EXPECT_EQ(nullptr, GetPidlOf(L"\\\\?\\"));
    EXPECT_EQ(nullptr, GetPidlOf(nullptr));
}

TEST(GetPidlOf, OverlongPathGivesNull) {
    std::wstring strLong = L"C:\\" + std::wstring(40000, L'x');
    EXPECT_EQ(nullptr, GetPidlOf(strLong.c_str()));
}
} // namespace
