#include "runtime/threads/synch.h"

#include <gtest/gtest.h>
#include <string>

namespace {
bool IsSignalled(HANDLE h) { return ::WaitForSingleObject(h, 0) == WAIT_OBJECT_0; }

std::wstring UniqueName() {
    static int n = 0;
    return L"TessalySimple" + std::to_wstring(::GetCurrentProcessId()) + L"_" +
           std::to_wstring(++n);
}

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
} // namespace
