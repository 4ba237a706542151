#include "store/registry/reg_key.h"
#include "support/registry.h"

#include <gtest/gtest.h>
#include <type_traits>

static_assert(std::has_virtual_destructor_v<RegKey>);
static_assert(std::is_copy_constructible_v<RegKey> && std::is_copy_assignable_v<RegKey>);

namespace {
using Names = std::vector<std::wstring>;

class RegKeyOpen : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyKeyTest"};
};

class RegKeyRead : public RegKeyOpen {
  protected:
    RegKey key{raw.Path().c_str(), 0};
};

class RegKeyWrite : public RegKeyOpen {
  protected:
    RegKey key{raw.Path().c_str(), 1};
};

/// The key was not written to since the object was made. The clock is made to move first, so that
/// a write would show. Wine ignores a write of what is there with the same type: content that is to
/// stay unwritten is planted with another type as well.
class NoWrite {
  public:
    explicit NoWrite(TestKey& keyToWatch) : raw(keyToWatch), qwBefore(raw.LastWrite()) {
        DWORD dwStart = ::GetTickCount();
        for (FILETIME ft{}; ::GetTickCount() - dwStart < 5000; ::Sleep(1)) {
            ::GetSystemTimeAsFileTime(&ft);
            unsigned long long qw = static_cast<unsigned long long>(ft.dwHighDateTime) << 32;
            if ((qw | ft.dwLowDateTime) > qwBefore) break;
        }
    }
    bool Holds() const { return raw.LastWrite() == qwBefore; }

  private:
    TestKey& raw;
    unsigned long long qwBefore;
};

// Opening

TEST(RegKey, StartsWithoutAKey) { EXPECT_EQ(nullptr, RegKey().GetHandle()); }

TEST(RegKey, OpenOfEmptyPathGivesZero) {
    RegKey key;
    EXPECT_EQ(0, key.Open(L"", 0));
    EXPECT_EQ(0, key.Open(L"", 1));
    EXPECT_EQ(0, key.Open(static_cast<const wchar_t*>(nullptr), 0));
    EXPECT_EQ(nullptr, key.GetHandle());
}

struct RootCase {
    const char* pszName;
    const wchar_t* pszPath;
    HKEY hkey;
};

class RegKeyRoot : public testing::TestWithParam<RootCase> {};

