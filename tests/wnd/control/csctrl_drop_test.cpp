#include "files/disk/path_spelling.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csctrl.h"
#include "wnd/control/csedit.h"
#include "wnd/control/ctrl_dialog.h"

#include <gtest/gtest.h>
#include <shellapi.h>
#include <shlobj.h>
#include <algorithm>
#include <cstring>

extern "C" FARPROC __imp_DragFinish, __imp_GetFileAttributesW, __imp_FindFirstFileW,
    __imp_FindClose;

namespace {
using Paths = std::vector<std::wstring>;

/// The block of a drop, as the shell makes it; whoever gets it ends it with DragFinish.
HDROP MakeDrop(const Paths& paths, bool bWide = true) {
    std::size_t cbChar = bWide ? sizeof(wchar_t) : 1, cch = 1;
    for (auto& str : paths) cch += str.size() + 1;
    if (paths.empty()) ++cch;
    HGLOBAL hBlock = ::GlobalAlloc(GHND, sizeof(DROPFILES) + cch * cbChar);
    auto* pHead = static_cast<DROPFILES*>(::GlobalLock(hBlock));
    pHead->pFiles = sizeof(DROPFILES);
    pHead->fWide = bWide;
    auto* pOut = reinterpret_cast<char*>(pHead + 1);
    for (auto& str : paths) {
        if (bWide) {
            std::memcpy(pOut, str.c_str(), (str.size() + 1) * sizeof(wchar_t));
        } else {
            std::transform(str.begin(), str.end(), pOut,
                           [](wchar_t ch) { return static_cast<char>(ch); });
        }
        pOut += (str.size() + 1) * cbChar;
    }
    ::GlobalUnlock(hBlock);
    return static_cast<HDROP>(hBlock);
}

/// Counts which drops are ended.
class Finishes {
  public:
    Finishes() { finished.clear(); }
    static inline std::vector<HDROP> finished;

  private:
    static void WINAPI Finish(HDROP hdrop) {
        finished.push_back(hdrop);
        ::GlobalFree(hdrop);
    }
    ReplaceImport replaced{__imp_DragFinish, &Finish};
};

/// An edit with those drop rules.
template <class Base = CSCtrl>
struct Target {
    explicit Target(unsigned long dwRules) {
        dialog.onInit = [this, dwRules] {
            tap.emplace(::GetDlgItem(dialog, IDC_CTL_EDIT));
            ctrl.Init(&dialog, IDC_CTL_EDIT, nullptr, dwRules);
        };
        EXPECT_TRUE(dialog.Run(IDD_CONTROLS));
        ::SetWindowTextW(ctrl.hWnd, L"before");
        tap->seen.clear();
    }
    /// What the control shows after a drop of these files; each drop is ended once.
    std::wstring Drop(const Paths& paths, bool bWide = true) {
        HDROP hdrop = MakeDrop(paths, bWide);
        ctrl.OnDropFiles(hdrop);
        EXPECT_EQ(std::vector<HDROP>{hdrop}, finishes.finished);
        finishes.finished.clear();
        return WndText(ctrl.hWnd);
    }
    std::wstring DropOne(const std::wstring& strPath) { return Drop({strPath}); }
    /// Other rules, and the text that was there at first.
    Target& SetRules(unsigned long dwRules) {
        ctrl.ModifyMyStyle(kDropMask, dwRules);
        ::SetWindowTextW(ctrl.hWnd, L"before");
        return *this;
    }
    /// Has the texts that the window is given kept in their order.
    void KeepTexts() {
        tap->answer = [this](UINT uMsg, WPARAM, LPARAM lParam) -> std::optional<LRESULT> {
            if (uMsg == WM_SETTEXT) texts.push_back(reinterpret_cast<LPCWSTR>(lParam));
            return std::nullopt;
        };
    }

