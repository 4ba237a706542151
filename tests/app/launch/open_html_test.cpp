#include "app/launch/open_html.h"
#include "app/shell_start_recorder.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "support/guard_page.h"
#include "support/launch_reports.h"
#include "support/message_box_driver.h"
#include "support/temp_folder.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_MessageBoxW;

namespace {
using std::wstring;
constexpr const wchar_t* kUrl = L"http://site.example/page?a=b&c=d";
constexpr const wchar_t* kHandlerKey = L"http\\shell\\open\\command";

wstring HandlerCommand(const wchar_t* pszRest) { return L"\"" + ProbePath() + L"\"" + pszRest; }

// The way with a program that is really registered for "http".

class OpenHtmlReal : public testing::Test {
  protected:
    wstring TakeLine() {
        auto report = reports.Take();
        return report ? report->strLine : L"nothing came";
    }
    LaunchReports reports;
    ClassKey handler{kHandlerKey, HandlerCommand(L" /page \"%1\"").c_str()};
};

TEST_F(OpenHtmlReal, HandlerGetsTheAddress) {
    EXPECT_EQ(1, OpenHTML(nullptr, kUrl, 0, 0));
    EXPECT_EQ(HandlerCommand(L" /page \"http://site.example/page?a=b&c=d\""), TakeLine());
}

/// The shell does not take web addresses; files it starts.
BOOL nShellCalls = 0;
ReplaceImport* pFilesOnly = nullptr;
HINSTANCE WINAPI StartFilesOnly(HWND hwnd, LPCWSTR pszVerb, LPCWSTR pszFile, LPCWSTR pszParameters,
                                LPCWSTR pszDirectory, INT nShow) {
    ++nShellCalls;
    if (!wcsncmp(pszFile, L"http", 4)) return reinterpret_cast<HINSTANCE>(INT_PTR{31});
    return pFilesOnly->Original<decltype(StartFilesOnly)>()(hwnd, pszVerb, pszFile, pszParameters,
                                                            pszDirectory, nShow);
}

class OpenHtmlByHandler : public OpenHtmlReal {
  protected:
    OpenHtmlByHandler() : replaced(__imp_ShellExecuteW, &StartFilesOnly) {
        pFilesOnly = &replaced;
        nShellCalls = 0;
    }
    ReplaceImport replaced;
};

TEST_F(OpenHtmlByHandler, RegisteredProgramIsStartedIfTheShellTakesNoAddress) {
    EXPECT_EQ(1, OpenHTML(nullptr, kUrl, 0, 0));
    EXPECT_EQ(HandlerCommand(L" /page \"http://site.example/page?a=b&c=d\""), TakeLine());
    EXPECT_EQ(2, nShellCalls);
}

TEST_F(OpenHtmlByHandler, AddressWithoutAPlaceGoesToTheEnd) {
    handler.Write(HandlerCommand(L"").c_str());
    EXPECT_EQ(1, OpenHTML(nullptr, L"https://a b/", 0, 0));
    EXPECT_EQ(HandlerCommand(L" https://a%20b/"), TakeLine());
    handler.Write(HandlerCommand(L" /x").c_str());
    EXPECT_EQ(1, OpenHTML(nullptr, kUrl, 0, 0));
    EXPECT_EQ(HandlerCommand(L" /x ") + kUrl, TakeLine());
}

TEST_F(OpenHtmlByHandler, AddressCannotEndItsArgument) {
    EXPECT_EQ(1, OpenHTML(nullptr, L"http://a/\" /evil \"b\t\n", 0, 0));
    EXPECT_EQ(HandlerCommand(L" /page \"http://a/%22%20/evil%20%22b%09%0A\""), TakeLine());
}

HINSTANCE WINAPI StartNothing(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT) {
    ++nShellCalls;
    return reinterpret_cast<HINSTANCE>(INT_PTR{32});
}

TEST_F(OpenHtmlByHandler, ShellIsAskedInTheOtherWayIfTheProgramDoesNotStart) {
    ReplaceImport nothing(__imp_ShellExecuteW, &StartNothing);
    EXPECT_EQ(1, OpenHTML(nullptr, L"http://a b/", 0, 0));
    EXPECT_EQ(HandlerCommand(L" /page \"http://a b/\""), TakeLine()); // as it is
    EXPECT_EQ(2, nShellCalls);
}

TEST_F(OpenHtmlByHandler, ShellIsAskedInTheOtherWayIfNoProgramIsRegistered) {
    handler.Write(L"C:\\no such\\program.exe %1");
    ShellStartRecorder shell;
    shell.nResult = 2;
    EXPECT_EQ(1, OpenHTML(nullptr, kUrl, 0, 0));
    ASSERT_EQ(2u, shell.calls.size());
    EXPECT_EQ(0, shell.calls[0].bEx);
    EXPECT_EQ(1, shell.calls[1].bEx);
}

// What each way asks of the shell.

class OpenHtmlRecorded : public testing::Test {
  protected:
    OpenHtmlRecorded() {
        shell.nResult = 32;
        shell.bSucceed = FALSE;
    }
    LaunchReports reports;
    ClassKey handler{kHandlerKey, HandlerCommand(L" \"%1\"").c_str()};
    ShellStartRecorder shell;
};

TEST_F(OpenHtmlRecorded, FirstWayIsTheAddressItself) {
    shell.nResult = 33;
    TestWindow window;
    EXPECT_EQ(1, OpenHTML(window, kUrl, 0, 0));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(0, call.bEx);
    EXPECT_EQ(window.Get(), call.hwnd);
    EXPECT_EQ(nullptr, call.verb);
    EXPECT_EQ(kUrl, call.file);
    EXPECT_EQ(nullptr, call.parameters);
    EXPECT_EQ(nullptr, call.directory);
    EXPECT_EQ(SW_SHOWNORMAL, call.nShow);
}

TEST_F(OpenHtmlRecorded, AllWaysComeInTheirOrderBeforeTheMessage) {
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE),
        active({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ::SetActiveWindow(active);
    HCURSOR hcurBefore = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));
    ::SetCursor(hcurBefore);
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, OpenHTML(window, kUrl, 0, 0));
    ASSERT_EQ(1u, driver.Finish().size());
    const SeenMessageBox& box = driver.Finish()[0];
    EXPECT_EQ(wstring(ResStr(-IDS_WEB_PAGE_NOT_OPENED)), box.strText);
    EXPECT_FALSE(box.strText.empty());
    EXPECT_EQ(std::vector<int>{IDOK}, box.buttons);
    EXPECT_TRUE(box.bHasIcon);
    EXPECT_EQ(window.Get(), box.hwndOwner);

    ASSERT_EQ(3u, shell.calls.size());
    EXPECT_EQ(kUrl, shell.calls[0].file);
    const ShellCall& program = shell.calls[1];
    EXPECT_EQ(0, program.bEx);
    EXPECT_EQ(window.Get(), program.hwnd);
    EXPECT_EQ(ProbePath().c_str(), program.file);
    EXPECT_EQ((L"\"" + wstring(kUrl) + L"\"").c_str(), program.parameters);
    EXPECT_EQ(nullptr, program.verb);
    EXPECT_EQ(SW_SHOWNORMAL, program.nShow);
    const ShellCall& silent = shell.calls[2];
    EXPECT_EQ(1, silent.bEx);
    EXPECT_EQ(1024u, silent.nMask);
    EXPECT_EQ(112u, silent.cb);
    EXPECT_EQ(kUrl, silent.file);
    EXPECT_EQ(nullptr, silent.parameters);
    EXPECT_EQ(active.Get(), silent.hwnd);
    EXPECT_EQ(SW_SHOWNORMAL, silent.nShow);
    EXPECT_EQ(::LoadCursorW(nullptr, MAKEINTRESOURCEW(32514)), silent.hcur);
}