TEST_P(RegKeyRoot, NameGivesItsHandleInAnyCase) {
    EXPECT_EQ(GetParam().hkey, RegKey(GetParam().pszPath, 0).GetHandle());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegKeyRoot,
    testing::Values(RootCase{"ShortClasses", L"HKCLS", HKEY_CLASSES_ROOT},
                    RootCase{"LongClasses", L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                    RootCase{"ShortUser", L"HKCU", HKEY_CURRENT_USER},
                    RootCase{"LongUser", L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                    RootCase{"ShortMachine", L"HKLM", HKEY_LOCAL_MACHINE},
                    RootCase{"LongMachine", L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                    RootCase{"ShortUsers", L"HKU", HKEY_USERS},
                    RootCase{"LongUsers", L"HKEY_USERS", HKEY_USERS},
                    RootCase{"SmallLetters", L"hkcu", HKEY_CURRENT_USER},
                    RootCase{"MixedLetters", L"hKey_Local_Machine", HKEY_LOCAL_MACHINE},
                    RootCase{"Backslashes", L"\\\\HKCU\\\\", HKEY_CURRENT_USER}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(RegKey, NamesThatAreNoRootGiveNull) {
    for (const wchar_t* psz : {L"HKC", L"HKCUX", L"HKCR", L"HKCC", L"nonsense", L"\\", L"\\\\\\"}) {
        EXPECT_EQ(nullptr, RegKey(psz, 0).GetHandle()) << testing::PrintToString(psz);
    }
}

TEST(RegKey, OpensBelowARootInAnyCase) {
    EXPECT_NE(nullptr, RegKey(L"hkey_current_user\\Software", 0).GetHandle());
    EXPECT_NE(nullptr, RegKey(L"HKCU\\sOFTWARE", 0).GetHandle());
}

TEST_F(RegKeyOpen, ComponentsBeforeTheRootArePassedOver) {
    raw.PutStr(L"mark", L"here");
    RegKey key((L"xyz\\" + raw.Path()).c_str(), 0);
    EXPECT_TRUE(key.FindValue(L"mark"));
}

TEST_F(RegKeyOpen, EmptyComponentsAreHarmless) {
    raw.PutStr(L"mark", L"here", L"sub");
    RegKey key((L"\\\\HKCU\\\\\\" + raw.Path(L"\\sub\\\\").substr(5)).c_str(), 0);
    EXPECT_TRUE(key.FindValue(L"mark"));
}

TEST(RegKey, WriteOpenWithoutARootCreatesNothing) {
    RegKey key;
    EXPECT_EQ(0, key.Open(L"Nonsense\\Sub", 1));
    EXPECT_EQ(nullptr, key.GetHandle());
    EXPECT_EQ(nullptr, RegKey(L"HKCU\\Nonsense", 0).GetHandle());
    EXPECT_EQ(nullptr, RegKey(L"HKCU\\Sub", 0).GetHandle());
}

TEST_F(RegKeyOpen, WriteOpenMakesEveryMissingLevel) {
    RegKey key(raw.Path(L"a\\b\\c").c_str(), 1);
    EXPECT_NE(nullptr, key.GetHandle());
    EXPECT_EQ(1, key.PutInt(L"n", 1));
    EXPECT_TRUE(raw.HasSubKey(L"a\\b\\c"));
}

TEST_F(RegKeyOpen, ReadOpenOfAMissingTailMakesNothing) {
    raw.PutStr(L"v", L"text", L"a");
    RegKey key;
    EXPECT_EQ(0, key.Open(raw.Path(L"a\\b\\c").c_str(), 0));
    EXPECT_EQ(nullptr, key.GetHandle());
    EXPECT_FALSE(raw.HasSubKey(L"a\\b"));
}

TEST_F(RegKeyOpen, ComponentMayHave127Characters) {
    std::wstring strFits(127, L'k'), strLong(128, L'k');
    EXPECT_NE(nullptr, RegKey(raw.Path(strFits).c_str(), 1).GetHandle());
    EXPECT_EQ(nullptr, RegKey(raw.Path(strLong).c_str(), 1).GetHandle());
    EXPECT_EQ(nullptr, RegKey((strLong + L"\\HKCU").c_str(), 0).GetHandle());
    EXPECT_EQ((Names{strFits}), raw.SubKeys());
}

struct LevelCase {
    const char* pszName;
    const wchar_t* pszBelow;
    int nLevels;
    const wchar_t* pszMade; // the deepest key that a write open makes
    const wchar_t* pszNotMade;
};

class RegKeyOpenParent : public RegKeyOpen, public testing::WithParamInterface<LevelCase> {};

TEST_P(RegKeyOpenParent, LeavesTheLastLevelsUnopened) {
    const LevelCase& row = GetParam();
    RegKey key;
    EXPECT_EQ(1, key.OpenParent(raw.Path(row.pszBelow).c_str(), 1, row.nLevels));
    EXPECT_TRUE(raw.HasSubKey(row.pszMade));
    EXPECT_FALSE(raw.HasSubKey(row.pszNotMade));
}

INSTANTIATE_TEST_SUITE_P(Cases, RegKeyOpenParent,
                         testing::Values(LevelCase{"One", L"a1\\b", 1, L"a1", L"a1\\b"},
                                         LevelCase{"Two", L"a2\\b\\c", 2, L"a2", L"a2\\b"},
                                         LevelCase{"None", L"a3\\b", 0, L"a3\\b", L"a3\\c"},
                                         LevelCase{"OneBehindTheLastBackslash", L"a4\\b\\", 1,
                                                   L"a4\\b", L"a4\\c"},
                                         LevelCase{"Negative", L"a5\\b", -1, L"a5\\b", L"a5\\c"}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(RegKey, OpenParentBeforeTheRootGivesNull) {
    RegKey key;
    EXPECT_EQ(0, key.OpenParent(L"HKCU\\Software", 0, 2));
    EXPECT_EQ(0, key.OpenParent(L"HKCU\\Software", 0, 5));
    EXPECT_EQ(1, key.OpenParent(L"HKCU\\Software", 0, 1));
    EXPECT_EQ(HKEY_CURRENT_USER, key.GetHandle());
}

TEST_F(RegKeyOpen, TwoTextsAreJoined) {
    raw.PutStr(L"mark", L"here", L"a\\b");
    RegKey key(raw.Path(L"a").c_str(), L"b", 0);
    EXPECT_TRUE(key.FindValue(L"mark"));
    key.Close();
    EXPECT_EQ(1, key.Open(raw.Path().c_str(), L"a\\b", 0));
    EXPECT_TRUE(key.FindValue(L"mark"));
    key.Close();
    EXPECT_EQ(0, key.Open(raw.Path().c_str(), L"c", 0));
}

TEST_F(RegKeyOpen, JoinedTextIsCutAt255Characters) {
    std::wstring strBase = raw.Path() + L"\\" + std::wstring(100, L'p');
    std::wstring strSub(127, L's');
    RegKey key(strBase.c_str(), strSub.c_str(), 1);
    ASSERT_NE(nullptr, key.GetHandle());
    std::size_t cchLeft = 255 - strBase.size() - 1;
    ASSERT_LT(cchLeft, 127u);
    EXPECT_TRUE(raw.HasSubKey(std::wstring(100, L'p') + L"\\" + std::wstring(cchLeft, L's')));
}

TEST_F(RegKeyOpen, OpensBelowAnOpenKey) {
    RegKey parent(raw.Path().c_str(), 1);
    RegKey missing(parent, L"child", 0);
    EXPECT_EQ(nullptr, missing.GetHandle());
    RegKey made(parent, L"child\\grandchild", 1);
    EXPECT_NE(nullptr, made.GetHandle());
    RegKey found(parent, L"child", 0);
    EXPECT_NE(nullptr, found.GetHandle());
    RegKey none;
    RegKey below(none, L"child", 0);
    EXPECT_EQ(nullptr, below.GetHandle());
}

TEST_F(RegKeyOpen, OnlyDeleteAndSetOpenForWriting) {
    RegKey parent(raw.Path().c_str(), 1);
    for (int n = 0; n <= 7; ++n) {
        auto op = static_cast<RegKey::Op>(n);
        int bWrites = n == RegKey::OpDelete || n == RegKey::OpSet;
        EXPECT_EQ(bWrites, RegKey::IsWritable(op)) << n;
        std::wstring strName = L"op" + std::to_wstring(n);
        EXPECT_EQ(bWrites, RegKey(raw.Path(strName).c_str(), op).GetHandle() != nullptr) << n;
        EXPECT_EQ(bWrites, RegKey(parent, (strName + L"below").c_str(), op).GetHandle() != nullptr)
            << n;
    }
}

TEST_F(RegKeyOpen, OpSetAlwaysOpensForReadingOnly) {
    RegKey key(raw.Path().c_str(), RegKey::OpSetAlways);
    ASSERT_NE(nullptr, key.GetHandle());
    EXPECT_EQ(0, key.PutDword(L"n", 1, 0));
}

TEST_F(RegKeyOpen, FailedOpenLeavesNull) {
    RegKey key(raw.Path().c_str(), 0);
    RegKey held(key); // the open overwrites the handle
    EXPECT_EQ(0, key.Open(L"nonsense", 0));
    EXPECT_EQ(nullptr, key.GetHandle());
    EXPECT_NE(nullptr, held.GetHandle());
}

TEST_F(RegKeyOpen, CopyHasTheSameHandle) {
    RegKey key(raw.Path().c_str(), 1);
    RegKey copy(key);
    RegKey assigned;
    assigned = key;
    EXPECT_EQ(key.GetHandle(), copy.GetHandle());
    EXPECT_EQ(key.GetHandle(), assigned.GetHandle());
    copy.Detach();
    assigned.Detach();
    EXPECT_EQ(nullptr, copy.GetHandle());
    EXPECT_EQ(1, key.PutInt(L"still", 1));
}

TEST_F(RegKeyOpen, AttachClosesWhatIsHeld) {
    RegKey key(raw.Path().c_str(), 0);
    HKEY hkeyOld = key.GetHandle(), hkeyNew = nullptr;
    ::RegOpenKeyExW(raw.Get(), nullptr, 0, KEY_READ, &hkeyNew);
    EXPECT_EQ(1, key.Attach(hkeyNew, 0));
    EXPECT_EQ(hkeyNew, key.GetHandle());
    EXPECT_EQ(ERROR_INVALID_HANDLE, ::RegCloseKey(hkeyOld));
    EXPECT_EQ(1, key.Attach(hkeyNew, 0)); // its own: stays open
    EXPECT_EQ(0u, key.GetBinSize(L"none"));
    EXPECT_EQ(ERROR_SUCCESS,
              ::RegQueryInfoKeyW(hkeyNew, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(RegKeyOpen, CloseAndDestructorCloseTheHandle) {
    HKEY hkeyClosed, hkeyDestroyed;
    {
        RegKey key(raw.Path().c_str(), 0), other(raw.Path().c_str(), 0);
        hkeyClosed = key.GetHandle();
        hkeyDestroyed = other.GetHandle();
        key.Close();
        EXPECT_EQ(nullptr, key.GetHandle());
        key.Close();
        EXPECT_EQ(ERROR_INVALID_HANDLE, ::RegCloseKey(hkeyClosed));
    }
    EXPECT_EQ(ERROR_INVALID_HANDLE, ::RegCloseKey(hkeyDestroyed));
}

TEST_F(RegKeyOpen, FlushNeedsAKey) {
    EXPECT_EQ(1, RegKey(raw.Path().c_str(), 1).Flush());
    EXPECT_EQ(0, RegKey().Flush());
}

// Reading

TEST_F(RegKeyRead, TypeOfAMissingValueIsZero) {
    raw.PutStr(L"s", L"text");
    raw.Put(L"b", REG_BINARY, {1});
    raw.Put(L"none", REG_NONE, {1});
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), key.GetValueType(L"s"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), key.GetValueType(L"b"));
    EXPECT_EQ(0u, key.GetValueType(L"missing"));
    EXPECT_EQ(1, key.FindValue(L"s"));
    EXPECT_EQ(0, key.FindValue(L"none"));
    EXPECT_EQ(0, key.FindValue(L"missing"));
    EXPECT_EQ(0, key.FindValue(nullptr));
}

TEST_F(RegKeyRead, NumbersAreReadFromAnyTypeOfUpToFourBytes) {
    raw.PutDword(L"n", 0x80000001);
    raw.Put(L"bin4", REG_BINARY, {1, 2, 3, 4});
    raw.Put(L"bin2", REG_BINARY, {1, 2});
    raw.Put(L"bin0", REG_BINARY, {});
    raw.Put(L"bin5", REG_BINARY, {1, 2, 3, 4, 5});
    EXPECT_EQ(0x80000001, key.GetDword(L"n", 7));
    EXPECT_EQ(static_cast<int>(0x80000001), key.GetInt(L"n", 7));
    EXPECT_EQ(0x04030201u, key.GetDword(L"bin4", 7));
    EXPECT_EQ(0x0201u, key.GetDword(L"bin2", 0xFFFFFFFF));
    EXPECT_EQ(0u, key.GetDword(L"bin0", 7));
    EXPECT_EQ(7u, key.GetDword(L"bin5", 7));
    EXPECT_EQ(7u, key.GetDword(L"missing", 7));
    EXPECT_EQ(-7, key.GetInt(L"missing", -7));
}

TEST_F(RegKeyRead, DefaultValueIsReadByNull) {
    raw.PutStr(L"", L"unnamed");
    wchar_t sz[20];
    EXPECT_EQ(7, key.GetStr(nullptr, sz, 20, nullptr));
    EXPECT_STREQ(L"unnamed", sz);
}

struct StrCase {
    const char* pszName;
    RegBytes stored;
    int cchBuffer;
    const wchar_t* pszExpected; // with the default "def"
};

class RegKeyReadText : public RegKeyRead, public testing::WithParamInterface<StrCase> {};

TEST_P(RegKeyReadText, MustFitWithItsTerminator) {
    const StrCase& row = GetParam();
    for (DWORD dwType : {REG_SZ, REG_BINARY, REG_DWORD}) {
        raw.Put(L"s", dwType, row.stored);
        std::vector<wchar_t> buffer(row.cchBuffer + 4, L'#');
        int nExpected = static_cast<int>(wcslen(row.pszExpected));
        EXPECT_EQ(nExpected, key.GetStr(L"s", buffer.data(), row.cchBuffer, L"def")) << dwType;
        EXPECT_STREQ(row.pszExpected, buffer.data()) << dwType;
        for (int n = 0; n < 4; ++n) EXPECT_EQ(L'#', buffer[row.cchBuffer + n]) << dwType;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegKeyReadText,
    testing::Values(StrCase{"Fits", BytesOf(L"abcd"), 5, L"abcd"},
                    StrCase{"Roomy", BytesOf(L"abcd"), 100, L"abcd"},
                    StrCase{"OneTooSmall", BytesOf(L"abcd"), 4, L"def"},
                    StrCase{"MuchTooSmall", BytesOf(L"abcd"), 2, L"d"},
                    StrCase{"EmptyText", BytesOf(L""), 5, L""}, StrCase{"NoBytes", {}, 5, L""},
                    StrCase{"OpenEndThatFits", BytesOf(L"abcd", false), 5, L"abcd"},
                    StrCase{"OpenEndWithoutRoom", BytesOf(L"abcde", false), 5, L"def"},
                    StrCase{"OneByte", {'x'}, 5, L""},
                    StrCase{"ThreeBytes", {'x', 0, 'y'}, 5, L"x"},
                    StrCase{"InnerTerminator", {'x', 0, 0, 0, 'y', 0, 0, 0}, 5, L"x"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(RegKeyRead, MissingTextGivesTheDefaultCutToFit) {
    wchar_t sz[4] = L"###";
    EXPECT_EQ(3, key.GetStr(L"missing", sz, 4, L"abcdef"));
    EXPECT_STREQ(L"abc", sz);
    EXPECT_EQ(0, key.GetStr(L"missing", sz, 4, nullptr));
    EXPECT_STREQ(L"", sz);
}

TEST_F(RegKeyRead, BufferCanBeItsOwnDefault) {
    raw.Put(L"open", REG_BINARY, BytesOf(L"12345", false));
    wchar_t sz[5] = L"keep";
    EXPECT_EQ(4, key.GetStr(L"missing", sz, 5, sz));
    EXPECT_STREQ(L"keep", sz);
    EXPECT_EQ(4, key.GetStr(L"open", sz, 5, sz)); // read, and found not to fit
    EXPECT_STREQ(L"keep", sz);
}

TEST_F(RegKeyRead, BufferWithoutRoomIsNotTouched) {
    raw.PutStr(L"s", L"text");
    wchar_t ch = L'#';
    EXPECT_EQ(0, key.GetStr(L"s", &ch, 0, L"def"));
    EXPECT_EQ(0, key.GetStr(L"s", &ch, -1, L"def"));
    EXPECT_EQ(0, key.GetStr(L"s", nullptr, 5, L"def"));
    EXPECT_EQ(L'#', ch);
}

TEST_F(RegKeyRead, SizesAreToldInTheirUnits) {
    raw.PutStr(L"s", L"abc");
    raw.PutStr(L"e", L"");
    raw.Put(L"zero", REG_BINARY, {});
    raw.Put(L"five", REG_BINARY, {1, 2, 3, 4, 5});
    EXPECT_EQ(5u, key.GetStrSize(L"s"));
    EXPECT_EQ(2u, key.GetStrSize(L"e"));
    EXPECT_EQ(3u, key.GetStrSize(L"five"));
    EXPECT_EQ(0u, key.GetStrSize(L"zero"));
    EXPECT_EQ(0u, key.GetStrSize(L"missing"));
    EXPECT_EQ(8u, key.GetBinSize(L"s"));
    EXPECT_EQ(5u, key.GetBinSize(L"five"));
    EXPECT_EQ(0u, key.GetBinSize(L"zero"));
    EXPECT_EQ(0u, key.GetBinSize(L"missing"));
}

TEST_F(RegKeyRead, BinWithTooSmallALimitTellsOnlyTheType) {
    raw.Put(L"b", REG_BINARY, {1, 2, 3});
    unsigned char b[4] = {9, 9, 9, 9};
    DWORD dwType = 77;
    EXPECT_EQ(0, key.GetBin(L"b", b, 2, &dwType));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), dwType);
    EXPECT_EQ(9, b[0]);
}

TEST_F(RegKeyRead, BinIsReadUpToTheLimitOrWithoutOne) {
    raw.Put(L"b", REG_BINARY, {1, 2, 3});
    for (unsigned cbMax : {3u, 4u, 0u}) {
        unsigned char b[4] = {9, 9, 9, 9};
        EXPECT_EQ(1, key.GetBin(L"b", b, cbMax)) << cbMax;
        EXPECT_EQ((RegBytes{1, 2, 3, 9}), RegBytes(b, b + 4)) << cbMax;
    }
}

TEST_F(RegKeyRead, MissingBinLeavesTypeAndBuffer) {
    unsigned char b = 9;
    DWORD dwType = 77;
    EXPECT_EQ(0, key.GetBin(L"missing", &b, 1, &dwType));
    EXPECT_EQ(77u, dwType);
    EXPECT_EQ(9, b);
}

TEST(RegKey, WithoutAKeyReadsGiveDefaultsAndWritesZero) {
    RegKey key;
    wchar_t sz[5];
    DWORD dwType = 77;
    EXPECT_EQ(5u, key.GetDword(L"n", 5));
    EXPECT_EQ(3, key.GetStr(L"s", sz, 5, L"def"));
    EXPECT_EQ(0u, key.GetStrSize(L"s"));
    EXPECT_EQ(0, key.GetBin(L"b", sz, 5, &dwType));
    EXPECT_EQ(0, key.PutDword(L"n", 1, 1));
    EXPECT_EQ(0, key.PutStr(L"s", L"text", 1));
    EXPECT_EQ(0, key.PutBin(L"b", sz, 2, REG_BINARY));
    EXPECT_EQ(1, key.GetFirstValue(sz, 5)); // an error is not "no more"
    EXPECT_EQ(1, key.GetFirstSubKey(sz, 5));
    EXPECT_STREQ(L"", sz);
}

// Writing

TEST_F(RegKeyWrite, ChangedWriteIsSeenByTheLastWriteTime) {
    raw.PutDword(L"n", 5);
    NoWrite watch(raw);
    EXPECT_EQ(1, key.PutDword(L"n", 6, 1));
    EXPECT_FALSE(watch.Holds()); // what the tests of unchanged values rely on
}

TEST_F(RegKeyWrite, DwordIsWrittenAsFourBytes) {
    EXPECT_EQ(1, key.PutDword(L"n", 0xFEDCBA98, 1));
    EXPECT_EQ((RegContent{REG_DWORD, {0x98, 0xBA, 0xDC, 0xFE}}), raw.Value(L"n"));
    EXPECT_EQ(1, key.PutInt(L"m", -2));
    EXPECT_EQ((RegContent{REG_DWORD, {0xFE, 0xFF, 0xFF, 0xFF}}), raw.Value(L"m"));
    EXPECT_EQ(1, key.PutDword(L"zero", 0, 1)); // missing does not count as 0
    EXPECT_EQ((RegContent{REG_DWORD, {0, 0, 0, 0}}), raw.Value(L"zero"));
    EXPECT_EQ(1, key.PutDword(L"ones", 0xFFFFFFFF, 1));
    EXPECT_EQ((RegContent{REG_DWORD, {255, 255, 255, 255}}), raw.Value(L"ones"));
}

TEST_F(RegKeyWrite, EqualDwordIsNotWrittenIfCompared) {
    raw.PutDword(L"n", 5);
    raw.Put(L"bin", REG_BINARY, {5, 0, 0, 0});
    raw.Put(L"ones", REG_BINARY, {255, 255, 255, 255});
    NoWrite watch(raw);
    EXPECT_EQ(1, key.PutDword(L"n", 5, 1));
    EXPECT_EQ(1, key.PutInt(L"n", 5));
    EXPECT_EQ(1, key.PutDword(L"bin", 5, 1));
    EXPECT_EQ(1, key.PutInt(L"bin", 5));
    EXPECT_EQ(1, key.PutInt(L"ones", -1));
    EXPECT_TRUE(watch.Holds());
    EXPECT_EQ(1, key.PutDword(L"bin", 5, 0));
    EXPECT_FALSE(watch.Holds());
}

TEST_F(RegKeyWrite, StrIsWrittenWithItsTerminator) {
    EXPECT_EQ(1, key.PutStr(L"s", L"ab", 1));
    EXPECT_EQ((RegContent{REG_SZ, {'a', 0, 'b', 0, 0, 0}}), raw.Value(L"s"));
    EXPECT_EQ(1, key.PutStr(nullptr, L"", 1));
    EXPECT_EQ((RegContent{REG_SZ, {0, 0}}), raw.Value(L""));
    EXPECT_EQ(1, key.PutStr(L"null", nullptr, 1));
    EXPECT_EQ((RegContent{REG_SZ, {0, 0}}), raw.Value(L"null"));
}

TEST_F(RegKeyWrite, EqualStrIsNotWrittenIfCompared) {
    std::wstring strLong(5000, L'x');
    raw.PutStr(L"s", L"Text");
    raw.PutStr(L"e", L"");
    raw.PutStr(L"long", strLong);
    raw.Put(L"open", REG_SZ, BytesOf(L"ab", false));
    raw.Put(L"bin", REG_BINARY, BytesOf(L"Text"));
    raw.Put(L"empty bin", REG_BINARY, BytesOf(L""));
    raw.Put(L"long bin", REG_BINARY, BytesOf(strLong));
    raw.Put(L"open bin", REG_BINARY, BytesOf(L"ab", false));
    NoWrite watch(raw);
    EXPECT_EQ(1, key.PutStr(L"s", L"Text", 1));
    EXPECT_EQ(1, key.PutStr(L"e", L"", 1));
    EXPECT_EQ(1, key.PutStr(L"long", strLong.c_str(), 1));
    EXPECT_EQ(1, key.PutStr(L"open", L"ab", 1));
    EXPECT_EQ(1, key.PutStr(L"bin", L"Text", 1)); // the type is not compared
    EXPECT_EQ(1, key.PutStr(L"empty bin", L"", 1));
    EXPECT_EQ(1, key.PutStr(L"long bin", strLong.c_str(), 1));
    EXPECT_EQ(1, key.PutStr(L"open bin", L"ab", 1));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"s", L"Text", 1));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"bin", L"Text", 1));
    EXPECT_TRUE(watch.Holds());
    EXPECT_EQ(1, key.PutStr(L"bin", L"Text", 0));
    EXPECT_FALSE(watch.Holds());
}

struct PutStrCase {
    const char* pszName;
    RegBytes stored;
    const wchar_t* pszNew;
};

class RegKeyWriteText : public RegKeyWrite, public testing::WithParamInterface<PutStrCase> {};

TEST_P(RegKeyWriteText, DifferentOneIsWrittenThoughCompared) {
    raw.Put(L"s", REG_BINARY, GetParam().stored);
    EXPECT_EQ(1, key.PutStr(L"s", GetParam().pszNew, 1));
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(GetParam().pszNew)}), raw.Value(L"s"));
}

INSTANTIATE_TEST_SUITE_P(Cases, RegKeyWriteText,
                         testing::Values(PutStrCase{"OtherText", BytesOf(L"old"), L"new"},
                                         PutStrCase{"OtherCase", BytesOf(L"TEXT"), L"text"},
                                         PutStrCase{"Longer", BytesOf(L"text"), L"text2"},
                                         PutStrCase{"Shorter", BytesOf(L"text2"), L"text"},
                                         PutStrCase{"TheText1BecomesEmpty", BytesOf(L"1"), L""},
                                         PutStrCase{"TextBecomesEmpty", BytesOf(L"text"), L""},
                                         PutStrCase{"EmptyBecomesText", BytesOf(L""), L"text"},
                                         PutStrCase{"OneOpenCharacterBecomesEmpty",
                                                    BytesOf(L"x", false), L""},
                                         PutStrCase{"NoBytesBecomeEmpty", {}, L""},
                                         PutStrCase{"OneByteBecomesEmpty", {0}, L""},
                                         PutStrCase{"OddSizeOfTheSameText", {'x', 0, 0}, L"x"}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(RegKeyWrite, EmptyStrDeletesWhereAskedTo) {
    raw.PutStr(L"s", L"text");
    raw.PutStr(L"t", L"text");
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"s", L"", 1));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"t", nullptr, 0));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"missing", L"", 1));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"u", L"new", 1));
    EXPECT_EQ(1u, raw.Values().size());
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"new")}), raw.Value(L"u"));
}

