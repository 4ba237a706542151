#include "wnd/dialog/html_help.h"
#include "resources/resource_ids.h"
#include "runtime/base/current_product.h"
#include "runtime/messages/res_str.h"
#include "support/message_box_driver.h"
#include "support/program_folder.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"

#include <htmlhelp.h>
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

extern "C" FARPROC __imp_WinHelpW, __imp_MessageBoxW;

namespace {
struct HelpCall {
    HWND hwnd;
    std::wstring strText;
    UINT uCommand;
    ULONG_PTR dwData;
    HCURSOR hcur;
};
std::optional<HelpCall> call;
HWND hwndAnswer = nullptr; // of the viewer
BOOL bAnswer = TRUE;       // of WinHelpW

HWND WINAPI NoteHtmlHelp(HWND hwnd, LPCWSTR psz, UINT uCommand, DWORD_PTR dwData) {
    call = {hwnd, psz, uCommand, dwData, ::GetCursor()};
    return hwndAnswer;
}
BOOL WINAPI NoteWinHelp(HWND hwnd, LPCWSTR psz, UINT uCommand, ULONG_PTR dwData) {
    call = {hwnd, psz ? psz : L"(null)", uCommand, dwData, ::GetCursor()};
    return bAnswer;
}

struct Box {
    HWND hwnd;
    std::wstring strText;
    UINT uFlags;
};
std::vector<Box> boxes;
int WINAPI NoteBox(HWND hwnd, LPCWSTR pszText, LPCWSTR, UINT uFlags) {
    boxes.push_back({hwnd, pszText, uFlags});
    return IDOK;
}

std::wstring strHelpFile; // the product's

/// A product with a help file of the test's beside the program, and the arrow as the cursor.
struct HtmlHelpTest : testing::Test {
    HtmlHelpTest() {
        call.reset();
        boxes.clear();
        hwndAnswer = nullptr;
        bAnswer = TRUE;
        strHelpFile = L"help test " + std::to_wstring(::GetCurrentProcessId()) + L".chm";
        CurrentProduct product = productBefore;
        product.pfnGetHelpFile = [] { return strHelpFile.c_str(); };
        SetCurrentProduct(product);
        ::SetCursor(hcurArrow);
    }
    ~HtmlHelpTest() override {
        EXPECT_EQ(hcurArrow, ::GetCursor()) << "put back at every exit";
        for (const auto& path : made) std::filesystem::remove_all(path);
        SetCurrentProduct(productBefore);
        ::SetCursor(hcurBefore);
    }
    /// Where the help file belongs.
    std::wstring Path() const { return ProgramFolder() + strHelpFile; }
    void MakeFile() {
        std::ofstream(std::filesystem::path(Path())) << "no help at all";
        made.push_back(Path());
    }
    void MakeFolder() {
        std::filesystem::create_directory(Path());
        made.push_back(Path());
    }
    /// A name with which the help file's path has that many characters.
    void SetPathLength(std::size_t cch) {
        std::size_t cchFolder = ProgramFolder().size();
        strHelpFile = std::wstring(cch - cchFolder - 4, L'h') + L".chm";
        ASSERT_EQ(cch, Path().size());
    }
    static std::wstring MissingText(const std::wstring& strPath) {
        return L"Cannot find the help file " + strPath + L".";
    }

    const CurrentProduct productBefore = GetCurrentProduct();
    const HCURSOR hcurArrow = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    const HCURSOR hcurWait = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32514));
    const HCURSOR hcurBefore = ::GetCursor();
    TestWindow window;
    std::vector<std::filesystem::path> made;
};

/// With a viewer of the test's own.
struct HtmlHelpViewer : HtmlHelpTest {
    HtmlHelpViewer() { viewer.Set("#15", &NoteHtmlHelp); }
    ReplaceFunctions viewer;
    ReplaceImport box{__imp_MessageBoxW, &NoteBox};
};

TEST_F(HtmlHelpViewer, IsGivenThePageInTheLibrarysFolder) {
    MakeFile();
    hwndAnswer = window;
    EXPECT_EQ(1, CSHtmlHelp(window, L"first page.htm", HH_DISPLAY_TOC, 0xFEDCBA98));
    ASSERT_TRUE(call);
    EXPECT_EQ(window, call->hwnd);
    EXPECT_EQ(Path() + L"::/first page.htm", call->strText);
    EXPECT_EQ(1u, call->uCommand);
    EXPECT_EQ(0xFEDCBA98u, call->dwData) << "not extended with its sign";
    EXPECT_EQ(hcurWait, call->hcur);
    EXPECT_TRUE(boxes.empty());
}

TEST_F(HtmlHelpViewer, WindowMayBeNullAndThePageMissing) {
    MakeFile();
    hwndAnswer = window;
    for (LPCWSTR pszPage : {L"", static_cast<LPCWSTR>(nullptr)}) {
        call.reset();
        EXPECT_EQ(1, CSHtmlHelp(nullptr, pszPage, 0, 0));
        ASSERT_TRUE(call);
        EXPECT_EQ(nullptr, call->hwnd);
        EXPECT_EQ(Path() + L"::/", call->strText);
    }
}

