#pragma once
// What stands before the examples of docs/library.md. The library's header comes first: it must
// need nothing in front of it.
#include <tessaly.h>

#include "support/message_box_driver.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>
#include <cwchar>
#include <string>

// In an example, assert is a check of the test.
#undef assert
#define assert(...) EXPECT_TRUE((__VA_ARGS__))

/// Each example runs in an empty folder of its own; message boxes are answered with OK.
class LibraryPage : public testing::Test {
  protected:
    LibraryPage() : driver(std::vector<int>(8, IDOK)) {
        wchar_t szTemp[MAX_PATH];
        ::GetTempPathW(MAX_PATH, szTemp);
        ::GetCurrentDirectoryW(MAX_PATH, szBefore);
        static int nFolder = 0;
        strFolder = szTemp + (L"TessalyExample" + std::to_wstring(::GetCurrentProcessId())) + L"_" +
                    std::to_wstring(++nFolder);
        EXPECT_TRUE(::CreateDirectoryW(strFolder.c_str(), nullptr));
        EXPECT_TRUE(::SetCurrentDirectoryW(strFolder.c_str()));
    }
    ~LibraryPage() override {
        WIN32_FIND_DATAW data;
        HANDLE h = ::FindFirstFileW(L"*", &data);
        for (int bMore = h != INVALID_HANDLE_VALUE; bMore; bMore = ::FindNextFileW(h, &data))
            ::DeleteFileW(data.cFileName);
        ::FindClose(h);
        ::SetCurrentDirectoryW(szBefore);
        // A program that an example started may still be there.
        EXPECT_TRUE(WaitUntil([this] { return ::RemoveDirectoryW(strFolder.c_str()) != 0; }))
            << "an example left something open";
    }

  private:
    std::wstring strFolder;
    wchar_t szBefore[MAX_PATH];
    MessageBoxDriver driver;
};
