#include "runtime/threads/co_init.h"
#include "shell/folders/fake_link.h"
#include "shell/folders/link_reader.h"
#include "shell/folders/shell_link.h"
#include "shell/folders/shortcuts.h"
#include "shell/namespace/pidl.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_SHGetFileInfoW;
extern "C" FARPROC __imp_CoInitializeEx;
extern "C" FARPROC __imp_CoUninitialize;

namespace {
using Calls = std::vector<std::wstring>;

/// The question whether a path is a link, answered by the test.
struct LinkQuestion {
    LinkQuestion() { nAsked = 0; }
    static DWORD_PTR WINAPI Answer(LPCWSTR psz, DWORD nFile, SHFILEINFOW* p, UINT cb, UINT nFlags) {
        ++nAsked;
        strPath = psz;
        nFileAttributes = nFile;
        cbInfo = cb;
        nAskedFlags = nFlags;
        nPreset = p->dwAttributes;
        static const BYTE zeros[sizeof(SHFILEINFOW)] = {};
        bOtherwiseZero = !p->hIcon && !p->iIcon &&
                         !memcmp(p->szDisplayName, zeros, sizeof(p->szDisplayName)) &&
                         !memcmp(p->szTypeName, zeros, sizeof(p->szTypeName));
        p->dwAttributes = nGiven;
        return nResult;
    }
    static inline int nAsked, bOtherwiseZero;
    static inline std::wstring strPath;
    static inline DWORD nFileAttributes, nPreset, nGiven = SFGAO_LINK;
    static inline UINT cbInfo, nAskedFlags;
    static inline DWORD_PTR nResult = 1;
    ReplaceImport replaced{__imp_SHGetFileInfoW, &Answer};
};

// Making and changing, step by step

TEST(CreateLink, MakesTheStepsInTheirOrder) {
    FakeLink fake;
    EXPECT_EQ(1, CreateLink(L"C:\\t", L"C:\\l.lnk", L"args"));
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"SetPath C:\\t", L"SetArguments args",
                     L"Save C:\\l.lnk 1"}),
              fake.calls);
    fake.calls.clear();
    EXPECT_EQ(1, CreateLink(L"C:\\t", L"C:\\l.lnk", nullptr));
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"SetPath C:\\t", L"Save C:\\l.lnk 1"}),
              fake.calls);
    fake.calls.clear();
    EXPECT_EQ(1, CreateLink(L"C:\\t", L"C:\\l.lnk", L""));
    EXPECT_EQ(L"SetArguments", fake.calls[3]);
    EXPECT_EQ(0, fake.nAlive);
}

TEST(UpdateLink, LoadsForWriteFirst) {
    FakeLink fake;
    EXPECT_EQ(1, UpdateLink(L"C:\\t", L"C:\\l.lnk", L"args"));
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"Load C:\\l.lnk 18", L"SetPath C:\\t",
                     L"SetArguments args", L"Save C:\\l.lnk 1"}),
              fake.calls);
    EXPECT_EQ(0, fake.nAlive);
}

