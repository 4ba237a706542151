#include "runtime/threads/synch.h"
#include "support/replace_import.h"
#include "support/told_version.h"

#include <aclapi.h>
#include <sddl.h>
#include <gtest/gtest.h>
#include <array>
#include <string>
#include <thread>
#include <vector>

extern "C" FARPROC __imp_CreateMutexW;

namespace {
// Objects that are opened by name, and events

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
    // (Not QS_PAINT: a window that the platform keeps for the thread may have to be painted.)
    EXPECT_EQ(0, event.MsgWait(1, QS_HOTKEY));
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), event.GetLastWaitResult());
    event.Set();
    EXPECT_EQ(1, event.MsgWait(0, QS_HOTKEY));
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
        } else { // all, as it was asked for or as what that is for an event
            EXPECT_TRUE(pAllowed->Mask == GENERIC_ALL || pAllowed->Mask == EVENT_ALL_ACCESS);
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

// Events under exactly the name given

bool IsSignalled(HANDLE h) { return ::WaitForSingleObject(h, 0) == WAIT_OBJECT_0; }

TEST(EventSimple, DefaultIsUnnamedAutomaticAndNotSet) {
    EventSimple event;
    EXPECT_EQ(1, event.IsReady());
    EXPECT_EQ(0, event.HasExisted());
    EXPECT_FALSE(IsSignalled(event));
    event.Set();
    EXPECT_TRUE(IsSignalled(event));
    EXPECT_FALSE(IsSignalled(event)); // the look took it
}

TEST(EventSimple, SetZeroAndClearReset) {
    EventSimple event(nullptr, 1, 1);
    EXPECT_TRUE(IsSignalled(event));
    event.Set(0);
    EXPECT_FALSE(IsSignalled(event));
    event.Set(5);
    EXPECT_TRUE(IsSignalled(event));
    event.Clear();
    EXPECT_FALSE(IsSignalled(event));
}

TEST(EventSimple, ExistingNameGivesAHandleAndTheFlag) {
    std::wstring strName = UniqueName();
    EventSimple first(strName.c_str(), 1, 0);
    EXPECT_EQ(1, first.IsReady());
    EXPECT_EQ(0, first.HasExisted());
    EventSimple second(strName.c_str(), 1, 0);
    EXPECT_EQ(1, second.IsReady());
    EXPECT_EQ(1, second.HasExisted());
    second.Set();
    EXPECT_TRUE(IsSignalled(first));
}

TEST(EventSimple, OpenMakesAnewAndReportsTheHandle) {
    std::wstring strName = UniqueName();
    EventSimple event;
    EXPECT_EQ(1, event.Open(strName.c_str(), 1, 1));
    EXPECT_EQ(0, event.HasExisted());
    EXPECT_TRUE(IsSignalled(event));
    // The own handle is closed first, so that the same name is new again.
    EXPECT_EQ(1, event.Open(strName.c_str(), 1, 0));
    EXPECT_EQ(0, event.HasExisted());
    EXPECT_FALSE(IsSignalled(event));
}

TEST(EventSimple, OpenFailsOnANameOfAnotherKind) {
    std::wstring strName = UniqueName();
    HANDLE hMutex = ::CreateMutexW(nullptr, FALSE, strName.c_str());
    EventSimple event(strName.c_str(), 1, 0);
    EXPECT_EQ(0, event.IsReady());
    event.Set(); // nothing to set
    event.Clear();
    ::CloseHandle(hMutex);
}

TEST(EventSimple, OpenEventTellsWhetherItCouldBeOpened) {
    std::wstring strName = UniqueName();
    EventSimple opened;
    EXPECT_EQ(0, opened.OpenEventW(EVENT_ALL_ACCESS, 0, strName.c_str()));
    EXPECT_EQ(0, opened.HasExisted());
    EXPECT_EQ(0, opened.IsReady());
    EventSimple made(strName.c_str(), 1, 1);
    EXPECT_EQ(1, opened.OpenEventW(EVENT_ALL_ACCESS, 0, strName.c_str()));
    EXPECT_EQ(1, opened.HasExisted());
    EXPECT_TRUE(IsSignalled(opened));
}

// Mutexes

/// What another thread's Wait gives; it keeps the mutex if bKeep.
int WaitInThread(MyMutex& mutex, bool bKeep = false) {
    int nResult = -1;
    std::thread([&] {
        nResult = mutex.Wait(0);
        if (nResult && !bKeep) mutex.Release();
    }).join();
    return nResult;
}

TEST(MyMutex, IsNotOwnedAtFirst) {
    MyMutex mutex(0, nullptr);
    EXPECT_EQ(1, WaitInThread(mutex));
}

TEST(MyMutex, KeepsOtherThreadsOutUntilReleased) {
    MyMutex mutex(0, UniqueName().c_str());
    ASSERT_EQ(1, mutex.Wait(0));
    EXPECT_EQ(1, mutex.Wait(0)); // again by the owner
    EXPECT_EQ(0, WaitInThread(mutex));
    mutex.Release();
    EXPECT_EQ(0, WaitInThread(mutex));
    mutex.Release();
    EXPECT_EQ(1, WaitInThread(mutex));
}

TEST(MyMutex, AbandonedMutexGivesZeroOnce) {
    MyMutex mutex(0, nullptr);
    ASSERT_EQ(1, WaitInThread(mutex, true));
    EXPECT_EQ(0, mutex.Wait(0));
    EXPECT_EQ(1, mutex.Wait(0)); // it was owned all the same
    mutex.Release();
    mutex.Release();
}

TEST(MyMutex, NameSpacesAreApart) {
    std::wstring strName = UniqueName();
    MyMutex local(0, strName.c_str()), global(1, strName.c_str());
    HANDLE hLocal = ::OpenMutexW(SYNCHRONIZE, FALSE, (L"Local\\" + strName).c_str());
    HANDLE hGlobal = ::OpenMutexW(SYNCHRONIZE, FALSE, (L"Global\\" + strName).c_str());
    EXPECT_NE(nullptr, hLocal);
    EXPECT_NE(nullptr, hGlobal);
    ASSERT_EQ(1, local.Wait(0));
    EXPECT_EQ(1, WaitInThread(global));
    EXPECT_EQ(0, WaitInThread(local));
    local.Release();
    ::CloseHandle(hLocal);
    ::CloseHandle(hGlobal);
}

std::vector<std::wstring> mutexNames;
HANDLE WINAPI NoteMutex(SECURITY_ATTRIBUTES*, BOOL bOwned, LPCWSTR pszName) {
    mutexNames.push_back((bOwned ? L"owned " : L"") + std::wstring(pszName ? pszName : L"none"));
    return nullptr;
}

TEST(MyMutex, OnlySystemsWithNameSpacesGetOne) {
    ReplaceImport replaced(__imp_CreateMutexW, &NoteMutex);
    const std::array<DWORD, 3> kSystems[] = {
        {1, 4, 10}, {2, 4, 0}, {2, 5, 0}, {2, 5, 1}, {2, 10, 0}};
    for (auto [nPlatform, nMajor, nMinor] : kSystems) {
        ToldVersion told(Version(nPlatform, nMajor, nMinor, 1));
        mutexNames.clear();
        MyMutex local(0, L"name"), global(1, L"name"), unnamed(1, nullptr);
        bool bHas = nPlatform == 2 && nMajor >= 5;
        EXPECT_EQ((std::vector<std::wstring>{bHas ? L"Local\\name" : L"name",
                                             bHas ? L"Global\\name" : L"name", L"none"}),
                  mutexNames)
            << nMajor;
    }
}

TEST(MyMutex, DestructorClosesTheHandle) {
    std::wstring strName = UniqueName();
    { MyMutex mutex(0, strName.c_str()); }
    EXPECT_EQ(nullptr, ::OpenMutexW(SYNCHRONIZE, FALSE, (L"Local\\" + strName).c_str()));
}

TEST(MyMutex, WithoutAHandleWaitGivesZero) {
    std::wstring strName = UniqueName();
    HANDLE hEvent = ::CreateEventW(nullptr, TRUE, TRUE, (L"Local\\" + strName).c_str());
    MyMutex mutex(0, strName.c_str()); // the name belongs to an event
    EXPECT_EQ(nullptr, static_cast<HANDLE>(mutex));
    EXPECT_EQ(0, mutex.Wait(0));
    mutex.Release();
    ::CloseHandle(hEvent);
}
} // namespace