    Finishes finishes;
    Recorded<Base> ctrl;
    std::optional<MessageTap> tap;
    Paths texts;
    CtrlDialog dialog;
};

/// Temporary folders lie in the drive's root meanwhile: with checked heaps each folder on a path
/// that is looked at takes its time.
class ShortTemp {
  public:
    ShortTemp() {
        ::GetEnvironmentVariableW(L"TMP", szBefore, MAX_PATH);
        ::SetEnvironmentVariableW(L"TMP", L"C:\\");
    }
    ~ShortTemp() { ::SetEnvironmentVariableW(L"TMP", szBefore); }
    ShortTemp(const ShortTemp&) = delete;
    ShortTemp& operator=(const ShortTemp&) = delete;

  private:
    wchar_t szBefore[MAX_PATH] = L"";
};

/// Real paths, spelled as the shell shows them.
struct Places {
    Places() {
        wchar_t sz[MAX_PATH] = L"";
        ::lstrcpynW(sz, temp.Get().c_str(), MAX_PATH);
        DosPathToShellPath(sz);
        strFolder = sz;
        std::filesystem::create_directories(temp.File(L"Sub.folder"));
        temp.MakeFile(L"Some.file.txt", "x");
        temp.MakeFile(L"noextension", "x");
        strSub = strFolder + L"\\Sub.folder";
        strFile = strFolder + L"\\Some.file.txt";
        strMissing = strFolder + L"\\Missing.txt";
    }
    ShortTemp shortTemp;
    TempFolder temp;
    std::wstring strFolder, strSub, strFile, strMissing;
};

TEST(CSCtrlDrop, NullDoesNothing) {
    Target<> target(kDropMask);
    target.ctrl.OnDropFiles(nullptr);
    EXPECT_TRUE(Finishes::finished.empty());
    EXPECT_EQ(L"before", WndText(target.ctrl.hWnd));
}

TEST(CSCtrlDrop, NoFilesOnlyEndTheDrop) {
    Target<> target(kDropMask);
    EXPECT_EQ(L"before", target.Drop({}));
    EXPECT_EQ(0, target.tap->Count(WM_SETTEXT));
}

TEST(CSCtrlDrop, OnlyTheFirstFileCounts) {
    Places places;
    Target<> target(kDropAnyPath);
    EXPECT_EQ(places.strFile,
              target.Drop({places.strFile, places.strSub, places.strMissing, L"x"}));
    EXPECT_EQ(1, target.tap->Count(WM_SETTEXT));
}

TEST(CSCtrlDrop, NarrowDropsCountToo) {
    Places places;
    Target<> target(kDropAnyPath);
    EXPECT_EQ(places.strFile, target.Drop({places.strFile}, false));
}

TEST(CSCtrlDrop, PathIsShownAsTheShellSpellsIt) {
    Places places;
    Target<> target(kDropAnyPath);
    std::wstring str = places.strFile;
    ::CharUpperW(str.data());
    std::replace(str.begin(), str.end(), L'\\', L'/');
    EXPECT_EQ(places.strFile, target.DropOne(str));
    wchar_t szShort[MAX_PATH] = L"";
    ASSERT_NE(0u, ::GetShortPathNameW(places.strFile.c_str(), szShort, MAX_PATH));
    ASSERT_NE(places.strFile, szShort);
    EXPECT_EQ(places.strFile, target.DropOne(szShort));
    EXPECT_EQ(places.strMissing, target.DropOne(places.strMissing));
}

/// What the text becomes, by the rules alone: each step that applies sets it, in this order.
Paths Expected(unsigned long dwRules, const std::wstring& strPath, bool bFolder, bool bFile) {
    Paths texts;
    std::size_t nName = strPath.rfind(L'\\') + 1;
    if (dwRules & kDropFileName) texts.push_back(strPath.substr(nName));
    if (dwRules & kDropFolder) texts.push_back(bFolder ? strPath : strPath.substr(0, nName - 1));
    if (dwRules & kDropFile && bFile) {
        texts.push_back(strPath);
    } else if (dwRules & kDropAnyPath) {
        texts.push_back(strPath);
    }
    return texts;
}

TEST(CSCtrlDrop, AllSetsOfRules) {
    Places places;
    Target<> target(0);
    target.KeepTexts();
    struct {
        std::wstring strPath;
        bool bFolder, bFile;
    } rows[] = {{places.strFile, false, true},
                {places.strSub, true, false},
                {places.strMissing, false, false}};
    for (unsigned nBits = 0; nBits < 16; ++nBits) {
        unsigned long dwRules = nBits << 28;
        for (auto& row : rows) {
            target.SetRules(dwRules);
            target.texts.clear();
            Paths expected = Expected(dwRules, row.strPath, row.bFolder, row.bFile);
            std::wstring strAfter = target.DropOne(row.strPath);
            EXPECT_EQ(expected, target.texts) << nBits;
            EXPECT_EQ(expected.empty() ? L"before" : expected.back(), strAfter) << nBits;
        }
    }
}

TEST(CSCtrlDrop, FolderAloneIsRefusedWhereAFileIsWanted) {
    Places places;
    Target<> target(kDropFile);
    EXPECT_EQ(L"before", target.DropOne(places.strSub));
    target.ctrl.ModifyMyStyle(0, kDropAnyPath);
    EXPECT_EQ(places.strSub, target.DropOne(places.strSub)) << "the rules are read at the drop";
}

TEST(CSCtrlDrop, FolderOfAFileInADrivesRootKeepsItsSeparator) {
    Target<> target(kDropFolder);
    EXPECT_EQ(L"C:\\", target.DropOne(L"C:\\missing in the root.txt"));
    EXPECT_EQ(L"C:\\windows", target.DropOne(L"C:\\windows\\missing.txt"));
    std::wstring strMade = L"C:\\tessaly_drop_test.txt";
    HANDLE h = ::CreateFileW(strMade.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                             FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, h);
    EXPECT_EQ(L"C:\\", target.DropOne(strMade));
    ::CloseHandle(h);
}

TEST(CSCtrlDrop, DrivesRoot) {
    Target<> target(0);
    EXPECT_EQ(L"C:\\", target.SetRules(kDropFolder).DropOne(L"c:\\"));
    EXPECT_EQ(L"C:\\", target.SetRules(kDropAnyPath).DropOne(L"c:\\"));
    EXPECT_EQ(L"before", target.SetRules(kDropFile).DropOne(L"c:\\"));
    EXPECT_EQ(L"", target.SetRules(kDropFileName).DropOne(L"c:\\")) << "it has no name";
}

TEST(CSCtrlDrop, FolderOfANetworkPath) {
    Target<> target(kDropFolder);
    EXPECT_EQ(L"\\\\server\\share\\folder", target.DropOne(L"\\\\server\\share\\folder\\file.txt"));
    EXPECT_EQ(L"\\\\server\\share", target.DropOne(L"\\\\server\\share\\file.txt"));
}

TEST(CSCtrlDrop, SeparatorBehindASeparatorStays) {
    Target<> target(kDropFolder);
    EXPECT_EQ(L"Q:\\folder\\\\", target.DropOne(L"Q:\\folder\\\\file.txt"));
    EXPECT_EQ(L"\\\\", target.DropOne(L"\\\\file.txt"));
}

TEST(CSCtrlDrop, PathsWithoutAFolder) {
    Target<> target(0);
    EXPECT_EQ(L"", target.SetRules(kDropFolder).DropOne(L"Just a name.txt"));
    EXPECT_EQ(L"Just a name.txt", target.SetRules(kDropFileName).DropOne(L"Just a name.txt"));
    for (auto* psz : {L"\\", L"X", L"X:", L"."}) target.SetRules(kDropMask).DropOne(psz);
}

TEST(CSCtrlDrop, DriveAloneBeforeTheName) {
    Target<> target(0);
    EXPECT_EQ(L"name.txt", target.SetRules(kDropFileName).DropOne(L"Q:name.txt"));
    EXPECT_EQ(L"Q:", target.SetRules(kDropFolder).DropOne(L"Q:name.txt"));
}

TEST(CSCtrlDrop, NamesWithDots) {
    Target<> target(kDropFileName);
    for (auto* psz : {L"a.b.c", L".hidden", L"dot.", L"x", L"two words.and more.txt", L"..x"}) {
        std::wstring strName = psz;
        EXPECT_EQ(strName, target.DropOne(L"Q:\\folder.ext\\" + strName));
    }
    EXPECT_EQ(L"noextension", target.DropOne(L"Q:\\folder.ext\\noextension"));
}

/// A path below the folder with exactly that many characters, none of its names over the limit.
std::wstring LongPath(const std::wstring& strFolder, std::size_t cch, bool bMake) {
    std::wstring str = strFolder;
    while (str.size() + 60 < cch) {
        str += L"\\" + std::wstring(50, L'd');
        if (bMake) ::CreateDirectoryW((L"\\\\?\\" + str).c_str(), nullptr);
    }
    str += L"\\";
    str += std::wstring(cch - str.size() - 1, L'f') + L"g";
    return str;
}

class CSCtrlDropLength : public testing::TestWithParam<int> {};
TEST_P(CSCtrlDropLength, LongPathsAreReadWithinTheBuffer) {
    Places places;
    Target<> target(0);
    for (bool bExists : {true, false}) {
        std::wstring strPath =
            LongPath(places.strFolder, static_cast<std::size_t>(GetParam()), bExists);
        if (bExists) {
            HANDLE h = ::CreateFileW((L"\\\\?\\" + strPath).c_str(), GENERIC_WRITE, 0, nullptr,
                                     CREATE_ALWAYS, 0, nullptr);
            ASSERT_NE(INVALID_HANDLE_VALUE, h) << ::GetLastError();
            ::CloseHandle(h);
        }
        ASSERT_EQ(static_cast<std::size_t>(GetParam()), strPath.size());
        // Of 261 characters with the terminator, as the shell spells that.
        wchar_t szExpected[1024] = L"";
        ::lstrcpynW(szExpected, strPath.c_str(), 261);
        DosPathToShellPath(szExpected);
        std::wstring str = target.SetRules(kDropAnyPath).DropOne(strPath);
        EXPECT_EQ(szExpected, str);
        if (GetParam() <= 259) {
            EXPECT_EQ(strPath, str);
        }
        for (unsigned long dwRules : {0UL + kDropFolder, kDropMask}) {
            target.SetRules(dwRules).DropOne(strPath);
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Characters, CSCtrlDropLength, testing::Values(259, 260, 261, 600));

/// A platform that cannot tell attributes directly, as of some files in use.
class NoAttributes {
  public:
    NoAttributes() { nFinds = nCloses = 0; }
    static inline int nFinds, nCloses;

  private:
    static DWORD WINAPI Refuse(LPCWSTR) {
        ::SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_FILE_ATTRIBUTES;
    }
    static HANDLE WINAPI Find(LPCWSTR psz, WIN32_FIND_DATAW* pData) {
        HANDLE h = pCurrent->find.Original<decltype(::FindFirstFileW)>()(psz, pData);
        nFinds += h != INVALID_HANDLE_VALUE;
        return h;
    }
    static BOOL WINAPI Close(HANDLE h) {
        ++nCloses;
        return pCurrent->close.Original<decltype(::FindClose)>()(h);
    }
    static inline NoAttributes* pCurrent;
    NoAttributes* pThis = pCurrent = this;
    ReplaceImport attributes{__imp_GetFileAttributesW, &Refuse};
    ReplaceImport find{__imp_FindFirstFileW, &Find};
    ReplaceImport close{__imp_FindClose, &Close};
};

TEST(CSCtrlDrop, PathWhoseAttributesCannotBeReadIsFoundInItsFolder) {
    Places places;
    Target<> file(kDropFile), folder(kDropFolder), missing(kDropFile);
    {
        NoAttributes none;
        EXPECT_EQ(places.strFile, file.DropOne(places.strFile));
        EXPECT_EQ(places.strFile, file.DropOne(places.strSub)) << "a folder is refused";
        EXPECT_EQ(places.strSub, folder.DropOne(places.strSub));
        EXPECT_EQ(L"before", missing.DropOne(places.strMissing));
        EXPECT_GT(none.nFinds, 0);
        EXPECT_EQ(none.nFinds, none.nCloses);
    }
}

TEST(CSCtrlDrop, MessageDropsFirstAndThenGoesOn) {
    Places places;
    Target<> target(kDropAnyPath);
    std::wstring strInside = L"not asked";
    target.tap->answer = [&](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg != WM_DROPFILES) return std::nullopt;
        strInside = WndText(target.ctrl.hWnd);
        return 57;
    };
    HDROP hdrop = MakeDrop({places.strFile});
    EXPECT_EQ(57,
              ::SendMessageW(target.ctrl.hWnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hdrop), 11));
    EXPECT_EQ(1, target.ctrl.CountLogged("OnDropFiles"));
    EXPECT_EQ(hdrop, target.ctrl.hdropSeen);
    EXPECT_EQ(places.strFile, strInside) << "before the control sees the message";
    auto seen = target.tap->Of(WM_DROPFILES);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(reinterpret_cast<WPARAM>(hdrop), seen[0].wParam);
    EXPECT_EQ(11, seen[0].lParam);
    EXPECT_EQ(std::vector<HDROP>{hdrop}, Finishes::finished);
}

TEST(CSCtrlDrop, EditDropsOnceToo) {
    Places places;
    Target<CSEdit> target(kDropAnyPath);
    target.ctrl.SetReadOnly(1);
    HDROP hdrop = MakeDrop({places.strFile});
    ::SendMessageW(target.ctrl.hWnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hdrop), 0);
    EXPECT_EQ(1, target.ctrl.CountLogged("OnDropFiles"));
    EXPECT_EQ(std::vector<HDROP>{hdrop}, Finishes::finished);
    EXPECT_EQ(1, target.tap->Count(WM_DROPFILES));
    EXPECT_EQ(places.strFile, WndText(target.ctrl.hWnd));
}

