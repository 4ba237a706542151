#include "runtime/system/runtime_func.h"
#include "support/runtime_lookup.h"
#include <gtest/gtest.h>

TEST(FindMappedFunc, FindsWhatTheProcessHas) {
    EXPECT_EQ(reinterpret_cast<FARPROC>(reinterpret_cast<void*>(
                  ::GetProcAddress(::GetModuleHandleW(L"kernel32"), "Sleep"))),
              FindMappedFunc(L"KERNEL32", "Sleep"));
    EXPECT_EQ(nullptr, FindMappedFunc(L"KERNEL32", "NoSuchFunctionAtAll"));
}

TEST(FindMappedFunc, LoadsNothing) {
    constexpr const wchar_t* kUnused = L"msacm32.dll";
    ASSERT_EQ(nullptr, ::GetModuleHandleW(kUnused));
    EXPECT_EQ(nullptr, FindMappedFunc(kUnused, "acmGetVersion"));
    EXPECT_EQ(nullptr, ::GetModuleHandleW(kUnused));
    EXPECT_NE(nullptr, FindSystemFunc(kUnused, "acmGetVersion")); // it is there to be loaded
    EXPECT_NE(nullptr, FindMappedFunc(kUnused, "acmGetVersion"));
    ::FreeLibrary(::GetModuleHandleW(kUnused)); // as this test found it
}

TEST(FindMappedFunc, AnswersFromAReplacedLookUp) {
    HideFunctions hide{"Sleep"};
    EXPECT_EQ(nullptr, FindMappedFunc(L"KERNEL32", "Sleep"));
    EXPECT_NE(nullptr, FindMappedFunc(L"KERNEL32", "GetTickCount"));
}

TEST(RuntimeFunc, LooksAgainWhenTheLookUpChanges) {
    static constinit RuntimeFunc<decltype(::GetTickCount)> func(L"kernel32.dll", "GetTickCount");
    EXPECT_NE(nullptr, func.Get());
    {
        HideFunctions hide{"GetTickCount"};
        EXPECT_EQ(nullptr, func.Get());
    }
    EXPECT_NE(nullptr, func.Get());
}
