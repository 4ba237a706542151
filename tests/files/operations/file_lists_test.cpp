// Lists of names and paths: each is terminated, with a terminator behind the last.
#include "files/operations/file_copy.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "files/read_only.h"
#include "files/text/cs_file.h"
#include "support/guard_page.h"

#include <gtest/gtest.h>
#include <string>

namespace {
constexpr wchar_t kMark = 0xEEEE; // GuardedArea's pattern

// CopyDoubleZeroTerminatedList

struct CopyListCase {
    const char* pszName;
    std::vector<std::wstring> texts;
};
class CopyList : public testing::TestWithParam<CopyListCase> {};
TEST_P(CopyList, FitsExactlyOrNotAtAll) {
    std::wstring strList = MakeList(GetParam().texts);
    unsigned cch = static_cast<unsigned>(strList.size()) + 1;
    GuardedText list(strList); // its last terminator is the last that may be read
    GuardedArea area((cch + 2) * sizeof(wchar_t));
    for (unsigned cchOut = 0; cchOut <= cch + 2; ++cchOut) {
        auto* pszOut = static_cast<wchar_t*>(area.Put(cchOut * sizeof(wchar_t)));
        bool bFits = cchOut >= cch;
        EXPECT_EQ(bFits, CSFile::CopyDoubleZeroTerminatedList(pszOut, cchOut, list.Get()))
            << cchOut;
        std::wstring strExpected = bFits ? strList + L'\0' : L"";
        strExpected.resize(cchOut, kMark);
        EXPECT_TRUE(strExpected == std::wstring(pszOut, cchOut)) << cchOut;
    }
}
INSTANTIATE_TEST_SUITE_P(Lists, CopyList,
                         testing::Values(CopyListCase{"Empty", {}},
                                         CopyListCase{"OneCharacter", {L"a"}},
                                         CopyListCase{"One", {L"name"}},
                                         CopyListCase{"Three", {L"a", L"name.txt", L"b"}}),
                         kRowName);

TEST(CopyListEdges, NoListAndNoRoom) {
    wchar_t szOut[4] = L"old";
    EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(szOut, 4, nullptr));
    EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(nullptr, 4, L"a\0"));
    EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(nullptr, 0, nullptr));
    EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(szOut, 0, L"a\0"));
    EXPECT_STREQ(L"old", szOut);
    EXPECT_EQ(1, CSFile::CopyDoubleZeroTerminatedList(szOut, ~0u, L"a\0")) << "any size";
}

TEST(CopyListEdges, AListWithoutAnEndIsReadNoFurtherThanTheRoomGoes) {
    for (unsigned cch : {1u, 2u, 7u, 300u}) {
        GuardedArea from(cch * sizeof(wchar_t)), to(cch * sizeof(wchar_t));
        auto* pszList = static_cast<wchar_t*>(from.Put(cch * sizeof(wchar_t)));
        auto* pszOut = static_cast<wchar_t*>(to.Put(cch * sizeof(wchar_t)));
        EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(pszOut, cch, pszList)) << cch;
        EXPECT_EQ(kMark, pszOut[0]);
        pszList[cch - 1] = 0; // one terminator alone
        if (cch > 1) {
            EXPECT_EQ(0, CSFile::CopyDoubleZeroTerminatedList(pszOut, cch, pszList));
        }
    }
}

// MakeCopyList

