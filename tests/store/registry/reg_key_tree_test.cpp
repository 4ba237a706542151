#include "store/reg_tree.h"
#include "store/registry/reg_key.h"
#include "support/guard_page.h"
#include "support/replace_import.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>

extern "C" FARPROC __imp_RegCloseKey;
extern "C" FARPROC __imp_RegCreateKeyExW;
extern "C" FARPROC __imp_RegDeleteKeyW;
extern "C" FARPROC __imp_RegOpenKeyExW;

namespace {
class RegKeyTree : public testing::Test {
  protected:
    RegTree raw{HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyTreeTest"};
    RegKey key{L"HKCU\\Software\\Orvanta\\TessalyTreeTest", 1};

    void SetUp() override { ASSERT_NE(nullptr, key.GetHandle()); }
    /// A value of every type, also of one that nobody knows, and odd sizes.
    void PlantAllTypes(const std::wstring& strBelow) {
        const DWORD kTypes[] = {REG_NONE,
                                REG_SZ,
                                REG_EXPAND_SZ,
                                REG_BINARY,
                                REG_DWORD,
                                REG_DWORD_BIG_ENDIAN,
                                REG_MULTI_SZ,
                                REG_RESOURCE_LIST,
                                REG_FULL_RESOURCE_DESCRIPTOR,
                                REG_RESOURCE_REQUIREMENTS_LIST,
                                REG_QWORD,
                                0x12345};
        for (DWORD dwType : kTypes) {
            std::wstring strName = L"type " + std::to_wstring(dwType);
            raw.Put(strName, dwType, BytesOf(strName), strBelow);
            raw.Put(strName + L" odd", dwType, {0, 0xFF, 0}, strBelow);
            raw.Put(strName + L" open", dwType, BytesOf(strName, false), strBelow);
        }
    }
};

// Emptiness

TEST_F(RegKeyTree, KeyIsEmptyWithoutSubkeysAndValues) {
    EXPECT_EQ(1, key.IsKeyEmpty());
    raw.Create(L"sub");
    EXPECT_EQ(0, key.IsKeyEmpty());
}

TEST_F(RegKeyTree, KeyWithANamedValueIsNotEmpty) {
    raw.PutStr(L"a", L"");
    EXPECT_EQ(0, key.IsKeyEmpty());
    raw.PutStr(L"", L"default");
    EXPECT_EQ(0, key.IsKeyEmpty());
}

TEST_F(RegKeyTree, DefaultValueAloneCountsAsEmpty) {
    raw.PutStr(L"", L"default");
    EXPECT_EQ(1, key.IsKeyEmpty());
}

TEST_F(RegKeyTree, NamesTooLongToReadAreNotEmptiness) {
    for (unsigned n : {254u, 255u, 256u, 257u, 5000u}) {
        raw.Put(std::wstring(n, L'x'), REG_SZ, {});
        EXPECT_EQ(0, key.IsKeyEmpty()) << n;
        raw.PutStr(L"", L"default");
        EXPECT_EQ(0, key.IsKeyEmpty()) << n;
        key.DelAll();
    }
    raw.Delete();
    RegKey again(L"HKCU\\Software\\Orvanta\\TessalyTreeTest", 1);
    raw.Create(std::wstring(255, L'x'));
    EXPECT_EQ(0, again.IsKeyEmpty());
}

TEST_F(RegKeyTree, KeyThatIsNotOpenIsNotEmpty) { EXPECT_EQ(0, RegKey().IsKeyEmpty()); }

TEST_F(RegKeyTree, AskingForEmptinessStartsTheEnumerationAgain) {
    for (const wchar_t* psz : {L"a", L"b", L"c"}) raw.PutStr(psz, L"text");
    wchar_t sz[10];
    key.GetFirstValue(sz, 10);
    key.GetNextValue(sz, 10);
    EXPECT_STREQ(L"b", sz);
    EXPECT_EQ(0, key.IsKeyEmpty());
    key.GetNextValue(sz, 10);
    EXPECT_STREQ(L"b", sz);
}

TEST_F(RegKeyTree, OnlyEmptySubKeysAreDeletedIfEmpty) {
    raw.Create(L"empty");
    raw.Create(L"parent\\child");
    raw.PutStr(L"a", L"text", L"full");
    raw.PutStr(L"", L"default", L"default");
    RegDump expected = raw.Dump();
    EXPECT_EQ(0, key.DelSubKeyIfEmpty(L"parent"));
    EXPECT_EQ(0, key.DelSubKeyIfEmpty(L"full"));
    EXPECT_EQ(expected, raw.Dump());
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"empty"));
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"default"));
    expected.subkeys.erase(L"empty");
    expected.subkeys.erase(L"default");
    EXPECT_EQ(expected, raw.Dump());
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"parent\\child"));
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"parent"));
}

