#include "app/launch/open_html.h"
#include "support/guard_page.h"
#include "support/launch_reports.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <string>

namespace {
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