TEST_F(RegKeyWrite, BinIsWrittenWithItsType) {
    EXPECT_EQ(1, key.PutBin(L"b", "\1\2\3", 3, REG_BINARY));
    EXPECT_EQ((RegContent{REG_BINARY, {1, 2, 3}}), raw.Value(L"b"));
    EXPECT_EQ(1, key.PutBin(L"t", "a\0\0", 4, REG_EXPAND_SZ));
    EXPECT_EQ(static_cast<DWORD>(REG_EXPAND_SZ), raw.Value(L"t").dwType);
    EXPECT_EQ(1, key.PutBin(L"zero", nullptr, 0, REG_BINARY));
    EXPECT_EQ((RegContent{REG_BINARY, {}}), raw.Value(L"zero"));
    EXPECT_EQ(0, key.PutBin(L"null", nullptr, 3, REG_BINARY));
    EXPECT_FALSE(raw.HasValue(L"null"));
}

TEST_F(RegKeyWrite, EqualBinIsNotWrittenWhateverItsType) {
    raw.Put(L"b", REG_BINARY, {1, 2, 3});
    raw.Put(L"none", REG_NONE, {1, 2, 3});
    raw.PutDword(L"n", 0x04030201);
    NoWrite watch(raw);
    EXPECT_EQ(1, key.PutBin(L"b", "\1\2\3", 3, REG_BINARY));
    EXPECT_EQ(1, key.PutBin(L"none", "\1\2\3", 3, REG_BINARY));
    EXPECT_EQ(1, key.PutBin(L"n", "\1\2\3\4", 4, REG_BINARY));
    EXPECT_TRUE(watch.Holds());
    EXPECT_EQ(static_cast<DWORD>(REG_DWORD), raw.Value(L"n").dwType);
}

