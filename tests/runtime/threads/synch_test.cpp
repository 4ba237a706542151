#include "runtime/threads/synch.h"

#include <gtest/gtest.h>
#include <sddl.h>
#include <aclapi.h>
#include <string>

namespace {
/// A name that no other run of the tests uses.
std::wstring UniqueName(const wchar_t* pszTail = L"") {
    static int n = 0;
    return L"TessalyTest" + std::to_wstring(::GetCurrentProcessId()) + L"_" + std::to_wstring(++n) +
           pszTail;
}

class SynchProbe : public Synch {
  public:
    SynchProbe() : Synch(3) {}
    ~SynchProbe() { Close(); }
    using Synch::nKind;
    using Synch::PrepareName;
    HANDLE OpenByBase() { return Synch::Win32_Open(EVENT_ALL_ACCESS, 0, L"any"); }
    HANDLE Win32_Open(DWORD, int, const wchar_t* pszName) override {
        bNamed = pszName != nullptr;
        strName = pszName ? pszName : L"";
        return nullptr;
    }
    bool bNamed = true;
    std::wstring strName;
};

TEST(Synch, PrepareNamePutsTheNameSpaceBefore) {
    wchar_t sz[260];
    EXPECT_STREQ(L"Global\\abc", SynchProbe::PrepareName(sz, 260, L"abc", 1));
    EXPECT_STREQ(L"Local\\abc", SynchProbe::PrepareName(sz, 260, L"abc", 0));
    EXPECT_STREQ(L"Global\\", SynchProbe::PrepareName(sz, 260, L"", -1));
}

TEST(Synch, PrepareNameWithoutANameEmptiesTheBuffer) {
    wchar_t sz[8] = L"before";
    EXPECT_EQ(nullptr, SynchProbe::PrepareName(sz, 8, nullptr, 1));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(nullptr, SynchProbe::PrepareName(nullptr, 0, nullptr, 1));
}

TEST(Synch, PrepareNameCutsAtTheBuffer) {
    wchar_t sz[10];
    EXPECT_STREQ(L"Local\\abc", SynchProbe::PrepareName(sz, 10, L"abc", 0));
    EXPECT_STREQ(L"Local\\abc", SynchProbe::PrepareName(sz, 10, L"abcd", 0));
    wchar_t szLong[260];
    SynchProbe::PrepareName(szLong, 260, std::wstring(300, L'x').c_str(), 1);
    EXPECT_EQ(259u, wcslen(szLong));
}

TEST(Synch, BaseOpensNothing) { EXPECT_EQ(nullptr, SynchProbe().OpenByBase()); }

TEST(Synch, OpenGivesTheFullNameToTheDerivedClass) {
    SynchProbe probe;
    EXPECT_EQ(0, probe.Open(L"one", 1, SYNCHRONIZE, 0));
    EXPECT_EQ(L"Global\\one", probe.strName);
    EXPECT_EQ(0, probe.Open(nullptr, 1, SYNCHRONIZE, 0));
    EXPECT_FALSE(probe.bNamed);
    EXPECT_EQ(3, probe.nKind);
}

TEST(Event, WithoutAHandleNothingHappens) {
    Event event;
    EXPECT_EQ(nullptr, static_cast<HANDLE>(event));
    event.Set();
    event.Clear();
    event.Pulse();
    EXPECT_EQ(0, event.Wait(0));
    EXPECT_EQ(WAIT_FAILED, event.GetLastWaitResult());
    EXPECT_EQ(0, event.IsSet());
    event.Close();
}

TEST(Event, WaitStoresItsResult) {
    Event event;
    ASSERT_EQ(1, event.CreateOrOpen(nullptr, 0, 1, 0));
    EXPECT_EQ(0, event.Wait(1));
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), event.GetLastWaitResult());
    event.Set();
    EXPECT_EQ(1, event.Wait(0));
    EXPECT_EQ(WAIT_OBJECT_0, event.GetLastWaitResult());
    event.Clear();
    EXPECT_EQ(0, event.IsSet());
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), event.GetLastWaitResult());
}

TEST(Event, InitialStateAndKindAreAsAsked) {
    Event manual, automatic;
    ASSERT_EQ(1, manual.CreateOrOpen(nullptr, 0, 1, 1));
    EXPECT_EQ(1, manual.IsSet());
    EXPECT_EQ(1, manual.IsSet());
    ASSERT_EQ(1, automatic.CreateOrOpen(nullptr, 0, 0, 1));
    EXPECT_EQ(1, automatic.IsSet());
    EXPECT_EQ(0, automatic.IsSet());
}

TEST(Event, PulseLeavesTheEventClear) {
    Event event;
    ASSERT_EQ(1, event.CreateOrOpen(nullptr, 0, 1, 1));
    event.Pulse();
    EXPECT_EQ(0, event.IsSet());
}

TEST(Event, MsgWaitEndsWithInput) {
    Event event;
    ASSERT_EQ(1, event.CreateOrOpen(nullptr, 0, 1, 0));
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    }
    ASSERT_TRUE(::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0));
    EXPECT_EQ(0, event.MsgWait(5000, QS_POSTMESSAGE));
    EXPECT_EQ(WAIT_OBJECT_0 + 1, event.GetLastWaitResult());
    EXPECT_EQ(0, event.MsgWait(1, QS_PAINT));
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), event.GetLastWaitResult());
    event.Set();
    EXPECT_EQ(1, event.MsgWait(0, QS_PAINT));
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
    }
}