TEST_F(OpenHtmlRecorded, SilentWayIsEnough) {
    shell.bSucceed = TRUE;
    HCURSOR hcurBefore = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));
    ::SetCursor(hcurBefore);
    EXPECT_EQ(1, OpenHTML(nullptr, kUrl, 0, 0));
    EXPECT_EQ(3u, shell.calls.size());
    EXPECT_EQ(hcurBefore, ::GetCursor());
    EXPECT_FALSE(IsMessageBoxOpen());
}

TEST_F(OpenHtmlRecorded, AddressTooLongForACommandLineGoesPastTheHandler) {
    shell.bSucceed = TRUE;
    // With its quotes it takes 8,191 characters, and with one more it does not fit.
    wstring strUrl(8189, L'x');
    EXPECT_EQ(1, OpenHTML(nullptr, strUrl.c_str(), 0, 0));
    ASSERT_EQ(3u, shell.calls.size());
    EXPECT_EQ(8191u, shell.calls[1].parameters.str.size());
    for (wstring str :
         {strUrl + L"x", wstring(8192, L'x'), wstring(3000, L' '), wstring(100000, L'"')}) {
        shell.calls.clear();
        EXPECT_EQ(1, OpenHTML(nullptr, str.c_str(), 0, 0));
        ASSERT_EQ(2u, shell.calls.size()) << str.size();
        EXPECT_EQ(str.c_str(), shell.calls[1].file);
    }
}