TEST_F(HtmlHelpViewer, AnyAnswerButNullIsSuccess) {
    MakeFile();
    hwndAnswer = reinterpret_cast<HWND>(-1);
    EXPECT_EQ(1, CSHtmlHelp(window, L"p", 0, 0));
    EXPECT_TRUE(boxes.empty());
}

TEST_F(HtmlHelpViewer, MissingFileIsToldAndNobodyCalled) {
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    EXPECT_FALSE(call);
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(MissingText(Path()), boxes[0].strText);
    EXPECT_EQ(16u, boxes[0].uFlags & MB_ICONMASK);
    EXPECT_EQ(window, boxes[0].hwnd);
}

TEST_F(HtmlHelpViewer, FolderOfThatNameIsNoFile) {
    MakeFolder();
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    EXPECT_FALSE(call);
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(MissingText(Path()), boxes[0].strText);
}

TEST_F(HtmlHelpViewer, ProductWithoutAHelpFileHasTheFolderAlone) {
    strHelpFile.clear();
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    EXPECT_FALSE(call);
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(0u, boxes[0].strText.find(L"Cannot find the help file " +
                                        ProgramFolder().substr(0, ProgramFolder().size() - 1)));
}

TEST_F(HtmlHelpViewer, MaskIsNoName) {
    MakeFile();
    std::wstring strKept = strHelpFile;
    strHelpFile[0] = L'?';
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    EXPECT_FALSE(call);
    EXPECT_EQ(1u, boxes.size());
    strHelpFile = strKept;
}

TEST_F(HtmlHelpViewer, NullAnswerIsToldAsNoViewer) {
    MakeFile();
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    EXPECT_TRUE(call);
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Sorry, but your version of Windows does not seem to support the HtmlHelp "
              L"format.\n\nPlease visit our web site for the online version of the User's Guide.",
              boxes[0].strText);
    EXPECT_EQ(16u, boxes[0].uFlags & MB_ICONMASK);
    EXPECT_EQ(window, boxes[0].hwnd);
}

TEST_F(HtmlHelpViewer, WindowsWithoutAViewerIsTold) {
    MakeFile();
    viewer.Hide("#15");
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", 0, 0));
    ASSERT_EQ(1u, boxes.size());
    EXPECT_STREQ(ResStr(-IDS_NO_HTML_HELP), boxes[0].strText.c_str());
}

// Up to 259 characters, of the file and of the text for the viewer.

TEST_F(HtmlHelpViewer, LongestFilePathIsLookedForAndTheNextNot) {
    SetPathLength(259);
    EXPECT_EQ(0, CSHtmlHelp(window, L"", 0, 0));
    SetPathLength(260);
    EXPECT_EQ(0, CSHtmlHelp(window, L"", 0, 0));
    EXPECT_FALSE(call);
    ASSERT_EQ(2u, boxes.size());
    std::wstring strName = strHelpFile.substr(1);
    EXPECT_EQ(MissingText(ProgramFolder() + strName), boxes[0].strText);
    EXPECT_EQ(MissingText(strHelpFile), boxes[1].strText) << "its name alone";
}

TEST_F(HtmlHelpViewer, LongestPageIsShownAndTheNextIsTold) {
    MakeFile();
    hwndAnswer = window;
    std::wstring strPage(259 - Path().size() - 3, L'p');
    EXPECT_EQ(1, CSHtmlHelp(window, strPage.c_str(), 0, 0));
    ASSERT_TRUE(call);
    EXPECT_EQ(Path() + L"::/" + strPage, call->strText);
    call.reset();
    for (std::size_t cchMore : {1, 300}) {
        boxes.clear();
        std::wstring strLong = strPage + std::wstring(cchMore, L'q');
        EXPECT_EQ(0, CSHtmlHelp(window, strLong.c_str(), 0, 0));
        EXPECT_FALSE(call);
        ASSERT_EQ(1u, boxes.size());
        EXPECT_EQ(MissingText(Path() + L"::/" + strLong), boxes[0].strText);
    }
}

TEST_F(HtmlHelpViewer, PageOfAnyLengthIsToldCutOnly) {
    MakeFile();
    EXPECT_EQ(0, CSHtmlHelp(window, std::wstring(100000, L'p').c_str(), 0, 0));
    EXPECT_FALSE(call);
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(1023u, boxes[0].strText.size());
}

// The platform's viewer, and boxes as they are seen

TEST_F(HtmlHelpTest, PlatformsViewerAnswers) {
    MakeFile();
    HMODULE hmodBefore = ::GetModuleHandleW(L"hhctrl.ocx");
    // Of a kind of windows that nobody has set up it tells that there is none, and shows nothing.
    EXPECT_EQ(1, CSHtmlHelp(window, L"page.htm>no such type", HH_GET_WIN_TYPE, 0));
    EXPECT_NE(nullptr, ::GetModuleHandleW(L"hhctrl.ocx"));
    EXPECT_EQ(nullptr, hmodBefore) << "and it was not there before it was needed";
    wchar_t szPath[MAX_PATH] = L"", szSystem[MAX_PATH] = L"";
    ::GetModuleFileNameW(::GetModuleHandleW(L"hhctrl.ocx"), szPath, MAX_PATH);
    ::GetSystemDirectoryW(szSystem, MAX_PATH);
    EXPECT_STRCASEEQ((std::filesystem::path(szSystem) / L"hhctrl.ocx").string().c_str(),
                     std::filesystem::path(szPath).string().c_str());
}

