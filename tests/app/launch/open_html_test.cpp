#include "app/launch/open_html.h"
#include "app/shell_start_recorder.h"
#include "resources/resource_ids.h"
#include "runtime/messages/res_str.h"
#include "support/launch_reports.h"
#include "support/message_box_driver.h"
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

TEST_F(OpenHtmlRecorded, QuestionDecides) {
    shell.nResult = 33;
    struct {
        int nId;
        int nTextId;
    } const rows[] = {{0, -IDS_OPEN_WEB_PAGE}, {IDS_TEST_PLAIN, IDS_TEST_PLAIN}};
    for (const auto& row : rows) {
        for (int nButton : {IDOK, IDCANCEL}) {
            MessageBoxDriver driver({nButton});
            EXPECT_EQ(nButton == IDOK, OpenHTML(nullptr, kUrl, 2, row.nId));
            ASSERT_EQ(1u, driver.Finish().size());
            EXPECT_EQ(wstring(ResStr(row.nTextId)), driver.Finish()[0].strText);
            EXPECT_FALSE(driver.Finish()[0].strText.empty());
            EXPECT_EQ((std::vector<int>{IDOK, IDCANCEL}), driver.Finish()[0].buttons);
            EXPECT_TRUE(driver.Finish()[0].bHasIcon);
            EXPECT_EQ(nButton == IDOK ? 1u : 0u, shell.calls.size());
            shell.calls.clear();
        }
    }
}

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
} // namespace
