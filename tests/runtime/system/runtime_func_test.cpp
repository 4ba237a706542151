#include "runtime/system/runtime_func.h"
#include "support/runtime_lookup.h"
#include <gtest/gtest.h>
#include <string>

TEST(FindMappedFunc, FindsWhatTheProcessHas) {
    EXPECT_EQ(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "Sleep"),
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

TEST(FindFunc, GivesThePlatformsFunctionWithItsType) {
    auto* pfn = FindSystemFunc<decltype(::MulDiv)>(L"kernel32.dll", "MulDiv");
    ASSERT_NE(nullptr, pfn);
    EXPECT_EQ(6, pfn(4, 3, 2));
    EXPECT_EQ(pfn, FindMappedFunc<decltype(::MulDiv)>(L"kernel32.dll", "MulDiv"));
    HMODULE hmod = ::GetModuleHandleW(L"kernel32.dll");
    EXPECT_EQ(pfn, FindModuleFunc<decltype(::MulDiv)>(hmod, "MulDiv"));
    EXPECT_EQ(nullptr, FindSystemFunc<decltype(::MulDiv)>(L"kernel32.dll", "NoSuchFunctionAtAll"));
}

TEST(FindSystemFunc, ModuleThatIsNowhereHasNone) {
    EXPECT_EQ(nullptr, FindSystemFunc(L"NoSuchModuleAtAll.dll", "Sleep"));
    EXPECT_EQ(nullptr, LoadSystemModule(L"NoSuchModuleAtAll.dll"));
}

TEST(MakeSystemPath, IsInTheSystemFolderOrDoesNotFit) {
    wchar_t szFolder[MAX_PATH], sz[MAX_PATH];
    UINT cchFolder = ::GetSystemDirectoryW(szFolder, MAX_PATH);
    ASSERT_TRUE(MakeSystemPath(sz, L"user32.dll"));
    EXPECT_EQ(std::wstring(szFolder) + L"\\user32.dll", sz);
    std::wstring strLongest(MAX_PATH - cchFolder - 2, L'x');
    EXPECT_TRUE(MakeSystemPath(sz, strLongest.c_str()));
    EXPECT_FALSE(MakeSystemPath(sz, (strLongest + L'x').c_str()));
}

TEST(RuntimeLookup, StandsInForAModuleThatIsNotThere) {
    ReplaceFunctions replaced{{{"NoSuchFunctionAtAll", AsProc(&::GetTickCount)}}};
    EXPECT_EQ(AsProc(&::GetTickCount),
              FindSystemFunc(L"NoSuchModuleAtAll.dll", "NoSuchFunctionAtAll"));
    EXPECT_EQ(AsProc(&::GetTickCount),
              FindMappedFunc(L"NoSuchModuleAtAll.dll", "NoSuchFunctionAtAll"));
    EXPECT_EQ(nullptr, FindMappedFunc(L"NoSuchModuleAtAll.dll", "Sleep"));
}