struct MakeCase {
    const char* pszName;
    const wchar_t *pszTarget, *pszSource; // folders
    std::vector<std::wstring> names;
    std::vector<std::wstring> paths;
};
class MakeCopyList : public testing::TestWithParam<MakeCase> {};
TEST_P(MakeCopyList, JoinsFoldersAndNames) {
    const auto& [pszName, pszTarget, pszSource, names, paths] = GetParam();
    std::wstring strNames = MakeList(names), strExpected = MakeList(paths) + L'\0';
    GuardedText guarded(strNames);
    auto cch = static_cast<unsigned>(strExpected.size());
    EXPECT_EQ(cch, CSFile::MakeCopyList(pszTarget, pszSource, guarded.Get(), nullptr));
    GuardedArea area(cch * sizeof(wchar_t));
    auto* pszOut = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
    EXPECT_EQ(cch, CSFile::MakeCopyList(pszTarget, pszSource, guarded.Get(), pszOut));
    EXPECT_TRUE(strExpected == std::wstring(pszOut, cch));
}
INSTANTIATE_TEST_SUITE_P(
    Lists, MakeCopyList,
    testing::Values(
        MakeCase{"NoNames", L"C:\\t", L"C:\\s", {}, {}},
        MakeCase{"NoNamesOneFolder", L"C:\\t", nullptr, {}, {}},
        MakeCase{"One", L"C:\\t", L"C:\\s", {L"a"}, {L"C:\\t\\a", L"C:\\s\\a"}},
        MakeCase{"OneFolder", L"C:\\t", nullptr, {L"a"}, {L"C:\\t\\a"}},
        MakeCase{"Two",
                 L"C:\\t",
                 L"C:\\s",
                 {L"a", L"b.txt"},
                 {L"C:\\t\\a", L"C:\\s\\a", L"C:\\t\\b.txt", L"C:\\s\\b.txt"}},
        MakeCase{"TwoOneFolder", L"C:\\t", nullptr, {L"a", L"b"}, {L"C:\\t\\a", L"C:\\t\\b"}},
        MakeCase{"TargetEndsInSeparator", L"C:\\t\\", L"C:\\s", {L"a"}, {L"C:\\t\\a", L"C:\\s\\a"}},
        MakeCase{"SourceEndsInSeparator", L"C:\\t", L"C:\\s\\", {L"a"}, {L"C:\\t\\a", L"C:\\s\\a"}},
        MakeCase{"Roots", L"C:\\", L"D:\\", {L"a"}, {L"C:\\a", L"D:\\a"}},
        MakeCase{
            "FoldersInNames", L"C:\\t", L"C:\\s", {L"f\\a"}, {L"C:\\t\\f\\a", L"C:\\s\\f\\a"}}),
    kRowName);

TEST(MakeCopyListEdges, LongNamesAreNotCut) {
    std::wstring strName(400, L'n');
    std::wstring strNames = MakeList({strName});
    std::wstring strExpected = MakeList({L"C:\\t\\" + strName, L"C:\\s\\" + strName}) + L'\0';
    auto cch = static_cast<unsigned>(strExpected.size());
    GuardedArea area(cch * sizeof(wchar_t));
    auto* pszOut = static_cast<wchar_t*>(area.Put(cch * sizeof(wchar_t)));
    EXPECT_EQ(cch, CSFile::MakeCopyList(L"C:\\t", L"C:\\s", strNames.c_str(), pszOut));
    EXPECT_TRUE(strExpected == std::wstring(pszOut, cch));
}

// CopyByList

class ListTest : public testing::Test {
  protected:
    std::wstring Pairs(const std::vector<std::wstring>& names) const {
        std::vector<std::wstring> paths;
        for (const std::wstring& strName : names) {
            paths.push_back(folder.File(L"target_" + strName));
            paths.push_back(folder.File(strName));
        }
        return MakeList(paths);
    }
    std::wstring Paths(const std::vector<std::wstring>& names) const {
        std::vector<std::wstring> paths;
        for (const std::wstring& strName : names) paths.push_back(folder.File(strName));
        return MakeList(paths);
    }
    bool Has(const wchar_t* pszName) const { return IsThere(folder.File(pszName)); }
    TempFolder folder;
};
using CopyByList = ListTest;
using DeleteByList = ListTest;

TEST_F(CopyByList, CopiesEachPair) {
    folder.MakeFile(L"a", "first");
    folder.MakeFile(L"b", "second");
    GuardedText list(Pairs({L"a", L"b"}));
    EXPECT_EQ(1, CSFile::CopyByList(list.Get(), 0));
    EXPECT_EQ("first", folder.ReadFile(L"target_a"));
    EXPECT_EQ("second", folder.ReadFile(L"target_b"));
}

