#include "store/registry/reg_key.h"
#include "support/registry.h"

#include <gtest/gtest.h>

namespace {
class RegKeyOp : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyOpTest"};
    RegKey key{raw.Path().c_str(), 1};

    int Str(int nOp, const wchar_t* pszText) {
        return key.ProcessEntry(static_cast<RegKey::Op>(nOp), L"v", pszText);
    }
    int Num(int nOp, DWORD& dwValue) {
        return key.ProcessEntry(static_cast<RegKey::Op>(nOp), L"v", dwValue);
    }
    int Num(int nOp, DWORD&& dwValue) { return Num(nOp, dwValue); }
};

TEST_F(RegKeyOp, NumbersAreThoseOfTheInterface) {
    EXPECT_EQ(0, RegKey::OpTest);
    EXPECT_EQ(1, RegKey::OpDelete);
    EXPECT_EQ(2, RegKey::OpSet);
    EXPECT_EQ(3, RegKey::OpGet);
    EXPECT_EQ(4, RegKey::OpTestAbsent);
    EXPECT_EQ(5, RegKey::OpTestNoCase);
    EXPECT_EQ(6, RegKey::OpSetAlways);
}

const std::wstring kLongest(259, L'x'), kLonger(260, L'x'); // of 520 and 522 bytes

struct TestCase {
    const char* pszName;
    RegBytes stored;
    const wchar_t* pszExpected;
    int nTest;
    int nTestNoCase;
};

class RegKeyOpTest : public RegKeyOp, public testing::WithParamInterface<TestCase> {};

TEST_P(RegKeyOpTest, ComparesTheStoredText) {
    raw.Put(L"v", REG_BINARY, GetParam().stored);
    EXPECT_EQ(GetParam().nTest, Str(RegKey::OpTest, GetParam().pszExpected));
    EXPECT_EQ(GetParam().nTestNoCase, Str(RegKey::OpTestNoCase, GetParam().pszExpected));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegKeyOpTest,
    testing::Values(TestCase{"Equal", BytesOf(L"Text"), L"Text", 1, 1},
                    TestCase{"OtherCase", BytesOf(L"Text"), L"tEXT", 0, 1},
                    TestCase{"OtherCaseBeyondASCII", BytesOf(L"\u00C4rger"), L"\u00E4RGER", 0, 1},
                    TestCase{"Different", BytesOf(L"Text"), L"Test", 0, 0},
                    TestCase{"Longer", BytesOf(L"Text2"), L"Text", 0, 0},
                    TestCase{"Shorter", BytesOf(L"Tex"), L"Text", 0, 0},
                    TestCase{"EmptyStored", BytesOf(L""), L"Text", 0, 0},
                    TestCase{"EmptyExpected", BytesOf(L"Text"), L"", 0, 0},
                    TestCase{"BothEmpty", BytesOf(L""), L"", 1, 1},
                    TestCase{"NoBytes", {}, L"", 1, 1},
                    TestCase{"OpenEnd", BytesOf(L"Text", false), L"Text", 1, 1},
                    TestCase{"520Bytes", BytesOf(kLongest), kLongest.c_str(), 1, 1},
                    TestCase{"520BytesWithAnOpenEnd", BytesOf(kLonger, false), kLonger.c_str(), 1,
                             1},
                    TestCase{"522Bytes", BytesOf(kLonger), kLonger.c_str(), 0, 0},
                    TestCase{"522BytesAgainstEmpty", BytesOf(kLonger), L"", 1, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST_F(RegKeyOp, TestOfAMissingValueIsTrueForTheEmptyText) {
    EXPECT_EQ(1, Str(RegKey::OpTest, L""));
    EXPECT_EQ(1, Str(RegKey::OpTestNoCase, nullptr));
    EXPECT_EQ(0, Str(RegKey::OpTest, L"Text"));
}

TEST_F(RegKeyOp, DeleteOfAnEntryGivesOne) {
    raw.PutStr(L"v", L"text");
    EXPECT_EQ(1, Str(RegKey::OpDelete, L"other"));
    EXPECT_FALSE(raw.HasValue(L"v"));
    EXPECT_EQ(1, Str(RegKey::OpDelete, L"other"));
    raw.PutDword(L"v", 1);
    EXPECT_EQ(1, Num(RegKey::OpDelete, 1));
    EXPECT_FALSE(raw.HasValue(L"v"));
    EXPECT_EQ(1, RegKey().ProcessEntry(RegKey::OpDelete, L"v", L""));
}

TEST_F(RegKeyOp, SetWritesWhatDiffers) {
    EXPECT_EQ(1, Str(RegKey::OpSet, L"text"));
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"text")}), raw.Value(L"v"));
    EXPECT_EQ(1, Str(RegKey::OpSet, L"TEXT"));
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"TEXT")}), raw.Value(L"v"));
    raw.Put(L"v", REG_BINARY, BytesOf(L"TEXT"));
    EXPECT_EQ(1, Str(RegKey::OpSet, L"TEXT"));
    EXPECT_EQ(static_cast<DWORD>(REG_BINARY), raw.Value(L"v").dwType); // not written again
}