struct StepCase {
    const char* pszName;
    const wchar_t* pszFails;
    int bUpdate;
};
class LinkStepTest : public testing::TestWithParam<StepCase> {};
TEST_P(LinkStepTest, FailureIsTold) {
    FakeLink fake;
    fake.results[GetParam().pszFails] = E_FAIL;
    EXPECT_EQ(0, GetParam().bUpdate ? UpdateLink(L"C:\\t", L"C:\\l.lnk", L"a")
                                    : CreateLink(L"C:\\t", L"C:\\l.lnk", L"a"));
    EXPECT_EQ(0, fake.nAlive);
}
INSTANTIATE_TEST_SUITE_P(Each, LinkStepTest,
                         testing::Values(StepCase{"CreateObject", L"Create", 0},
                                         StepCase{"CreateQuery", L"QueryFile", 0},
                                         StepCase{"CreateSetPath", L"SetPath", 0},
                                         StepCase{"CreateSetArguments", L"SetArguments", 0},
                                         StepCase{"CreateSave", L"Save", 0},
                                         StepCase{"UpdateObject", L"Create", 1},
                                         StepCase{"UpdateQuery", L"QueryFile", 1},
                                         StepCase{"UpdateLoad", L"Load", 1},
                                         StepCase{"UpdateSetPath", L"SetPath", 1},
                                         StepCase{"UpdateSetArguments", L"SetArguments", 1},
                                         StepCase{"UpdateSave", L"Save", 1}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(UpdateLink, ThatCannotBeReadIsNotWritten) {
    FakeLink fake;
    fake.results[L"Load"] = E_FAIL;
    EXPECT_EQ(0, UpdateLink(L"C:\\t", L"C:\\l.lnk", nullptr));
    EXPECT_EQ(L"Load C:\\l.lnk 18", fake.calls.back());
}

TEST(ShortcutIcon, StepsAndSizes) {
    FakeLink fake;
    wchar_t sz[MAX_PATH];
    int n = 0;
    EXPECT_EQ(1, GetShortcutIcon(L"C:\\l.lnk", sz, &n));
    EXPECT_STREQ(L"icon.dll", sz);
    EXPECT_EQ(-7, n);
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"Load C:\\l.lnk 32", L"GetIconLocation 260"}),
              fake.calls);
    fake.calls.clear();
    EXPECT_EQ(1, SetShortcutIcon(L"C:\\l.lnk", L"new.dll", -3));
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"Load C:\\l.lnk 18",
                     L"SetIconLocation new.dll -3", L"Save C:\\l.lnk 1"}),
              fake.calls);
    for (const wchar_t* psz : {L"Create", L"QueryFile", L"Load", L"GetIconLocation"}) {
        fake.results = {{psz, E_FAIL}};
        EXPECT_EQ(0, GetShortcutIcon(L"C:\\l.lnk", sz, &n)) << psz;
    }
    for (const wchar_t* psz : {L"Create", L"QueryFile", L"Load", L"SetIconLocation", L"Save"}) {
        fake.results = {{psz, E_FAIL}};
        EXPECT_EQ(0, SetShortcutIcon(L"C:\\l.lnk", L"new.dll", 0)) << psz;
    }
    EXPECT_EQ(0, fake.nAlive);
}

// Following, step by step

TEST(ResolveLink, AsksTheShellForTheAttributeOfALink) {
    FakeLink fake;
    LinkQuestion question;
    iShellLink link;
    iPersistFile file(link);
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, ResolveLink(nullptr, link, file, L"C:\\l.lnk", sz, 5, 0));
    EXPECT_EQ(1, question.nAsked);
    EXPECT_EQ(L"C:\\l.lnk", question.strPath);
    EXPECT_EQ(0u, question.nFileAttributes);
    EXPECT_EQ(696u, question.cbInfo);
    EXPECT_EQ(0x20800u, question.nAskedFlags);
    EXPECT_EQ(0x10000u, question.nPreset);
    EXPECT_EQ(1, question.bOtherwiseZero);
}

TEST(ResolveLink, LoadsResolvesAndGivesThePath) {
    FakeLink fake;
    LinkQuestion question;
    iShellLink link;
    iPersistFile file(link);
    fake.calls.clear();
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, ResolveLink(reinterpret_cast<HWND>(6), link, file, L"C:\\l.lnk", sz, 121, 0));
    EXPECT_STREQ(L"C:\\target", sz);
    ASSERT_EQ(3u, fake.calls.size());
    EXPECT_EQ(0u, fake.calls[0].find(L"Load C:\\l.lnk "));
    EXPECT_EQ(L"Resolve 6 121", fake.calls[1]);
    EXPECT_EQ(L"GetPath 260 0", fake.calls[2]);
    fake.calls.clear();
    EXPECT_EQ(1, ResolveLink(nullptr, link, file, L"C:\\l.lnk", sz, 121, 1));
    ASSERT_EQ(2u, fake.calls.size());
    EXPECT_EQ(L"GetPath 260 0", fake.calls[1]);
}

