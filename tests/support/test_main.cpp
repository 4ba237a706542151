#include "app/start/library_start.h"
#include "support/heap_checks.h"
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    CheckHeaps();
    // What the entry point does in the library: the same root key, locks and subclassing.
    LibraryStart(::GetModuleHandleW(nullptr));
    testing::InitGoogleTest(&argc, argv);
    int nResult = RUN_ALL_TESTS();
    LibraryStop();
    return nResult;
}
