#include "store/reg_key.h"

#include "support/registry.h"

#include <gtest/gtest.h>
#include <string>

namespace {
class RegKeyLog : public testing::Test {
  protected:
    TestKey raw{L"Software\\Orvanta\\TessalyLogTest"};
    wchar_t szLog[4000];

    void SetUp() override {
        std::fill(std::begin(szLog), std::end(szLog), L'#');
        RegKey::StartLog(szLog);
    }
    void TearDown() override { RegKey::EndLog(); }

    /// What was logged; checks that the size told is that of the text.
    std::wstring End() {
        unsigned cch = RegKey::EndLog();
        if (!cch) return L"";
        EXPECT_EQ(cch, wcslen(szLog) + 1);
        return szLog;
    }
};

TEST(RegKey, LogIsOffAtTheStart) {
    EXPECT_EQ(0, RegKey::bLogMode);
    EXPECT_STREQ(L"%s%s", RegKey::pszFmtPrefix);
    EXPECT_EQ(0, RegKey::lError);
}

TEST_F(RegKeyLog, PathIsASectionAndGivesThePretendKey) {
    RegKey key;
    EXPECT_EQ(1, key.Open(L"HKLM\\Software\\X", 1));
    EXPECT_EQ(reinterpret_cast<HKEY>(1), key.GetHandle());
    EXPECT_EQ(L"[HKLM\\Software\\X]\r\n", End());
}

TEST_F(RegKeyLog, EveryPathCounts) {
    EXPECT_EQ(1, RegKey().Open(L"", 0));
    EXPECT_EQ(1, RegKey().Open(L"nonsense", RegKey::OpTest));
    EXPECT_EQ(1, RegKey().Open(L"HKCU\\a", L"b", 0));
    EXPECT_EQ(1, RegKey().OpenParent(L"HKCU\\a", 0, 9));
    EXPECT_EQ(1, RegKey().Open(static_cast<const wchar_t*>(nullptr), 0));
    EXPECT_EQ(L"[]\r\n[nonsense]\r\n[HKCU\\a\\b]\r\n[HKCU\\a]\r\n[]\r\n", End());
}

TEST_F(RegKeyLog, DwordIsLoggedInUpperCaseHexadecimal) {
    RegKey key;
    EXPECT_EQ(1, key.PutDword(L"A", 255, 1));
    EXPECT_EQ(1, key.PutInt(L"B", -1));
    EXPECT_EQ(L"A=dword:000000FF\r\nB=dword:FFFFFFFF\r\n", End());
}

TEST_F(RegKeyLog, StrAndDeletionAreLogged) {
    RegKey key;
    EXPECT_EQ(1, key.PutStr(L"A", L"text", 1));
    EXPECT_EQ(1, key.DelValue(L"A"));
    EXPECT_EQ(1, key.PutStrOrDelEmpty(L"B", L"", 1));
    EXPECT_EQ(L"A=text\r\nA=@\r\nB=@\r\n", End());
}

TEST_F(RegKeyLog, NullNamesAndTextsPrintNothing) {
    RegKey key;
    EXPECT_EQ(1, key.PutDword(nullptr, 1, 0));
    EXPECT_EQ(1, key.PutStr(nullptr, nullptr, 0));
    EXPECT_EQ(1, key.DelValue(nullptr));
    EXPECT_EQ(L"=dword:00000001\r\n=\r\n=@\r\n", End());
}

TEST_F(RegKeyLog, ForeignTextIsNoFormat) {
    EXPECT_EQ(1, RegKey().PutStr(L"%n", L"%s%s", 0));
    EXPECT_EQ(L"%n=%s%s\r\n", End());
}

TEST_F(RegKeyLog, LineIsCutAt254Characters) {
    std::wstring strFits(250, L'x'), strLong(251, L'x');
    RegKey key;
    key.PutStr(L"A", strFits.c_str(), 0);
    key.PutStr(L"A", strLong.c_str(), 0);
    key.PutStr(L"A", std::wstring(1000, L'x').c_str(), 0);
    std::wstring strLine = L"A=" + strFits;
    EXPECT_EQ(strLine + L"\r\n" + strLine + L"x\r" + strLine + L"xx", End());
}

TEST_F(RegKeyLog, WithoutABufferOnlyTheLengthIsCounted) {
    RegKey::StartLog(nullptr);
    EXPECT_EQ(1, RegKey().PutStr(L"A", L"text", 1));
    EXPECT_EQ(nullptr, RegKey::pszLog);
    EXPECT_EQ(8u, RegKey::nLogSizeChars);
    EXPECT_EQ(9u, RegKey::EndLog());
    EXPECT_EQ(L'#', szLog[0]);
}

TEST_F(RegKeyLog, NothingLoggedGivesZeroAndNoTerminator) {
    EXPECT_EQ(0u, RegKey::EndLog());
    EXPECT_EQ(L'#', szLog[0]);
    EXPECT_EQ(0, RegKey::bLogMode);
}

TEST_F(RegKeyLog, StartBeginsANewLog) {
    RegKey().PutStr(L"A", L"text", 0);
    RegKey::StartLog(szLog);
    RegKey().DelValue(L"B");
    EXPECT_EQ(L"B=@\r\n", End());
}

TEST_F(RegKeyLog, RegistryIsLeftAlone) {
    RegKey::EndLog();
    RegKey key(raw.Path().c_str(), 1);
    raw.PutStr(L"s", L"text");
    unsigned long long qwBefore = raw.LastWrite();
    RegKey::StartLog(szLog);
    EXPECT_EQ(1, key.PutStr(L"s", L"new", 0));
    EXPECT_EQ(1, key.PutDword(L"n", 1, 0));
    EXPECT_EQ(1, key.DelValue(L"s"));
    EXPECT_EQ(1, key.Flush());
    EXPECT_EQ(qwBefore, raw.LastWrite());
    EXPECT_EQ(1u, raw.Values().size());
}

TEST_F(RegKeyLog, EverythingElseFailsOnThePretendKey) {
    RegKey key(raw.Path().c_str(), 1);
    RegKey::StartLog(szLog);
    wchar_t sz[10];
    EXPECT_EQ(0, key.PutBin(L"b", "\1", 1, REG_BINARY));
    EXPECT_EQ(1, key.DelSubKey(L"sub"));
    EXPECT_EQ(7u, key.GetDword(L"n", 7));
    EXPECT_EQ(0, key.GetStr(L"s", sz, 10, nullptr));
    RegKey below(key, L"sub", 1);
    EXPECT_EQ(nullptr, below.GetHandle());
    EXPECT_EQ(1, key.Flush());
    EXPECT_EQ(1, key.ProcessSubKey(RegKey::OpSet, L"sub"));
    EXPECT_EQ(1, key.ProcessSubKey(RegKey::OpDelete, L"sub"));
    EXPECT_EQ(L"", End());
}

TEST_F(RegKeyLog, OperationsOnEntriesLogWhatTheyWouldWrite) {
    RegKey key(L"HKCU\\X", 1);
    DWORD dwOne = 1, dwZero = 0;
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"s", L"text"));
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"e", L"")); // stands already, as it seems
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"n", dwOne));
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpSet, L"z", dwZero));
    EXPECT_EQ(1, key.ProcessEntry(RegKey::OpDelete, L"s", L"text"));
    EXPECT_EQ(L"[HKCU\\X]\r\ns=text\r\nn=dword:00000001\r\ns=@\r\n", End());
}
} // namespace
