// The test platform lists values by name, Windows in the order of their writing: what is looked at
// is that order.
#include "icons/snapshot_test_support.h"
#include "icons/snapshots/snapshot_commands.h"
#include "icons/snapshots/value_order.h"
#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <algorithm>

extern "C" FARPROC __imp_RegSetValueExW, __imp_RegDeleteValueW;

namespace {
constexpr unsigned __int64 kBase = 0x01DB000000000000; // in the past of any clock

std::vector<std::wstring> written; // names, in the order of their writing; deleted ones are out
std::wstring strRefused;           // a name that is not written
decltype(::RegSetValueExW)* pfnSetValue = nullptr;
decltype(::RegDeleteValueW)* pfnDeleteValue = nullptr;

LSTATUS WINAPI SetValue(HKEY hkey, LPCWSTR pszName, DWORD dw, DWORD dwType, const BYTE* pb,
                        DWORD cb) {
    if (pszName && pszName == strRefused) return ERROR_ACCESS_DENIED;
    if (pszName && std::ranges::find(written, pszName) == written.end()) written.push_back(pszName);
    return pfnSetValue(hkey, pszName, dw, dwType, pb, cb);
}
LSTATUS WINAPI DeleteValue(HKEY hkey, LPCWSTR pszName) {
    if (pszName) std::erase(written, pszName);
    return pfnDeleteValue(hkey, pszName);
}

class ValueOrder : public testing::Test {
  protected:
    void SetUp() override {
        written.clear();
        strRefused.clear();
        pfnSetValue = set.Original<decltype(::RegSetValueExW)>();
        pfnDeleteValue = del.Original<decltype(::RegDeleteValueW)>();
    }
    CommandResult Import(unsigned nAge) {
        Layout layout = MakeLayout(3, static_cast<int>(nAge));
        return ImportForCommand(kBase + nAge, layout);
    }
    /// Each value is that of its time, and there is nothing else.
    void ExpectWhole(std::initializer_list<unsigned> ages) {
        auto values = key.Values();
        EXPECT_EQ(ages.size(), values.size());
        for (unsigned nAge : ages) {
            Layout layout = MakeLayout(3, static_cast<int>(nAge));
            EXPECT_EQ((RegContent{REG_BINARY, MakeSnapshotValue(layout)}),
                      values[NameOf(kBase + nAge)])
                << nAge;
        }
    }
    static std::vector<std::wstring> Names(std::initializer_list<unsigned> ages) {
        std::vector<std::wstring> names;
        for (unsigned nAge : ages) names.push_back(NameOf(kBase + nAge));
        return names;
    }

    SnapshotKey key;
    ReplaceImport set{__imp_RegSetValueExW, &SetValue};
    ReplaceImport del{__imp_RegDeleteValueW, &DeleteValue};
};

TEST_F(ValueOrder, ImportsOfAnyOrderEndInTheOrderOfTheirAges) {
    for (unsigned nAge : {5u, 9u, 2u, 7u, 1u, 8u})
        ASSERT_EQ(CommandResult::Done, Import(nAge)) << nAge;
    EXPECT_EQ(Names({1, 2, 5, 7, 8, 9}), written);
    ExpectWhole({1, 2, 5, 7, 8, 9});
}

TEST_F(ValueOrder, OlderOnesAreNotTouched) {
    ASSERT_EQ(CommandResult::Done, Import(1));
    ASSERT_EQ(CommandResult::Done, Import(3));
    written.clear();
    ASSERT_EQ(CommandResult::Done, Import(2));
    EXPECT_EQ(Names({2, 3}), written);
    ExpectWhole({1, 2, 3});
}

TEST_F(ValueOrder, DamagedOnesKeepTypeAndBytes) {
    key.Put(NameOf(kBase + 4), REG_SZ, {1, 2, 3});
    ASSERT_EQ(CommandResult::Done, Import(2));
    EXPECT_EQ((RegContent{REG_SZ, {1, 2, 3}}), key.Values()[NameOf(kBase + 4)]);
    EXPECT_EQ(2u, key.Values().size());
}

TEST_F(ValueOrder, RefusedCopyLeavesTheSnapshotWhereItWas) {
    ASSERT_EQ(CommandResult::Done, Import(3));
    strRefused = NameOf(kBase + 3) + kCopyMark;
    ASSERT_EQ(CommandResult::Done, Import(2));
    ExpectWhole({2, 3});
}

TEST_F(ValueOrder, SnapshotThatCannotBeWrittenAgainIsBroughtBackByTheNextImport) {
    ASSERT_EQ(CommandResult::Done, Import(3));
    strRefused = NameOf(kBase + 3);
    ASSERT_EQ(CommandResult::Done, Import(2));
    EXPECT_EQ(1u, key.Values().count(NameOf(kBase + 3) + kCopyMark));
    strRefused.clear();
    ASSERT_EQ(CommandResult::Done, Import(1));
    ExpectWhole({1, 2, 3});
}

TEST_F(ValueOrder, CopyOfASnapshotThatIsThereGoes) {
    ASSERT_EQ(CommandResult::Done, Import(3));
    key.Put(NameOf(kBase + 3) + kCopyMark, REG_BINARY, {1});
    ASSERT_EQ(CommandResult::Done, Import(4));
    ExpectWhole({3, 4});
}

TEST_F(ValueOrder, CopyThatCannotGoEndsNothing) {
    const std::wstring strCopy = NameOf(kBase + 3) + kCopyMark;
    key.Put(strCopy, REG_BINARY, MakeSnapshotValue(MakeLayout(3, 3)));
    strRefused = NameOf(kBase + 3);
    ASSERT_EQ(CommandResult::Done, Import(4));
    EXPECT_EQ(1u, key.Values().count(strCopy));
    EXPECT_EQ(1u, key.Values().count(NameOf(kBase + 4)));
}
} // namespace