TEST(ResolveLink, WhatIsNoLinkIsItsOwnTarget) {
    FakeLink fake;
    LinkQuestion question;
    iShellLink link;
    iPersistFile none;
    wchar_t sz[MAX_PATH];
    const struct {
        DWORD_PTR nResult;
        DWORD nGiven;
    } rows[] = {{0, SFGAO_LINK}, {1, 0}, {1, ~static_cast<DWORD>(SFGAO_LINK)}, {0, 0}};
    for (const auto& row : rows) {
        question.nResult = row.nResult;
        question.nGiven = row.nGiven;
        wcscpy(sz, L"old");
        EXPECT_EQ(1, ResolveLink(nullptr, link, none, L"C:\\f.txt", sz, 0, 0));
        EXPECT_STREQ(L"C:\\f.txt", sz);
    }
    question.nResult = 1;
    question.nGiven = SFGAO_LINK;
}

TEST(ResolveLink, EachFailureLeavesAnEmptyText) {
    FakeLink fake;
    LinkQuestion question;
    iShellLink link;
    iPersistFile file(link), none;
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(0, ResolveLink(nullptr, link, none, L"C:\\l.lnk", sz, 0, 0));
    EXPECT_STREQ(L"", sz);
    for (const wchar_t* psz : {L"Load", L"Resolve", L"GetPath"}) {
        fake.results = {{psz, E_FAIL}};
        wcscpy(sz, L"old");
        EXPECT_EQ(0, ResolveLink(nullptr, link, file, L"C:\\l.lnk", sz, 0, 0)) << psz;
        EXPECT_STREQ(L"", sz) << psz;
    }
    fake.results = {{L"Resolve", E_FAIL}};
    EXPECT_EQ(1, ResolveLink(nullptr, link, file, L"C:\\l.lnk", sz, 0, 1));
}

TEST(ResolveShortcut, HasTheFlagsOfItsKind) {
    FakeLink fake;
    LinkQuestion question;
    fake.strTarget = L"C:\\windows";
    wchar_t sz[MAX_PATH] = L"C:\\l.lnk";
    ResolveShortcut(reinterpret_cast<HWND>(6), sz, 1);
    EXPECT_STREQ(L"C:\\windows", sz);
    EXPECT_EQ(L"Resolve 6 121", fake.calls[fake.calls.size() - 2]);
    wcscpy(sz, L"C:\\l.lnk");
    ResolveShortcut(nullptr, sz, 0);
    EXPECT_EQ(L"Resolve 0 2", fake.calls[fake.calls.size() - 2]);
    EXPECT_EQ(0, fake.nAlive);
}

TEST(ResolveShortcut, ThatCannotBeFollowedStays) {
    FakeLink fake;
    LinkQuestion question;
    for (const wchar_t* psz : {L"Create", L"QueryFile", L"Load", L"Resolve", L"GetPath"}) {
        fake.results = {{psz, E_FAIL}};
        wchar_t sz[MAX_PATH] = L"C:\\l.lnk";
        ResolveShortcut(nullptr, sz, 1);
        EXPECT_STREQ(L"C:\\l.lnk", sz) << psz;
    }
}

TEST(GetShortcutTargetPath, StepsAndFailures) {
    FakeLink fake;
    LinkQuestion question;
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(1, GetShortcutTargetPath(sz, L"C:\\l.lnk", 0));
    EXPECT_STREQ(L"C:\\target", sz);
    EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"Load C:\\l.lnk 32", L"GetPath 260 0"}),
              fake.calls);
    EXPECT_EQ(0x20800u, question.nAskedFlags);
    for (const wchar_t* psz : {L"Create", L"QueryFile", L"Load", L"GetPath"}) {
        fake.results = {{psz, E_FAIL}};
        wcscpy(sz, L"old");
        EXPECT_EQ(0, GetShortcutTargetPath(sz, L"C:\\l.lnk", 0)) << psz;
        EXPECT_STREQ(L"old", sz) << psz;
    }
    EXPECT_EQ(0, fake.nAlive);
}

// The plain form

TEST(CoreResolve, InitMakesBothAndDoneGivesBothBack) {
    FakeLink fake;
    IShellLinkW* pLink = nullptr;
    IPersistFile* pFile = nullptr;
    int bInitialized = 7;
    ASSERT_EQ(1, CoreResolveShortcut_Init(&pLink, &pFile, &bInitialized));
    EXPECT_NE(nullptr, pLink);
    EXPECT_NE(nullptr, pFile);
    EXPECT_EQ(0, bInitialized);
    EXPECT_EQ((Calls{L"Create link", L"QueryFile"}), fake.calls);
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized);
    EXPECT_EQ(nullptr, pLink);
    EXPECT_EQ(nullptr, pFile);
    EXPECT_EQ(0, fake.nAlive);
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized); // nothing is left
}

