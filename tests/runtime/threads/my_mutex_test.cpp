#include "runtime/threads/synch.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {
std::wstring UniqueName() {
    static int n = 0;
    return L"TessalyMutex" + std::to_wstring(::GetCurrentProcessId()) + L"_" + std::to_wstring(++n);
}

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
