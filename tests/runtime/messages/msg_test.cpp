#include "resources/resource_ids.h"
#include "runtime/messages/msg.h"
#include "runtime/system/system_facts.h"
#include "support/message_box_driver.h"
#include "support/test_resource_ids.h"
#include "support/test_window.h"
#include "support/told_version.h"
#include "support/window_thread.h"
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {
/// Shows one box and gives it as it was seen; an empty one if none came.
SeenMessageBox BoxOf(const std::function<int()>& fnShow, int nButton = IDOK) {
    MessageBoxDriver driver({nButton});
    EXPECT_EQ(nButton, fnShow());
    const auto& boxes = driver.Finish();
    EXPECT_EQ(1u, boxes.size());
    return boxes.empty() ? SeenMessageBox() : boxes[0];
}

std::wstring SystemTextOf(DWORD nCode) {
    wchar_t sz[1024] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, nCode,
                     1024, sz, 1024, nullptr);
    return sz;
}

/// What the box's text control makes of it is not the library's doing: compare without line ends.
std::wstring WithoutReturns(std::wstring str) {
    std::erase(str, L'\r');
    while (!str.empty() && str.back() == L'\n') str.pop_back();
    return str;
}

std::vector<int> calls; // of the pause-resume callback

void NotePauseOrResume(int nResume) { calls.push_back(nResume + (IsMessageBoxOpen() ? 100 : 0)); }

TEST(Msg, ShowsTextUnderTheProductsNameAndGivesTheButton) {
    for (int nButton : {IDYES, IDNO}) {
        SeenMessageBox box =
            BoxOf([] { return Msg(nullptr, MB_YESNO | MB_ICONQUESTION, L"Do it?"); }, nButton);
        EXPECT_EQ(L"Tessaly", box.strTitle);
        EXPECT_EQ(L"Do it?", box.strText);
        EXPECT_EQ((std::vector<int>{IDYES, IDNO}), box.buttons);
        EXPECT_EQ(1, box.bHasIcon);
    }
}

TEST(Msg, IdIsAString) {
    const wchar_t* pszNoUpdates =
        L"No updates are available at this time. You are using the latest version available.";
    EXPECT_EQ(pszNoUpdates, BoxOf([] { return Msg(nullptr, MB_OK, -20102); }).strText);
    EXPECT_EQ(pszNoUpdates, BoxOf([] {
                                return Msg(nullptr, MB_OK,
                                           reinterpret_cast<const wchar_t*>(INT_PTR{-20102}));
                            }).strText);
    EXPECT_EQ(pszNoUpdates, BoxOf([] {
                                return Msg(nullptr, MB_OK,
                                           reinterpret_cast<const wchar_t*>(UINT_PTR{0xFFFFB17A}));
                            }).strText);
    EXPECT_EQ(L"plain test string",
              BoxOf([] { return Msg(nullptr, MB_OK, IDS_TEST_PLAIN); }).strText);
}

TEST(Msg, LoadedStringCanBeGivenAsItIs) {
    ResStr str(-IDS_TEST_PLAIN);
    EXPECT_EQ(L"plain test string", BoxOf([&] { return Msg(nullptr, MB_OK, str); }).strText);
}

TEST(Msg, MissingStringShowsAnEmptyBox) {
    EXPECT_EQ(L"", BoxOf([] { return Msg(nullptr, MB_OK, -9); }).strText);
    EXPECT_EQ(L"", BoxOf([] { return Msg(nullptr, MB_OK, nullptr); }).strText);
    EXPECT_EQ(L"", BoxOf([] { return Msg(nullptr, MB_OK, 0); }).strText);
}

TEST(Msg, TextIsNoFormat) {
    EXPECT_EQ(L"100 %s %d%", BoxOf([] { return Msg(nullptr, MB_OK, L"100 %s %d%"); }).strText);
}

