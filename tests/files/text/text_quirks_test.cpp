// What text files do on purpose though it looks like a mistake: each test stands at a mark QUIRK.
#include "files/text/cs_file.h"
#include "runtime/base/dll_buf.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <cstring>
#include <string>

namespace {
TEST(TextQuirks, BytesWithLineFeedsAreWidenedWithTheirSign) {
    TempFolder folder;
    std::wstring strPath = folder.MakeFile(L"a.txt", "a\n\xE9\x80");
    CSFileTextFmt fmt = fmtUnknown;
    unsigned cch = 0;
    wchar_t* pszText = CSFile::ReadText(strPath.c_str(), &cch, &fmt, L'?');
    ASSERT_NE(nullptr, pszText);
    EXPECT_EQ(fmtAnsiLf, fmt);
    EXPECT_EQ(L"a\r\n\xFFE9\xFF80", std::wstring(pszText, cch - 1));
    FreeDllBuf(pszText);
}

TEST(TextQuirks, TheDestructorLeavesTheViewOpen) {
    TempFolder folder;
    std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    const void* pView = nullptr;
    {
        CSFile file(strPath.c_str(), 0);
        pView = file.OpenMap(0, 0, 0);
        ASSERT_NE(nullptr, pView);
    }
    EXPECT_EQ(0, std::memcmp(pView, "abc", 3));
    EXPECT_TRUE(::UnmapViewOfFile(pView));
}
} // namespace
