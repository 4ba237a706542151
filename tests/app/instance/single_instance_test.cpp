#include "app/instance/single_instance.h"
#include "app/instance_process.h"

#include <gtest/gtest.h>
#include <string>

namespace {
TEST(SingleInstanceXP, SecondProcessOfTheNameIsNotTheFirst) {
    for (int bGlobal : {0, 1}) {
        std::wstring strName = UniqueInstanceName();
        {
            InstanceProcess first(bGlobal, strName);
            EXPECT_EQ(1, first.nAnswer);
            InstanceProcess second(bGlobal, strName);
            EXPECT_EQ(0, second.nAnswer);
            SingleInstanceXP here;
            EXPECT_EQ(0, here.IsFirstInstance(bGlobal, strName.c_str()));
            InstanceProcess foreign(bGlobal, strName + L"x");
            EXPECT_EQ(1, foreign.nAnswer);
        }
        InstanceProcess later(bGlobal, strName); // the mark went with its process
        EXPECT_EQ(1, later.nAnswer);
    }
}

TEST(SingleInstanceXP, GlobalAndLocalDoNotSeeEachOther) {
    std::wstring strName = UniqueInstanceName();
    InstanceProcess local(0, strName);
    InstanceProcess global(1, strName);
    EXPECT_EQ(1, local.nAnswer);
    EXPECT_EQ(1, global.nAnswer);
}

TEST(SingleInstanceXP, MarkHasTheProductsName) {
    std::wstring strName = UniqueInstanceName();
    SingleInstanceXP instance;
    ASSERT_EQ(1, instance.IsFirstInstance(1, strName.c_str()));
    HANDLE h = ::OpenEventW(SYNCHRONIZE, FALSE, (L"Global\\Orvanta_App_" + strName).c_str());
    EXPECT_NE(nullptr, h);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), ::WaitForSingleObject(h, 0));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, AskedAgainTheFirstStaysTheFirst) {
    std::wstring strName = UniqueInstanceName();
    SingleInstanceXP instance;
    EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
    EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkGoesWithTheObject) {
    std::wstring strName = UniqueInstanceName();
    { EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str())); }
    EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkThatCannotBeMadeGivesZero) {
    std::wstring strName = UniqueInstanceName();
    HANDLE h = ::CreateMutexW(nullptr, FALSE, (L"Local\\Orvanta_App_" + strName).c_str());
    EXPECT_EQ(0, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, LongNamesAreCut) {
    std::wstring strLong(300, L'n');
    SingleInstanceXP instance, other;
    EXPECT_EQ(1, instance.IsFirstInstance(0, strLong.c_str()));
    EXPECT_EQ(0, other.IsFirstInstance(0, (strLong + L"x").c_str()));
    EXPECT_EQ(1, other.IsFirstInstance(0, nullptr));
}
} // namespace