TEST_F(RegKeyOp, SetOfAnEmptyTextWritesOnlyOverText) {
    EXPECT_EQ(1, Str(RegKey::OpSet, L""));
    EXPECT_FALSE(raw.HasValue(L"v"));
    raw.PutStr(L"v", L"text");
    EXPECT_EQ(1, Str(RegKey::OpSet, L""));
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"")}), raw.Value(L"v"));
}

TEST_F(RegKeyOp, SetFailsWhereItCannotWrite) {
    RegKey reader(raw.Path().c_str(), 0);
    DWORD dw = 1;
    EXPECT_EQ(0, reader.ProcessEntry(RegKey::OpSet, L"v", L"text"));
    EXPECT_EQ(0, reader.ProcessEntry(RegKey::OpSet, L"v", dw));
    EXPECT_EQ(0, reader.ProcessEntry(RegKey::OpSetAlways, L"v", L"text"));
    EXPECT_EQ(0, reader.ProcessEntry(RegKey::OpSetAlways, L"v", dw));
}

TEST_F(RegKeyOp, SetAlwaysWritesEqualContentToo) {
    raw.Put(L"v", REG_BINARY, BytesOf(L"text"));
    EXPECT_EQ(1, Str(RegKey::OpSetAlways, L"text"));
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), raw.Value(L"v").dwType);
    raw.Put(L"v", REG_BINARY, {5, 0, 0, 0});
    EXPECT_EQ(1, Num(RegKey::OpSetAlways, 5));
    EXPECT_EQ((RegContent{REG_DWORD, {5, 0, 0, 0}}), raw.Value(L"v"));
    EXPECT_EQ(1, Num(RegKey::OpSetAlways, 0));
    EXPECT_EQ((RegContent{REG_DWORD, {0, 0, 0, 0}}), raw.Value(L"v"));
}

TEST_F(RegKeyOp, GetReadsTextIntoTheBuffer) {
    wchar_t sz[6] = L"#####";
    EXPECT_EQ(0, key.ProcessEntry(RegKey::OpGet, L"v", sz, 6));
    EXPECT_STREQ(L"", sz);
    raw.PutStr(L"v", L"12345");
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpGet, L"v", sz, 6));
    EXPECT_STREQ(L"12345", sz);
    EXPECT_EQ(0, key.ProcessEntry(RegKey::OpGet, L"v", sz, 5));
    EXPECT_STREQ(L"", sz);
    raw.PutStr(L"v", L"");
    EXPECT_EQ(0, key.ProcessEntry(RegKey::OpGet, L"v", sz, 6));
    EXPECT_EQ(0, Str(RegKey::OpGet, L"fixed text"));
}

TEST_F(RegKeyOp, BufferIsWhatTheOtherOperationsCompareAndWrite) {
    wchar_t sz[6] = L"text";
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"v", sz, 6));
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"text")}), raw.Value(L"v"));
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpTest, L"v", sz, 6));
}

TEST_F(RegKeyOp, TestAbsentLooksForTheValue) {
    EXPECT_EQ(1, Str(RegKey::OpTestAbsent, L"x"));
    raw.Put(L"v", REG_NONE, {1});
    EXPECT_EQ(1, Str(RegKey::OpTestAbsent, L"x"));
    raw.PutStr(L"v", L"");
    EXPECT_EQ(0, Str(RegKey::OpTestAbsent, L"x"));
}

TEST_F(RegKeyOp, UnknownOperationsDoNothingAndGiveOne) {
    raw.PutStr(L"v", L"text");
    for (int nOp : {7, 100}) {
        EXPECT_EQ(1, Str(nOp, L"other"));
        EXPECT_EQ(1, Num(nOp, 5));
    }
    EXPECT_EQ((RegContent{REG_SZ, BytesOf(L"text")}), raw.Value(L"v"));
}