TEST_F(CopyByList, TakesWhatMakeCopyListMakes) {
    std::filesystem::create_directory(folder.File(L"to"));
    folder.MakeFile(L"a", "first");
    folder.MakeFile(L"b", "second");
    std::wstring strNames = MakeList({L"a", L"b"}), strFrom = folder.Get(),
                 strTo = folder.File(L"to");
    unsigned cch = CSFile::MakeCopyList(strTo.c_str(), strFrom.c_str(), strNames.c_str(), nullptr);
    std::wstring strList(cch, L'?');
    EXPECT_EQ(cch, CSFile::MakeCopyList(strTo.c_str(), strFrom.c_str(), strNames.c_str(),
                                        strList.data()));
    EXPECT_EQ(1, CSFile::CopyByList(strList.c_str(), 0));
    EXPECT_EQ("first", folder.ReadFile(L"to\\a"));
    EXPECT_EQ("second", folder.ReadFile(L"to\\b"));
    CSFile::MakeCopyList(strTo.c_str(), nullptr, strNames.c_str(), strList.data());
    EXPECT_EQ(1, CSFile::DeleteByList(strList.c_str(), 0));
    EXPECT_FALSE(Has(L"to\\a") || Has(L"to\\b"));
    EXPECT_TRUE(Has(L"a") && Has(L"b"));
}

TEST_F(CopyByList, AnEmptyListIsDone) {
    GuardedText empty(L"");
    for (DWORD nFlags : {DWORD{0}, kListGoOn, kCopyVerifyOnly, ~DWORD{0}}) {
        EXPECT_EQ(1, CSFile::CopyByList(empty.Get(), nFlags));
        EXPECT_EQ(1, CSFile::CopyByList(nullptr, nFlags));
        EXPECT_EQ(1, CSFile::DeleteByList(empty.Get(), nFlags));
        EXPECT_EQ(1, CSFile::DeleteByList(nullptr, nFlags));
    }
}

TEST_F(CopyByList, EndsWithTheFirstFailureOrGoesOn) {
    for (bool bGoOn : {false, true}) {
        folder.MakeFile(L"a", "first");
        OpenElsewhere busy(folder.MakeFile(L"b", "busy"));
        folder.MakeFile(L"c", "third");
        for (const wchar_t* psz : {L"target_a", L"target_b", L"target_c"})
            ::DeleteFileW(folder.File(psz).c_str());
        EXPECT_EQ(0, CSFile::CopyByList(Pairs({L"a", L"b", L"c"}).c_str(), bGoOn ? kListGoOn : 0));
        EXPECT_EQ("first", folder.ReadFile(L"target_a"));
        EXPECT_FALSE(Has(L"target_b"));
        EXPECT_EQ(bGoOn, Has(L"target_c"));
    }
}

TEST_F(CopyByList, AFailureIsRememberedWhereverItStands) {
    OpenElsewhere busy(folder.MakeFile(L"busy", "busy"));
    folder.MakeFile(L"a", "first");
    const std::vector<std::wstring> orders[] = {{L"busy", L"a"}, {L"a", L"busy"}, {L"busy"}};
    for (const auto& names : orders)
        EXPECT_EQ(0, CSFile::CopyByList(Pairs(names).c_str(), kListGoOn));
    EXPECT_EQ(1, CSFile::CopyByList(Pairs({L"a", L"a"}).c_str(), kListGoOn));
}

TEST_F(CopyByList, EachPairHasTheFlags) {
    folder.MakeFile(L"a", "new");
    folder.MakeFile(L"target_a", "old");
    folder.MakeFile(L"target_b", "old");
    std::wstring strList = Pairs({L"a", L"b"});
    EXPECT_EQ(1, CSFile::CopyByList(strList.c_str(), kCopyKeepTarget));
    EXPECT_EQ("old", folder.ReadFile(L"target_a"));
    EXPECT_EQ(0, CSFile::CopyByList(strList.c_str(), kCopyVerifyOnly | kListGoOn));
    EXPECT_EQ("old", folder.ReadFile(L"target_a"));
    EXPECT_EQ(1, CSFile::CopyByList(strList.c_str(), kCopyKeepIfNoSource));
    EXPECT_EQ("new", folder.ReadFile(L"target_a"));
    EXPECT_EQ("old", folder.ReadFile(L"target_b"));
    EXPECT_EQ(1, CSFile::CopyByList(strList.c_str(), 0));
    EXPECT_FALSE(Has(L"target_b")) << "a missing source deletes its target";
}

