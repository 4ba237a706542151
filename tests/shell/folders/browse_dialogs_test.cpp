#include "runtime/threads/co_init.h"
#include "shell/folders/browse_dialogs.h"
#include "shell/namespace/pidl.h"
#include "support/guard_page.h"
#include "support/message_box_driver.h"
#include "support/runtime_lookup.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/told_version.h"
#include "support/wait_until.h"

#include <shlobj.h>
#include <commdlg.h>
#include <gtest/gtest.h>
#include <atomic>
#include <string>
#include <thread>

extern "C" FARPROC __imp_SHBrowseForFolderW;

namespace {
// The filter for files

struct FilterCase {
    const char* pszName;
    const wchar_t* pszFilter;
    std::wstring strExpected; // with its terminators
};
std::wstring Zeros(std::wstring str) {
    for (wchar_t& ch : str)
        if (ch == L'|') ch = 0;
    return str;
}
class PrepareBrowseFilterTest : public testing::TestWithParam<FilterCase> {};
TEST_P(PrepareBrowseFilterTest, MakesTheDialogsList) {
    const FilterCase& row = GetParam();
    std::size_t cch = (row.pszFilter ? wcslen(row.pszFilter) : 0) + 20;
    GuardedMemory memory(cch * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    std::fill_n(psz, cch, L'#');
    PrepareBrowseFilter(psz, row.pszFilter);
    std::wstring strExpected = Zeros(row.strExpected);
    strExpected.push_back(0);
    EXPECT_EQ(strExpected, std::wstring(psz, strExpected.size()));
}
INSTANTIATE_TEST_SUITE_P(
    Cases, PrepareBrowseFilterTest,
    testing::Values(
        FilterCase{"Null", nullptr, L"All Files|*.*|"}, FilterCase{"Empty", L"", L"All Files|*.*|"},
        FilterCase{"One", L"Texts|*.txt", L"Texts|*.txt|All Files|*.*|"},
        FilterCase{"Closed", L"Texts|*.txt|", L"Texts|*.txt|"},
        FilterCase{"Two", L"Texts|*.txt|All|*.*", L"Texts|*.txt|All|*.*|All Files|*.*|"},
        FilterCase{"BarAlone", L"|", L"|"}, FilterCase{"NoBar", L"x", L"x|All Files|*.*|"},
        FilterCase{"OtherScripts", L"\u0416|*.\u65E5|", L"\u0416|*.\u65E5|"}),
    [](const auto& row) { return std::string(row.param.pszName); });

// Folders

/// The folder dialog, answered by the test.
struct FakeFolderDialog {
    FakeFolderDialog() {
        pidlGiven = nullptr;
        nCalls = 0;
        strSelected = L"(none)";
        nSelectedBy = -1;
        pidlSelected = nullptr;
        strTitle = L"";
    }
    static LPITEMIDLIST WINAPI Answer(BROWSEINFOW* p) {
        ++nCalls;
        nSelectedBy = -1;
        info = *p;
        if (p->lpszTitle) strTitle = p->lpszTitle;
        if (p->pszDisplayName) wcscpy(p->pszDisplayName, L"chosen");
        if (p->lpfn) {
            TestWindow dialog(
                [](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
                    if (uMsg != 1127) return {};
                    nSelectedBy = static_cast<int>(wParam);
                    if (wParam) strSelected = reinterpret_cast<const wchar_t*>(lParam);
                    pidlSelected = reinterpret_cast<const void*>(lParam);
                    return 0;
                });
            // Only the one message has it select.
            p->lpfn(dialog, BFFM_SELCHANGED, 0, p->lParam);
            EXPECT_EQ(-1, nSelectedBy);
            p->lpfn(dialog, BFFM_INITIALIZED, 0, p->lParam);
            p->lpfn(dialog, BFFM_SELCHANGED, 0, p->lParam);
        }
        return pidlGiven ? ::ILClone(pidlGiven) : nullptr;
    }
    static inline const ITEMIDLIST* pidlGiven;
    static inline BROWSEINFOW info;
    static inline int nCalls, nSelectedBy;
    static inline std::wstring strSelected, strTitle;
    static inline const void* pidlSelected;
    ReplaceImport replaced{__imp_SHBrowseForFolderW, &Answer};
};

class BrowseFolders : public testing::Test {
  protected:
    BrowseFolders() { wcscpy(szPath, L"C:\\start"); }
    CoInit com;
    TempFolder temp;
    FakeFolderDialog dialog;
    wchar_t szPath[MAX_PATH];
};

TEST_F(BrowseFolders, TakesTheCallersValuesAndTheStartAsText) {
    PIDL root;
    ASSERT_EQ(1, root.Attach(CSIDL_DRIVES));
    HWND hwnd = reinterpret_cast<HWND>(4);
    EXPECT_EQ(0, BrowseForFolder(hwnd, szPath, L"My title", BIF_RETURNONLYFSDIRS, root));
    EXPECT_EQ(1, dialog.nCalls);
    EXPECT_EQ(hwnd, dialog.info.hwndOwner);
    EXPECT_EQ(static_cast<const ITEMIDLIST*>(root), dialog.info.pidlRoot);
    EXPECT_EQ(L"My title", dialog.strTitle);
    EXPECT_EQ(static_cast<UINT>(BIF_RETURNONLYFSDIRS | 0x50), dialog.info.ulFlags);
    EXPECT_EQ(1, dialog.nSelectedBy);
    EXPECT_EQ(L"C:\\start", dialog.strSelected);
    EXPECT_STREQ(L"C:\\start", szPath); // nothing was chosen
}

TEST_F(BrowseFolders, TitleOfTheLibrary) {
    BrowseForFolder(nullptr, szPath, nullptr, 0, nullptr);
    EXPECT_EQ(L"Browse for folder:", dialog.strTitle);
    (void)!BrowseForFolder(nullptr, static_cast<const ITEMIDLIST*>(nullptr), nullptr, nullptr, 0,
                           nullptr);
    EXPECT_EQ(L"Browse for folder:", dialog.strTitle);
}

TEST_F(BrowseFolders, NewDialogFromWindows2000On) {
    const struct {
        OSVERSIONINFOEXW version;
        UINT nFlags;
    } rows[] = {{Version(2, 4, 0, 1), 1},     {Version(2, 5, 0, 1), 0x51},
                {Version(2, 5, 2, 1), 0x51},  {Version(2, 6, 1, 1), 0x51},
                {Version(2, 10, 0, 1), 0x51}, {Version(1, 4, 90, 1), 1}};
    for (const auto& row : rows) {
        ToldVersion told(row.version);
        BrowseForFolder(nullptr, szPath, nullptr, 1, nullptr);
        EXPECT_EQ(row.nFlags, dialog.info.ulFlags) << row.version.dwMajorVersion;
    }
    ToldVersion none;
    BrowseForFolder(nullptr, szPath, nullptr, 1, nullptr);
    EXPECT_EQ(1u, dialog.info.ulFlags);
}

TEST_F(BrowseFolders, ChosenPathIsSpelledAsTheShellDoes) {
    std::filesystem::create_directories(temp.File(L"Folder"));
    ITEMIDLIST* pidl = GetPidlOf(temp.File(L"Folder").c_str());
    dialog.pidlGiven = pidl;
    EXPECT_EQ(1, BrowseForFolder(nullptr, szPath, nullptr, 0, nullptr));
    EXPECT_EQ(0, ::lstrcmpiW(temp.File(L"Folder").c_str(), szPath));
    EXPECT_STREQ(L"Folder", wcsrchr(szPath, L'\\') + 1);
    PIDL::Free(pidl);
}

TEST_F(BrowseFolders, ListsForStartAndResult) {
    PIDL start, given;
    ASSERT_EQ(1, start.Attach(CSIDL_DRIVES));
    ASSERT_EQ(1, given.Attach(CSIDL_NETWORK));
    dialog.pidlGiven = given;
    wchar_t szName[MAX_PATH] = L"";
    ITEMIDLIST* pidl = BrowseForFolder(nullptr, start, szName, L"t", 2, given);
    ASSERT_NE(nullptr, pidl);
    EXPECT_EQ(0, PIDL::CompareAbs(given, pidl));
    PIDL::Free(pidl);
    EXPECT_STREQ(L"chosen", szName);
    EXPECT_EQ(0, dialog.nSelectedBy);
    EXPECT_EQ(static_cast<const ITEMIDLIST*>(start), dialog.pidlSelected);
    EXPECT_EQ(static_cast<const ITEMIDLIST*>(given), dialog.info.pidlRoot);
    EXPECT_EQ(0x52u, dialog.info.ulFlags);
    pidl = BrowseForFolder(nullptr, start, nullptr, L"t", 2, nullptr);
    EXPECT_NE(nullptr, pidl);
    PIDL::Free(pidl);
    dialog.pidlGiven = nullptr;
    EXPECT_EQ(nullptr, BrowseForFolder(nullptr, start, szName, L"t", 2, nullptr));
}

TEST_F(BrowseFolders, FolderOfTheNetwork) {
    szPath[0] = 0;
    EXPECT_EQ(0, BrowseForNetFolder(nullptr, szPath));
    EXPECT_EQ(L"Browse for folder:", dialog.strTitle);
    EXPECT_EQ(0x51u, dialog.info.ulFlags);
    wcscpy(szPath, L"C:\\there");
    EXPECT_EQ(1, BrowseForNetFolder(nullptr, szPath)); // it has a text, if the old one
    EXPECT_STREQ(L"C:\\there", szPath);
}

TEST_F(BrowseFolders, RootOfTheNetworkIsTheNetwork) {
    static int nCompared;
    static PIDL network;
    network.Clear();
    ASSERT_EQ(1, network.Attach(CSIDL_NETWORK));
    nCompared = 77;
    struct Look {
        static LPITEMIDLIST WINAPI Answer(BROWSEINFOW* p) {
            nCompared = PIDL::CompareAbs(network, p->pidlRoot);
            return nullptr;
        }
    };
    ReplaceImport replaced(__imp_SHBrowseForFolderW, &Look::Answer);
    BrowseForNetFolder(nullptr, szPath);
    EXPECT_EQ(0, nCompared);
    network.Clear();
}

TEST(BrowseFolderDialog, RealOneIsAnswered) {
    CoInit com;
    TempFolder temp;
    wchar_t szPath[MAX_PATH];
    wcscpy(szPath, temp.Get().c_str());
    // The platform's tree looks for the way by item ids with the time of the last access, which the
    // first reading of a folder changes: it would then stop there.
    const std::filesystem::path folder(temp.Get());
    for (auto above = folder.parent_path(); above.has_relative_path(); above = above.parent_path())
        for (const auto& entry : std::filesystem::directory_iterator(above)) (void)entry;
    // The dialog goes down its tree step by step: OK is for when it has arrived.
    const std::wstring strName = folder.filename().wstring();
    constexpr DWORD kLong = 10 * kTestDeadlineMs; // each of the tree's folders is read anew
    std::atomic<bool> bEnded{false};
    std::thread hand([&] {
        HWND hwndDialog = nullptr;
        WaitUntil([&] { return (hwndDialog = FindMessageBox(::GetCurrentProcessId())) != nullptr; },
                  kLong);
        auto HasArrived = [&] {
            wchar_t sz[MAX_PATH] = L"";
            HWND hwndEdit = ::FindWindowExW(hwndDialog, nullptr, L"Edit", nullptr);
            DWORD_PTR nResult = 0;
            ::SendMessageTimeoutW(hwndEdit, WM_GETTEXT, MAX_PATH, reinterpret_cast<LPARAM>(sz),
                                  SMTO_NORMAL, kTestDeadlineMs, &nResult);
            return strName == sz;
        };
        WaitUntil(HasArrived, kLong);
        // Again until it has gone: what comes while it is being built is lost.
        WaitUntil(
            [&] {
                ::PostMessageW(FindMessageBox(::GetCurrentProcessId()), WM_COMMAND, IDOK, 0);
                return bEnded.load();
            },
            kLong);
    });
    int bDone = BrowseForFolder(nullptr, szPath, L"t", BIF_RETURNONLYFSDIRS, nullptr);
    bEnded = true;
    hand.join();
    EXPECT_EQ(1, bDone);
    EXPECT_EQ(0, ::lstrcmpiW(temp.Get().c_str(), szPath))
        << testing::PrintToString(std::wstring(szPath));
}

TEST(BrowseFolderDialog, RealOneIsCancelled) {
    CoInit com;
    wchar_t szPath[MAX_PATH] = L"C:\\windows";
    MessageBoxDriver driver({IDCANCEL}, L"");
    EXPECT_EQ(0, BrowseForFolder(nullptr, szPath, L"t", 0, nullptr));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_STREQ(L"C:\\windows", szPath);
}

// Files

/// The file dialogs, answered by the test.
struct FakeFileDialog {
    FakeFileDialog() {
        nOpen = nSave = 0;
        bChosen = TRUE;
        functions.Set("GetOpenFileNameW", &Open);
        functions.Set("GetSaveFileNameW", &Save);
    }
    static BOOL Take(OPENFILENAMEW* p) {
        info = *p;
        strTitle = p->lpstrTitle ? p->lpstrTitle : L"(null)";
        strFile = p->lpstrFile ? p->lpstrFile : L"(null)";
        strFolder = p->lpstrInitialDir ? p->lpstrInitialDir : L"(null)";
        strExt = p->lpstrDefExt ? p->lpstrDefExt : L"(null)";
        const wchar_t* pEnd = p->lpstrFilter;
        while (*pEnd) pEnd += wcslen(pEnd) + 1;
        strFilter.assign(p->lpstrFilter, pEnd);
        if (bChosen) wcscpy(p->lpstrFile, strChosen.c_str());
        return bChosen;
    }
    static BOOL WINAPI Open(OPENFILENAMEW* p) {
        ++nOpen;
        return Take(p);
    }
    static BOOL WINAPI Save(OPENFILENAMEW* p) {
        ++nSave;
        return Take(p);
    }
    static inline int nOpen, nSave;
    static inline BOOL bChosen;
    static inline OPENFILENAMEW info;
    static inline std::wstring strTitle, strFile, strFolder, strExt, strFilter, strChosen;
    ReplaceFunctions functions;
};

TEST(BrowseForFile, HandsOverEverything) {
    FakeFileDialog dialog;
    TempFolder temp;
    dialog.strChosen = temp.MakeFile(L"Chosen.txt", "x");
    wchar_t sz[MAX_PATH] = L"before.txt";
    HWND hwnd = reinterpret_cast<HWND>(8);
    EXPECT_EQ(1, BrowseForFile(hwnd, 0, sz, L"Title", L"C:\\folder", L"T|*.txt", L"txt", 0x1000));
    EXPECT_EQ(1, dialog.nOpen);
    EXPECT_EQ(0, dialog.nSave);
    EXPECT_EQ(152u, dialog.info.lStructSize);
    EXPECT_EQ(hwnd, dialog.info.hwndOwner);
    EXPECT_EQ(260u, dialog.info.nMaxFile);
    EXPECT_EQ(0x1000u, dialog.info.Flags);
    EXPECT_EQ(L"Title", dialog.strTitle);
    EXPECT_EQ(L"before.txt", dialog.strFile);
    EXPECT_EQ(L"C:\\folder", dialog.strFolder);
    EXPECT_EQ(L"txt", dialog.strExt);
    EXPECT_EQ(Zeros(L"T|*.txt|All Files|*.*|"), dialog.strFilter);
    EXPECT_EQ(0, ::lstrcmpiW(dialog.strChosen.c_str(), sz));
    EXPECT_STREQ(L"Chosen.txt", wcsrchr(sz, L'\\') + 1);
}

TEST(BrowseForFile, FlagsTitleAndFilterOfTheLibrary) {
    FakeFileDialog dialog;
    dialog.bChosen = FALSE;
    wchar_t sz[MAX_PATH] = L"before";
    EXPECT_EQ(0, BrowseForFile(nullptr, 1, sz, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(1, dialog.nSave);
    EXPECT_EQ(0, dialog.nOpen);
    EXPECT_EQ(2062u, dialog.info.Flags);
    EXPECT_EQ(L"Browse for file", dialog.strTitle);
    EXPECT_EQ(L"(null)", dialog.strFolder);
    EXPECT_EQ(L"(null)", dialog.strExt);
    EXPECT_EQ(Zeros(L"All Files|*.*|"), dialog.strFilter);
    EXPECT_STREQ(L"before", sz);
    EXPECT_EQ(0, BrowseForFile(nullptr, 0, sz, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(6156u, dialog.info.Flags);
}

TEST(BrowseForFile, LongFiltersComeWhole) {
    FakeFileDialog dialog;
    dialog.bChosen = FALSE;
    wchar_t sz[MAX_PATH] = L"";
    for (std::size_t cch : {200u, 260u, 500u, 1000u, 5000u}) {
        std::wstring strFilter = L"T|" + std::wstring(cch, L'x') + L"|";
        BrowseForFile(nullptr, 0, sz, nullptr, nullptr, strFilter.c_str(), nullptr, 0);
        EXPECT_EQ(Zeros(strFilter), dialog.strFilter) << cch;
    }
}

TEST(BrowseForFile, WithoutTheDialogsGivesZero) {
    HideFunctions hidden({"GetOpenFileNameW", "GetSaveFileNameW"});
    wchar_t sz[MAX_PATH] = L"before";
    EXPECT_EQ(0, BrowseForFile(nullptr, 0, sz, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(0, BrowseForFile(nullptr, 1, sz, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_STREQ(L"before", sz);
}

TEST(BrowseFileDialog, RealOneIsCancelled) {
    CoInit com;
    for (int bSave : {0, 1}) {
        wchar_t sz[MAX_PATH] = L"before.txt";
        MessageBoxDriver driver({IDCANCEL}, L"");
        EXPECT_EQ(0, BrowseForFile(nullptr, bSave, sz, L"t", L"C:\\", nullptr, L"txt", 0));
        ASSERT_EQ(1u, driver.Finish().size());
        EXPECT_STREQ(L"before.txt", sz);
    }
}

TEST(BrowseFileDialog, RealOneGivesTheFileThatIsThere) {
    CoInit com;
    TempFolder temp;
    const std::wstring strFile = temp.MakeFile(L"one.txt", "x");
    wchar_t sz[MAX_PATH];
    wcscpy(sz, strFile.c_str());
    MessageBoxDriver driver({IDOK}, L"");
    EXPECT_EQ(1, BrowseForFile(nullptr, 0, sz, L"t", nullptr, nullptr, nullptr, 0));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(0, ::lstrcmpiW(strFile.c_str(), sz));
}
} // namespace