/// A thread whose COM the test sees come and go.
struct FakeCom {
    FakeCom() { nInit = nUninit = 0; }
    static HRESULT WINAPI Init(void*, DWORD nNewFlags) {
        ++nInit;
        nFlags = nNewFlags;
        if (bHelps) FakeLink::pNow->results.clear();
        return hr;
    }
    static void WINAPI Uninit() { ++nUninit; }
    static inline int nInit, nUninit, bHelps = 1;
    static inline DWORD nFlags;
    static inline HRESULT hr = S_OK;
    ReplaceImport init{__imp_CoInitializeEx, &Init}, uninit{__imp_CoUninitialize, &Uninit};
};

TEST(CoreResolve, ThreadWithoutComGetsItOnce) {
    FakeLink fake;
    FakeCom com;
    fake.results[L"Create"] = CO_E_NOTINITIALIZED;
    IShellLinkW* pLink = nullptr;
    IPersistFile* pFile = nullptr;
    int bInitialized = 0;
    ASSERT_EQ(1, CoreResolveShortcut_Init(&pLink, &pFile, &bInitialized));
    EXPECT_EQ(1, com.nInit);
    EXPECT_EQ(6u, com.nFlags);
    EXPECT_EQ(1, bInitialized);
    EXPECT_EQ(0, com.nUninit);
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized);
    EXPECT_EQ(1, com.nUninit);
    EXPECT_EQ(0, bInitialized);
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized);
    EXPECT_EQ(1, com.nUninit);
}

TEST(CoreResolve, FailedInitIsBalanced) {
    FakeLink fake;
    FakeCom com;
    IShellLinkW* pLink;
    IPersistFile* pFile;
    int bInitialized;
    const auto Try = [&] {
        pLink = reinterpret_cast<IShellLinkW*>(&fake);
        pFile = reinterpret_cast<IPersistFile*>(&fake);
        bInitialized = 7;
        com.nInit = com.nUninit = 0;
        EXPECT_EQ(0, CoreResolveShortcut_Init(&pLink, &pFile, &bInitialized));
        EXPECT_EQ(nullptr, pLink);
        EXPECT_EQ(nullptr, pFile);
        EXPECT_EQ(0, bInitialized);
        EXPECT_EQ(com.nInit, com.nUninit);
        EXPECT_EQ(0, fake.nAlive);
    };
    fake.results[L"Create"] = E_FAIL; // another reason: no retry
    Try();
    EXPECT_EQ(0, com.nInit);
    fake.results = {{L"QueryFile", E_NOINTERFACE}};
    Try();
    fake.results[L"Create"] = CO_E_NOTINITIALIZED;
    com.bHelps = 0; // once, and not again and again
    Try();
    EXPECT_EQ(1, com.nInit);
    com.bHelps = 1;
}

TEST(CoreResolve, GivesThePathWithoutLookingAfterIt) {
    FakeLink fake;
    LinkQuestion question;
    IShellLinkW* pLink = nullptr;
    IPersistFile* pFile = nullptr;
    int bInitialized = 0;
    ASSERT_EQ(1, CoreResolveShortcut_Init(&pLink, &pFile, &bInitialized));
    fake.calls.clear();
    for (unsigned cch : {1u, 5u, 9u, 10u, 300u}) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        std::fill_n(psz, cch, L'#');
        EXPECT_EQ(1, CoreResolveShortcut(nullptr, pLink, pFile, L"C:\\l.lnk", psz, cch));
        EXPECT_EQ(std::wstring(L"C:\\target").substr(0, cch - 1), psz);
    }
    EXPECT_EQ(L"Load C:\\l.lnk 0", fake.calls[0]);
    EXPECT_EQ(L"GetPath 1 0", fake.calls[1]);
    for (const auto& str : fake.calls) EXPECT_NE(0u, str.find(L"Resolve"));
    wchar_t sz[16];
    for (const wchar_t* psz : {L"Load", L"GetPath"}) {
        fake.results = {{psz, E_FAIL}};
        wcscpy(sz, L"old");
        EXPECT_EQ(0, CoreResolveShortcut(nullptr, pLink, pFile, L"C:\\l.lnk", sz, 16));
        EXPECT_STREQ(L"", sz);
    }
    CoreResolveShortcut_Done(&pLink, &pFile, &bInitialized);
    EXPECT_EQ(0, CoreResolveShortcut(nullptr, pLink, pFile, L"C:\\l.lnk", sz, 16));
    EXPECT_STREQ(L"", sz);
}