TEST_F(HtmlHelpTest, PlatformsViewerRefusesWhatIsNoHelpFile) {
    MakeFile();
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", HH_DISPLAY_TOPIC, 0));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_STREQ(ResStr(-IDS_NO_HTML_HELP), driver.Finish()[0].strText.c_str());
    EXPECT_TRUE(driver.Finish()[0].bHasIcon);
}

TEST_F(HtmlHelpTest, MissingFileIsSeenInABox) {
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, CSHtmlHelp(window, L"page.htm", HH_DISPLAY_TOPIC, 0));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(MissingText(Path()), driver.Finish()[0].strText);
    EXPECT_EQ(window, driver.Finish()[0].hwndOwner);
    EXPECT_TRUE(driver.Finish()[0].bHasIcon);
}

// WinHelp

struct WinHelpTest : HtmlHelpTest {
    ReplaceImport help{__imp_WinHelpW, &NoteWinHelp};
    ReplaceImport box{__imp_MessageBoxW, &NoteBox};
};

TEST_F(WinHelpTest, NameIsOfTheLibrarysFolderAndAFullPathStands) {
    struct Row {
        std::wstring strFile, strExpected;
    };
    const std::wstring strFolder = ProgramFolder();
    for (const Row& row : {Row{L"guide.hlp", strFolder + L"guide.hlp"},
                           Row{L"sub\\g.hlp", strFolder + L"sub\\g.hlp"},
                           Row{L"C:\\Help\\guide.hlp", L"C:\\Help\\guide.hlp"},
                           Row{L"\\\\server\\share\\g.hlp", L"\\\\server\\share\\g.hlp"},
                           Row{L"\\g.hlp", L"\\g.hlp"}, Row{L"c:/g.hlp", L"c:/g.hlp"}}) {
        call.reset();
        EXPECT_EQ(1, CSHelp(window, row.strFile.c_str(), 0x102, 0xFFFFFFFE));
        ASSERT_TRUE(call);
        EXPECT_EQ(window, call->hwnd);
        EXPECT_EQ(row.strExpected, call->strText);
        EXPECT_EQ(0x102u, call->uCommand);
        EXPECT_EQ(0xFFFFFFFEu, call->dwData);
        EXPECT_EQ(hcurWait, call->hcur);
    }
    EXPECT_TRUE(boxes.empty()) << "nobody looks whether the file is there";
}

TEST_F(WinHelpTest, ResultIsThePlatforms) {
    bAnswer = FALSE;
    EXPECT_EQ(0, CSHelp(window, L"guide.hlp", HELP_QUIT, 0));
    EXPECT_EQ(0, CSHelp(window, L"C:\\guide.hlp", HELP_QUIT, 0));
    bAnswer = TRUE;
    EXPECT_EQ(1, CSHelp(nullptr, L"guide.hlp", HELP_QUIT, 0));
    EXPECT_TRUE(boxes.empty());
}

TEST_F(WinHelpTest, LongestPathInTheFolderPassesAndTheNextIsAnError) {
    std::wstring strName(259 - ProgramFolder().size(), L'n');
    EXPECT_EQ(1, CSHelp(window, strName.c_str(), 0, 0));
    ASSERT_TRUE(call);
    EXPECT_EQ(ProgramFolder() + strName, call->strText);
    for (std::size_t cchMore : {1, 5000}) {
        call.reset();
        ::SetLastError(0);
        EXPECT_EQ(0, CSHelp(window, (strName + std::wstring(cchMore, L'n')).c_str(), 0, 0));
        EXPECT_EQ(static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE), ::GetLastError());
        EXPECT_FALSE(call);
    }
}

TEST_F(WinHelpTest, FullPathStandsWhateverItsLength) {
    std::wstring strLong = L"C:\\" + std::wstring(1000, L'l');
    EXPECT_EQ(1, CSHelp(window, strLong.c_str(), 0, 0));
    ASSERT_TRUE(call);
    EXPECT_EQ(strLong, call->strText);
}

TEST_F(WinHelpTest, NoFileIsTheFolder) {
    for (LPCWSTR psz : {L"", static_cast<LPCWSTR>(nullptr)}) {
        call.reset();
        EXPECT_EQ(1, CSHelp(window, psz, HELP_QUIT, 0));
        ASSERT_TRUE(call);
        EXPECT_EQ(0u, ProgramFolder().find(call->strText));
    }
}

TEST_F(HtmlHelpTest, PlatformsWinHelpTakesTheEnd) {
    EXPECT_NE(0, CSHelp(window, L"guide.hlp", HELP_QUIT, 0));
}
} // namespace
