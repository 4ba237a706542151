#include "runtime/system/elevation.h"
#include "support/runtime_lookup.h"

#include <gtest/gtest.h>
#include <string>

namespace {
DWORD ReadToken(int nInfoClass) {
    HANDLE hToken = nullptr;
    EXPECT_TRUE(::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &hToken));
    DWORD dw = 0, cb = 0;
    EXPECT_TRUE(::GetTokenInformation(hToken, static_cast<TOKEN_INFORMATION_CLASS>(nInfoClass), &dw,
                                      sizeof(dw), &cb));
    ::CloseHandle(hToken);
    return dw;
}

/// Whether the process token has the privilege on.
bool HasPrivilege(const wchar_t* pszName) {
    HANDLE hToken = nullptr;
    ::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &hToken);
    PRIVILEGE_SET set{};
    set.PrivilegeCount = 1;
    ::LookupPrivilegeValueW(nullptr, pszName, &set.Privilege[0].Luid);
    BOOL bHas = FALSE;
    ::PrivilegeCheck(hToken, &set, &bHas);
    ::CloseHandle(hToken);
    return bHas;
}

TEST(AccessToken, OpensAndGivesTheHandle) {
    AccessToken token;
    EXPECT_EQ(nullptr, static_cast<HANDLE>(token));
    ASSERT_EQ(1, token.OpenProcess(TOKEN_QUERY));
    EXPECT_NE(nullptr, static_cast<HANDLE>(token));
    ASSERT_EQ(1, token.OpenProcess(TOKEN_QUERY)); // again: the first is closed
}

TEST(Elevation, TellsWhatTheTokenTells) {
    DWORD dwType = ReadToken(18);
    EXPECT_EQ(static_cast<int>(dwType), GetElevationType());
    EXPECT_EQ(dwType != 1, IsSplitToken() == 1);
    EXPECT_EQ(ReadToken(20) != 0, IsElevated() == 1);
}

BOOL WINAPI SaysNo() { return FALSE; }
BOOL WINAPI SaysYes() { return 7; }

TEST(IsAdminXP, AsksTheShellAndIsOneWhereItCannot) {
    SetRuntimeLookup([](const wchar_t* pszModule, const char* pszName) {
        EXPECT_STREQ(L"shell32.dll", pszModule);
        EXPECT_STREQ("IsUserAnAdmin", pszName);
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SaysNo));
    });
    EXPECT_EQ(0, IsAdminXP());
    SetRuntimeLookup([](const wchar_t*, const char*) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&SaysYes));
    });
    EXPECT_EQ(1, IsAdminXP());
    SetRuntimeLookup([](const wchar_t*, const char*) -> FARPROC { return nullptr; });
    EXPECT_EQ(1, IsAdminXP());
    SetRuntimeLookup(nullptr);
    IsAdminXP(); // the real one can be called
}

TEST(EnablePrivilege, TurnsOnAndOff) {
    if (!EnablePrivilege(L"SeShutdownPrivilege", 1))
        GTEST_SKIP() << "this user may not shut the system down";
    EXPECT_TRUE(HasPrivilege(L"SeShutdownPrivilege"));
    EXPECT_EQ(1, EnablePrivilege(L"SeShutdownPrivilege", 0));
    EXPECT_FALSE(HasPrivilege(L"SeShutdownPrivilege"));
    EXPECT_EQ(1, SetupExitToken());
    EXPECT_TRUE(HasPrivilege(L"SeShutdownPrivilege"));
}

TEST(EnablePrivilege, FailsForWhatTheProcessDoesNotHave) {
    EXPECT_EQ(0, EnablePrivilege(L"SeNoSuchPrivilege", 1));
    EXPECT_EQ(0, EnablePrivilege(nullptr, 1));
    // A privilege that exists but was taken out of the token.
    AccessToken token;
    ASSERT_EQ(1, token.OpenProcess(TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY));
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_REMOVED;
    ASSERT_TRUE(
        ::LookupPrivilegeValueW(nullptr, L"SeSystemtimePrivilege", &privileges.Privileges[0].Luid));
    ASSERT_TRUE(::AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr));
    EXPECT_EQ(0, EnablePrivilege(L"SeSystemtimePrivilege", 1));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NOT_ALL_ASSIGNED), ::GetLastError());
}

TEST(MyDuplicateTokenEx, GivesATokenOfItsOwn) {
    AccessToken token;
    ASSERT_EQ(1, token.OpenProcess(TOKEN_DUPLICATE | TOKEN_QUERY));
    HANDLE hNew = nullptr;
    ASSERT_EQ(1, MyDuplicateTokenEx(token, MAXIMUM_ALLOWED, nullptr, SecurityImpersonation,
                                    TokenPrimary, &hNew));
    AccessToken copy(hNew);
    EXPECT_NE(static_cast<HANDLE>(token), static_cast<HANDLE>(copy));
    EXPECT_EQ(0, MyDuplicateTokenEx(nullptr, MAXIMUM_ALLOWED, nullptr, SecurityImpersonation,
                                    TokenPrimary, &hNew));
}
} // namespace