TEST(CoreResolve, CopiesWhatIsNoLinkWithinTheSize) {
    LinkQuestion question;
    question.nGiven = 0;
    for (unsigned cch = 0; cch <= 8; ++cch) {
        GuardedMemory memory(cch * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        CoreResolveShortcut(nullptr, nullptr, nullptr, L"C:\\f", psz, cch);
        if (cch) {
            EXPECT_EQ(std::wstring(L"C:\\f").substr(0, cch - 1), psz);
        }
    }
    question.nGiven = SFGAO_LINK;
}

TEST(CoreResolve, WhatIsNoLinkNeedsNoObjects) {
    FakeLink fake;
    LinkQuestion question;
    question.nGiven = 0;
    for (const wchar_t* psz : {L"Create", L"QueryFile"}) {
        fake.results = {{psz, E_FAIL}};
        wchar_t sz[16] = L"old";
        EXPECT_EQ(1, CoreResolveShortcut(nullptr, L"C:\\f", sz, 16)) << psz;
        EXPECT_STREQ(L"C:\\f", sz) << psz;
    }
    question.nGiven = SFGAO_LINK;
    EXPECT_EQ(0, fake.nAlive);
}

TEST(CoreResolve, WithItsOwnObjectsFallsBackToThePath) {
    FakeLink fake;
    LinkQuestion question;
    wchar_t sz[16];
    EXPECT_EQ(1, CoreResolveShortcut(nullptr, L"C:\\l.lnk", sz, 16));
    EXPECT_STREQ(L"C:\\target", sz);
    for (const wchar_t* psz : {L"Create", L"QueryFile", L"Load", L"GetPath"}) {
        fake.results = {{psz, E_FAIL}};
        wcscpy(sz, L"old");
        EXPECT_EQ(0, CoreResolveShortcut(nullptr, L"C:\\l.lnk", sz, 16)) << psz;
        EXPECT_STREQ(L"C:\\l.lnk", sz) << psz;
    }
    fake.results.clear();
    fake.strTarget = L"";
    CoreResolveShortcut(nullptr, L"C:\\l.lnk", sz, 16);
    EXPECT_STREQ(L"C:\\l.lnk", sz);
    CoreResolveShortcut(nullptr, L"C:\\l.lnk", sz, 4);
    EXPECT_STREQ(L"C:\\", sz);
    EXPECT_EQ(0, fake.nAlive);
}

// The platform's own shortcuts

class Shortcuts : public testing::Test {
  protected:
    std::wstring Resolved(const std::wstring& strPath, int bQuiet = 1) {
        wchar_t sz[MAX_PATH];
        wcscpy(sz, strPath.c_str());
        ResolveShortcut(nullptr, sz, bQuiet);
        return sz;
    }
    std::wstring Target(const std::wstring& strPath, int bShellName = 0) {
        wchar_t sz[MAX_PATH] = L"old";
        GetShortcutTargetPath(sz, strPath.c_str(), bShellName);
        return sz;
    }
    static void ExpectPath(const std::wstring& strExpected, const std::wstring& strGiven) {
        EXPECT_EQ(0, ::lstrcmpiW(strExpected.c_str(), strGiven.c_str()))
            << testing::PrintToString(strGiven);
    }
    CoInit com;
    TempFolder temp;
};

TEST_F(Shortcuts, MadeOneLeadsToItsTarget) {
    const std::wstring strTarget = temp.MakeFile(L"t.txt", "x"), strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(strTarget.c_str(), strLink.c_str(), L"args"));
    ExpectPath(strTarget, Resolved(strLink));
    ExpectPath(strTarget, Resolved(strLink, 0));
    ExpectPath(strTarget, Target(strLink));
    ExpectPath(strTarget, Target(strLink, 1));
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, CoreResolveShortcut(nullptr, strLink.c_str(), sz, MAX_PATH));
    ExpectPath(strTarget, sz);
    iShellLink link;
    iPersistFile file(link);
    EXPECT_EQ(1, ResolveLink(nullptr, link, file, strLink.c_str(), sz, SLR_NO_UI, 0));
    ExpectPath(strTarget, sz);
    EXPECT_EQ(1, link.GetArgs(sz, MAX_PATH));
    EXPECT_STREQ(L"args", sz);
}

