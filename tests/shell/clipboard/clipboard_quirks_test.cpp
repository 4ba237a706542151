#include "shell/clipboard/clipboard.h"
#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_SetClipboardData;

namespace {
HGLOBAL hRefused = nullptr;
HANDLE WINAPI RefuseAndRemember(UINT, HANDLE hBlock) {
    hRefused = hBlock;
    return nullptr;
}

TEST(Clipboard, RefusedBlockIsLeftBehind) {
    hRefused = nullptr;
    {
        ReplaceImport replaced(__imp_SetClipboardData, &RefuseAndRemember);
        Clipboard clipboard(nullptr);
        EXPECT_EQ(1, clipboard.Clear());
        EXPECT_EQ(0, clipboard.AddStr(L"abc"));
    }
    ASSERT_NE(nullptr, hRefused);
    EXPECT_STREQ(L"abc", static_cast<const wchar_t*>(::GlobalLock(hRefused)));
    ::GlobalUnlock(hRefused);
    EXPECT_EQ(nullptr, ::GlobalFree(hRefused));
}

TEST(Clipboard, GetStrDoesNotLookAtTheSize) {
    Clipboard clipboard(nullptr);
    EXPECT_EQ(1, clipboard.Clear());
    EXPECT_EQ(1, clipboard.AddStr(L"longer"));
    EXPECT_EQ(7, clipboard.GetStr(nullptr, 0));
    wchar_t szText[8] = L"???????";
    EXPECT_EQ(7, clipboard.GetStr(szText, 1));
    EXPECT_STREQ(L"longer", szText);
}

TEST(Clipboard, GetTextOnAThreadThatHasItOpen) {
    HWND hwnd =
        ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    {
        Clipboard clipboard(hwnd);
        EXPECT_EQ(1, clipboard.Clear());
        EXPECT_EQ(1, clipboard.AddStr(L"mine"));
        wchar_t szText[8] = L"";
        EXPECT_EQ(5, Clipboard::GetText(szText, 8));
        EXPECT_STREQ(L"mine", szText);
    }
    ::DestroyWindow(hwnd);
    EXPECT_EQ(1, Clipboard::SetText(nullptr, L"text"));
    EXPECT_EQ(5, Clipboard::GetText(nullptr, 0));
    wchar_t szSmall[] = L"as it was";
    EXPECT_EQ(0, Clipboard::GetText(szSmall, 4));
    EXPECT_STREQ(L"as it was", szSmall);
}
} // namespace