TEST_F(OpenHtmlRecorded, EncodedCharactersAreNotCut) {
    shell.bSucceed = TRUE;
    handler.Write(HandlerCommand(L"").c_str()); // the address is all of the arguments
    wstring strUrl(8188, L'x');
    EXPECT_EQ(1, OpenHTML(nullptr, (strUrl + L" ").c_str(), 0, 0));
    ASSERT_EQ(3u, shell.calls.size());
    EXPECT_EQ((strUrl + L"%20").c_str(), shell.calls[1].parameters);
    shell.calls.clear();
    EXPECT_EQ(1, OpenHTML(nullptr, (strUrl + L"x ").c_str(), 0, 0));
    EXPECT_EQ(2u, shell.calls.size());
}

TEST_F(OpenHtmlRecorded, NoAddressIsNothingToOpen) {
    for (const wchar_t* psz : {L"", static_cast<const wchar_t*>(nullptr)}) {
        MessageBoxDriver driver({IDOK});
        EXPECT_EQ(0, OpenHTML(nullptr, psz, 0, 0));
        EXPECT_EQ(1u, driver.Finish().size());
    }
    EXPECT_TRUE(shell.calls.empty());
}

struct QuestionCase {
    const char* pszName;
    int nId;
    int nTextId; // of what is asked
    int nButton;
};
struct OpenHtmlAsks : OpenHtmlRecorded, testing::WithParamInterface<QuestionCase> {};
TEST_P(OpenHtmlAsks, AndTheAnswerDecides) {
    const QuestionCase& row = GetParam();
    shell.nResult = 33;
    MessageBoxDriver driver({row.nButton});
    EXPECT_EQ(row.nButton == IDOK, OpenHTML(nullptr, kUrl, 2, row.nId));
    ASSERT_EQ(1u, driver.Finish().size());
    EXPECT_EQ(wstring(ResStr(row.nTextId)), driver.Finish()[0].strText);
    EXPECT_FALSE(driver.Finish()[0].strText.empty());
    EXPECT_EQ((std::vector<int>{IDOK, IDCANCEL}), driver.Finish()[0].buttons);
    EXPECT_TRUE(driver.Finish()[0].bHasIcon);
    EXPECT_EQ(row.nButton == IDOK ? 1u : 0u, shell.calls.size());
}
INSTANTIATE_TEST_SUITE_P(
    Cases, OpenHtmlAsks,
    testing::Values(QuestionCase{"GeneralYes", 0, -IDS_OPEN_WEB_PAGE, IDOK},
                    QuestionCase{"GeneralNo", 0, -IDS_OPEN_WEB_PAGE, IDCANCEL},
                    QuestionCase{"OwnYes", IDS_TEST_PLAIN, IDS_TEST_PLAIN, IDOK},
                    QuestionCase{"OwnNo", IDS_TEST_PLAIN, IDS_TEST_PLAIN, IDCANCEL}),
    [](const auto& row) { return std::string(row.param.pszName); });

std::vector<UINT> boxFlags;
int WINAPI TakeBox(HWND, LPCWSTR, LPCWSTR, UINT nFlags) {
    boxFlags.push_back(nFlags & ~static_cast<UINT>(MB_SETFOREGROUND)); // that of all boxes
    return IDOK;
}

TEST_F(OpenHtmlRecorded, QuestionAndMessageHaveTheirFlags) {
    ReplaceImport replaced(__imp_MessageBoxW, &TakeBox);
    boxFlags.clear();
    HCURSOR hcurBefore = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));
    ::SetCursor(hcurBefore);
    EXPECT_EQ(0, OpenHTML(nullptr, kUrl, 1, 0));
    EXPECT_EQ((std::vector<UINT>{65, 16}), boxFlags);
    EXPECT_EQ(hcurBefore, ::GetCursor());
}