TEST_F(RegKeyWrite, DifferentBinIsWritten) {
    raw.Put(L"b", REG_BINARY, {1, 2, 3});
    EXPECT_EQ(1, key.PutBin(L"b", "\1\2\4", 3, REG_BINARY));
    EXPECT_EQ((RegBytes{1, 2, 4}), raw.Value(L"b").bytes);
    EXPECT_EQ(1, key.PutBin(L"b", "\1\2", 2, REG_BINARY));
    EXPECT_EQ((RegBytes{1, 2}), raw.Value(L"b").bytes);
    EXPECT_EQ(1, key.PutBin(L"b", "\1\2\3\4", 4, REG_BINARY));
    EXPECT_EQ((RegBytes{1, 2, 3, 4}), raw.Value(L"b").bytes);
}

TEST_F(RegKeyWrite, BinWithoutBytesIsAlwaysWritten) {
    raw.Put(L"b", REG_NONE, {});
    EXPECT_EQ(1, key.PutBin(L"b", "", 0, REG_BINARY));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), raw.Value(L"b").dwType);
}

// Enumeration

TEST_F(RegKeyRead, WalksNamesOfValuesAndSubKeys) {
    for (const wchar_t* psz : {L"a", L"b", L"c"}) {
        raw.PutStr(psz, L"text");
        raw.PutStr(L"v", L"text", std::wstring(L"key ") + psz);
    }
    Names values, subkeys;
    wchar_t sz[40];
    for (int b = key.GetFirstValue(sz, 40); b; b = key.GetNextValue(sz, 40)) values.push_back(sz);
    for (int b = key.GetFirstSubKey(sz, 40); b; b = key.GetNextSubKey(sz, 40))
        subkeys.push_back(sz);
    EXPECT_EQ((Names{L"a", L"b", L"c"}), values);
    EXPECT_EQ((Names{L"key a", L"key b", L"key c"}), subkeys);
}