TEST_F(RegKeyTree, SubKeyWithADefaultValueBesideOthersStaysAsItIs) {
    raw.PutStr(L"", L"default", L"sub");
    raw.PutStr(L"a", L"text", L"sub");
    RegDump before = raw.Dump();
    EXPECT_EQ(0, key.DelSubKeyIfEmpty(L"sub"));
    EXPECT_EQ(before, raw.Dump());
}

TEST_F(RegKeyTree, MissingSubKeyGivesOneAndIsNotMade) {
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"none"));
    EXPECT_EQ(RegDump(), raw.Dump());
    EXPECT_EQ(1, RegKey().DelSubKeyIfEmpty(L"none"));
}

LSTATUS WINAPI RefuseDeleteKey(HKEY, LPCWSTR) { return ERROR_ACCESS_DENIED; }

TEST_F(RegKeyTree, EmptySubKeyThatStaysGivesZeroAndHasLostItsDefaultValue) {
    raw.PutStr(L"", L"default", L"sub");
    ReplaceImport replaced(__imp_RegDeleteKeyW, &RefuseDeleteKey);
    EXPECT_EQ(0, key.DelSubKeyIfEmpty(L"sub"));
    RegDump expected;
    expected.subkeys[L"sub"];
    EXPECT_EQ(expected, raw.Dump());
}

/// Counts the keys that were opened and not closed again, for the length of a block.
class OpenKeys {
  public:
    OpenKeys()
        : open(__imp_RegOpenKeyExW, &NoteOpen), create(__imp_RegCreateKeyExW, &NoteCreate),
          close(__imp_RegCloseKey, &NoteClose) {
        pThis = this;
    }
    int nOpen = 0;

  private:
    static LSTATUS WINAPI NoteOpen(HKEY hkey, LPCWSTR psz, DWORD dw, REGSAM sam, HKEY* phkey) {
        LSTATUS status = pThis->open.Original<decltype(NoteOpen)>()(hkey, psz, dw, sam, phkey);
        pThis->nOpen += status == ERROR_SUCCESS;
        return status;
    }
    static LSTATUS WINAPI NoteCreate(HKEY hkey, LPCWSTR psz, DWORD dw, LPWSTR pszClass, DWORD dwOpt,
                                     REGSAM sam, SECURITY_ATTRIBUTES* p, HKEY* phkey, DWORD* pdw) {
        LSTATUS status = pThis->create.Original<decltype(NoteCreate)>()(hkey, psz, dw, pszClass,
                                                                        dwOpt, sam, p, phkey, pdw);
        pThis->nOpen += status == ERROR_SUCCESS;
        return status;
    }
    static LSTATUS WINAPI NoteClose(HKEY hkey) {
        bool bRoot = reinterpret_cast<INT_PTR>(hkey) < 0 || HandleToULong(hkey) >> 31;
        if (!bRoot) --pThis->nOpen;
        return pThis->close.Original<decltype(NoteClose)>()(hkey);
    }
    static inline OpenKeys* pThis = nullptr;
    ReplaceImport open, create, close;
};

TEST_F(RegKeyTree, WhatIsOpenedIsClosed) {
    RegTree former(HKEY_CURRENT_USER, L"Software\\Quenby");
    RegTree present(HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyMoveTest");
    for (const wchar_t* psz : {L"full\\a\\b", L"full\\c", L"empty", L"default"}) raw.Create(psz);
    raw.PutStr(L"", L"default", L"default");
    former.PutStr(L"v", L"text", L"TessalyMoveTest\\a");
    RegKey full(key, L"full", 1), target(key, L"target", 1);
    OpenKeys keys;
    for (const wchar_t* psz : {L"full", L"empty", L"default", L"none", L""})
        key.DelSubKeyIfEmpty(psz);
    EXPECT_EQ(0, keys.nOpen);
    full.CopyTo(target);
    EXPECT_EQ(0, keys.nOpen);
    EXPECT_EQ(1, full.RenameSubkey(L"a", L"new"));
    EXPECT_EQ(0, full.RenameSubkey(L"new", std::wstring(300, L'x').c_str()));
    EXPECT_EQ(0, full.RenameSubkey(L"none", L"other"));
    EXPECT_EQ(0, keys.nOpen);
    for (const wchar_t* psz : {L"TessalyMoveTest", L"TessalyMoveTest", L"Other"}) {
        EXPECT_EQ(1, RegKey::CS2WA(1, psz));
        EXPECT_EQ(0, keys.nOpen);
    }
}

TEST_F(RegKeyTree, NamelessSubKeyIsNotTheEmptyKeyItself) {
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L""));
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(nullptr));
    EXPECT_TRUE(raw.Exists());
}

