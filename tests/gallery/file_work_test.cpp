// The lower half of the page "Files".

#include "gallery/gallery_test_support.h"
#include "files/version_module.h"
#include "support/message_box_driver.h"

#include <commctrl.h>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {
constexpr unsigned __int64 kVersion = 0x0001000200030004;

class GalleryFileWork : public Gallery {
  protected:
    GalleryFileWork() {
        std::filesystem::remove_all(strFolder);
        std::filesystem::create_directories(strFolder + L"\\into");
        GoToPage(kFilesPage);
    }
    ~GalleryFileWork() override { std::filesystem::remove_all(strFolder); }

    std::wstring File(const wchar_t* pszName) const { return strFolder + L"\\" + pszName; }
    bool Has(const wchar_t* pszName) const { return std::filesystem::exists(File(pszName)); }
    std::string Content(const wchar_t* pszName) const {
        std::ifstream in(std::filesystem::path(File(pszName)), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void MakeFile(const wchar_t* pszName, const std::string& bytes) const {
        std::ofstream(std::filesystem::path(File(pszName)), std::ios::binary) << bytes;
    }
    /// The two folders come into their edits as from drags.
    void NameFolders() {
        DropFileOn(PageItem(IDC_WORK_INTO), File(L"into"));
        EXPECT_TRUE(WaitForText(PageItem(IDC_WORK_INTO), File(L"into")));
        DropFileOn(PageItem(IDC_WORK_FROM), strFolder);
        EXPECT_TRUE(WaitForText(PageItem(IDC_WORK_FROM), strFolder));
    }
    std::wstring Row(int n) {
        wchar_t sz[MAX_PATH] = L"";
        ::SendMessageW(PageItem(IDC_WORK_LIST), LB_GETTEXT, n, reinterpret_cast<LPARAM>(sz));
        return sz;
    }
    LRESULT AskList(UINT uMsg) { return ::SendMessageW(PageItem(IDC_WORK_LIST), uMsg, 0, 0); }
    /// Chooses so many rows from the first one on, by keys.
    void Choose(int nRows) {
        PressKeys(Main(), {L"alt+l"});
        EXPECT_TRUE(WaitForFocus(IDC_WORK_LIST));
        std::vector<std::wstring> keys{L"Home"};
        if (nRows > 1) keys.insert(keys.end(), nRows - 1, L"shift+Down");
        PressKeys(Main(), keys);
        EXPECT_TRUE(WaitUntil([&] { return AskList(LB_GETSELCOUNT) == nRows; }));
    }
    /// Presses a button by its key, answers the question that comes, if any, by another, and waits
    /// for what is said then.
    void Do(const wchar_t* pszKey, const wchar_t* pszResult, const wchar_t* pszAnswer = nullptr) {
        ::SendMessageW(PageItem(IDC_WORK_RESULT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
        PressKeys(Main(), {pszKey});
        if (pszAnswer) Answer(pszAnswer);
        EXPECT_TRUE(WaitForText(PageItem(IDC_WORK_RESULT), pszResult))
            << testing::PrintToString(TextOf(PageItem(IDC_WORK_RESULT)));
    }
    void Answer(const wchar_t* pszKey) {
        HWND hwndBox = nullptr;
        ASSERT_TRUE(WaitUntil(
            [&] { return (hwndBox = FindMessageBox(ProcessId(), L"Tessaly")) != nullptr; }));
        strAsked = ReadMessageBox(hwndBox).strText;
        PressKeys(hwndBox, {pszKey});
        EXPECT_TRUE(WaitUntilGone(hwndBox));
    }
    std::wstring strFolder =
        (std::filesystem::temp_directory_path() / L"tessaly_gallery_work").wstring();
    std::wstring strAsked;
};
} // namespace

TEST_F(GalleryFileWork, ListsFilesWithTheirVersions) {
    MakeFile(L"a.dll", ModuleOfVersion(kVersion));
    MakeFile(L"b.txt", "text");
    NameFolders();
    EXPECT_TRUE(WaitUntil([&] { return AskList(LB_GETCOUNT) == 2; })); // no folder
    EXPECT_EQ(Row(0), L"a.dll, 1.2.3.4");
    EXPECT_EQ(Row(1), L"b.txt");
    EXPECT_EQ(FaultsOfLayout(Page()), L"");
}

TEST_F(GalleryFileWork, CopiesAndComparesWhatIsChosen) {
    MakeFile(L"a.txt", "first");
    MakeFile(L"b.txt", "second");
    MakeFile(L"c.txt", "third");
    NameFolders();
    Choose(2);
    Do(L"alt+c", L"Copied: 2");
    EXPECT_EQ(Content(L"into\\a.txt"), "first");
    EXPECT_EQ(Content(L"into\\b.txt"), "second");
    EXPECT_FALSE(Has(L"into\\c.txt"));
    Do(L"alt+v", L"Equal: 2");
    MakeFile(L"into\\b.txt", "secund");
    Do(L"alt+v", L"Not all of them");
    TakePicture(L"files-copied", {Main()});
    EXPECT_EQ(Content(L"into\\b.txt"), "secund");
}

TEST_F(GalleryFileWork, AnOlderProgramDoesNotReplaceANewerOne) {
    MakeFile(L"a.dll", ModuleOfVersion(kVersion));
    MakeFile(L"into\\a.dll", ModuleOfVersion(kVersion + 1));
    NameFolders();
    Choose(1);
    Do(L"alt+c", L"Copied: 1"); // it counts as done
    EXPECT_EQ(Content(L"into\\a.dll"), ModuleOfVersion(kVersion + 1));
}

TEST_F(GalleryFileWork, DeletesWhatIsChosenIfTheUserSaysSo) {
    MakeFile(L"a.txt", "first");
    MakeFile(L"b.txt", "second");
    NameFolders();
    Choose(1);
    PressKeys(Main(), {L"alt+d"});
    Answer(L"Return"); // "No" is the default
    EXPECT_EQ(strAsked, L"Delete 1 file(s)?");
    EXPECT_TRUE(Has(L"a.txt"));
    Do(L"alt+d", L"Deleted: 1", L"alt+y");
    EXPECT_FALSE(Has(L"a.txt"));
    EXPECT_TRUE(Has(L"b.txt"));
    EXPECT_EQ(AskList(LB_GETCOUNT), 1);
    EXPECT_EQ(Row(0), L"b.txt");
}

TEST_F(GalleryFileWork, WipesInPassesAndShowsTheProgress) {
    MakeFile(L"a.bin", std::string(700000, 'a'));
    MakeFile(L"b.bin", std::string(10, 'b'));
    NameFolders();
    PressKeys(Main(), {L"alt+h"});
    EXPECT_TRUE(WaitUntil([&] { return IsChecked(PageItem(IDC_WORK_THREE)); }));
    Choose(2);
    Do(L"alt+w", L"Wiped: 2", L"alt+y");
    EXPECT_EQ(strAsked, L"Wipe 2 file(s)? Nobody can bring them back.");
    EXPECT_EQ(::SendMessageW(PageItem(IDC_WORK_BAR), PBM_GETPOS, 0, 0), 100);
    TakePicture(L"files-wiped", {Main()});
    EXPECT_FALSE(Has(L"a.bin") || Has(L"b.bin"));
    EXPECT_EQ(AskList(LB_GETCOUNT), 0);
    Choose(0);
    PressKeys(Main(), {L"alt+w"}); // nothing is chosen, nothing asked
    Do(L"alt+c", L"Copied: 0");
}

TEST_F(GalleryFileWork, TheShellsDialogChoosesTheFolder) {
    MakeFile(L"into\\x.txt", "text");
    NameFolders();
    DropFileOn(PageItem(IDC_WORK_FROM), File(L"into"));
    EXPECT_TRUE(WaitForText(PageItem(IDC_WORK_FROM), File(L"into")));
    for (const wchar_t* pszKey : {L"Escape", L"Return"}) { // it comes up with that folder
        PressKeys(Main(), {L"alt+b"});
        HWND hwndDialog = WaitForDialog(L"Browse for Folder");
        ASSERT_NE(hwndDialog, nullptr);
        TakePicture(L"files-browse", {Main(), hwndDialog});
        PressKeys(hwndDialog, {pszKey});
        EXPECT_TRUE(WaitUntilGone(hwndDialog));
        EXPECT_EQ(TextOf(PageItem(IDC_WORK_FROM)), File(L"into"));
    }
    EXPECT_TRUE(WaitUntil([&] { return AskList(LB_GETCOUNT) == 1; }));
}
