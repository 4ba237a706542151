#include "runtime/base/ownership.h"
#include "store/registry/reg_key.h"
#include "support/registry.h"

#include <gtest/gtest.h>
#include <sddl.h>

namespace {
using Names = std::vector<std::wstring>;

class RegKeyDelete : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyDeleteTest"};
    RegKey key{raw.Path().c_str(), 1};

    void SetUp() override { ASSERT_NE(nullptr, key.GetHandle()); }
};

TEST_F(RegKeyDelete, MissingValueGivesOne) { EXPECT_EQ(1, key.DelValue(L"none")); }

TEST_F(RegKeyDelete, ValuesGoByNameAndTheDefaultValueByNull) {
    raw.PutStr(L"a", L"text");
    raw.PutStr(L"", L"default");
    raw.PutStr(L"b", L"text");
    EXPECT_EQ(1, key.DelValue(L"A"));
    EXPECT_EQ(1, key.DelValue(nullptr));
    EXPECT_FALSE(raw.HasValue(L"a"));
    EXPECT_FALSE(raw.HasValue(L""));
    EXPECT_TRUE(raw.HasValue(L"b"));
}

TEST_F(RegKeyDelete, ValueWithoutTypeStays) {
    raw.Put(L"none", REG_NONE, {1, 2});
    EXPECT_EQ(1, key.DelValue(L"none"));
    EXPECT_TRUE(raw.HasValue(L"none"));
}

TEST_F(RegKeyDelete, ReadOnlyKeyRefuses) {
    raw.PutStr(L"a", L"text");
    RegKey reader(raw.Path().c_str(), 0);
    if (reader.DelValue(L"a")) GTEST_SKIP() << "this platform does not check access to keys";
    EXPECT_TRUE(raw.HasValue(L"a"));
}

TEST_F(RegKeyDelete, MissingSubKeyGivesOne) { EXPECT_EQ(1, key.DelSubKey(L"none")); }

TEST_F(RegKeyDelete, NamelessSubKeyIsNotTheKeyItself) {
    raw.PutStr(L"a", L"text");
    EXPECT_EQ(1, key.DelSubKey(L""));
    EXPECT_EQ(1, key.DelSubKey(nullptr));
    EXPECT_TRUE(raw.HasValue(L"a"));
}

/// Says who may do what with a key; 0 if the platform refuses.
int SetAccess(HKEY hkey, const wchar_t* pszDescriptor) {
    PSECURITY_DESCRIPTOR pDescriptor = nullptr;
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(pszDescriptor, SDDL_REVISION_1,
                                                                &pDescriptor, nullptr))
        return 0;
    OwnedLocal descriptor(pDescriptor);
    return ::RegSetKeySecurity(hkey, DACL_SECURITY_INFORMATION, pDescriptor) == ERROR_SUCCESS;
}

TEST_F(RegKeyDelete, SubKeyThatCannotBeWrittenIsPassedOver) {
    raw.PutStr(L"v", L"text", L"locked");
    RegKey locked(key, L"locked", 1); // keeps the right to give the access back
    ASSERT_TRUE(SetAccess(locked.GetHandle(), L"D:P(A;;KR;;;WD)"));
    RegKey writer(key, L"locked", 1);
    if (!writer.GetHandle()) {
        EXPECT_EQ(1, key.DelSubKey(L"locked"));
        EXPECT_TRUE(raw.HasSubKey(L"locked"));
        EXPECT_TRUE(locked.FindValue(L"v"));
    }
    EXPECT_TRUE(SetAccess(locked.GetHandle(), L"D:P(A;;KA;;;WD)"));
    if (writer.GetHandle()) GTEST_SKIP() << "this platform does not check access to keys";
}

TEST_F(RegKeyDelete, SubKeyGoesWithAllThatItHolds) {
    raw.PutStr(L"", L"default", L"tree");
    raw.PutStr(L"v", L"text", L"tree\\a\\b\\c");
    raw.PutStr(L"w", L"text", L"tree\\a\\b2");
    raw.Put(L"none", REG_NONE, {1}, L"tree\\z");
    raw.PutStr(L"v", L"text", L"tree2");
    EXPECT_EQ(1, key.DelSubKey(L"tree"));
    EXPECT_EQ((Names{L"tree2"}), raw.SubKeys());
}

TEST_F(RegKeyDelete, SubKeyMayBeAPath) {
    raw.PutStr(L"v", L"text", L"a\\b\\c");
    EXPECT_EQ(1, key.DelSubKey(L"a\\b"));
    EXPECT_TRUE(raw.HasSubKey(L"a"));
    EXPECT_FALSE(raw.HasSubKey(L"a\\b"));
}

TEST_F(RegKeyDelete, ManyChildrenAndValuesGo) {
    for (int i = 0; i < 60; ++i) {
        std::wstring strNumber = std::to_wstring(i);
        raw.PutStr(L"v" + strNumber, L"text", L"tree");
        raw.PutStr(L"v", L"text", L"tree\\k" + strNumber);
    }
    EXPECT_EQ(1, key.DelSubKey(L"tree"));
    EXPECT_EQ(Names{}, raw.SubKeys());
}

TEST_F(RegKeyDelete, LongestNamesGo) {
    std::wstring strLong(255, L'n');
    raw.PutStr(std::wstring(255, L'v'), L"text", L"tree\\" + strLong);
    raw.PutStr(std::wstring(256, L'v'), L"text", L"tree\\" + strLong);
    EXPECT_EQ(1, key.DelSubKey(L"tree"));
    EXPECT_EQ(Names{}, raw.SubKeys());
}

