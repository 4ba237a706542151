#include "runtime/system/elevation.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"
#include "support/told_version.h"

#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_GetTokenInformation;

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
    HANDLE hFirst = token;
    EXPECT_NE(nullptr, hFirst);
    DWORD dwFlags = 0;
    EXPECT_TRUE(::GetHandleInformation(hFirst, &dwFlags));
    ASSERT_EQ(1, token.OpenProcess(TOKEN_QUERY)); // again: the first is closed
    EXPECT_TRUE(token == hFirst || !::GetHandleInformation(hFirst, &dwFlags));
    EXPECT_TRUE(::GetHandleInformation(token, &dwFlags));
}

TEST(Elevation, TellsWhatTheTokenTells) {
    DWORD dwType = ReadToken(18);
    EXPECT_EQ(static_cast<int>(dwType), GetElevationType());
    EXPECT_EQ(dwType != 1, IsSplitToken() == 1);
    EXPECT_EQ(ReadToken(20) != 0, IsElevated() == 1);
}

DWORD nToldType, nToldElevation;
BOOL bTokenTells;
BOOL WINAPI TellOfToken(HANDLE, TOKEN_INFORMATION_CLASS nClass, LPVOID p, DWORD cb, DWORD* pcb) {
    bool bKnown = nClass == static_cast<TOKEN_INFORMATION_CLASS>(18) ||
                  nClass == static_cast<TOKEN_INFORMATION_CLASS>(20);
    if (!bTokenTells || !bKnown || cb < sizeof(DWORD)) return FALSE;
    *static_cast<DWORD*>(p) =
        nClass == static_cast<TOKEN_INFORMATION_CLASS>(18) ? nToldType : nToldElevation;
    *pcb = sizeof(DWORD);
    return TRUE;
}

TEST(Elevation, TypeAndElevationAreToldApart) {
    ReplaceImport replaced(__imp_GetTokenInformation, &TellOfToken);
    bTokenTells = TRUE;
    for (DWORD nType : {1u, 2u, 3u}) { // default, full, limited
        for (DWORD nElevation : {0u, 1u, 5u}) {
            nToldType = nType;
            nToldElevation = nElevation;
            EXPECT_EQ(static_cast<int>(nType), GetElevationType());
            EXPECT_EQ(nType != 1 ? 1 : 0, IsSplitToken());
            EXPECT_EQ(nElevation ? 1 : 0, IsElevated());
        }
    }
}

TEST(Elevation, TokenThatCannotBeReadIsOfTheDefaultType) {
    ReplaceImport replaced(__imp_GetTokenInformation, &TellOfToken);
    bTokenTells = FALSE;
    EXPECT_EQ(1, GetElevationType());
    EXPECT_EQ(0, IsSplitToken());
    EXPECT_EQ(0, IsElevated());
}

BOOL WINAPI SaysNo() { return FALSE; }
BOOL WINAPI SaysYes() { return 7; }

TEST(IsAdminXP, AsksTheShellAndIsOneWhereItCannot) {
    {
        ReplaceFunctions no{{{"IsUserAnAdmin", AsProc(&SaysNo)}}};
        EXPECT_EQ(0, IsAdminXP());
    }
    {
        ReplaceFunctions yes{{{"IsUserAnAdmin", AsProc(&SaysYes)}}};
        EXPECT_EQ(1, IsAdminXP());
    }
    {
        HideFunctions hide{"IsUserAnAdmin"};
        EXPECT_EQ(1, IsAdminXP());
    }
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

TEST(EnablePrivilege, OutsideTheFamilyOnlyTheExitNeedsNone) {
    ToldVersion told(Version(1, 4, 10, 1));
    EXPECT_EQ(0, EnablePrivilege(L"SeChangeNotifyPrivilege", 1));
    EXPECT_EQ(1, SetupExitToken());
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
