// That the heap checks of the test programs find what they are for. Each of these damages a heap,
// in a process of its own.
#include "support/run_in_child.h"
#include "support/heap_checks.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <windows.h>
#include <cstdlib>
#include <string>

namespace {
constexpr std::size_t kSize = 40;
volatile std::size_t nBehind = kSize; // the compiler does not see that it is too far

bool HasMarks() {
    HANDLE hHeap = ::GetProcessHeap();
    auto* pBlock = static_cast<unsigned char*>(::HeapAlloc(hHeap, 0, kSize));
    constexpr unsigned char kMark = 0xAB; // the platform's, behind a block
    bool bHas = pBlock[nBehind] == kMark;
    ::HeapFree(hHeap, 0, pBlock);
    return bHas;
}

TEST(HeapDamage, DISABLED_Deleted) {
    auto* p = new char[kSize];
    p[nBehind] = 1;
    delete[] p;
}
TEST(HeapDamage, DISABLED_Freed) {
    auto* p = static_cast<char*>(std::malloc(kSize));
    p[nBehind] = 1;
    std::free(p);
}
TEST(HeapDamage, DISABLED_Grown) {
    auto* p = static_cast<char*>(std::malloc(kSize));
    p[nBehind] = 1;
    std::free(std::realloc(p, 2 * kSize));
}
TEST(HeapDamage, DISABLED_FreedInAHeap) {
    auto* p = static_cast<char*>(::HeapAlloc(::GetProcessHeap(), 0, kSize));
    p[nBehind] = 1;
    ::HeapFree(::GetProcessHeap(), 0, p);
}
TEST(HeapDamage, DISABLED_GrownInAHeap) {
    auto* p = static_cast<char*>(::HeapAlloc(::GetProcessHeap(), 0, kSize));
    p[nBehind] = 1;
    ::HeapFree(::GetProcessHeap(), 0, ::HeapReAlloc(::GetProcessHeap(), 0, p, 2 * kSize));
}
TEST(HeapDamage, DISABLED_FreedLocally) {
    auto* p = static_cast<char*>(::LocalAlloc(LMEM_FIXED, kSize));
    p[nBehind] = 1;
    ::LocalFree(p);
}
TEST(HeapDamage, DISABLED_FreedGlobally) {
    auto* p = static_cast<char*>(::GlobalAlloc(GMEM_FIXED, kSize));
    p[nBehind] = 1;
    ::GlobalFree(p);
}
TEST(HeapDamage, DISABLED_FreedByATask) {
    auto* p = static_cast<char*>(::CoTaskMemAlloc(kSize));
    p[nBehind] = 1;
    ::CoTaskMemFree(p);
}
TEST(HeapDamage, DISABLED_StillThere) {
    auto* p = static_cast<char*>(::HeapAlloc(::GetProcessHeap(), 0, kSize));
    p[nBehind] = 1;
}
TEST(HeapDamage, DISABLED_WrittenWhenFreed) {
    auto* p = static_cast<volatile char*>(::HeapAlloc(::GetProcessHeap(), 0, kSize));
    ::HeapFree(::GetProcessHeap(), 0, const_cast<char*>(p));
    p[kSize / 2] = 1;
}
TEST(HeapDamage, DISABLED_None) {
    delete[] new char[kSize];
    std::free(std::realloc(std::malloc(kSize), 2 * kSize));
    for (UINT nFlags : {GMEM_FIXED, GMEM_MOVEABLE}) {
        ::LocalFree(::LocalAlloc(nFlags, kSize));
        ::GlobalFree(::GlobalAlloc(nFlags, kSize));
    }
    ::CoTaskMemFree(::CoTaskMemAlloc(kSize));
}

class HeapChecks : public testing::TestWithParam<const char*> {};
TEST_P(HeapChecks, FindDamage) {
    if (!HasMarks()) GTEST_SKIP() << "the platform marks no blocks in this program";
    ::SetEnvironmentVariableW(L"WINEDEBUG", L"-all"); // its words would count as found here
    EXPECT_EQ(1u, RunInChild("HeapDamage", GetParam()));
}
INSTANTIATE_TEST_SUITE_P(Cases, HeapChecks,
                         testing::Values("Deleted", "Freed", "Grown", "FreedInAHeap",
                                         "GrownInAHeap", "FreedLocally", "FreedGlobally",
                                         "FreedByATask", "StillThere", "WrittenWhenFreed"),
                         [](const auto& row) { return std::string(row.param); });

TEST(HeapChecksOfASoundHeap, FindNothing) { EXPECT_EQ(0u, RunInChild("HeapDamage", "None")); }
} // namespace