TEST(Event, OpenFindsTheEventOfTheSameNameSpace) {
    std::wstring strName = UniqueName();
    for (int bGlobal : {0, 1}) {
        Event made, opened, other;
        ASSERT_EQ(1, made.CreateNew(strName.c_str(), bGlobal, 1, 0));
        EXPECT_EQ(0, other.Open(strName.c_str(), !bGlobal, EVENT_ALL_ACCESS, 0));
        EXPECT_EQ(nullptr, static_cast<HANDLE>(other));
        ASSERT_EQ(1, opened.Open(strName.c_str(), bGlobal, EVENT_ALL_ACCESS, 0));
        opened.Set();
        EXPECT_EQ(1, made.IsSet());
    }
}

TEST(Event, FailedOpenGivesUpWhatWasOpen) {
    Event event;
    ASSERT_EQ(1, event.CreateOrOpen(nullptr, 0, 1, 0));
    EXPECT_EQ(0, event.Open(UniqueName().c_str(), 0, EVENT_ALL_ACCESS, 0));
    EXPECT_EQ(nullptr, static_cast<HANDLE>(event));
}

TEST(Event, CreateOrOpenTakesAnExistingOneCreateNewDoesNot) {
    std::wstring strName = UniqueName();
    Event first, second, third;
    ASSERT_EQ(1, first.CreateNew(strName.c_str(), 0, 1, 0));
    EXPECT_EQ(1, second.CreateOrOpen(strName.c_str(), 0, 1, 0));
    EXPECT_EQ(0, third.CreateNew(strName.c_str(), 0, 1, 0));
    EXPECT_EQ(nullptr, static_cast<HANDLE>(third));
    first.Close();
    second.Close();
    EXPECT_EQ(1, third.CreateNew(strName.c_str(), 0, 1, 0)); // nobody held it open any more
}

TEST(Event, CreateFailsOnANameOfAnotherKind) {
    std::wstring strName = UniqueName();
    HANDLE hMutex = ::CreateMutexW(nullptr, FALSE, (L"Local\\" + strName).c_str());
    Event event;
    EXPECT_EQ(0, event.CreateOrOpen(strName.c_str(), 0, 1, 0));
    EXPECT_EQ(0, event.CreateNew(strName.c_str(), 0, 1, 0));
    ::CloseHandle(hMutex);
}

TEST(Event, CreateNewForUserGivesTheDescriptor) {
    std::wstring strName = UniqueName();
    Event event;
    ASSERT_EQ(1, event.CreateNewForUser(strName.c_str(), 0, L"S-1-5-32-545", 0x100002, 1, 1));
    EXPECT_EQ(1, event.IsSet());
    DWORD dwFlags = 0;
    ASSERT_TRUE(::GetHandleInformation(event, &dwFlags));
    EXPECT_EQ(static_cast<DWORD>(HANDLE_FLAG_INHERIT), dwFlags & HANDLE_FLAG_INHERIT);

    PACL pDacl = nullptr;
    PSECURITY_DESCRIPTOR pDescriptor = nullptr;
    ASSERT_EQ(static_cast<DWORD>(ERROR_SUCCESS),
              ::GetSecurityInfo(event, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                nullptr, &pDacl, nullptr, &pDescriptor));
    ASSERT_NE(nullptr, pDacl);
    ASSERT_EQ(2, pDacl->AceCount);
    const wchar_t* const kSids[] = {L"S-1-5-32-545", L"S-1-5-19"};
    for (DWORD i = 0; i < 2; ++i) {
        void* pAce = nullptr;
        ASSERT_TRUE(::GetAce(pDacl, i, &pAce));
        auto* pAllowed = static_cast<ACCESS_ALLOWED_ACE*>(pAce);
        LPWSTR pszSid = nullptr;
        ASSERT_TRUE(::ConvertSidToStringSidW(&pAllowed->SidStart, &pszSid));
        EXPECT_STREQ(kSids[i], pszSid);
        ::LocalFree(pszSid);
        if (i == 0) {
            EXPECT_EQ(0x100002u, pAllowed->Mask);
        }
    }
    ::LocalFree(pDescriptor);
}

TEST(Event, CreateNewForUserFailsForBadSidsAndExistingNames) {
    std::wstring strName = UniqueName();
    Event event;
    EXPECT_EQ(0, event.CreateNewForUser(strName.c_str(), 0, L"nobody", 2, 1, 0));
    EXPECT_EQ(0, event.CreateNewForUser(strName.c_str(), 0, nullptr, 2, 1, 0));
    EXPECT_EQ(0,
              event.CreateNewForUser(strName.c_str(), 0, std::wstring(300, L'S').c_str(), 2, 1, 0));
    EXPECT_EQ(nullptr, static_cast<HANDLE>(event));
    Event first;
    ASSERT_EQ(1, first.CreateNewForUser(strName.c_str(), 0, L"S-1-5-32-545", 0x1F0003, 1, 0));
    EXPECT_EQ(0, event.CreateNewForUser(strName.c_str(), 0, L"S-1-5-32-545", 0x1F0003, 1, 0));
    EXPECT_EQ(nullptr, static_cast<HANDLE>(event));
}
} // namespace