// Values by their beginning

struct PrefixCase {
    const char* pszName;
    const wchar_t* pszPrefix;
    int bNoCase;
    std::vector<std::wstring> left;
};

class RegKeyTreePrefix : public RegKeyTree, public testing::WithParamInterface<PrefixCase> {};

TEST_P(RegKeyTreePrefix, ValuesGoByTheBeginningOfTheirNames) {
    raw.Create(L"pos");
    for (const wchar_t* psz :
         {L"", L"a", L"apos", L"po", L"pos", L"posLeft", L"posRight", L"POSX", L"z"})
        raw.PutStr(psz, L"text");
    EXPECT_EQ(1, key.DelValuesStartingWith(GetParam().pszPrefix, GetParam().bNoCase));
    RegDump dump = raw.Dump();
    std::vector<std::wstring> names;
    for (const auto& [strName, content] : dump.values) names.push_back(strName);
    EXPECT_EQ(GetParam().left, names);
    EXPECT_EQ(1u, dump.subkeys.count(L"pos"));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegKeyTreePrefix,
    testing::Values(PrefixCase{"Null", nullptr, 0, {}}, PrefixCase{"Empty", L"", 0, {L""}},
                    PrefixCase{"EmptyNoCase", L"", 1, {L""}},
                    PrefixCase{"Text", L"pos", 0, {L"", L"POSX", L"a", L"apos", L"po", L"z"}},
                    PrefixCase{"TextNoCase", L"pos", 1, {L"", L"a", L"apos", L"po", L"z"}},
                    PrefixCase{"WholeName",
                               L"posLeft",
                               0,
                               {L"", L"POSX", L"a", L"apos", L"po", L"pos", L"posRight", L"z"}},
                    PrefixCase{"Longer",
                               L"posLeft2",
                               1,
                               {L"", L"POSX", L"a", L"apos", L"po", L"pos", L"posLeft", L"posRight",
                                L"z"}}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(RegKeyTree, ValuesThatCannotBeDeletedAreSteppedOver) {
    raw.Put(L"", REG_NONE, {1});
    raw.Put(L"a", REG_NONE, {1});
    raw.PutStr(L"b", L"text");
    raw.Put(L"c", REG_NONE, {1});
    raw.Put(L"d", REG_NONE, {1});
    raw.PutStr(L"e", L"text");
    EXPECT_EQ(1, key.DelValuesStartingWith(nullptr, 0));
    std::vector<std::wstring> names;
    RegDump dump = raw.Dump();
    for (const auto& [strName, content] : dump.values) names.push_back(strName);
    EXPECT_EQ((std::vector<std::wstring>{L"", L"a", L"c", L"d"}), names);
}

TEST_F(RegKeyTree, NamesOver256CharactersAreNotDeletedByTheirBeginning) {
    for (unsigned n : {255u, 256u, 257u, 1000u}) raw.PutStr(std::wstring(n, L'x'), L"text");
    raw.PutStr(L"y", L"text");
    EXPECT_EQ(1, key.DelValuesStartingWith(nullptr, 0));
    RegDump dump = raw.Dump();
    EXPECT_EQ(2u, dump.values.size());
    EXPECT_EQ(1u, dump.values.count(std::wstring(257, L'x')));
    EXPECT_EQ(1u, dump.values.count(std::wstring(1000, L'x')));
}

TEST_F(RegKeyTree, DeletingValuesOfNoKeyEnds) {
    EXPECT_EQ(1, RegKey().DelValuesStartingWith(nullptr, 0));
}

// Copies

TEST_F(RegKeyTree, ValueIsCopiedWithItsType) {
    PlantAllTypes(L"from");
    raw.PutStr(L"", L"default", L"from");
    raw.Create(L"to");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    for (const auto& [strName, content] : raw.Dump(L"from").values)
        EXPECT_EQ(1, from.CopyValueTo(to, strName.c_str()));
    EXPECT_EQ(raw.Dump(L"from"), raw.Dump(L"to"));
}

TEST_F(RegKeyTree, ValueIsCopiedOverAnother) {
    raw.PutStr(L"v", L"new", L"from");
    raw.Put(L"v", REG_BINARY, {1}, L"to");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyValueTo(to, L"v"));
    EXPECT_EQ(StrContent(L"new"), raw.Dump(L"to").values[L"v"]);
}

TEST_F(RegKeyTree, MissingValueIsNotCopied) {
    raw.Create(L"to");
    RegKey to(key, L"to", 1);
    EXPECT_EQ(0, key.CopyValueTo(to, L"none"));
    EXPECT_EQ(0, key.CopyValueTo(to, nullptr));
    EXPECT_EQ(RegDump(), raw.Dump(L"to"));
}

TEST_F(RegKeyTree, ValueWithoutBytesIsNotCopied) {
    raw.Put(L"v", REG_SZ, {}, L"from");
    raw.PutStr(L"w", L"text", L"from");
    raw.Create(L"to");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(0, from.CopyValueTo(to, L"v"));
    EXPECT_EQ(RegDump(), raw.Dump(L"to"));
    EXPECT_EQ(1, from.CopyTo(to));
    EXPECT_EQ(1u, raw.Dump(L"to").values.size());
}

TEST_F(RegKeyTree, CopyToAKeyThatIsNotOpenGivesZero) {
    raw.PutStr(L"v", L"text");
    RegKey none;
    EXPECT_EQ(0, key.CopyValueTo(none, L"v"));
    EXPECT_EQ(0, none.CopyValueTo(key, L"v"));
}

TEST_F(RegKeyTree, LargeValuesAreCopied) {
    RegBytes bytes(300000);
    for (std::size_t n = 0; n < bytes.size(); ++n) bytes[n] = static_cast<unsigned char>(n * 7);
    raw.Put(L"v", REG_BINARY, bytes, L"from");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    EXPECT_EQ((RegContent{REG_BINARY, bytes}), raw.Dump(L"to").values[L"v"]);
}

TEST_F(RegKeyTree, WholeKeyIsCopiedWithEveryTypeAndLevel) {
    PlantAllTypes(L"from");
    PlantAllTypes(L"from\\a");
    PlantAllTypes(L"from\\a\\b\\c");
    raw.PutStr(L"", L"default", L"from\\a\\b");
    raw.PutStr(L"", L"default", L"from");
    raw.Create(L"from\\empty");
    RegDump before = raw.Dump(L"from");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    EXPECT_EQ(before, raw.Dump(L"to"));
    EXPECT_EQ(before, raw.Dump(L"from"));
}

TEST_F(RegKeyTree, CopyKeepsWhatTheTargetHasBesides) {
    raw.PutStr(L"v", L"new", L"from");
    raw.PutStr(L"s", L"new", L"from\\sub");
    raw.PutStr(L"v", L"old", L"to");
    raw.PutStr(L"w", L"old", L"to");
    raw.PutStr(L"t", L"old", L"to\\sub");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    RegDump expected;
    expected.values = {{L"v", StrContent(L"new")}, {L"w", StrContent(L"old")}};
    expected.subkeys[L"sub"].values = {{L"s", StrContent(L"new")}, {L"t", StrContent(L"old")}};
    EXPECT_EQ(expected, raw.Dump(L"to"));
}

TEST_F(RegKeyTree, LongNamesAreCopied) {
    for (unsigned n : {255u, 256u, 257u, 16383u})
        raw.PutStr(std::wstring(n, L'v'), std::to_wstring(n), L"from");
    for (unsigned n : {254u, 255u}) raw.PutStr(L"v", L"text", L"from\\" + std::wstring(n, L'k'));
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    EXPECT_EQ(raw.Dump(L"from"), raw.Dump(L"to"));
    EXPECT_EQ(4u, raw.Dump(L"to").values.size());
    EXPECT_EQ(2u, raw.Dump(L"to").subkeys.size());
}

TEST_F(RegKeyTree, ChildThatCannotBeCopiedIsPassedOver) {
    TestKey planted(L"Software\\Orvanta\\TessalyTreeLinkTest");
    planted.PutStr(L"v", L"text", L"a");
    ASSERT_TRUE(planted.PlantUndeletable(L"b"));
    planted.PutStr(L"v", L"text", L"c");
    RegKey from(planted.Path().c_str(), 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    RegDump expected;
    expected.subkeys[L"a"].values[L"v"] = expected.subkeys[L"c"].values[L"v"] = StrContent(L"text");
    EXPECT_EQ(expected, raw.Dump(L"to"));
}

TEST_F(RegKeyTree, ChildWhoseNameIsTooLongIsPassedOver) {
    raw.Create(L"from\\" + std::wstring(256, L'k'));
    if (raw.Dump(L"from").subkeys.empty())
        GTEST_SKIP() << "this platform has no key names over 255 characters";
    raw.PutStr(L"v", L"text", L"from\\z");
    RegKey from(key, L"from", 0), to(key, L"to", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    RegDump expected;
    expected.subkeys[L"z"].values[L"v"] = StrContent(L"text");
    EXPECT_EQ(expected, raw.Dump(L"to"));
}

TEST_F(RegKeyTree, CopyOfOrToNoKeyEndsWithOne) {
    raw.PutStr(L"v", L"text", L"sub");
    RegDump before = raw.Dump();
    RegKey none;
    EXPECT_EQ(1, none.CopyTo(key));
    EXPECT_EQ(1, key.CopyTo(none));
    EXPECT_EQ(1, none.CopyTo(none));
    EXPECT_EQ(before, raw.Dump());
}

TEST_F(RegKeyTree, CopyIntoItselfChangesNothing) {
    PlantAllTypes(L"from\\a");
    RegDump before = raw.Dump();
    RegKey from(key, L"from", 0), to(key, L"from", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    EXPECT_EQ(before, raw.Dump());
}

int DepthOf(const RegDump& dump) {
    int nDeepest = 0;
    for (const auto& [strName, subkey] : dump.subkeys)
        nDeepest = std::max(nDeepest, DepthOf(subkey) + 1);
    return nDeepest;
}

TEST_F(RegKeyTree, CopyBelowItselfEnds) {
    raw.PutStr(L"v", L"text", L"from");
    raw.PutStr(L"v", L"text", L"from\\a");
    RegKey from(key, L"from", 0), to(key, L"from\\a\\b", 1);
    EXPECT_EQ(1, from.CopyTo(to));
    RegDump dump = raw.Dump(L"from");
    EXPECT_EQ(StrContent(L"text"), dump.subkeys[L"a"].subkeys[L"b"].values[L"v"]);
    EXPECT_GE(2 + 512, DepthOf(dump)); // the target, and as many levels as are copied
    to.Close();
    from.Close();
    EXPECT_EQ(1, key.DelSubKey(L"from"));
}

// Renaming

TEST_F(RegKeyTree, RenameMovesAllThatASubKeyHas) {
    PlantAllTypes(L"old");
    PlantAllTypes(L"old\\a\\b");
    raw.PutStr(L"", L"default", L"old\\a");
    raw.PutStr(L"v", L"text", L"other");
    RegDump expected = raw.Dump();
    expected.subkeys[L"new"] = expected.subkeys[L"old"];
    // What has no type cannot be deleted, and yet goes with its key.
    expected.subkeys.erase(L"old");
    EXPECT_EQ(1, key.RenameSubkey(L"old", L"new"));
    EXPECT_EQ(expected, raw.Dump());
}

TEST_F(RegKeyTree, RenameOntoAnotherMergesTheTwo) {
    raw.PutStr(L"v", L"old", L"old");
    raw.PutStr(L"w", L"new", L"new");
    EXPECT_EQ(1, key.RenameSubkey(L"old", L"new"));
    RegDump expected;
    expected.subkeys[L"new"].values = {{L"v", StrContent(L"old")}, {L"w", StrContent(L"new")}};
    EXPECT_EQ(expected, raw.Dump());
}

TEST_F(RegKeyTree, RenameOfAMissingSubKeyGivesZeroAndMakesNothing) {
    EXPECT_EQ(0, key.RenameSubkey(L"old", L"new"));
    EXPECT_EQ(RegDump(), raw.Dump());
}

TEST_F(RegKeyTree, RenameToWhatCannotBeMadeGivesZeroAndKeepsTheOld) {
    raw.PutStr(L"v", L"text", L"old");
    RegDump before = raw.Dump();
    EXPECT_EQ(0, key.RenameSubkey(L"old", std::wstring(300, L'x').c_str()));
    EXPECT_EQ(0, RegKey().RenameSubkey(L"old", L"new"));
    EXPECT_EQ(before, raw.Dump());
}

TEST_F(RegKeyTree, RenameToItselfOrBelowOrToNoNameChangesNothing) {
    raw.PutStr(L"v", L"text", L"old");
    raw.PutStr(L"v", L"text", L"old\\sub");
    RegDump before = raw.Dump();
    const wchar_t* const kNames[] = {L"old",        L"OLD",       L"old\\", L"old\\sub",
                                     L"Old\\\\new", L"old\\a\\b", L"",      nullptr};
    for (const wchar_t* psz : kNames) {
        EXPECT_EQ(0, key.RenameSubkey(L"old", psz)) << testing::PrintToString(psz ? psz : L"-");
        EXPECT_EQ(before, raw.Dump());
    }
    EXPECT_EQ(0, key.RenameSubkey(L"", L"new"));
    EXPECT_EQ(0, key.RenameSubkey(nullptr, L"new"));
    EXPECT_EQ(before, raw.Dump());
    EXPECT_EQ(1, key.RenameSubkey(L"old", L"old2")); // only begins alike
    EXPECT_EQ(1, key.RenameSubkey(L"old2", L"ol"));
    EXPECT_EQ(1, key.RenameSubkey(L"ol\\sub", L"sub"));
}

TEST_F(RegKeyTree, RenameOntoAParentMergesTheTwo) {
    raw.PutStr(L"v", L"text", L"a\\b");
    raw.PutStr(L"v", L"text", L"a\\b\\c");
    RegDump expected;
    expected.subkeys[L"a"] = raw.Dump(L"a\\b");
    EXPECT_EQ(1, key.RenameSubkey(L"a\\b", L"a"));
    EXPECT_EQ(expected, raw.Dump());
}

TEST_F(RegKeyTree, RenameOntoAParentIsRefusedWhereTheOldKeyWouldSwallowAPart) {
    raw.PutStr(L"v", L"text", L"a\\b\\c\\B\\C\\deep");
    RegDump before = raw.Dump();
    EXPECT_EQ(0, key.RenameSubkey(L"a\\b\\c", L"a"));
    EXPECT_EQ(before, raw.Dump());
    EXPECT_EQ(1, key.RenameSubkey(L"a\\b\\c", L"a\\b")); // there is no c\c
    RegDump expected;
    expected.subkeys[L"a"].subkeys[L"b"].subkeys[L"B"] =
        before.subkeys[L"a"].subkeys[L"b"].subkeys[L"c"].subkeys[L"B"];
    EXPECT_EQ(expected, raw.Dump());
}

// Moving from the maker's former root

class FormerRoot : public testing::TestWithParam<int> {
  protected:
    HKEY hkeyRoot = GetParam() ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    RegTree present{hkeyRoot, L"Software\\Orvanta\\TessalyMoveTest"};
    RegTree former{hkeyRoot, L"Software\\Quenby"};
    RegTree otherPresent{GetParam() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER,
                         L"Software\\Orvanta\\TessalyMoveTest"};
    RegTree otherFormer{GetParam() ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER, L"Software\\Quenby"};

    int Move() { return RegKey::CS2WA(GetParam(), L"TessalyMoveTest"); }
    void PlantProduct(const RegTree& tree, const std::wstring& strBelow) {
        tree.PutStr(L"", L"default", strBelow);
        tree.Put(L"number", REG_DWORD, {1, 2, 3, 4}, strBelow);
        tree.Put(L"none", REG_NONE, {1}, strBelow + L"\\Data");
        tree.PutStr(L"Home", L"C:\\App", strBelow + L"\\Setup");
    }
};

TEST_P(FormerRoot, WithoutAFormerKeyThereIsNothingToDo) {
    EXPECT_EQ(1, Move());
    EXPECT_FALSE(present.Exists());
    EXPECT_FALSE(former.Exists());
    former.PutStr(L"v", L"text", L"Other");
    RegDump before = former.Dump();
    EXPECT_EQ(1, Move());
    EXPECT_FALSE(present.Exists());
    EXPECT_EQ(before, former.Dump());
}

TEST_P(FormerRoot, ProductIsMovedAndTheEmptyRootGoes) {
    PlantProduct(former, L"TessalyMoveTest");
    PlantProduct(otherFormer, L"TessalyMoveTest");
    RegDump before = former.Dump(L"TessalyMoveTest"), otherBefore = otherFormer.Dump();
    EXPECT_EQ(1, Move());
    EXPECT_EQ(before, present.Dump());
    EXPECT_FALSE(former.Exists());
    EXPECT_EQ(otherBefore, otherFormer.Dump());
    EXPECT_FALSE(otherPresent.Exists());
    EXPECT_EQ(1, Move()); // once more does nothing
    EXPECT_EQ(before, present.Dump());
}

TEST_P(FormerRoot, OtherProductsKeepTheRoot) {
    PlantProduct(former, L"TessalyMoveTest");
    PlantProduct(former, L"Other");
    RegDump expected;
    expected.subkeys[L"Other"] = former.Dump(L"Other");
    EXPECT_EQ(1, Move());
    EXPECT_TRUE(present.Exists());
    EXPECT_EQ(expected, former.Dump());
}

TEST_P(FormerRoot, ValuesKeepTheRootTooButNotItsDefaultValue) {
    PlantProduct(former, L"TessalyMoveTest");
    former.PutStr(L"v", L"text");
    EXPECT_EQ(1, Move());
    RegDump expected;
    expected.values[L"v"] = StrContent(L"text");
    EXPECT_EQ(expected, former.Dump());
    former.Delete();
    present.Delete();
    PlantProduct(former, L"TessalyMoveTest");
    former.PutStr(L"", L"default");
    EXPECT_EQ(1, Move());
    EXPECT_FALSE(former.Exists());
}

TEST_P(FormerRoot, WhereBothExistNothingChanges) {
    PlantProduct(former, L"TessalyMoveTest");
    present.Create();
    RegDump before = former.Dump();
    EXPECT_EQ(1, Move());
    EXPECT_EQ(before, former.Dump());
    EXPECT_EQ(RegDump(), present.Dump());
}

TEST_P(FormerRoot, WhatCannotBeMadeGivesZeroAndKeepsTheOld) {
    std::wstring strName = L"TessalyMoveTest\\Sub";
    former.PutStr(L"v", L"text", strName);
    RegDump before = former.Dump();
    present.Create();
    ASSERT_TRUE(present.PlantDeadLink(L"Sub"));
    EXPECT_EQ(0, RegKey::CS2WA(GetParam(), strName.c_str()));
    EXPECT_EQ(before, former.Dump());
}

TEST_P(FormerRoot, NameThatIsCutIsNotMoved) {
    std::wstring strLong = L"TessalyMoveTest"; // long in all, though no component is too long
    while (strLong.size() < 300) strLong += L"\\" + std::wstring(20, L'x');
    const std::size_t kMaxName = 256 - std::wcslen(L"HKLM\\Software\\Orvanta\\");
    for (std::size_t cch : {kMaxName - 1, kMaxName, kMaxName + 1, kMaxName + 2, strLong.size()}) {
        SCOPED_TRACE(cch);
        present.Delete();
        former.Delete();
        std::wstring strName = strLong.substr(0, cch);
        former.PutStr(L"v", L"text", strName);
        RegDump before = former.Dump();
        EXPECT_EQ(1, RegKey::CS2WA(GetParam(), strName.c_str()));
        if (cch > kMaxName) {
            EXPECT_EQ(before, former.Dump());
            EXPECT_FALSE(present.Exists());
        } else {
            EXPECT_EQ(before.subkeys[L"TessalyMoveTest"], present.Dump());
            EXPECT_FALSE(RegTree::Exists(hkeyRoot, L"Software\\Quenby\\" + strName));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Roots, FormerRoot, testing::Values(0, 1), [](const auto& row) {
    return std::string(row.param ? "User" : "Machine");
});

TEST(FormerRootWithoutName, MovesNothingThatHasAPlace) {
    RegTree present(HKEY_CURRENT_USER, L"Software\\Orvanta\\TessalyMoveTest");
    RegTree former(HKEY_CURRENT_USER, L"Software\\Quenby");
    present.Create(); // with it the maker's root is there
    former.PutStr(L"v", L"text", L"Product");
    RegDump before = former.Dump();
    EXPECT_EQ(1, RegKey::CS2WA(1, nullptr));
    EXPECT_EQ(1, RegKey::CS2WA(1, L""));
    EXPECT_EQ(before, former.Dump());
}
} // namespace