// The maker's pages.

class OnlinePages : public testing::Test {
  protected:
    ~OnlinePages() override { pszMyCompanyURL = pszBefore; }
    const wchar_t* pszBefore = pszMyCompanyURL;
    ShellStartRecorder shell;
};

TEST_F(OnlinePages, AddressIsSiteSlashAndPage) {
    wchar_t sz[64];
    for (const wchar_t* psz : {L"http://x", L"http://x/"}) {
        pszMyCompanyURL = psz;
        EXPECT_EQ(1, MakeGoOnlineURL(sz, 64, L"news"));
        EXPECT_STREQ(L"http://x/go/?p=news", sz);
    }
    EXPECT_EQ(1, MakeGoOnlineURL(sz, 64, nullptr));
    EXPECT_STREQ(L"http://x/go/?p=", sz);
    EXPECT_EQ(1, MakeGoOnlineURL(sz, 64, L"%s%n"));
    EXPECT_STREQ(L"http://x/go/?p=%s%n", sz);
    pszMyCompanyURL = nullptr;
    EXPECT_EQ(1, MakeGoOnlineURL(sz, 64, L"a"));
    EXPECT_STREQ(L"/go/?p=a", sz);
}

TEST_F(OnlinePages, ProductsSiteIsTheMakers) {
    EXPECT_EQ(0u, wstring(pszMyCompanyURL).find(L"https://"));
}

TEST_F(OnlinePages, AddressThatDoesNotFitIsEmpty) {
    pszMyCompanyURL = L"http://x";
    wchar_t sz[64] = L"before";
    EXPECT_EQ(1, MakeGoOnlineURL(sz, 20, L"news"));
    EXPECT_STREQ(L"http://x/go/?p=news", sz);
    EXPECT_EQ(0, MakeGoOnlineURL(sz, 19, L"news"));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, MakeGoOnlineURL(sz, 0, L"news"));
    EXPECT_EQ(0, MakeGoOnlineURL(nullptr, 64, L"news"));
}

TEST_F(OnlinePages, PagesAreOpenedWithoutAQuestion) {
    pszMyCompanyURL = L"http://x";
    TestWindow window;
    EXPECT_EQ(1, GoOnline(window, L"news"));
    ShellCall call = shell.TakeOne();
    EXPECT_EQ(L"http://x/go/?p=news", call.file);
    EXPECT_EQ(window.Get(), call.hwnd);
    EXPECT_EQ(1, GoWinStore(nullptr));
    EXPECT_EQ(L"http://x/go/?p=rate-tessaly", shell.TakeOne().file);
    EXPECT_EQ(1, GoOnline_Lang(nullptr, L"news", nullptr));
    EXPECT_EQ(L"http://x/go/?p=news&p=tessaly&v=1.1&r=2409&a=en", shell.TakeOne().file);
    EXPECT_EQ(1, GoOnline_Lang(nullptr, L"news", L"de-DE"));
    EXPECT_EQ(L"http://x/go/?p=news&p=tessaly&v=1.1&r=2409&a=en&c=de-DE", shell.TakeOne().file);
    EXPECT_EQ(1, GoOnline_ImproveTranslation(nullptr, L"fr"));
    EXPECT_EQ(L"http://x/go/?p=improve-translation&p=tessaly&v=1.1&r=2409&a=en&c=fr",
              shell.TakeOne().file);
    EXPECT_EQ(1, GoOnline_Translate(window, L""));
    call = shell.TakeOne();
    EXPECT_EQ(L"http://x/go/?p=translate&p=tessaly&v=1.1&r=2409&a=en&c=", call.file);
    EXPECT_EQ(window.Get(), call.hwnd);
}

TEST_F(OnlinePages, NothingStandsBetweenAQuestionMarkAndTheAdditions) {
    pszMyCompanyURL = L"http://x";
    EXPECT_EQ(1, GoOnline_Lang(nullptr, L"news?", nullptr));
    EXPECT_EQ(L"http://x/go/?p=news?p=tessaly&v=1.1&r=2409&a=en", shell.TakeOne().file);
}