TEST(CSCtrlDrop, PostedDropComesThrough) {
    Places places;
    Target<> target(kDropFileName);
    HDROP hdrop = MakeDrop({places.strFile});
    ASSERT_NE(FALSE,
              ::PostMessageW(target.ctrl.hWnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hdrop), 0));
    EXPECT_TRUE(PumpUntil([&] { return WndText(target.ctrl.hWnd) == L"Some.file.txt"; }));
}

TEST(CSCtrlDrop, IsEndedThoughTheControlGoesWithTheNewText) {
    Places places;
    Target<> target(kDropMask);
    HWND hwnd = target.ctrl.hWnd;
    target.dialog.onCommand = [&](unsigned, unsigned nCode, HWND) {
        if (nCode == EN_CHANGE && ::IsWindow(hwnd)) ::DestroyWindow(hwnd);
    };
    HDROP hdrop = MakeDrop({places.strFile});
    ::SendMessageW(hwnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hdrop), 0);
    target.dialog.onCommand = nullptr;
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(std::vector<HDROP>{hdrop}, Finishes::finished);
    EXPECT_EQ(1, target.ctrl.CountLogged("OnPostNcDestroy"));
}

TEST(CSCtrlDrop, PlainHeapObjectMayGoWithTheNewText) {
    Places places;
    Finishes finishes;
    CtrlDialog dialog;
    ASSERT_TRUE(dialog.Run(IDD_CONTROLS));
    HWND hwnd = ::GetDlgItem(dialog, IDC_CTL_EDIT);
    dialog.GetDlgCtrl(IDC_CTL_EDIT)->ModifyMyStyle(0, kDropMask);
    dialog.onCommand = [&](unsigned, unsigned nCode, HWND) {
        if (nCode == EN_CHANGE && ::IsWindow(hwnd)) ::DestroyWindow(hwnd);
    };
    HDROP hdrop = MakeDrop({places.strFile});
    ::SendMessageW(hwnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hdrop), 0);
    dialog.onCommand = nullptr;
    EXPECT_FALSE(::IsWindow(hwnd));
    EXPECT_EQ(std::vector<HDROP>{hdrop}, finishes.finished);
}
} // namespace