TEST_F(RegKeyOp, NumbersAreTestedWithZeroForMissing) {
    EXPECT_EQ(1, Num(RegKey::OpTest, 0));
    EXPECT_EQ(0, Num(RegKey::OpTest, 1));
    raw.PutDword(L"v", 5);
    EXPECT_EQ(1, Num(RegKey::OpTest, 5));
    EXPECT_EQ(1, Num(RegKey::OpTestNoCase, 5));
    EXPECT_EQ(0, Num(RegKey::OpTestNoCase, 0));
}

TEST_F(RegKeyOp, SetOfANumberWritesOrDeletes) {
    EXPECT_EQ(1, Num(RegKey::OpSet, 5));
    EXPECT_EQ((RegContent{REG_DWORD, {5, 0, 0, 0}}), raw.Value(L"v"));
    raw.Put(L"v", REG_BINARY, {5});
    EXPECT_EQ(1, Num(RegKey::OpSet, 5));
    EXPECT_EQ((RegContent{REG_BINARY, {5}}), raw.Value(L"v")); // not written again
    EXPECT_EQ(1, Num(RegKey::OpSet, 0));
    EXPECT_FALSE(raw.HasValue(L"v"));
    EXPECT_EQ(1, Num(RegKey::OpSet, 0));
    EXPECT_FALSE(raw.HasValue(L"v"));
}

TEST_F(RegKeyOp, GetReadsANumberOrZero) {
    DWORD dw = 9;
    EXPECT_EQ(1, Num(RegKey::OpGet, dw));
    EXPECT_EQ(0u, dw);
    raw.PutDword(L"v", 0xFFFFFFFE);
    EXPECT_EQ(1, Num(RegKey::OpGet, dw));
    EXPECT_EQ(0xFFFFFFFEu, dw);
    int n = 9;
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpGet, L"v", n));
    EXPECT_EQ(-2, n);
}

TEST_F(RegKeyOp, IntegersAreTheSameCode) {
    int n = -3;
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"v", n));
    EXPECT_EQ((RegContent{REG_DWORD, {0xFD, 0xFF, 0xFF, 0xFF}}), raw.Value(L"v"));
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpTest, L"v", n));
    EXPECT_EQ(-3, n);
}

TEST_F(RegKeyOp, SubKeyIsReplacedByAnEmptyOne) {
    for (RegKey::Op op : {RegKey::OpSet, RegKey::OpSetAlways}) {
        raw.PutStr(L"old", L"text", L"sub\\deep");
        EXPECT_EQ(1, key.ProcessSubKey(op, L"sub"));
        EXPECT_TRUE(raw.HasSubKey(L"sub"));
        EXPECT_FALSE(raw.HasSubKey(L"sub\\deep"));
        EXPECT_EQ(1, key.ProcessSubKey(op, L"new"));
        EXPECT_TRUE(raw.HasSubKey(L"new"));
        EXPECT_EQ(1, key.ProcessSubKey(RegKey::OpDelete, L"new"));
        EXPECT_FALSE(raw.HasSubKey(L"new"));
    }
}

TEST_F(RegKeyOp, DeleteTakesASubKeyWithAllBelow) {
    raw.PutStr(L"v", L"text", L"sub\\deep");
    EXPECT_EQ(1, key.ProcessSubKey(RegKey::OpDelete, L"sub"));
    EXPECT_FALSE(raw.HasSubKey(L"sub"));
    EXPECT_EQ(1, key.ProcessSubKey(RegKey::OpDelete, L"sub"));
}

TEST_F(RegKeyOp, OtherOperationsLeaveSubKeysAlone) {
    raw.PutStr(L"v", L"text", L"sub");
    for (int nOp : {0, 3, 4, 5, 7}) {
        EXPECT_EQ(1, key.ProcessSubKey(static_cast<RegKey::Op>(nOp), L"sub"));
        EXPECT_EQ(1, key.ProcessSubKey(static_cast<RegKey::Op>(nOp), L"missing"));
    }
    EXPECT_EQ((std::vector<std::wstring>{L"sub"}), raw.SubKeys());
}

TEST_F(RegKeyOp, SubKeyStepsGiveOneThoughTheyFail) {
    RegKey none;
    EXPECT_EQ(1, none.ProcessSubKey(RegKey::OpSet, L"sub"));
    EXPECT_EQ(1, none.ProcessSubKey(RegKey::OpDelete, L"sub"));
}
} // namespace