TEST_F(CopyByList, ATargetWithoutASourceFailsAndStays) {
    folder.MakeFile(L"alone", "old");
    folder.MakeFile(L"a", "first");
    std::wstring strAlone = folder.File(L"alone");
    for (DWORD nFlags : {DWORD{0}, kListGoOn, kCopyKeepIfNoSource, kCopyMissingIsEmpty}) {
        GuardedText list(MakeList({strAlone}));
        EXPECT_EQ(0, CSFile::CopyByList(list.Get(), nFlags));
        EXPECT_EQ("old", folder.ReadFile(L"alone"));
        GuardedText behind(Pairs({L"a"}) + MakeList({strAlone}));
        EXPECT_EQ(0, CSFile::CopyByList(behind.Get(), nFlags));
        EXPECT_EQ("first", folder.ReadFile(L"target_a"));
    }
}

// DeleteByList

TEST_F(DeleteByList, DeletesFilesAndPassesOverTheRest) {
    folder.MakeFile(L"a", "first");
    folder.MakeFile(L"b", "second");
    std::filesystem::create_directory(folder.File(L"sub"));
    folder.MakeFile(L"sub\\c", "third");
    ::SetFileAttributesW(folder.File(L"b").c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    GuardedText list(Paths({L"a", L"missing", L"sub", L"no folder\\x", L"b"}));
    EXPECT_EQ(1, CSFile::DeleteByList(list.Get(), 0));
    EXPECT_FALSE(Has(L"a") || Has(L"b"));
    EXPECT_TRUE(Has(L"sub\\c"));
    EXPECT_EQ(1, CSFile::DeleteByList(list.Get(), 0)) << "nothing is left to do";
}

TEST_F(DeleteByList, EndsWithTheFirstFailureOrGoesOn) {
    for (bool bGoOn : {false, true}) {
        folder.MakeFile(L"a", "first");
        folder.MakeFile(L"c", "third");
        OpenElsewhere busy(folder.MakeFile(L"b", "busy"), FILE_SHARE_READ);
        EXPECT_EQ(0,
                  CSFile::DeleteByList(Paths({L"a", L"b", L"c"}).c_str(), bGoOn ? kListGoOn : 0));
        EXPECT_FALSE(Has(L"a"));
        EXPECT_TRUE(Has(L"b"));
        EXPECT_EQ(!bGoOn, Has(L"c"));
    }
    EXPECT_EQ(1, CSFile::DeleteByList(Paths({L"b", L"c"}).c_str(), kListGoOn));
}

TEST_F(DeleteByList, AFileThatMayNotBeWrittenIsAFailure) {
    std::wstring strPath = folder.MakeFile(L"a", "kept");
    ReadOnlyFile readOnly(strPath);
    EXPECT_EQ(0, CSFile::DeleteByList(Paths({L"a"}).c_str(), 0));
    EXPECT_TRUE(Has(L"a"));
}

TEST_F(DeleteByList, AMaskDeletesNothing) { // it counts as there, but no file has that name
    folder.MakeFile(L"a.txt", "kept");
    EXPECT_EQ(0, CSFile::DeleteByList(Paths({L"*.txt"}).c_str(), 0));
    EXPECT_TRUE(Has(L"a.txt"));
}

TEST_F(DeleteByList, TellsTheShellOfEach) {
    folder.MakeFile(L"a", "first");
    folder.MakeFile(L"c", "third");
    std::filesystem::create_directory(folder.File(L"sub"));
    OpenElsewhere busy(folder.MakeFile(L"b", "busy"), FILE_SHARE_READ);
    std::wstring strList = Paths({L"missing", L"a", L"sub", L"b", L"c"});
    {
        ToldShell shell;
        EXPECT_EQ(0, CSFile::DeleteByList(strList.c_str(), kListGoOn | kListNotify));
        std::vector<ToldShell::Event> expected = {{SHCNE_DELETE, folder.File(L"a")},
                                                  {SHCNE_DELETE, folder.File(L"c")}};
        EXPECT_TRUE(expected == shell.events) << shell.events.size();
    }
    folder.MakeFile(L"a", "first");
    ToldShell shell;
    EXPECT_EQ(0, CSFile::DeleteByList(strList.c_str(), kListGoOn));
    EXPECT_FALSE(Has(L"a"));
    EXPECT_TRUE(shell.events.empty());
}
} // namespace
