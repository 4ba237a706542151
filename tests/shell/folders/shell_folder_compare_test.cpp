#include "shell/folders/shell_folder_support.h"
#include "shell/namespace/pidl.h"

#include <gtest/gtest.h>
#include <string>

namespace {
struct CompareCase {
    const char* pszName;
    const wchar_t* pszA;
    const wchar_t* pszB;
    int bEqual; // by their names
};
class CompareTest : public testing::TestWithParam<CompareCase> {};
TEST_P(CompareTest, NamesGoFirst) {
    const CompareCase& row = GetParam();
    FakeShell shell;
    int nA = shell.Add(0, row.pszA, SFGAO_FILESYSTEM), nB = shell.Add(0, row.pszB, 0);
    iShellFolder desktop(nullptr, nullptr);
    shell.hrCompare = MAKE_HRESULT(SEVERITY_SUCCESS, 0, 0xFFFE);
    int nResult = 77;
    EXPECT_EQ(1, desktop.Compare(shell.Item(nA), shell.Item(nB), 0, nResult, 0x123456789));
    EXPECT_EQ(row.bEqual ? 0 : -2, nResult);
    EXPECT_EQ(row.bEqual ? 0 : 1, shell.CountOf(L"Compare 0"));
    EXPECT_EQ(row.bEqual ? 0 : 0x123456789, shell.nCompareParam);
    EXPECT_EQ(1, shell.CountOf(L"Name 1 1"));
    EXPECT_EQ(1, shell.CountOf(L"Name 2 1"));
}
const std::wstring kLong(259, L'x');
const std::wstring kLonger = kLong + L"1", kLonger2 = kLong + L"2";
INSTANTIATE_TEST_SUITE_P(
    Cases, CompareTest,
    testing::Values(CompareCase{"Same", L"one", L"one", 1}, CompareCase{"Case", L"One", L"oNE", 1},
                    CompareCase{"CaseOfOtherScripts", L"\u0416\u00C4\u03A9", L"\u0436\u00E4\u03C9",
                                1},
                    CompareCase{"Different", L"one", L"two", 0},
                    CompareCase{"Beginning", L"one", L"one ", 0},
                    CompareCase{"BothEmpty", L"", L"", 0}, CompareCase{"OneEmpty", L"", L"a", 0},
                    CompareCase{"OtherEmpty", L"a", L"", 0},
                    // What differs behind the 260 characters of the buffers is not seen.
                    CompareCase{"LongestNames", kLong.c_str(), kLong.c_str(), 1},
                    CompareCase{"DifferBehindTheLimit", kLonger.c_str(), kLonger2.c_str(), 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(ShellFolderTest, CompareWithFlagsAsksForFullNames) {
    int nA = shell.Add(0, L"same", 0), nB = shell.Add(0, L"same", 0);
    shell[nA].strAddress = L"A/same";
    shell[nB].strAddress = L"B/same";
    iShellFolder desktop(nullptr, nullptr);
    shell.hrCompare = 1;
    int nResult = 77;
    EXPECT_EQ(1, desktop.Compare(shell.Item(nA), shell.Item(nB), 0, nResult, 0));
    EXPECT_EQ(0, nResult);
    for (int nFlags : {1, 2, -1}) {
        EXPECT_EQ(1, desktop.Compare(shell.Item(nA), shell.Item(nB), nFlags, nResult, 0));
        EXPECT_EQ(1, nResult);
    }
    EXPECT_EQ(3, shell.CountOf(L"Name 7 0"));
    EXPECT_EQ(3, shell.CountOf(L"Name 8 0"));
}

TEST_F(ShellFolderTest, CompareTakesTheLowWordAsASignedNumber) {
    struct Row {
        HRESULT hr;
        int bDone, nResult;
    } rows[] = {{0, 1, 0},       {1, 1, 1},          {0x7FFF, 1, 32767}, {0x8000, 1, -32768},
                {0xFFFF, 1, -1}, {0x7FF00002, 1, 2}, {E_FAIL, 0, 77},    {-1, 0, 77}};
    iShellFolder desktop(nullptr, nullptr);
    int nB = shell.Add(0, L"b", 0);
    for (const Row& row : rows) {
        shell.hrCompare = row.hr;
        int nResult = 77;
        EXPECT_EQ(row.bDone, desktop.Compare(shell.Item(nDrives), shell.Item(nB), 0, nResult, 0));
        EXPECT_EQ(row.nResult, nResult) << std::hex << row.hr;
    }
}

TEST_F(ShellFolderTest, CompareOfItemsWithoutNamesAsksTheFolder) {
    iShellFolder desktop(nullptr, nullptr);
    shell.hrCompare = 5;
    int nResult = 77;
    EXPECT_EQ(1, desktop.Compare(shell.Item(nFile), shell.Item(nFile), 0, nResult, 0));
    EXPECT_EQ(5, nResult);
}

// A path and its folder

TEST_F(ShellFolderTest, PathGivesFolderAndList) {
    PIDL list;
    iShellFolder folder(L"C:\\a\\sub", list);
    EXPECT_EQ(1, folder.IsReady());
    EXPECT_EQ(nOther, FakeShell::FindAbs(list));
    int nBelow = shell.Add(nOther, L"below", SFGAO_FILESYSTEM);
    EXPECT_TRUE(Knows(folder, nBelow));
}

TEST_F(ShellFolderTest, PathMayHaveSlashes) {
    PIDL list;
    iShellFolder folder(L"C:/a/sub", list);
    EXPECT_EQ(nOther, FakeShell::FindAbs(list));
    for (const auto& str : shell.calls)
        EXPECT_EQ(std::wstring::npos, str.find(L'/')) << str.c_str();
}

TEST_F(ShellFolderTest, PathThatFailsLeavesNothing) {
    for (const wchar_t* pszPath : {L"", L"C:\\a\\nowhere", L"C:\\nowhere\\sub", L"D:\\a"}) {
        SCOPED_TRACE(testing::Message() << pszPath);
        PIDL list;
        list.CopyAll(shell.List(nFolder)); // is freed
        iShellFolder folder(pszPath, list);
        EXPECT_EQ(0, folder.IsReady());
        EXPECT_EQ(0, folder.IsFolder() | folder.IsInFileSystem() | folder.IsPlainFolder());
        EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
    }
}

TEST_F(ShellFolderTest, PathFromASeparatorOnStartsAtTheNetwork) {
    int nNet = shell.Add(0, L"Net", SFGAO_FOLDER);
    int nServer = shell.Add(nNet, L"server", SFGAO_FOLDER, L"\\\\server");
    int nShare =
        shell.Add(nServer, L"share", SFGAO_FOLDER | SFGAO_FILESYSTEM, L"\\\\server\\share");
    shell.special.push_back({CSIDL_NETWORK, nNet});
    PIDL list;
    iShellFolder folder(L"\\\\server\\share", list);
    EXPECT_EQ(1, folder.IsReady());
    EXPECT_EQ(nShare, FakeShell::FindAbs(list));
}
} // namespace
