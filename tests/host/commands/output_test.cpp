#include "host/commands/output.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_AttachConsole, __imp_FreeConsole, __imp_GetConsoleMode;

namespace {
HANDLE hOfConsole = nullptr; // what stands for the console's own handle
int nFreed = 0;

/// A console is attached, and its handle put in the place of both outputs, as the platform does
/// with those that were handed down without being named.
BOOL WINAPI AttachAndReplace(DWORD) {
    ::SetStdHandle(STD_OUTPUT_HANDLE, hOfConsole);
    ::SetStdHandle(STD_ERROR_HANDLE, hOfConsole);
    return TRUE;
}

BOOL WINAPI Free() {
    ++nFreed;
    return TRUE;
}

BOOL WINAPI IsTheConsoles(HANDLE h, DWORD*) { return h == hOfConsole; }

class Output : public testing::Test {
  protected:
    void SetUp() override {
        hOutput = Open(L"out.txt");
        hError = Open(L"err.txt");
        hOfConsole = Open(L"console.txt");
        nFreed = 0;
        ::SetStdHandle(STD_OUTPUT_HANDLE, hOutput);
        ::SetStdHandle(STD_ERROR_HANDLE, hError);
    }
    void TearDown() override {
        ::SetStdHandle(STD_OUTPUT_HANDLE, hOutputBefore);
        ::SetStdHandle(STD_ERROR_HANDLE, hErrorBefore);
        for (HANDLE h : {hOutput, hError, hOfConsole}) ::CloseHandle(h);
    }
    HANDLE Open(const wchar_t* pszName) {
        return ::CreateFileW(folder.File(pszName).c_str(), GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, 0,
                             nullptr);
    }

    TempFolder folder;
    HANDLE hOutputBefore = ::GetStdHandle(STD_OUTPUT_HANDLE);
    HANDLE hErrorBefore = ::GetStdHandle(STD_ERROR_HANDLE);
    HANDLE hOutput = nullptr, hError = nullptr;
    ReplaceImport attach{__imp_AttachConsole, &AttachAndReplace};
    ReplaceImport release{__imp_FreeConsole, &Free};
    ReplaceImport mode{__imp_GetConsoleMode, &IsTheConsoles};
};

TEST_F(Output, GoesToTheFilesOfTheStartAlsoWhereAConsoleTakesTheirPlace) {
    TellUser(L"one", false, false);
    TellUser(L"two\nlines", false, false); // also a second time
    TellUser(L"wrong", true, true);
    EXPECT_EQ("one\r\ntwo\r\nlines\r\n", folder.ReadFile(L"out.txt"));
    EXPECT_EQ("wrong\r\n", folder.ReadFile(L"err.txt"));
    EXPECT_EQ("", folder.ReadFile(L"console.txt"));
    EXPECT_EQ(3, nFreed);
    EXPECT_EQ(hOutput, ::GetStdHandle(STD_OUTPUT_HANDLE));
    EXPECT_EQ(hError, ::GetStdHandle(STD_ERROR_HANDLE));
}

TEST_F(Output, OfWhatFailedGoesToTheOutputsFileIfThereIsNoneOfItsOwn) {
    ::SetStdHandle(STD_ERROR_HANDLE, nullptr);
    TellUser(L"wrong", true, true);
    EXPECT_EQ("wrong\r\n", folder.ReadFile(L"out.txt"));
    EXPECT_EQ("", folder.ReadFile(L"console.txt"));
}
} // namespace
