// The reader of the reports that the tests of starting programs rely on.

#include "support/launch_reports.h"

#include <gtest/gtest.h>

namespace {
/// A report as its writer has it while it renames: there by name, and open for no other.
HANDLE hWriter = INVALID_HANDLE_VALUE;

void CALLBACK LetGo(HWND, UINT, UINT_PTR nTimer, DWORD) {
    ::KillTimer(nullptr, nTimer);
    ::CloseHandle(hWriter);
}

TEST(LaunchReports, ReportIsReadOnceItsWriterHasLetGo) {
    LaunchReports reports;
    wchar_t szTemp[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szTemp);
    hWriter =
        ::CreateFileW((std::wstring(szTemp) + L"tessaly_launch\\1.txt").c_str(),
                      GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, hWriter);
    const std::wstring str = L"1\n2\n3\nfolder\nprogram\nline\n";
    DWORD cb = 0;
    ::WriteFile(hWriter, str.data(), static_cast<DWORD>(str.size() * sizeof(wchar_t)), &cb,
                nullptr);
    constexpr UINT kHeldMs = 50;
    ASSERT_TRUE(::SetTimer(nullptr, 0, kHeldMs, LetGo));
    auto report = reports.Take();
    ASSERT_TRUE(report);
    EXPECT_EQ(1u, report->dwProcess);
    EXPECT_EQ(3, report->nShow);
    EXPECT_EQ(L"line", report->strLine);
    EXPECT_TRUE(reports.IsEmpty());
}
} // namespace