TEST_F(Shortcuts, LeadToFoldersAndDrives) {
    ASSERT_EQ(1, CreateLink(temp.Get().c_str(), temp.File(L"folder.lnk").c_str(), nullptr));
    ExpectPath(temp.Get(), Resolved(temp.File(L"folder.lnk")));
    ASSERT_EQ(1, CreateLink(L"C:\\", temp.File(L"drive.lnk").c_str(), nullptr));
    ExpectPath(L"C:\\", Resolved(temp.File(L"drive.lnk")));
}

TEST_F(Shortcuts, NamesOfEveryScript) {
    const wchar_t* names[] = {L"\u00C4\u00DF", L"\u0416\u0443\u043A", L"\u65E5\u672C",
                              L"\u05E9\u05DC", L"\u0645\u0631",       L"\u0E2A\u0E31",
                              L"\xD83D\xDE00"};
    for (const wchar_t* psz : names) {
        const std::wstring strName = psz;
        const std::wstring strTarget = temp.MakeFile(strName + L".txt", "x"),
                           strLink = temp.File(strName + L".lnk");
        ASSERT_EQ(1, CreateLink(strTarget.c_str(), strLink.c_str(), psz));
        iShellLink link;
        ASSERT_EQ(1, link.Load(strLink.c_str()));
        ITEMIDLIST* pidl = nullptr;
        EXPECT_EQ(1, link.GetIDList(pidl));
        wchar_t sz[MAX_PATH] = L"";
        EXPECT_TRUE(::SHGetPathFromIDListW(pidl, sz));
        ExpectPath(strTarget, sz);
        PIDL::Free(pidl);
        EXPECT_EQ(1, link.GetArgs(sz, MAX_PATH));
        EXPECT_STREQ(psz, sz);
        // The platform may store the path itself in its code page alone.
        BOOL bLost = FALSE;
        ::WideCharToMultiByte(CP_ACP, 0, psz, -1, nullptr, 0, nullptr, &bLost);
        if (!bLost) ExpectPath(strTarget, Resolved(strLink));
        if (FindLinkReader().empty()) continue;
        auto values = ReadLinkFile(strLink);
        EXPECT_EQ("1", values["whole"]);
    }
}

TEST_F(Shortcuts, LinkToALinkIsFollowedOneStepAtATime) {
    const std::wstring strTarget = temp.MakeFile(L"t.txt", "x"), strFirst = temp.File(L"1.lnk"),
                       strSecond = temp.File(L"2.lnk");
    ASSERT_EQ(1, CreateLink(strTarget.c_str(), strFirst.c_str(), nullptr));
    ASSERT_EQ(1, CreateLink(strFirst.c_str(), strSecond.c_str(), nullptr));
    // A platform may store the first link's target instead of the first link.
    std::wstring str = Target(strSecond);
    if (::lstrcmpiW(str.c_str(), strTarget.c_str())) {
        ExpectPath(strFirst, str);
        ExpectPath(strFirst, Resolved(strSecond));
    }
    ExpectPath(strTarget, Resolved(Resolved(strSecond)));
}

TEST_F(Shortcuts, LinkToItselfEnds) {
    const std::wstring strLink = temp.File(L"self.lnk");
    ASSERT_EQ(1, CreateLink(temp.MakeFile(L"t.txt", "x").c_str(), strLink.c_str(), nullptr));
    ASSERT_EQ(1, UpdateLink(strLink.c_str(), strLink.c_str(), nullptr));
    Resolved(strLink);
    Resolved(strLink, 1);
}