TEST_F(OnlinePages, AddressThatDoesNotFitIsNotOpened) {
    pszMyCompanyURL = L"http://x";
    std::size_t nRoom = 2047 - wcslen(L"http://x/go/?p=");
    EXPECT_EQ(1, GoOnline(nullptr, wstring(nRoom, L'y').c_str()));
    EXPECT_EQ(2047u, shell.TakeOne().file.str.size());
    EXPECT_EQ(0, GoOnline(nullptr, wstring(nRoom + 1, L'y').c_str()));
    nRoom -= wcslen(L"&p=tessaly&v=1.1&r=2409&a=en");
    EXPECT_EQ(1, GoOnline_Lang(nullptr, wstring(nRoom, L'y').c_str(), nullptr));
    EXPECT_EQ(2047u, shell.TakeOne().file.str.size());
    EXPECT_EQ(0, GoOnline_Lang(nullptr, wstring(nRoom + 1, L'y').c_str(), nullptr));
    EXPECT_EQ(1, GoOnline_Lang(nullptr, L"", wstring(nRoom - 3, L'y').c_str()));
    EXPECT_EQ(2047u, shell.TakeOne().file.str.size());
    EXPECT_EQ(0, GoOnline_Lang(nullptr, L"", wstring(nRoom - 2, L'y').c_str()));
    EXPECT_EQ(0, GoOnline_Lang(nullptr, L"", wstring(5000, L'y').c_str()));
    EXPECT_TRUE(shell.calls.empty());
}

using std::wstring;

constexpr const wchar_t* kExtension = L".tessalyassoc";
constexpr const wchar_t* kType = L"TessalyAssoc";
constexpr const wchar_t* kCommandKey = L"TessalyAssoc\\shell\\open\\command";

/// What a look-up gave, into buffers that end at pages that may not be touched.
struct Found {
    int nResult = -1;
    wstring strProgram, strCommand;
};

Found Look(int (*pfn)(const wchar_t*, wchar_t*, wchar_t*), const wchar_t* pszName) {
    GuardedMemory program(MAX_PATH * sizeof(wchar_t)), command(MAX_PATH * sizeof(wchar_t));
    auto* pszProgram = wcscpy(static_cast<wchar_t*>(program.Get()), L"before");
    auto* pszCommand = wcscpy(static_cast<wchar_t*>(command.Get()), L"before");
    Found found;
    found.nResult = pfn(pszName, pszProgram, pszCommand);
    found.strProgram = pszProgram;
    found.strCommand = pszCommand;
    EXPECT_EQ(found.nResult, pfn(pszName, nullptr, nullptr));
    return found;
}

class Assoc : public testing::Test {
  protected:
    /// Registers the command and looks the program up, by extension and by scheme.
    Found Register(const wstring& strCommand, DWORD dwType = REG_SZ) {
        command.Write(strCommand.c_str(), dwType);
        Found found = Look(&GetAssociatedApp, kExtension);
        Found protocol = Look(&GetProtocolApp, kType);
        EXPECT_EQ(found.nResult, protocol.nResult);
        EXPECT_EQ(found.strProgram, protocol.strProgram);
        EXPECT_EQ(found.strCommand, protocol.strCommand);
        return found;
    }
    TempFolder folder;
    ClassKey extension{kExtension, kType};
    ClassKey type{kType, nullptr};
    ClassKey command{kCommandKey, nullptr};
};

TEST_F(Assoc, QuotedProgramEndsAtTheQuote) {
    wstring strFile = folder.MakeFile(L"a b.exe", "");
    wstring strCommand = L"\"" + strFile + L"\" /x \"%1\"";
    Found found = Register(strCommand);
    EXPECT_EQ(1, found.nResult);
    EXPECT_EQ(strFile, found.strProgram);
    EXPECT_EQ(strCommand, found.strCommand);
    EXPECT_EQ(1, Register(L"\"" + strFile).nResult); // without the closing quote
    EXPECT_EQ(strFile, Register(L"\"" + strFile + L"\"").strProgram);
}

TEST_F(Assoc, UnquotedProgramEndsAtTheFirstBlank) {
    wstring strFile = folder.MakeFile(L"a.exe", "");
    EXPECT_EQ(strFile, Register(strFile + L" %1").strProgram);
    EXPECT_EQ(strFile, Register(strFile).strProgram);
    folder.MakeFile(L"a b.exe", "");
    Found found = Register(folder.File(L"c d.exe") + L" %1");
    EXPECT_EQ(0, found.nResult);
    EXPECT_EQ(L"", found.strProgram);
    EXPECT_EQ(folder.File(L"c d.exe") + L" %1", found.strCommand);
    EXPECT_EQ(0, Register(strFile + L"\t%1").nResult); // a tab is no blank
}

