#include "runtime/system/system_facts.h"

#include <gtest/gtest.h>
#include <ctime>

namespace {
FILETIME TimeOf(WORD wYear, WORD wMonth, WORD wDay, WORD wHour = 0, WORD wSecond = 0) {
    SYSTEMTIME st{wYear, wMonth, 0, wDay, wHour, 0, wSecond, 0};
    FILETIME ft{};
    EXPECT_TRUE(::SystemTimeToFileTime(&st, &ft));
    return ft;
}

TEST(GetProductTime, CountsFromTheProductsFirstDay) {
    EXPECT_EQ(0u, GetProductTime(TimeOf(1995, 12, 26)));
    EXPECT_EQ(1u, GetProductTime(TimeOf(1995, 12, 26, 0, 1)));
    EXPECT_EQ(86400u, GetProductTime(TimeOf(1995, 12, 27)));
    EXPECT_EQ(946684800u - 819936000u, GetProductTime(TimeOf(2000, 1, 1)));
    EXPECT_EQ(0xFFFFFFFFu, GetProductTime(TimeOf(1995, 12, 25, 23, 59)) + 3540); // 32 bits
}

TEST(GetCurTime, IsNow) {
    auto nUnix = static_cast<unsigned long long>(std::time(nullptr));
    DWORD dwNow = GetCurTime();
    EXPECT_GE(dwNow, static_cast<DWORD>(nUnix - 819936000 - 1));
    EXPECT_LE(dwNow, static_cast<DWORD>(nUnix - 819936000 + 5));
}

TEST(GetSysFileTime, IsNowInUtc) {
    FILETIME ft{}, ftBefore{};
    ::GetSystemTimeAsFileTime(&ftBefore);
    ASSERT_EQ(1, GetSysFileTime(&ft));
    EXPECT_LE(GetProductTime(ftBefore), GetProductTime(ft));
    EXPECT_LE(GetProductTime(ft) - GetProductTime(ftBefore), 5u);
}

TEST(GetDOSdate, PacksYearMonthAndDay) {
    SYSTEMTIME st{};
    st.wYear = 1980;
    st.wMonth = 1;
    st.wDay = 1;
    EXPECT_EQ(0x0021u, GetDOSdate(&st));
    st.wYear = 2024;
    st.wMonth = 12;
    st.wDay = 31;
    EXPECT_EQ(44u << 9 | 12u << 5 | 31u, GetDOSdate(&st));
}

TEST(GetDOSdate, WithoutATimeIsToday) {
    SYSTEMTIME stBefore, stAfter;
    ::GetLocalTime(&stBefore);
    DWORD dwToday = GetDOSdate();
    ::GetLocalTime(&stAfter);
    EXPECT_TRUE(dwToday == GetDOSdate(&stBefore) || dwToday == GetDOSdate(&stAfter));
}
} // namespace