TEST_F(RegKeyRead, ReadingByIndexLeavesTheWalkAlone) {
    for (const wchar_t* psz : {L"a", L"b", L"c"}) {
        raw.PutStr(psz, L"text");
        raw.PutStr(L"v", L"text", std::wstring(L"key ") + psz);
    }
    wchar_t sz[40];
    key.GetFirstValue(sz, 40);
    EXPECT_EQ(1, key.GetValueByIndex(2, sz, 40));
    EXPECT_STREQ(L"c", sz);
    EXPECT_EQ(1, key.GetSubKeyByIndex(0, sz, 40));
    EXPECT_STREQ(L"key a", sz);
    EXPECT_EQ(0, key.GetSubKeyByIndex(3, sz, 40));
    EXPECT_EQ(0, key.GetValueByIndex(3, sz, 40));
    EXPECT_EQ(1, key.GetNextValue(sz, 40));
    EXPECT_STREQ(L"b", sz);
}

TEST_F(RegKeyRead, EmptyKeyHasNoFirstName) {
    wchar_t sz[40];
    EXPECT_EQ(0, key.GetFirstValue(sz, 40));
    EXPECT_EQ(0, key.GetFirstSubKey(sz, 40));
}

TEST_F(RegKeyRead, NameThatDoesNotFitGivesOneAndNoName) {
    raw.PutStr(L"value", L"text");
    raw.PutStr(L"v", L"text", L"child");
    wchar_t sz[6] = L"#####";
    EXPECT_EQ(1, key.GetFirstValue(sz, 5));
    EXPECT_NE(L'#', sz[0]);
    EXPECT_EQ(ERROR_MORE_DATA, key.ReadValueName(0, sz, 5));
    EXPECT_EQ(ERROR_MORE_DATA, key.ReadSubKeyName(0, sz, 5));
    EXPECT_EQ(ERROR_SUCCESS, key.ReadValueName(0, sz, 6));
    EXPECT_STREQ(L"value", sz);
    EXPECT_EQ(1, key.GetFirstValue(nullptr, 5));
    EXPECT_EQ(1, key.GetFirstSubKey(sz, 0));
}
} // namespace
