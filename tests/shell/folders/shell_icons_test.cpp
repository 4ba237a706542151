#include "runtime/threads/co_init.h"
#include "shell/folders/shell_icons.h"
#include "shell/namespace/pidl.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_SHGetFileInfoW;
extern "C" FARPROC __imp_SHGetSettings;

namespace {
/// The shell's answers about files, by the test.
struct FakeInfo {
    FakeInfo() {
        nCalls = 0;
        nResult = 1;
    }
    static DWORD_PTR WINAPI Answer(LPCWSTR psz, DWORD nFile, SHFILEINFOW* p, UINT cb, UINT nAsked) {
        ++nCalls;
        pList = psz;
        nFlags = nAsked;
        bAsTold = cb == 696 && nFile == 0;
        const auto* pBytes = reinterpret_cast<const BYTE*>(p);
        for (UINT n = 0; n < cb; ++n) bAsTold = bAsTold && !pBytes[n];
        if (!nResult) return 0;
        p->hIcon = reinterpret_cast<HICON>(0x77);
        p->iIcon = 55;
        p->dwAttributes = SFGAO_FOLDER | SFGAO_CANCOPY;
        return nResult;
    }
    static inline int nCalls, bAsTold;
    static inline const void* pList;
    static inline UINT nFlags;
    static inline DWORD_PTR nResult;
    ReplaceImport replaced{__imp_SHGetFileInfoW, &Answer};
};
const ITEMIDLIST kEmpty{};

TEST(ShellIcons, EveryFormHasItsFlags) {
    FakeInfo info;
    for (int n = 0; n < 8; ++n) {
        int bOpen = n & 1, bLarge = n & 2, bLink = n & 4;
        UINT nForm = (bOpen ? 2u : 0u) | (bLarge ? 0u : 1u) | (bLink ? 0x8000u : 0u);
        SCOPED_TRACE(n);
        EXPECT_EQ(55, GetSysIconIndex(&kEmpty, bOpen, bLarge, bLink));
        EXPECT_EQ(0x4008u | nForm, info.nFlags);
        EXPECT_EQ(&kEmpty, info.pList);
        EXPECT_EQ(1, info.bAsTold);
        EXPECT_EQ(reinterpret_cast<HICON>(0x77), GetIconOf(&kEmpty, bOpen, bLarge, bLink, nullptr));
        EXPECT_EQ(0x10Cu | nForm, info.nFlags);
        EXPECT_EQ(1, info.bAsTold);
        int nIndex = 0;
        EXPECT_EQ(reinterpret_cast<HICON>(0x77), GetIconOf(&kEmpty, bOpen, bLarge, bLink, &nIndex));
        EXPECT_EQ(0x410Cu | nForm, info.nFlags);
        EXPECT_EQ(55, nIndex);
    }
}

TEST(ShellIcons, WhatTheShellDoesNotKnow) {
    FakeInfo info;
    info.nResult = 0;
    int nIndex = 3;
    EXPECT_EQ(0, GetSysIconIndex(&kEmpty, 0, 0, 0));
    EXPECT_EQ(nullptr, GetIconOf(&kEmpty, 0, 0, 0, &nIndex));
    EXPECT_EQ(0u, GetAttributesOf(&kEmpty));
}

TEST(ShellIcons, AttributesOfAList) {
    FakeInfo info;
    EXPECT_EQ(static_cast<DWORD>(SFGAO_FOLDER | SFGAO_CANCOPY), GetAttributesOf(&kEmpty));
    EXPECT_EQ(0x808u, info.nFlags);
    EXPECT_EQ(1, info.bAsTold);
}

TEST(ShellIcons, PathWithoutAListHasNoIcon) {
    CoInit com;
    TempFolder temp;
    FakeInfo info;
    EXPECT_EQ(nullptr, GetIconOf(temp.File(L"missing").c_str(), 0, 1, 0, nullptr));
    EXPECT_EQ(nullptr, GetIconOf(static_cast<const wchar_t*>(nullptr), 0, 1, 0, nullptr));
}

TEST(ShellIcons, OfThePlatform) {
    CoInit com;
    TempFolder temp;
    const std::wstring strFile = temp.MakeFile(L"one.txt", "x");
    for (int bLarge : {0, 1}) {
        int nIndex = -1;
        HICON hicon = GetIconOf(strFile.c_str(), 0, bLarge, 0, &nIndex);
        ASSERT_NE(nullptr, hicon);
        ICONINFO info{};
        EXPECT_TRUE(::GetIconInfo(hicon, &info));
        BITMAP bitmap{};
        ::GetObjectW(info.hbmMask, sizeof(bitmap), &bitmap);
        ::DeleteObject(info.hbmMask);
        ::DeleteObject(info.hbmColor);
        EXPECT_EQ(bLarge ? 32 : 16, bitmap.bmWidth);
        EXPECT_TRUE(::DestroyIcon(hicon)); // the caller's
        ITEMIDLIST* pidl = GetPidlOf(strFile.c_str());
        EXPECT_EQ(nIndex, GetSysIconIndex(pidl, 0, bLarge, 0));
        EXPECT_EQ(static_cast<DWORD>(SFGAO_FILESYSTEM),
                  GetAttributesOf(pidl) & (SFGAO_FILESYSTEM | SFGAO_FOLDER | SFGAO_LINK));
        PIDL::Free(pidl);
    }
    ITEMIDLIST* pidl = GetPidlOf(temp.Get().c_str());
    EXPECT_EQ(static_cast<DWORD>(SFGAO_FILESYSTEM | SFGAO_FOLDER),
              GetAttributesOf(pidl) & (SFGAO_FILESYSTEM | SFGAO_FOLDER | SFGAO_LINK));
    PIDL::Free(pidl);
}

struct FakeSettings {
    static void WINAPI Answer(SHELLFLAGSTATE* p, DWORD nAsked) {
        nMask = nAsked;
        memset(p, bAll ? 0xFF : 0, sizeof(*p));
        p->fShowExtensions = bShown;
    }
    static inline DWORD nMask;
    static inline BOOL bShown, bAll;
    ReplaceImport replaced{__imp_SHGetSettings, &Answer};
};

TEST(ShellIcons, ExtensionsAreShownAsTheUserHasIt) {
    FakeSettings settings;
    for (BOOL bAll : {FALSE, TRUE}) {
        settings.bAll = bAll;
        settings.bShown = TRUE;
        EXPECT_EQ(0xFFFFFFFFu, ShouldShowExt());
        EXPECT_EQ(2u, settings.nMask);
        settings.bShown = FALSE;
        EXPECT_EQ(0u, ShouldShowExt());
    }
}
} // namespace
