// The platform's own namespace: desktop, drives, folders and files.

#include "shell/namespace/made_lists.h"
#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>

namespace {
const Bytes kEmpty = ListBytes({});

class RealPidl : public testing::Test {
  protected:
    RealPidl() { ::CoInitialize(nullptr); }
    ~RealPidl() override { ::CoUninitialize(); }
    /// The list of a path, for an object of its own.
    static void Take(PIDL& list, const std::wstring& strPath) {
        list.Clear();
        list.Attach(GetPidlOf(strPath.c_str()));
        ASSERT_NE(nullptr, static_cast<ITEMIDLIST*>(list)) << strPath.size();
    }
    static std::wstring PathOf(const PIDL& list) {
        wchar_t szPath[MAX_PATH] = L"";
        ::SHGetPathFromIDListW(list, szPath);
        return szPath;
    }
    static std::wstring NameOf(const PIDL& list) {
        wchar_t sz[MAX_PATH] = L"?";
        list.GetDisplayFileName(sz, MAX_PATH);
        return sz;
    }
    static int Sign(int n) { return n < 0 ? -1 : n > 0; }
    TempFolder temp;
};

const wchar_t* const kNames[] = {L"plain",
                                 L"\u00DCml\u00E4ut \u00DF",
                                 L"\u0395\u03BB\u03BB\u03B7\u03BD\u03B9\u03BA\u03AC",
                                 L"\u0420\u0443\u0441\u0441\u043A\u0438\u0439",
                                 L"\u05E2\u05D1\u05E8\u05D9\u05EA",
                                 L"\u0627\u0644\u0639\u0631\u0628\u064A\u0629",
                                 L"\u0E44\u0E17\u0E22",
                                 L"\u4E2D\u6587",
                                 L"\u65E5\u672C\u8A9E",
                                 L"\uD55C\uAD6D\uC5B4",
                                 L"\U0001F600\U00010348",
                                 L"e\u0301 combined",
                                 L"with blank.and.dots"};

TEST_F(RealPidl, OneObjectEqualsItself) {
    for (int nCsidl : {CSIDL_DESKTOP, CSIDL_DRIVES, CSIDL_WINDOWS, CSIDL_SYSTEM, CSIDL_PERSONAL,
                       CSIDL_DESKTOPDIRECTORY, CSIDL_PROGRAM_FILES}) {
        PIDL a, b;
        ASSERT_EQ(1, a.Attach(nCsidl)) << nCsidl;
        ASSERT_EQ(1, b.Attach(nCsidl));
        EXPECT_EQ(0, a.CompareAbs(b)) << nCsidl;
        EXPECT_EQ(1, a.IsSpecialFolder(nullptr, nCsidl)) << nCsidl;
    }
    PIDL drive, windows;
    Take(drive, L"C:\\");
    EXPECT_EQ(0, drive.IsSpecialFolder(nullptr, CSIDL_WINDOWS));
    EXPECT_EQ(0, drive.IsSpecialFolder(nullptr, 0x7FFF));
    EXPECT_EQ(0, drive.IsIE(nullptr));
}

TEST_F(RealPidl, ListsOfManyKindsAreInOneOrder) {
    std::vector<std::wstring> paths = {L"C:\\", L"Z:\\", L"C:\\windows", L"C:\\windows\\system32",
                                       L"C:\\windows\\system32\\kernel32.dll"};
    std::wstring strFolder;
    for (std::size_t n = 0; n < std::size(kNames); n += 2) {
        // The test platform compares names as single bytes, in which one script is like another;
        // a number keeps them apart.
        std::wstring strName = kNames[n] + std::to_wstring(paths.size());
        if (paths.size() % 2) {
            paths.push_back(temp.MakeFile(strName + L".txt", "x"));
            continue;
        }
        ASSERT_TRUE(::CreateDirectoryW(temp.File(strName).c_str(), nullptr));
        paths.push_back(temp.File(strName));
        strFolder = strName;
    }
    paths.push_back(temp.MakeFile(strFolder + L"\\in it", "x"));
    std::vector<PIDL> lists(paths.size() + 2);
    for (std::size_t n = 0; n < paths.size(); ++n) Take(lists[n], paths[n]);
    lists[paths.size()].Reset();
    lists[paths.size() + 1].Attach(CSIDL_DRIVES);
    std::vector<std::vector<int>> order(lists.size());
    for (std::size_t a = 0; a < lists.size(); ++a) {
        for (std::size_t b = 0; b < lists.size(); ++b) {
            order[a].push_back(lists[a].CompareAbs(lists[b]));
        }
    }
    for (std::size_t a = 0; a < lists.size(); ++a) {
        for (std::size_t b = 0; b < lists.size(); ++b) {
            ASSERT_EQ(a == b, order[a][b] == 0) << a << " " << b;
            ASSERT_EQ(order[a][b], -order[b][a]) << a << " " << b;
            for (std::size_t c = 0; c < lists.size(); ++c) {
                if (order[a][b] >= 0 || order[b][c] >= 0) continue;
                ASSERT_LT(order[a][c], 0) << a << " " << b << " " << c;
            }
        }
    }
}

TEST_F(RealPidl, ParentsComeBeforeWhatIsInThem) {
    for (const wchar_t* psz : kNames) {
        ASSERT_TRUE(::CreateDirectoryW(temp.File(psz).c_str(), nullptr));
        PIDL folder, file;
        Take(folder, temp.File(psz));
        Take(file, temp.MakeFile(std::wstring(psz) + L"\\" + psz, "x"));
        PIDL parent(static_cast<ITEMIDLIST*>(file));
        // All the way up for one of them, and one step for the others.
        for (unsigned nSteps = psz == kNames[0] ? file.GetCount() : 1; nSteps > 0; --nSteps) {
            parent.RemoveLast();
            EXPECT_EQ(-2, parent.CompareAbs(file));
            EXPECT_EQ(2, file.CompareAbs(parent));
            const ITEMIDLIST* pidl = file;
            for (unsigned n = parent.GetCount(); n > 0; --n) pidl = PIDL::GetNext(pidl);
            EXPECT_EQ(pidl, file.GetChildOf(parent));
            EXPECT_EQ(nullptr, parent.GetChildOf(file));
        }
        EXPECT_EQ(-2, folder.CompareAbs(file));
        EXPECT_EQ(nullptr, file.GetChildOf(file));
        EXPECT_EQ(psz, NameOf(file));
        EXPECT_EQ(psz, NameOf(folder));
    }
}

TEST_F(RealPidl, ListsOfOneFileAtTwoTimesAreEqual) {
    PIDL before, after;
    Take(before, temp.MakeFile(L"file.txt", "x"));
    temp.MakeFile(L"file.txt", std::string(5000, 'y'));
    HANDLE h = ::CreateFileW(temp.File(L"file.txt").c_str(), GENERIC_WRITE, 0, nullptr,
                             OPEN_EXISTING, 0, nullptr);
    FILETIME ft{0, 0x01C00000};
    ::SetFileTime(h, &ft, &ft, &ft);
    ::CloseHandle(h);
    Take(after, temp.File(L"file.txt"));
    ASSERT_EQ(before.GetSizeTotal(), after.GetSizeTotal());
    EXPECT_NE(BytesAt(before, before.GetSizeTotal()), BytesAt(after, after.GetSizeTotal()));
    EXPECT_EQ(0, before.CompareAbs(after));
    PIDL folder;
    Take(folder, temp.Get());
    EXPECT_NE(nullptr, before.GetChildOf(folder));
}

TEST_F(RealPidl, FoldersThatVanishedInTheMiddle) {
    std::wstring strDeep = L"a\\b\\c";
    std::filesystem::create_directories(temp.File(strDeep));
    PIDL one, two, deeper, folder;
    Take(one, temp.MakeFile(strDeep + L"\\one.txt", "x"));
    Take(two, temp.MakeFile(strDeep + L"\\two.txt", "x"));
    Take(folder, temp.File(L"a\\b"));
    deeper.CopyAll(one);
    deeper.AppendAll(two.GetLast());
    int nBefore = one.CompareAbs(two);
    EXPECT_EQ(-1, nBefore);
    std::filesystem::remove_all(temp.File(L"a"));
    EXPECT_EQ(0, one.CompareAbs(one));
    EXPECT_EQ(nBefore, one.CompareAbs(two));
    EXPECT_EQ(-nBefore, two.CompareAbs(one));
    EXPECT_EQ(2, one.CompareAbs(folder));
    EXPECT_EQ(-2, folder.CompareAbs(one));
    EXPECT_EQ(-2, one.CompareAbs(deeper));
    EXPECT_NE(nullptr, one.GetChildOf(folder));
    wchar_t sz[2000];
    EXPECT_NE(0, one.GetDisplayPath(sz, 2000));
    EXPECT_TRUE(std::wstring(sz).ends_with(L" \u00BB a \u00BB b \u00BB c \u00BB one.txt")) << sz;
    one.GetDisplayFileName(sz, 2000);
}

TEST_F(RealPidl, DisplayPathNamesEachStep) {
    PIDL drives, file;
    drives.Attach(CSIDL_DRIVES);
    Take(file, temp.MakeFile(L"\u4E2D\u6587 file.txt", "x"));
    wchar_t sz[2000] = L"?";
    EXPECT_EQ(sz[0], drives.GetDisplayPath(sz, 2000));
    std::wstring strDrives = sz;
    EXPECT_EQ(strDrives, NameOf(drives));
    EXPECT_NE(0, file.GetDisplayPath(sz, 2000));
    std::wstring strPath = sz;
    EXPECT_TRUE(strPath.starts_with(strDrives + L" \u00BB "));
    EXPECT_TRUE(strPath.ends_with(L" \u00BB \u4E2D\u6587 file.txt"));
    std::size_t nSteps = 1;
    for (std::size_t n = 0; (n = strPath.find(L" \u00BB ", n)) != strPath.npos; n += 3) ++nSteps;
    EXPECT_EQ(file.GetCount(), nSteps);
    PIDL desktop;
    desktop.Reset();
    EXPECT_NE(0, desktop.GetDisplayPath(sz, 2000));
    EXPECT_NE(L"", NameOf(desktop));
}

TEST_F(RealPidl, MakeRootCutsToTheDrive) {
    PIDL list, drive;
    Take(drive, L"C:\\");
    Take(list, L"C:\\windows\\system32\\kernel32.dll");
    list.MakeRoot();
    EXPECT_EQ(L"C:\\", PathOf(list));
    EXPECT_EQ(0, list.CompareAbs(drive));
    list.MakeRoot();
    EXPECT_EQ(L"C:\\", PathOf(list));
    PIDL drives;
    drives.Attach(CSIDL_DRIVES);
    drives.MakeRoot();
    EXPECT_EQ(kEmpty, BytesAt(drives, drives.GetSizeTotal()));
}

TEST_F(RealPidl, SpecialFoldersAreAttached) {
    PIDL list;
    EXPECT_EQ(1, list.Attach(CSIDL_WINDOWS));
    EXPECT_EQ(0, ::lstrcmpiW(L"C:\\windows", PathOf(list).c_str()));
    list.Clear();
    EXPECT_EQ(1, list.Attach(CSIDL_DESKTOP));
    EXPECT_EQ(1, list.IsEmpty());
    list.Clear();
    EXPECT_EQ(0, list.Attach(0x7FFF));
    EXPECT_EQ(nullptr, static_cast<ITEMIDLIST*>(list));
}
} // namespace