TEST(Msg, PointerWithClearMiddleBitsIsAText) {
    // Memory at an address whose bits 16 to 31 are all clear, such as a module or a heap may have.
    for (ULONG_PTR nHigh = 1; nHigh < 64; ++nHigh) {
        void* p = ::VirtualAlloc(reinterpret_cast<void*>(nHigh << 32), 4096,
                                 MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (!p) continue;
        std::memcpy(p, L"low", 8);
        EXPECT_EQ(L"low", BoxOf([p] {
                              return Msg(nullptr, MB_OK, static_cast<const wchar_t*>(p));
                          }).strText);
        ::VirtualFree(p, 0, MEM_RELEASE);
        return;
    }
    GTEST_SKIP() << "no such address is free";
}

TEST(Msg, OwnerIsTheGivenWindow) {
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    EXPECT_EQ(window.Get(), BoxOf([&] { return Msg(window, MB_OK, L"x"); }).hwndOwner);
}

TEST(Msg, WithoutAnOwnerTheActiveWindowIs) {
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ::SetActiveWindow(window);
    ASSERT_EQ(window.Get(), ::GetActiveWindow());
    EXPECT_EQ(window.Get(), BoxOf([] { return Msg(nullptr, MB_OK, L"x"); }).hwndOwner);
}

TEST(Msg, OwnerOneIsNoOwnerThoughAWindowIsActive) {
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    ::SetActiveWindow(window);
    ASSERT_EQ(window.Get(), ::GetActiveWindow());
    EXPECT_EQ(nullptr, BoxOf([] { return Msg(MsgNoOwner(), MB_OK, L"x"); }).hwndOwner);
    EXPECT_EQ(nullptr, BoxOf([] { return Msg(reinterpret_cast<HWND>(1), MB_OK, L"x"); }).hwndOwner);
}

TEST(Msg, OwnersLastActivePopupTakesItsPlace) {
    TestWindow window({}, nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    TestWindow popup({}, window, WS_POPUP | WS_VISIBLE);
    ::SetActiveWindow(popup);
    ASSERT_EQ(popup.Get(), ::GetLastActivePopup(window));
    EXPECT_EQ(popup.Get(), BoxOf([&] { return Msg(window, MB_OK, L"x"); }).hwndOwner);
}

TEST(Msg, ShowsABoxOnAThreadWithoutWindows) {
    WindowThread thread;
    MessageBoxDriver driver({IDOK});
    int nResult = 0;
    thread.Run([&] { nResult = Msg(nullptr, MB_OK, L"thread"); });
    EXPECT_EQ(IDOK, nResult);
    ASSERT_EQ(1u, driver.Finish().size());
}

TEST(Msg, CallbackIsCalledBeforeAndAfterTheBox) {
    calls.clear();
    MsgSetPauseResumeCallback(NotePauseOrResume);
    BoxOf([] { return Msg(nullptr, MB_OK, L"x"); });
    EXPECT_EQ((std::vector<int>{0, 1}), calls);
    MsgSetPauseResumeCallback(nullptr);
    BoxOf([] { return Msg(nullptr, MB_OK, L"x"); });
    EXPECT_EQ(2u, calls.size());
}

TEST(MsgFmt, FormatsATextAString) {
    EXPECT_EQ(L"7 of abc",
              BoxOf([] { return MsgFmt(nullptr, MB_OK, L"%d of %s", 7, L"abc"); }).strText);
    EXPECT_EQ(
        L"number 7, text abc",
        BoxOf([] { return MsgFmt(nullptr, MB_OK, -IDS_TEST_NUMBER_AND_TEXT, 7, L"abc"); }).strText);
    EXPECT_EQ(L"number 7, text abc", BoxOf([] {
                                         return MsgFmt(nullptr, MB_OK,
                                                       reinterpret_cast<const wchar_t*>(
                                                           INT_PTR{-IDS_TEST_NUMBER_AND_TEXT}),
                                                       7, L"abc");
                                     }).strText);
}

TEST(MsgFmt, NarrowFirstArgumentIsAnArgument) {
    char szNarrow[] = "narrow";
    EXPECT_EQ(L"a narrow text",
              BoxOf([&] { return MsgFmt(nullptr, MB_OK, L"a %hs text", szNarrow); }).strText);
}

template <class Format>
int ShowList(Format format, int nUnused, ...) {
    ArgList args;
    va_start(args.v, nUnused);
    int nResult = MsgFmt(nullptr, MB_OK, format, args);
    va_end(args.v);
    return nResult;
}

TEST(MsgFmt, TakesAStartedArgumentList) {
    EXPECT_EQ(L"7 abc", BoxOf([] { return ShowList(L"%d %s", 0, 7, L"abc"); }).strText);
    EXPECT_EQ(L"number 7, text abc",
              BoxOf([] { return ShowList(-IDS_TEST_NUMBER_AND_TEXT, 0, 7, L"abc"); }).strText);
}

TEST(MsgFmt, LongTextIsCut) {
    std::wstring strLong(3000, L'x');
    EXPECT_EQ(std::wstring(1023, L'x'),
              BoxOf([&] { return MsgFmt(nullptr, MB_OK, L"%s", strLong.c_str()); }).strText);
}

TEST(MsgFmt, HostileFormatIsPrinted) {
    EXPECT_EQ(L"%n is no conversion",
              BoxOf([] { return MsgFmt(nullptr, MB_OK, -IDS_TEST_HOSTILE_FORMAT, 1); }).strText);
}

TEST(MsgLastError, ShowsNothingWithoutErrorAndId) {
    ::SetLastError(0);
    EXPECT_EQ(1, MsgLastError(nullptr, MB_YESNO, 0)); // a box would give another button
    EXPECT_EQ(0, IsMessageBoxOpen());
}

TEST(MsgLastError, ShowsStringEmptyLineAndSystemText) {
    SeenMessageBox box = BoxOf([] {
        ::SetLastError(ERROR_FILE_NOT_FOUND);
        return MsgLastError(nullptr, MB_OK, -IDS_TEST_NUMBER_AND_TEXT, 5, L"x");
    });
    EXPECT_EQ(L"number 5, text x\n\n" + WithoutReturns(SystemTextOf(ERROR_FILE_NOT_FOUND)),
              WithoutReturns(box.strText));
    EXPECT_EQ(0, box.bHasIcon);
}

TEST(MsgLastError, ShowsEitherPartAlone) {
    EXPECT_EQ(WithoutReturns(SystemTextOf(ERROR_ACCESS_DENIED)),
              WithoutReturns(BoxOf([] {
                                 ::SetLastError(ERROR_ACCESS_DENIED);
                                 return MsgLastError(nullptr, MB_OK, 0);
                             }).strText));
    EXPECT_EQ(L"plain test string", BoxOf([] {
                                        ::SetLastError(0);
                                        return MsgLastError(nullptr, MB_OK, -IDS_TEST_PLAIN);
                                    }).strText);
}

TEST(MsgLastError, FlagsOfAllOnesAreTheWarningSign) {
    SeenMessageBox box = BoxOf([] {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return MsgLastError(nullptr, kMsgErrorFlags, 0);
    });
    EXPECT_EQ(1, box.bHasIcon);
    EXPECT_EQ((std::vector<int>{IDOK}), box.buttons);
}

TEST(MsgHRESULT, ShowsNothingForSuccessWithoutId) {
    for (HRESULT hr : {S_OK, S_FALSE, static_cast<HRESULT>(0x7FFFFFFF)})
        EXPECT_EQ(1, MsgHRESULT(nullptr, hr, MB_YESNO, 0));
}

TEST(MsgHRESULT, ShowsOnlyTheStringForSuccess) {
    EXPECT_EQ(L"number 5, text x", BoxOf([] {
                                       return MsgHRESULT(nullptr, S_FALSE, MB_OK,
                                                         -IDS_TEST_NUMBER_AND_TEXT, 5, L"x");
                                   }).strText);
}

struct FailureCase {
    const char* pszName;
    DWORD nCode;
    const wchar_t* pszText; // null: the system's
};

class MsgHRESULTTable : public testing::TestWithParam<FailureCase> {};

TEST_P(MsgHRESULTTable, ShowsTheTextOfAFailure) {
    const FailureCase& row = GetParam();
    std::wstring strExpected = row.pszText ? row.pszText : WithoutReturns(SystemTextOf(row.nCode));
    ASSERT_FALSE(strExpected.empty());
    SeenMessageBox box = BoxOf(
        [&] { return MsgHRESULT(nullptr, static_cast<HRESULT>(row.nCode), kMsgErrorFlags, 0); });
    EXPECT_EQ(strExpected, box.strText);
    EXPECT_EQ(1, box.bHasIcon);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MsgHRESULTTable,
    testing::Values(FailureCase{"KnownToTheSystem", static_cast<DWORD>(E_ACCESSDENIED), nullptr},
                    FailureCase{"Dispatch", 0x8004FE01, L"IDispatch error #64513"},
                    FailureCase{"LastDispatch", 0x8004FFFF, L"IDispatch error #65023"},
                    FailureCase{"BehindTheLastDispatch", 0x80050000, L"Unknown error 0x80050000"},
                    FailureCase{"Unknown", 0xE1234567, L"Unknown error 0xE1234567"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(MsgHRESULT, FirstDispatchCodeIsNoNumber) {
    // The system knows some codes of this range by name; number 0 and the code before the range are
    // never a dispatch error.
    for (DWORD nCode : {0x800401FFul, 0x80040200ul, 0x80040201ul}) {
        std::wstring strSystem = WithoutReturns(SystemTextOf(nCode));
        wchar_t szUnknown[64] = {};
        FormatText(szUnknown, L"Unknown error 0x%0lX", nCode);
        std::wstring strExpected = !strSystem.empty()    ? strSystem
                                   : nCode == 0x80040201 ? L"IDispatch error #1"
                                                         : szUnknown;
        EXPECT_EQ(strExpected, BoxOf([&] {
                                   return MsgHRESULT(nullptr, static_cast<HRESULT>(nCode), MB_OK,
                                                     0);
                               }).strText);
    }
}

TEST(MsgHRESULT, PutsAnEmptyLineBetweenBothTexts) {
    EXPECT_EQ(L"plain test string\n\nUnknown error 0xE1234567",
              BoxOf([] {
                  return MsgHRESULT(nullptr, static_cast<HRESULT>(0xE1234567), MB_OK,
                                    -IDS_TEST_PLAIN);
              }).strText);
}

TEST(GetLastErrorText, GivesTheSystemsText) {
    EXPECT_EQ(SystemTextOf(ERROR_FILE_NOT_FOUND), GetLastErrorText(ERROR_FILE_NOT_FOUND));
    ::SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(SystemTextOf(ERROR_ACCESS_DENIED), GetLastErrorText());
}

TEST(GetLastErrorText, UnknownCodeLeavesAnEmptyText) {
    ASSERT_STRNE(L"", GetLastErrorText(ERROR_FILE_NOT_FOUND));
    EXPECT_STREQ(L"", GetLastErrorText(0xE1234567));
}

TEST(WinProNotSupported, TellsTheUserOnAProfessionalEdition) {
    if (!WinPro()) GTEST_SKIP() << "this is a home edition";
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(0, WinProNotSupported(nullptr));
    const auto& boxes = driver.Finish();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"This command is not available on this edition of Windows.", boxes[0].strText);
    EXPECT_EQ(1, boxes[0].bHasIcon);
    EXPECT_EQ(std::vector<int>{IDOK}, boxes[0].buttons);
}

TEST(WinProNotSupported, GivesOneWithoutABoxOnAHomeEdition) {
    ToldVersion told(Version(2, 5, 1, 1, 0x200));
    MessageBoxDriver driver({IDOK});
    EXPECT_EQ(1, WinProNotSupported(nullptr));
    EXPECT_TRUE(driver.Finish().empty());
}
} // namespace