TEST_F(Shortcuts, LinkToNothingResolvesToAnEmptyText) {
    const std::wstring strTarget = temp.MakeFile(L"t.txt", "x"), strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(strTarget.c_str(), strLink.c_str(), nullptr));
    ASSERT_TRUE(::DeleteFileW(strTarget.c_str()));
    EXPECT_EQ(L"", Resolved(strLink));
    ExpectPath(strTarget, Target(strLink)); // as it was stored
    ExpectPath(strTarget, Target(strLink, 1));
}

TEST_F(Shortcuts, PathsThatAreNoLinks) {
    const std::wstring strFile = temp.MakeFile(L"t.txt", "x");
    EXPECT_EQ(strFile, Resolved(strFile));
    EXPECT_EQ(temp.Get(), Resolved(temp.Get()));
    EXPECT_EQ(strFile, Target(strFile));
    ExpectPath(strFile, Target(strFile, 1));
    EXPECT_EQ(L"", Resolved(temp.File(L"missing.txt")));
    EXPECT_EQ(temp.File(L"missing.txt"), Target(temp.File(L"missing.txt")));
    wchar_t sz[MAX_PATH] = L"old";
    iShellLink link;
    iPersistFile none;
    EXPECT_EQ(1, ResolveLink(nullptr, link, none, strFile.c_str(), sz, 0, 0));
    EXPECT_EQ(strFile, sz);
}

TEST_F(Shortcuts, FileNamedLikeALinkThatIsNoneCannotBeRead) {
    const std::wstring strFake = temp.MakeFile(L"fake.lnk", "no link at all");
    EXPECT_EQ(strFake, Resolved(strFake));
    EXPECT_EQ(L"old", Target(strFake));
    wchar_t sz[MAX_PATH] = L"old";
    EXPECT_EQ(0, CoreResolveShortcut(nullptr, strFake.c_str(), sz, MAX_PATH));
    EXPECT_EQ(strFake, sz);
    int n = 0;
    EXPECT_EQ(0, GetShortcutIcon(strFake.c_str(), sz, &n));
    EXPECT_EQ(0, SetShortcutIcon(strFake.c_str(), L"x.dll", 1));
    EXPECT_EQ(0, UpdateLink(L"C:\\windows", strFake.c_str(), nullptr));
    EXPECT_EQ("no link at all", temp.ReadFile(L"fake.lnk"));
}

TEST_F(Shortcuts, NamesThatDifferByCaseAreOneTarget) {
    const std::wstring strTarget = temp.MakeFile(L"Target.TXT", "x"), strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(temp.File(L"tARGET.txt").c_str(), strLink.c_str(), nullptr));
    ExpectPath(strTarget, Resolved(strLink));
    wchar_t sz[MAX_PATH];
    EXPECT_EQ(1, GetShortcutTargetPath(sz, strLink.c_str(), 1));
    ExpectPath(strTarget, sz);
}

TEST_F(Shortcuts, UpdateKeepsTheRest) {
    const std::wstring strA = temp.MakeFile(L"a.txt", "x"), strB = temp.MakeFile(L"b.txt", "x"),
                       strLink = temp.File(L"l.lnk");
    EXPECT_EQ(0, UpdateLink(strA.c_str(), strLink.c_str(), nullptr)); // is not there yet
    ASSERT_EQ(1, CreateLink(strA.c_str(), strLink.c_str(), L"first"));
    ASSERT_EQ(1, SetShortcutIcon(strLink.c_str(), L"C:\\windows\\i.dll", 4));
    ASSERT_EQ(1, UpdateLink(strB.c_str(), strLink.c_str(), nullptr));
    ExpectPath(strB, Resolved(strLink));
    wchar_t sz[MAX_PATH];
    int n = 0;
    EXPECT_EQ(1, GetShortcutIcon(strLink.c_str(), sz, &n));
    EXPECT_STREQ(L"C:\\windows\\i.dll", sz);
    EXPECT_EQ(4, n);
    iShellLink link;
    ASSERT_EQ(1, link.Load(strLink.c_str()));
    EXPECT_EQ(1, link.GetArgs(sz, MAX_PATH));
    EXPECT_STREQ(L"first", sz);
    ASSERT_EQ(1, CreateLink(strA.c_str(), strLink.c_str(), nullptr)); // replaces all of it
    ASSERT_EQ(1, link.Load(strLink.c_str()));
    EXPECT_EQ(1, link.GetArgs(sz, MAX_PATH));
    EXPECT_STREQ(L"", sz);
    if (FindLinkReader().empty()) return;
    auto values = ReadLinkFile(strLink);
    EXPECT_EQ(0u, values.count("args"));
    EXPECT_EQ(0u, values.count("icon"));
    EXPECT_EQ("1", values["whole"]);
}