TEST_F(Assoc, EnvironmentStringsAreExpanded) {
    wstring strFile = folder.MakeFile(L"a b.exe", "");
    ::SetEnvironmentVariableW(L"TESSALY_ASSOC", folder.Get().c_str());
    for (DWORD dwType : {REG_SZ, REG_EXPAND_SZ}) {
        Found found = Register(L"\"%TESSALY_ASSOC%\\a b.exe\" %1", dwType);
        EXPECT_EQ(1, found.nResult);
        EXPECT_EQ(strFile, found.strProgram);
        EXPECT_EQ(L"\"%TESSALY_ASSOC%\\a b.exe\" %1", found.strCommand);
    }
    ::SetEnvironmentVariableW(L"TESSALY_ASSOC", wstring(300, L'x').c_str());
    EXPECT_EQ(0, Register(L"%TESSALY_ASSOC%").nResult);
    ::SetEnvironmentVariableW(L"TESSALY_ASSOC", nullptr);
}

TEST_F(Assoc, ProgramMustBeAFile) {
    EXPECT_EQ(0, Register(folder.File(L"none.exe")).nResult);
    EXPECT_EQ(0, Register(folder.Get()).nResult);
    EXPECT_EQ(0, Register(L"\"\" x").nResult);
    EXPECT_EQ(0, Register(L" x").nResult);
}

TEST_F(Assoc, CommandHasItsLimit) {
    wstring strFile = folder.MakeFile(L"a.exe", "");
    wstring strCommand = strFile + L" ";
    strCommand.resize(MAX_PATH - 1, L'x');
    Found found = Register(strCommand);
    EXPECT_EQ(1, found.nResult);
    EXPECT_EQ(strCommand, found.strCommand);
    found = Register(strCommand + L"x");
    EXPECT_EQ(0, found.nResult);
    EXPECT_EQ(L"", found.strCommand);
}

TEST_F(Assoc, NameOfTheTypeHasAtMost512Bytes) {
    wstring strFile = folder.MakeFile(L"a.exe", "");
    // Components of a key's path may be long; those of this one are not.
    auto typeOf = [](std::size_t n) {
        wstring str = L"TessalyAssoc";
        while (str.size() + 60 < n) str += L"\\" + wstring(59, L'y');
        return str + L"\\" + wstring(n - str.size() - 1, L'z');
    };
    for (std::size_t n : {200u, 255u, 256u}) {
        wstring strType = typeOf(n);
        ClassKey deep((strType + L"\\shell\\open\\command"), strFile.c_str());
        extension.Write(strType.c_str());
        EXPECT_EQ(n < 256, Look(&GetAssociatedApp, kExtension).nResult) << n;
    }
}

