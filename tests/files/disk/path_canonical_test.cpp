#include "files/disk/path_home.h"
#include "files/path_support.h"
#include "runtime/base/current_product.h"
#include "store/reg_tree.h"

#include <gtest/gtest.h>

namespace {
constexpr const wchar_t* kSetup = L"Tessaly\\Setup";

class CanonicalTest : public testing::Test {
  protected:
    CanonicalTest() {
        wchar_t sz[MAX_PATH];
        ::GetSystemDirectoryW(sz, MAX_PATH);
        strSystem = sz;
        ::GetWindowsDirectoryW(sz, MAX_PATH);
        strWindows = sz;
        StoreHome(L"D:\\The Home");
    }
    void StoreHome(const std::wstring& str) const { maker.PutStr(L"Home", str, kSetup); }
    static std::wstring Make(const std::wstring& str) {
        PathBuffer out;
        MakeCanonicalPath(str.c_str(), out);
        return out.Str();
    }
    static std::wstring Back(const std::wstring& str, int nExpected = 1) {
        PathBuffer out(L"before");
        EXPECT_EQ(nExpected, GetPathFromCanonical(str.c_str(), out));
        return out.Str();
    }
    static std::wstring Upper(std::wstring str) {
        ::CharUpperW(str.data());
        return str;
    }
    RegTree maker{HKEY_LOCAL_MACHINE, L"Software\\Orvanta"};
    RegTree former{HKEY_LOCAL_MACHINE, L"Software\\Quenby"};
    std::wstring strSystem, strWindows;
};
using MakeCanonicalPathTest = CanonicalTest;
using GetPathFromCanonicalTest = CanonicalTest;

TEST_F(MakeCanonicalPathTest, FilesInTheThreeFolders) {
    EXPECT_EQ(L"%S\\a.dll", Make(strSystem + L"\\a.dll"));
    EXPECT_EQ(L"%W\\notepad.exe", Make(strWindows + L"\\notepad.exe"));
    EXPECT_EQ(L"%_\\a b.txt", Make(L"D:\\The Home\\a b.txt"));
    EXPECT_EQ(L"%W\\a", Make(Upper(strWindows) + L"/a"));
    EXPECT_EQ(L"%_\\a", Make(L"d:\\THE HOME\\a"));
    // Behind two separators it is another folder's text.
    EXPECT_EQ(strWindows + L"\\\\a", Make(strWindows + L"\\\\a"));
}

TEST_F(MakeCanonicalPathTest, FirstHitCounts) {
    StoreHome(strWindows);
    EXPECT_EQ(L"%W\\a", Make(strWindows + L"\\a"));
    StoreHome(strSystem + L"\\"); // with a separator it is the same folder
    EXPECT_EQ(L"%S\\a", Make(strSystem + L"\\a"));
    StoreHome(L"D:\\x\\");
    EXPECT_EQ(L"%_\\a", Make(L"D:\\x\\a"));
    StoreHome(L"D:\\");
    EXPECT_EQ(L"%_\\a", Make(L"D:\\a"));
}

TEST_F(MakeCanonicalPathTest, OtherPathsAreCopied) {
    for (const std::wstring& str :
         {std::wstring(), std::wstring(L"a"), std::wstring(L"C:"), std::wstring(L"C:\\x"),
          std::wstring(L"D:\\The Home"), std::wstring(L"D:\\The Home\\x\\y"), strWindows + L"x\\a",
          std::wstring(L"%S\\a"), std::wstring(L"\\\\server\\share\\a"), strWindows}) {
        EXPECT_EQ(str, Make(str));
    }
}

TEST_F(MakeCanonicalPathTest, FolderInTheWindowsFolderIsAFileThere) {
    // A path's own folder is asked for, so that the system folder's name lies in the Windows one.
    EXPECT_EQ(L"%W\\system32", Make(strSystem));
}

TEST_F(MakeCanonicalPathTest, NameAloneLiesInNoHomeThatIsUnknown) {
    StoreHome(L"");
    HINSTANCE hinstBefore = GetLibraryInstance();
    SetLibraryInstance(reinterpret_cast<HINSTANCE>(0x123450000)); // no module: no folder either
    EXPECT_EQ(L"a", Make(L"a"));
    EXPECT_EQ(L"\\a", Back(L"%_\\a"));
    SetLibraryInstance(hinstBefore);
}

TEST_F(MakeCanonicalPathTest, FolderWithASeparatorLiesInItself) {
    EXPECT_EQ(L"%W\\windows", Make(L"C:\\windows\\"));
    EXPECT_EQ(L"%_\\The Home", Make(L"D:\\The Home\\"));
    EXPECT_EQ(L"%_\\The Home", Make(L"D:\\The Home/"));
}

TEST_F(MakeCanonicalPathTest, NullsAndInPlace) {
    PathBuffer out(L"before");
    MakeCanonicalPath(nullptr, out);
    EXPECT_EQ(L"", out.Str());
    MakeCanonicalPath(L"x", nullptr);
    out.Set(strWindows + L"\\x");
    MakeCanonicalPath(out, out);
    EXPECT_EQ(L"%W\\x", out.Str());
}

TEST_F(MakeCanonicalPathTest, Limits) {
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring str = strWindows + L"\\" + std::wstring(cch - strWindows.size() - 1, L'n');
        EXPECT_EQ(L"%W\\" + str.substr(0, 259).substr(strWindows.size() + 1), Make(str));
        std::wstring strOther = L"Q:\\" + std::wstring(cch - 3, L'n');
        EXPECT_EQ(strOther.substr(0, 259), Make(strOther));
    }
}

