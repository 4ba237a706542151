#include "runtime/threads/co_init.h"
#include "shell/folders/shell_link.h"
#include "shell/folders/shortcuts.h"
#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

namespace {
TEST(ResolveShortcut, TargetOutsideTheFileSystemGivesNothing) {
    CoInit com;
    TempFolder folder;
    const std::wstring strLink = folder.File(L"computer.lnk");
    PIDL computer;
    ASSERT_EQ(1, computer.Attach(CSIDL_DRIVES));
    iShellLink link;
    ASSERT_EQ(1, link.SetIDList(computer));
    ASSERT_EQ(1, link.Save(strLink.c_str()));
    wchar_t szPath[MAX_PATH];
    wcscpy(szPath, strLink.c_str());
    ResolveShortcut(nullptr, szPath, 1);
    EXPECT_STREQ(L"", szPath);
}
} // namespace