class RegKeyDeleteBesideUndeletable : public RegKeyDelete,
                                      public testing::WithParamInterface<const wchar_t*> {};

TEST_P(RegKeyDeleteBesideUndeletable, DelSubKeyEndsAndGivesZero) {
    const std::wstring strStuck = GetParam();
    for (const wchar_t* psz : {L"a", L"c", L"e"}) {
        raw.PutStr(L"v", L"text", std::wstring(L"tree\\") + psz);
    }
    raw.PutStr(L"value", L"text", L"tree");
    if (!raw.PlantUndeletable(L"tree\\" + strStuck)) GTEST_SKIP() << "no links between keys here";
    EXPECT_EQ(0, key.DelSubKey(L"tree"));
    RegKey tree(key, L"tree", 0);
    wchar_t szName[100];
    ASSERT_EQ(1, tree.GetFirstSubKey(szName, 100));
    EXPECT_EQ(strStuck, szName);
    EXPECT_EQ(0, tree.GetNextSubKey(szName, 100)); // its siblings are gone
    EXPECT_EQ(0, tree.GetFirstValue(szName, 100)); // and the values
}

TEST_P(RegKeyDeleteBesideUndeletable, DelAllEndsAndDeletesTheRest) {
    for (const wchar_t* psz : {L"a", L"c\\deep", L"e"}) raw.PutStr(L"v", L"text", psz);
    raw.PutStr(L"value", L"text");
    if (!raw.PlantUndeletable(GetParam())) GTEST_SKIP() << "no links between keys here";
    EXPECT_EQ(1, key.DelAll());
    EXPECT_EQ((Names{GetParam()}), raw.SubKeys());
    EXPECT_TRUE(raw.Values().empty());
}

// Before, between and behind its siblings.
INSTANTIATE_TEST_SUITE_P(At, RegKeyDeleteBesideUndeletable,
                         testing::Values(L"0", L"b", L"d", L"z"));

TEST_F(RegKeyDelete, SeveralUndeletableChildrenAreSteppedOver) {
    for (const wchar_t* psz : {L"a", L"d", L"f"}) raw.PutStr(L"v", L"text", psz);
    for (const wchar_t* psz : {L"b", L"c", L"e"}) {
        if (!raw.PlantUndeletable(psz)) GTEST_SKIP() << "no links between keys here";
    }
    EXPECT_EQ(1, key.DelAll());
    EXPECT_EQ((Names{L"b", L"c", L"e"}), raw.SubKeys());
}

TEST_F(RegKeyDelete, DelAllOfAnEmptyKeyGivesOne) { EXPECT_EQ(1, key.DelAll()); }

TEST_F(RegKeyDelete, DelAllKeepsTheKeyItself) {
    raw.PutStr(L"", L"default");
    raw.PutStr(L"a", L"text");
    raw.PutStr(L"v", L"text", L"child\\grandchild");
    EXPECT_EQ(1, key.DelAll());
    EXPECT_EQ(Names{}, raw.SubKeys());
    EXPECT_TRUE(raw.Values().empty());
    EXPECT_TRUE(RegKey(raw.Path().c_str(), 0).GetHandle() != nullptr);
}

TEST_F(RegKeyDelete, DelAllEndsBesideValuesThatAreNeverDeleted) {
    raw.Put(L"", REG_NONE, {1});
    raw.PutStr(L"a", L"text");
    raw.Put(L"b", REG_NONE, {1});
    raw.PutStr(L"c", L"text");
    EXPECT_EQ(1, key.DelAll());
    EXPECT_EQ(2u, raw.Values().size());
    EXPECT_TRUE(raw.HasValue(L""));
    EXPECT_TRUE(raw.HasValue(L"b"));
}

TEST_F(RegKeyDelete, DelAllStepsOverNamesLongerThanItsBuffer) {
    raw.PutStr(L"a", L"text");
    raw.PutStr(std::wstring(257, L'b'), L"text");
    raw.PutStr(std::wstring(300, L'c'), L"text");
    raw.PutStr(L"d", L"text");
    EXPECT_EQ(1, key.DelAll());
    EXPECT_FALSE(raw.HasValue(L"a"));
    EXPECT_FALSE(raw.HasValue(L"d"));
    EXPECT_EQ(2u, raw.Values().size());
}

TEST(RegKey, DeletingWithoutAKeyEnds) {
    RegKey key;
    EXPECT_EQ(1, key.DelAll());
    EXPECT_EQ(1, key.DelSubKey(L"a"));
    EXPECT_EQ(1, key.DelValue(L"a")); // nothing is there
}

TEST_F(RegKeyDelete, DelAllOnAClosedHandleEnds) {
    HKEY hkeyClosed = nullptr;
    ::RegOpenKeyExW(raw.Get(), nullptr, 0, KEY_READ, &hkeyClosed);
    ::RegCloseKey(hkeyClosed);
    RegKey closed;
    closed.Attach(hkeyClosed, 0);
    EXPECT_EQ(1, closed.DelAll());
    closed.Detach();
}

TEST_F(RegKeyDelete, DelAllOnAKeyThatWasDeletedEnds) {
    raw.Delete();
    EXPECT_EQ(1, key.DelAll());
}
} // namespace
