#include "store/registry/home_folder.h"
#include "store/registry/reg_key.h"
#include "store/registry/reg_values.h"
#include "support/registry.h"

#include <gtest/gtest.h>
#include <cstring>
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

TEST_F(RegKeyLog, LogIsByteForByteWhatWasAsked) {
    RegKey key(L"HKLM\\Software\\X", 1);
    RECT rc{1, -1, 255, 0};
    EXPECT_EQ(1, key.PutStr(L"A", L"text \u4E2D", 1));
    EXPECT_EQ(1, key.PutDwordPrefix(L"pre", L"B", 255));
    EXPECT_EQ(1, key.PutStrPrefix(L"pre", L"C", L""));
    EXPECT_EQ(1, key.DelValuePrefix(L"pre", L"D"));
    EXPECT_EQ(1, RegPutRect(key, &rc, L"pos"));
    EXPECT_EQ(1, RegPutLogFont(key, L"Font", nullptr));
    const wchar_t kExpected[] = L"[HKLM\\Software\\X]\r\nA=text \u4E2D\r\npreB=dword:000000FF\r\n"
                                L"preC=\r\npreD=@\r\nposL=dword:00000001\r\n"
                                L"posT=dword:FFFFFFFF\r\nposR=dword:000000FF\r\n"
                                L"posB=dword:00000000\r\nFont=@\r\n";
    EXPECT_EQ(std::size(kExpected), RegKey::EndLog());
    EXPECT_EQ(0, std::memcmp(kExpected, szLog, sizeof(kExpected)));
    EXPECT_EQ(L'#', szLog[std::size(kExpected)]); // nothing behind the terminator
}

TEST_F(RegKeyLog, CountWithoutABufferIsTheSizeOfTheBufferToGive) {
    for (int bBuffer : {0, 1}) {
        RegKey::StartLog(bBuffer ? szLog : nullptr);
        RegKey key(L"HKCU\\Software\\X", 1);
        key.PutStr(L"A", std::wstring(300, L'x').c_str(), 0);
        key.DelValue(L"B");
        EXPECT_EQ(19u + 254u + 5u + 1u, RegKey::EndLog());
    }
}

TEST_F(RegKeyLog, ExtrasFailOrSucceedOnThePretendKeyAsOnNone) {
    RegKey key(L"HKCU\\X", 1), other(L"HKCU\\Y", 1);
    LOGFONTW lf{};
    wchar_t szName[10];
    EXPECT_EQ(0, key.IsKeyEmpty());
    EXPECT_EQ(1, key.DelSubKeyIfEmpty(L"sub"));
    EXPECT_EQ(1, key.DelValuesStartingWith(nullptr, 0));
    EXPECT_EQ(0, key.CopyValueTo(other, L"v"));
    EXPECT_EQ(1, key.CopyTo(other));
    EXPECT_EQ(0, key.RenameSubkey(L"a", L"b"));
    EXPECT_EQ(0, key.PutBinPrefix(L"p", L"b", "\1", 1));
    EXPECT_EQ(0, RegPutLogFont(key, L"Font", &lf));
    EXPECT_EQ(7, key.GetIntPrefix(L"p", L"n", 7));
    EXPECT_EQ(0, key.GetStrPrefix(L"p", L"s", szName, 10, nullptr));
    EXPECT_EQ(L"[HKCU\\X]\r\n[HKCU\\Y]\r\n", End());
}

TEST_F(RegKeyLog, MoveAndHomeFolderTakeThePretendKeyForThePresentOne) {
    wchar_t sz[MAX_PATH] = L"C:\\App";
    EXPECT_EQ(1, RegKey::CS2WA(1, L"P"));
    EXPECT_EQ(1, ProcessHomeFolder(RegKey::OpSet, L"P", sz, MAX_PATH));
    EXPECT_EQ(0, GetHomeFolder(L"P", sz));
    EXPECT_EQ(0, Restricted(L"P", L"Menu"));
    EXPECT_EQ(1, IsPowerUser());
    EXPECT_EQ(L"[HKCU\\Software\\Orvanta\\P]\r\n"
              L"[HKLM\\Software\\Orvanta\\P]\r\n[HKLM\\Software\\Orvanta\\P\\Setup]\r\n"
              L"Home=C:\\App\r\n"
              L"[HKLM\\Software\\Orvanta\\P\\Setup]\r\n"
              L"[HKCU\\Software\\Orvanta\\P\\Setup\\Restrictions]\r\n"
              L"[HKLM\\Software\\Orvanta]\r\nTemp=dword:00000000\r\nTemp=@\r\n",
              End());
}
} // namespace
