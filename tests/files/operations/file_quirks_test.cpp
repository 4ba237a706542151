// What file operations do on purpose though it looks like a mistake: each test stands at a mark
// QUIRK.
#include "files/operations/file_copy.h"
#include "files/operations/file_version.h"
#include "files/operations/file_wipe.h"
#include "files/text/cs_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <string>
#include <vector>

namespace {
TEST(FileQuirks, AFilledTargetIsDeletedAlsoForAnEmptySource) {
    TempFolder folder;
    std::wstring strTarget = folder.MakeFile(L"target", "abc");
    EXPECT_EQ(
        1, CSFile::Copy(strTarget.c_str(), folder.File(L"missing").c_str(), kCopyMissingIsEmpty));
    EXPECT_FALSE(std::filesystem::exists(strTarget));
}

TEST(FileQuirks, OnlyTheLowHalfOfTheSizeCounts) {
    TempFolder folder;
    std::wstring strSource = folder.MakeFile(L"source", "abcdefgh");
    std::wstring strTarget = folder.MakeFile(L"target", "old contents");
    CoreFile source(strSource.c_str(), 1);
    source.MoveTo64((1ll << 32) + 5, FILE_BEGIN);
    ASSERT_EQ(1, source.SetEndOfFile()); // sparse
    source.Close();
    EXPECT_EQ(1, CSFile::Copy(strTarget.c_str(), strSource.c_str(), 0));
    EXPECT_EQ("abcde", folder.ReadFile(L"target"));
    EXPECT_EQ(1, CSFile::Copy(strTarget.c_str(), strSource.c_str(), kCopyVerifyOnly));
}

TEST(FileQuirks, PassesGoOnAfterACancelledOne) {
    TempFolder folder;
    std::wstring strPath = folder.MakeFile(L"a.bin", "abc");
    std::vector<int> passes;
    auto cancelFirst = [](void* pContext, int nPass, unsigned __int64) {
        static_cast<std::vector<int>*>(pContext)->push_back(nPass);
        return int{nPass > 0};
    };
    EXPECT_EQ(0, CSFile::WipeDelete(strPath.c_str(), wipeThreePasses, 0, cancelFirst, &passes));
    EXPECT_EQ((std::vector<int>{0, 1, 2}), passes);
    EXPECT_EQ(std::string(3, '\0'), folder.ReadFile(L"a.bin"));
}

TEST(FileQuirks, PartsOfAVersionAreNotAlignedToTheLeft) {
    wchar_t szVersion[] = L"1.2", szFive[] = L"9.1.2.3.4";
    EXPECT_EQ(0x10002u, ParseFileVersionStr(szVersion));
    EXPECT_STREQ(L"1", szVersion);
    EXPECT_EQ(0x0001000200030004u, ParseFileVersionStr(szFive));
}
} // namespace
