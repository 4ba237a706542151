#pragma once
#include "shell/folders/fake_shell.h"
#include "shell/folders/shell_folder.h"

#include <gtest/gtest.h>

inline constexpr DWORD kKinds = SFGAO_FOLDER | SFGAO_FILESYSTEM | SFGAO_BROWSABLE;

/// C: with a folder, a file, and a zip file that is shown as a folder.
class ShellFolderTest : public testing::Test {
  protected:
    ShellFolderTest() {
        nDrives = shell.Add(0, L"Drives", SFGAO_FOLDER);
        nDrive = shell.Add(nDrives, L"Disk (C:)", SFGAO_FOLDER | SFGAO_FILESYSTEM, L"C:\\");
        nFolder = shell.Add(nDrive, L"a", SFGAO_FOLDER | SFGAO_FILESYSTEM, L"C:\\a");
        nZip = shell.Add(nFolder, L"b.zip", kKinds, L"C:\\a\\b.zip");
        nFile = shell.Add(nFolder, L"f.txt", SFGAO_FILESYSTEM, L"C:\\a\\f.txt");
        nOther = shell.Add(nFolder, L"sub", SFGAO_FOLDER | SFGAO_FILESYSTEM, L"C:\\a\\sub");
        shell.special = {{CSIDL_DRIVES, nDrives}};
    }
    ~ShellFolderTest() override { EXPECT_EQ(0, FakeShell::nFolders); }

    /// The name by which a folder object shows where it is: the attributes of that one's children
    /// can be asked of no other.
    int Knows(iShellFolder& folder, int n) {
        return (folder.GetAttributesOf(shell.Item(n), 0xFFFFFFFF) == shell[n].nAttributes) &&
               folder.GetLastResult() == S_OK;
    }
    FakeShell shell;
    int nDrives, nDrive, nFolder, nZip, nFile, nOther;
};