TEST_F(Assoc, MissingKeysAndNamesGiveZero) {
    Found found = Look(&GetAssociatedApp, kExtension); // no command
    EXPECT_EQ(0, found.nResult);
    EXPECT_EQ(L"", found.strProgram);
    EXPECT_EQ(L"", found.strCommand);
    wstring strFile = folder.MakeFile(L"a.exe", "");
    command.Write(strFile.c_str());
    EXPECT_EQ(1, Look(&GetAssociatedApp, kExtension).nResult);
    extension.Write(nullptr); // no type
    EXPECT_EQ(0, Look(&GetAssociatedApp, kExtension).nResult);
    extension.Write(L"");
    EXPECT_EQ(0, Look(&GetAssociatedApp, kExtension).nResult);
    extension.Write(L"TessalyNoSuchType");
    EXPECT_EQ(0, Look(&GetAssociatedApp, kExtension).nResult);
    for (const wchar_t* psz : {L".tessalynosuch", L"", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_EQ(0, Look(&GetAssociatedApp, psz).nResult);
        EXPECT_EQ(0, Look(&GetProtocolApp, psz).nResult);
    }
    EXPECT_EQ(0, Look(&GetAssociatedApp, wstring(2000, L'x').c_str()).nResult);
    EXPECT_EQ(0, Look(&GetProtocolApp, wstring(2000, L'x').c_str()).nResult);
}

// Programs of the test platform with several icons and with one.
wstring WindowsFile(const wchar_t* pszName) {
    wchar_t sz[MAX_PATH];
    ::GetWindowsDirectoryW(sz, MAX_PATH);
    return sz + wstring(L"\\") + pszName;
}

class AssocIcon : public Assoc {
  protected:
    /// Asks for the icon of a path; a found one is looked at and destroyed.
    int Icon(const wstring& strPath) {
        GuardedMemory file(MAX_PATH * sizeof(wchar_t));
        auto* psz = wcscpy(static_cast<wchar_t*>(file.Get()), L"before");
        HICON hIcon = nullptr;
        nIcon = -7;
        int nResult = GetAssociatedIcon(strPath.c_str(), psz, &nIcon, &hIcon);
        strIconFile = psz;
        ICONINFO info{};
        EXPECT_EQ(nResult, ::GetIconInfo(hIcon, &info) ? 1 : 0);
        ::DeleteObject(info.hbmColor);
        ::DeleteObject(info.hbmMask);
        if (hIcon) ::DestroyIcon(hIcon);
        EXPECT_EQ(nResult, GetAssociatedIcon(strPath.c_str(), nullptr, nullptr, nullptr));
        return nResult;
    }
    wstring strIconFile;
    int nIcon = 0;
};

TEST_F(AssocIcon, FilesOwnIconGoesFirst) {
    wstring strOwn = WindowsFile(L"notepad.exe");
    ASSERT_EQ(1, Icon(strOwn));
    EXPECT_EQ(strOwn, strIconFile);
    EXPECT_EQ(0, nIcon);
}

TEST_F(AssocIcon, ThenTheProgramsSecondIcon) {
    command.Write((L"\"" + WindowsFile(L"regedit.exe") + L"\" %1").c_str());
    for (const wchar_t* psz : {L"C:\\no folder\\file", L"file", L"C:\\a.b\\c.d", L""}) {
        ASSERT_EQ(1, Icon(psz + wstring(kExtension))) << psz;
        EXPECT_EQ(WindowsFile(L"regedit.exe"), strIconFile);
        EXPECT_EQ(1, nIcon);
    }
    ASSERT_EQ(1, Icon(folder.MakeFile(wstring(L"real") + kExtension, "no icon")));
    EXPECT_EQ(1, nIcon);
}

TEST_F(AssocIcon, ThenItsFirst) {
    command.Write((L"\"" + WindowsFile(L"notepad.exe") + L"\" %1").c_str());
    ASSERT_EQ(1, Icon(wstring(L"file") + kExtension));
    EXPECT_EQ(WindowsFile(L"notepad.exe"), strIconFile);
    EXPECT_EQ(0, nIcon);
}

TEST_F(AssocIcon, DotOfAFoldersNameBeginsNoExtension) {
    command.Write((L"\"" + WindowsFile(L"regedit.exe") + L"\" %1").c_str());
    ClassKey below(kExtension + wstring(L"\\file"), kType);
    EXPECT_EQ(1, Look(&GetAssociatedApp, (kExtension + wstring(L"\\file")).c_str()).nResult);
    EXPECT_EQ(0, Icon(L"C:\\a" + wstring(kExtension) + L"\\file"));
}

TEST_F(AssocIcon, NothingFoundChangesNothing) {
    command.Write(folder.MakeFile(L"without.exe", "no icon").c_str());
    for (const wstring& str :
         {wstring(L"file") + kExtension, wstring(L"file.tessalynosuch"), wstring(L"file"),
          wstring(), wstring(L"C:\\a") + kExtension + L"\\file", wstring(MAX_PATH, L'x'),
          wstring(MAX_PATH, L'x') + kExtension}) {
        EXPECT_EQ(0, Icon(str));
        EXPECT_EQ(L"before", strIconFile);
        EXPECT_EQ(-7, nIcon);
    }
    EXPECT_EQ(0, GetAssociatedIcon(nullptr, nullptr, nullptr, nullptr));
}

TEST_F(AssocIcon, PathsHaveTheirLimit) {
    command.Write((L"\"" + WindowsFile(L"regedit.exe") + L"\" %1").c_str());
    std::size_t nExtension = wcslen(kExtension);
    EXPECT_EQ(1, Icon(wstring(MAX_PATH - 1 - nExtension, L'x') + kExtension));
    EXPECT_EQ(0, Icon(wstring(MAX_PATH - nExtension, L'x') + kExtension));
}
} // namespace
