#include "support/guard_page.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"
#include "wnd/control/csedit.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <shlwapi.h>
#include <cwchar>

namespace {
constexpr DWORD kMultiLine = WS_CHILD | ES_MULTILINE | ES_AUTOHSCROLL | ES_AUTOVSCROLL;

/// An edit with that text.
struct EditWindow {
    explicit EditWindow(LPCWSTR pszText, DWORD dwStyle = kMultiLine)
        : edit(L"EDIT", parent, dwStyle) {
        ::SetWindowTextW(edit, pszText);
    }
    operator HWND() const { return edit; }
    TestWindow parent;
    TestWindow edit;
};

std::vector<int> LineSizes(HWND hwnd, unsigned nCount) {
    std::vector<int> sizes;
    for (unsigned n = 0; n < nCount; ++n) sizes.push_back(EditCtrl_GetLineSize(hwnd, n));
    return sizes;
}

TEST(EditCtrl, LineSizeCountsTheLineEndButOfTheLastLine) {
    EditWindow edit(L"ab\r\ncde\r\n\r\nwxyz");
    EXPECT_EQ((std::vector{4, 5, 2, 4, 0, 0}), LineSizes(edit, 6));
}

TEST(EditCtrl, LineSizeOfTextsWithAnEmptyEnd) {
    EXPECT_EQ((std::vector{3, 0, 0}), LineSizes(EditWindow(L"a\r\n"), 3));
    EXPECT_EQ((std::vector{2, 0, 0}), LineSizes(EditWindow(L"\r\n"), 3));
    EXPECT_EQ((std::vector{0, 0, 0}), LineSizes(EditWindow(L""), 3));
}

TEST(EditCtrl, LineSizeOfASingleLine) {
    EditWindow edit(L"single", WS_CHILD | ES_AUTOHSCROLL);
    EXPECT_EQ((std::vector{6, 0, 0}), LineSizes(edit, 3));
}

TEST(EditCtrl, LineSizeOfWrappedLines) {
    EditWindow edit(L"some words that do not fit into one line of a narrow edit",
                    WS_CHILD | ES_MULTILINE | ES_AUTOVSCROLL);
    ::SetWindowPos(edit, nullptr, 0, 0, 90, 200, SWP_NOMOVE);
    auto nLines = static_cast<unsigned>(::SendMessageW(edit, EM_GETLINECOUNT, 0, 0));
    ASSERT_GT(nLines, 2u);
    int nSum = 0;
    for (int n : LineSizes(edit, nLines)) {
        EXPECT_GT(n, 0);
        nSum += n;
    }
    EXPECT_EQ(::GetWindowTextLengthW(edit), nSum);
    EXPECT_EQ(0, EditCtrl_GetLineSize(edit, nLines));
}

TEST(EditCtrl, LineSizeOfLinesFarPastTheEnd) {
    EditWindow edit(L"ab\r\ncde\r\nf");
    ::SendMessageW(edit, EM_SETSEL, 5, 5); // the caret's line is what -1 means to the message
    for (unsigned n : {3u, 100u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        EXPECT_EQ(0, EditCtrl_GetLineSize(edit, n)) << n;
    }
}

TEST(EditCtrl, WhatIsNoEditHasNoLines) {
    PlainWnd plain;
    wchar_t sz[10] = L"";
    for (HWND hwnd : {static_cast<HWND>(nullptr), DeadWindow()}) {
        EXPECT_EQ(0, EditCtrl_GetLineSize(hwnd, 0));
        EXPECT_EQ(0, EditCtrl_GetLine(hwnd, 0, sz, 10));
    }
    EXPECT_EQ(0, EditCtrl_GetLineSize(plain, 3));
    EXPECT_EQ(0, EditCtrl_GetLine(plain, 0, sz, 10));
}

/// A line of ten characters, read into so many; the buffer ends where memory ends.
class EditCtrlGetLine : public testing::TestWithParam<int> {};
TEST_P(EditCtrlGetLine, IsTerminatedWithinTheBuffer) {
    EditWindow edit(L"first\r\n0123456789\r\nlast");
    auto cch = static_cast<std::size_t>(GetParam());
    GuardedMemory memory(cch * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    std::wmemset(psz, L'#', cch);
    int nRead = EditCtrl_GetLine(edit, 1, psz, static_cast<unsigned>(cch));
    std::size_t nKept = std::min<std::size_t>(10, cch - 1);
    ASSERT_NE(nullptr, std::wmemchr(psz, 0, cch)) << "terminated";
    EXPECT_EQ(std::wstring(L"0123456789").substr(0, nKept), psz);
    EXPECT_GE(nRead, static_cast<int>(nKept));
    EXPECT_LE(nRead, static_cast<int>(std::min<std::size_t>(10, cch)));
    if (cch > 10) {
        EXPECT_EQ(10, nRead);
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, EditCtrlGetLine,
                         testing::Values(1, 2, 3, 9, 10, 11, 12, 13, 100, 4096, 0xFFFF));

TEST(EditCtrl, GetLineWithNoRoomTouchesNothing) {
    EditWindow edit(L"text");
    GuardedMemory none(0);
    EXPECT_EQ(0, EditCtrl_GetLine(edit, 0, static_cast<wchar_t*>(none.Get()), 0));
    EXPECT_EQ(0, EditCtrl_GetLine(edit, 0, static_cast<wchar_t*>(none.Get()), 0x10000))
        << "the low 16 bits count";
}

TEST(EditCtrl, GetLineTakesTheLow16BitsOfTheSize) {
    EditWindow edit(L"0123456789");
    GuardedMemory memory(4 * sizeof(wchar_t));
    auto* psz = static_cast<wchar_t*>(memory.Get());
    std::wmemset(psz, L'#', 4);
    EditCtrl_GetLine(edit, 0, psz, 0x10004);
    EXPECT_STREQ(L"012", psz);
}

TEST(EditCtrl, GetLineGivesEachLineWithoutItsEnd) {
    EditWindow edit(L"ab\r\ncde\r\n\r\nwxyz");
    const wchar_t* expected[] = {L"ab", L"cde", nullptr, L"wxyz"};
    for (unsigned n = 0; n < 4; ++n) {
        wchar_t sz[20];
        std::wmemset(sz, L'#', 20);
        int nRead = EditCtrl_GetLine(edit, n, sz, 20);
        if (expected[n]) {
            EXPECT_EQ(static_cast<int>(std::wcslen(expected[n])), nRead);
            EXPECT_STREQ(expected[n], sz);
        } else {
            EXPECT_EQ(0, nRead);
        }
    }
}

TEST(EditCtrl, GetLinePastTheEndGivesNothing) {
    EditWindow edit(L"ab\r\nc");
    for (unsigned n : {2u, 100u, 0x7FFFFFFFu}) {
        wchar_t sz[] = L"########";
        EXPECT_EQ(0, EditCtrl_GetLine(edit, n, sz, 8)) << n;
    }
}

TEST(EditCtrl, GetLineWritesTheSizeIntoTheFirstCharacterOfTheMessage) {
    WPARAM wLine = 0;
    int nSize = 0;
    TestWindow window([&](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != EM_GETLINE) return std::nullopt;
        auto* psz = reinterpret_cast<wchar_t*>(lParam);
        wLine = wParam;
        nSize = psz[0];
        psz[0] = L'x';
        psz[1] = L'y';
        psz[2] = L'z';
        return 2;
    });
    wchar_t sz[32] = L"";
    EXPECT_EQ(2, EditCtrl_GetLine(window, 7, sz, 32));
    EXPECT_EQ(7u, wLine);
    EXPECT_EQ(32, nSize);
    EXPECT_STREQ(L"xy", sz) << "a terminator behind the line";
}

// Completion

TEST(AutoComplete, IsThereAndCompletesARealEdit) {
    EXPECT_NE(0, CanAutoComplete());
    EXPECT_NE(0, CanAutoComplete());
    EXPECT_EQ(S_OK, MySHAutoComplete(nullptr, SHACF_FILESYSTEM));
    bool bInitialized = SUCCEEDED(::CoInitialize(nullptr));
    {
        EditWindow edit(L"", WS_CHILD | ES_AUTOHSCROLL);
        EXPECT_TRUE(SUCCEEDED(MySHAutoComplete(edit, SHACF_FILESYSTEM)));
    }
    if (bInitialized) ::CoUninitialize();
}

HWND hwndAsked = nullptr;
DWORD dwFlagsAsked = 0;
HRESULT WINAPI Complete(HWND hwnd, DWORD dwFlags) {
    hwndAsked = hwnd;
    dwFlagsAsked = dwFlags;
    return 0x8000BEEF;
}

TEST(AutoComplete, GivesTheCallsResult) {
    ReplaceFunctions windows;
    windows.Set("SHAutoComplete", &Complete);
    EditWindow edit(L"", WS_CHILD);
    EXPECT_EQ(static_cast<HRESULT>(0x8000BEEF), MySHAutoComplete(edit, 0x10000001));
    EXPECT_EQ(static_cast<HWND>(edit), hwndAsked);
    EXPECT_EQ(0x10000001u, dwFlagsAsked);
    hwndAsked = nullptr;
    dwFlagsAsked = 0;
    EXPECT_EQ(S_OK, MySHAutoComplete(nullptr, 5));
    EXPECT_EQ(0u, dwFlagsAsked) << "not called";
}

// The answer is kept as long as the process lives: what follows needs processes of its own.

DWORD nMajor, nMinor, nBuild;
HRESULT CALLBACK TellVersion(DLLVERSIONINFO* pInfo) {
    pInfo->dwMajorVersion = nMajor;
    pInfo->dwMinorVersion = nMinor;
    pInfo->dwBuildNumber = nBuild;
    return S_OK;
}

/// What such a version of the shell's library answers to; the second one is asked for later on.
bool AnswersWithVersion(DWORD nMajorTold, DWORD nMinorTold, DWORD nBuildTold, bool bExpected) {
    ReplaceFunctions windows;
    windows.Set("DllGetVersion", &TellVersion);
    ::GetModuleHandleW(L"shlwapi.dll"); // the look-ups tell by it which module they are of
    nMajor = nMajorTold;
    nMinor = nMinorTold;
    nBuild = nBuildTold;
    bool bRight = (CanAutoComplete() != 0) == bExpected;
    nMajor = bExpected ? 4 : 9;
    bRight = bRight && (CanAutoComplete() != 0) == bExpected; // kept
    // Known to be missing: no call any more.
    HRESULT hr = MySHAutoComplete(nullptr, 0);
    return bRight && hr == (bExpected ? S_OK : E_NOTIMPL);
}

bool AnswersWithoutTheFunction() {
    HideFunctions windows({"SHAutoComplete"});
    TestWindow edit(L"EDIT");
    return MySHAutoComplete(edit, 0) == E_NOTIMPL && MySHAutoComplete(nullptr, 0) == E_NOTIMPL &&
           CanAutoComplete() == 0 && CanAutoComplete() == 0;
}

TEST(AutoCompleteDeathTest, NeedsTheFunction) {
    EXPECT_EXIT(std::exit(AnswersWithoutTheFunction() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(AutoCompleteDeathTest, NeedsVersion5) {
    auto Answers = [](DWORD nMajorTold, DWORD nMinorTold, DWORD nBuildTold, bool bExpected) {
        std::exit(AnswersWithVersion(nMajorTold, nMinorTold, nBuildTold, bExpected) ? 0 : 1);
    };
    EXPECT_EXIT(Answers(4, 72, 3110, false), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(Answers(5, 0, 2614, false), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(Answers(5, 0, 2615, true), testing::ExitedWithCode(0), "");
}
} // namespace