TEST_F(GetPathFromCanonicalTest, TheThreeFolders) {
    EXPECT_EQ(strSystem + L"\\a.dll", Back(L"%S\\a.dll"));
    EXPECT_EQ(strWindows + L"\\notepad.exe", Back(L"%W\\notepad.exe"));
    EXPECT_EQ(L"D:\\The Home\\a b", Back(L"%_\\a b"));
    EXPECT_EQ(strWindows + L"\\a", Back(L"%W/a"));
    EXPECT_EQ(strWindows + L"\\a", Back(L"%Wa"));
    EXPECT_EQ(strWindows + L"\\\\a", Back(L"%W\\\\a")); // one separator is passed over
    EXPECT_EQ(strWindows + L"\\", Back(L"%W"));
    EXPECT_EQ(strWindows + L"\\", Back(L"%W\\"));
}

TEST_F(GetPathFromCanonicalTest, HomeThatIsARootHasItsSeparator) {
    StoreHome(L"D:\\");
    EXPECT_EQ(L"D:\\a", Back(L"%_\\a"));
}

TEST_F(GetPathFromCanonicalTest, OtherLettersStandForNothing) {
    EXPECT_EQ(L"\\a", Back(L"%X\\a"));
    EXPECT_EQ(L"\\a", Back(L"%s\\a")); // case counts
    EXPECT_EQ(L"\\a", Back(L"%wa"));
    EXPECT_EQ(L"\\TEMP%", Back(L"%%TEMP%"));
    EXPECT_EQ(L"\\", Back(L"%"));
    EXPECT_EQ(L"\\", Back(L"%X"));
}

TEST_F(GetPathFromCanonicalTest, OtherTextsAreCopied) {
    for (const wchar_t* psz : {L"C:\\x", L"", L"a%W\\b", L"x", L" %W\\a"})
        EXPECT_EQ(psz, Back(psz, 0));
    PathBuffer out(L"before");
    EXPECT_EQ(0, GetPathFromCanonical(nullptr, out));
    EXPECT_EQ(L"", out.Str());
    EXPECT_EQ(0, GetPathFromCanonical(L"%W\\x", nullptr));
}

TEST_F(GetPathFromCanonicalTest, WorksInPlaceAndTurnsBack) {
    PathBuffer text(L"%S\\x.dll");
    EXPECT_EQ(1, GetPathFromCanonical(text, text));
    EXPECT_EQ(strSystem + L"\\x.dll", text.Str());
    MakeCanonicalPath(text, text);
    EXPECT_EQ(L"%S\\x.dll", text.Str());
}

TEST_F(GetPathFromCanonicalTest, WhatDoesNotFitIsCut) {
    for (std::size_t cch : {259u, 260u, 261u}) {
        std::wstring strName(cch - strWindows.size() - 1, L'n');
        EXPECT_EQ((strWindows + L"\\" + strName).substr(0, 259), Back(L"%W\\" + strName));
        EXPECT_EQ(std::wstring(259, L'x'), Back(std::wstring(cch, L'x'), 0));
    }
}

// Random texts. Each call that may name the home folder reads the registry, so there are fewer.

TEST_F(GetPathFromCanonicalTest, RandomTexts) {
    RandomPaths random(8101);
    GuardedArea in(300 * sizeof(wchar_t));
    PathBuffer out;
    for (int i = 0; i < kRandomInputs; ++i) {
        std::wstring str = random.Next();
        if (random.Below(4) == 0) str = L"%" + str;
        if (random.Below(8) == 0) str = (random.Below(2) ? L"%W" : L"%S") + str;
        out.Set(L"before");
        int nResult = GetPathFromCanonical(in.Put(str), out);
        std::wstring strOut = out.Str();
        ASSERT_LT(strOut.size(), 260u);
        ASSERT_EQ(!str.empty() && str[0] == L'%', nResult);
        if (!nResult) {
            ASSERT_EQ(str.substr(0, 259), strOut);
        } else {
            ASSERT_NE(std::wstring::npos, strOut.find(L'\\'));
        }
    }
}

TEST_F(MakeCanonicalPathTest, RandomPaths) {
    RandomPaths random(8102);
    GuardedArea in(300 * sizeof(wchar_t));
    PathBuffer out;
    for (int i = 0; i < 3000; ++i) {
        std::wstring str = random.Next();
        if (random.Below(3) == 0) str = strWindows + L"\\" + str;
        out.Set(L"before");
        MakeCanonicalPath(in.Put(str), out);
        std::wstring strOut = out.Str();
        ASSERT_LT(strOut.size(), 260u);
        if (strOut.substr(0, 3) == L"%W\\" && str.substr(0, 3) != L"%W\\") {
            ASSERT_TRUE(str.starts_with(strWindows));
            ASSERT_EQ(std::wstring::npos, strOut.find_first_of(L"\\/:", 3));
        } else {
            ASSERT_EQ(str.substr(0, 259), strOut);
        }
    }
}
} // namespace