TEST_F(Shortcuts, IconIsInTheFileAsAnotherProgramReadsIt) {
    if (FindLinkReader().empty()) GTEST_SKIP() << "no Python, or the script is not here";
    const std::wstring strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(L"C:\\windows", strLink.c_str(), L"-x"));
    ASSERT_EQ(1, SetShortcutIcon(strLink.c_str(), L"C:\\i.dll", -9));
    auto values = ReadLinkFile(strLink);
    EXPECT_EQ("C:\\i.dll", values["icon"]);
    EXPECT_EQ("-9", values["index"]);
    EXPECT_EQ("-x", values["args"]);
    ASSERT_EQ(1, UpdateLink(L"C:\\windows\\system32", strLink.c_str(), L"-y"));
    values = ReadLinkFile(strLink);
    EXPECT_EQ("-y", values["args"]);
    EXPECT_EQ("C:\\i.dll", values["icon"]);
    ExpectPath(L"C:\\windows\\system32",
               std::wstring(values["path"].begin(), values["path"].end()));
}

TEST_F(Shortcuts, NullAndEmptyPathsFail) {
    wchar_t sz[MAX_PATH] = L"";
    int n = 0;
    EXPECT_EQ(0, CreateLink(L"C:\\windows", nullptr, nullptr));
    EXPECT_EQ(0, CreateLink(nullptr, temp.File(L"l.lnk").c_str(), nullptr));
    EXPECT_EQ(0, UpdateLink(L"C:\\windows", nullptr, nullptr));
    EXPECT_EQ(0, GetShortcutIcon(nullptr, sz, &n));
    EXPECT_EQ(0, SetShortcutIcon(nullptr, L"x", 0));
    ResolveShortcut(nullptr, sz, 1);
    EXPECT_STREQ(L"", sz);
    ResolveShortcut(nullptr, nullptr, 1);
}

TEST_F(Shortcuts, LongestTargetComesWhole) {
    std::wstring strFolder = temp.Get();
    while (strFolder.size() < 240) {
        strFolder += L"\\" + std::wstring(std::min<std::size_t>(90, 246 - strFolder.size()), L'n');
        ASSERT_TRUE(::CreateDirectoryW(strFolder.c_str(), nullptr));
    }
    std::wstring strTarget = strFolder + L"\\" + std::wstring(258 - strFolder.size(), L't');
    ASSERT_EQ(259u, strTarget.size());
    std::ofstream(std::filesystem::path(strTarget)) << "x";
    ASSERT_NE(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(strTarget.c_str()));
    const std::wstring strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(strTarget.c_str(), strLink.c_str(), nullptr));
    ExpectPath(strTarget, Resolved(strLink));
    ExpectPath(strTarget, Target(strLink));
}

TEST_F(Shortcuts, ThreadWithoutComCanFollowThem) {
    const std::wstring strTarget = temp.MakeFile(L"t.txt", "x"), strLink = temp.File(L"l.lnk");
    ASSERT_EQ(1, CreateLink(strTarget.c_str(), strLink.c_str(), nullptr));
    wchar_t sz[MAX_PATH] = L"";
    int bDone = 0;
    std::thread([&] {
        bDone = CoreResolveShortcut(nullptr, strLink.c_str(), sz, MAX_PATH);
    }).join();
    EXPECT_EQ(1, bDone);
    ExpectPath(strTarget, sz);
}
} // namespace
