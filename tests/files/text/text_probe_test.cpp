// GetFileSizeForText and GetTextSize: what a text file is, by its start.
#include "files/disk/uni_path.h"
#include "files/text/cs_file.h"
#include "files/text/text_support.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

extern "C" FARPROC __imp_ReadFile;

namespace {
/// A file of a size without contents behind its start: it takes up no room.
void MakeSparse(const std::wstring& strPath, __int64 cb) {
    CSFile file(strPath.c_str(), 1);
    file.MoveTo64(cb, FILE_BEGIN);
    ASSERT_EQ(1, file.SetEndOfFile());
}

ToldText Tell(const std::wstring& strPath) {
    DWORD cb = CSFile::GetFileSizeForText(strPath.c_str());
    ToldText told{static_cast<CSFileTextFmt>(99), 0};
    told.cch = CSFile::GetTextSize(strPath.c_str(), &cb, &told.fmt);
    return told;
}

DWORD cbReadAsked; // all that was asked for
using ReadFileFunc = BOOL WINAPI(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*);
ReadFileFunc* pfnReadFile;
BOOL WINAPI CountReadFile(HANDLE h, void* p, DWORD cb, DWORD* pcbDone, OVERLAPPED* pOverlapped) {
    cbReadAsked += cb;
    return pfnReadFile(h, p, cb, pcbDone, pOverlapped);
}

std::string Times(int n, const std::string& str) {
    std::string strAll;
    for (; n > 0; --n) strAll += str;
    return strAll;
}

struct FormatCase {
    const char* pszName;
    std::string bytes;
    CSFileTextFmt fmt;
    DWORD cch;
};
void PrintTo(const FormatCase& row, std::ostream* pOut) { *pOut << row.pszName; }

class TextFormatTest : public testing::TestWithParam<FormatCase> {};
} // namespace

TEST(TextFileSize, IsTheSizeOfTheFile) {
    TempFolder folder;
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(folder.File(L"missing").c_str()));
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(folder.Get().c_str()));
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(L""));
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(folder.MakeFile(L"empty", "").c_str()));
    for (std::size_t cb : {1, 2, 3, 8192, 8193, 70000}) {
        std::wstring strPath = folder.MakeFile(L"a", std::string(cb, 'a'));
        EXPECT_EQ(cb, CSFile::GetFileSizeForText(strPath.c_str()));
        UniPath path(strPath.c_str());
        EXPECT_EQ(cb, CSFile::GetFileSizeForText(&path));
    }
}

TEST(TextFileSize, EndsBelowFourGibibytes) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"large");
    constexpr __int64 kFour = 1ll << 32;
    for (__int64 cb : {kFour / 2, kFour - 2}) {
        MakeSparse(strPath, cb);
        EXPECT_EQ(cb, CSFile::GetFileSizeForText(strPath.c_str()));
    }
    for (__int64 cb : {kFour, kFour + 1, kFour + 5, 2 * kFour, 3 * kFour - 1}) {
        MakeSparse(strPath, cb);
        EXPECT_EQ(0u, CSFile::GetFileSizeForText(strPath.c_str())) << cb;
        EXPECT_FALSE(ReadTextOf(strPath).bText) << cb;
    }
}

TEST(TextFileSize, OfAFileThatSomebodyWritesIsZero) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "abc");
    CSFile writer(strPath.c_str(), 1);
    ASSERT_TRUE(writer.IsReady());
    EXPECT_EQ(0u, CSFile::GetFileSizeForText(strPath.c_str()));
    DWORD cb = 3;
    CSFileTextFmt fmt = fmtUtf8;
    EXPECT_EQ(0u, CSFile::GetTextSize(strPath.c_str(), &cb, &fmt));
    EXPECT_EQ(fmtUnknown, fmt);
    wchar_t sz[8];
    EXPECT_EQ(0u, CSFile::GetText(strPath.c_str(), 3, fmtAnsi, sz, 8, L'?'));
    EXPECT_FALSE(ReadTextOf(strPath).bText);
}

TEST_P(TextFormatTest, IsToldByTheStartOfTheFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", GetParam().bytes);
    ToldText told = Tell(strPath);
    EXPECT_EQ(GetParam().fmt, told.fmt);
    EXPECT_EQ(GetParam().cch, told.cch);
    EXPECT_EQ(GetParam().fmt, TellText(GetParam().bytes).fmt);
    EXPECT_EQ(GetParam().cch, TellText(GetParam().bytes).cch);
    UniPath path(strPath.c_str());
    DWORD cb = CSFile::GetFileSizeForText(&path);
    CSFileTextFmt fmt = fmtUnknown;
    EXPECT_EQ(GetParam().cch, CSFile::GetTextSize(&path, &cb, &fmt));
    EXPECT_EQ(GetParam().fmt, fmt);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextFormatTest,
    testing::Values(
        FormatCase{"Empty", "", fmtUnknown, 0}, FormatCase{"OneByte", "a", fmtAnsi, 2},
        FormatCase{"OneLineFeed", "\n", fmtAnsi, 2}, FormatCase{"OneControl", "\1", fmtAnsi, 2},
        FormatCase{"OneZero", Bytes("\0"), fmtAnsi, 2}, FormatCase{"HalfAMark", "\xFF", fmtAnsi, 2},
        FormatCase{"TwoBytes", "ab", fmtAnsi, 3},
        FormatCase{"TwoThirdsOfAMark", "\xEF\xBB", fmtAnsi, 3},
        FormatCase{"TwoControls", "a\1", fmtBinary, 3},
        FormatCase{"LineFeedFirst", "\na", fmtAnsi, 3},
        FormatCase{"LineFeedsFirst", "\n\n", fmtAnsiLf, 5},
        FormatCase{"LineFeedFirstAndBehindReturn", "\na\r\nb", fmtAnsi, 6},
        FormatCase{"Return", "a\rb", fmtAnsi, 4}, FormatCase{"Lines", "a\r\nb", fmtAnsi, 5},
        FormatCase{"LineFeeds", "a\nb", fmtAnsiLf, 7},
        FormatCase{"LastLineFeedHasReturn", "a\nb\nc\r\nd", fmtAnsi, 9},
        FormatCase{"LastLineFeedHasNone", "a\r\nb\nc", fmtAnsiLf, 13},
        FormatCase{"LineFeedBehindLineFeed", "a\r\n\nb", fmtAnsiLf, 11},
        FormatCase{"Allowed", "a\t\f\x1A\r\nb", fmtAnsi, 8},
        FormatCase{"Binary", "a\1b", fmtBinary, 4}, FormatCase{"Delete", "a\x7F", fmtBinary, 3},
        FormatCase{"VerticalTab", "ab\x0B", fmtBinary, 4},
        FormatCase{"Bell", "a\nb\7", fmtBinary, 5}, FormatCase{"Escape", "\x1B[0m", fmtBinary, 5},
        FormatCase{"Zero", Bytes("a\0b"), fmtBinary, 4},
        FormatCase{"HighBytes", "\x80\x9F\xA0\xFF", fmtAnsi, 5},
        FormatCase{"BinaryAtTheEndOfTheBlock", std::string(8191, 'a') + "\1", fmtBinary, 8193},
        FormatCase{"BinaryBehindTheBlock", std::string(8192, 'a') + "\1", fmtAnsi, 8194},
        FormatCase{"LineFeedBehindTheBlock", std::string(8192, 'a') + "\n", fmtAnsi, 8194},
        FormatCase{"LineFeedAtTheEndOfTheBlock", std::string(8191, 'a') + "\nb", fmtAnsiLf, 16387},
        FormatCase{"BetweenReturnAndLineFeed", "a\n" + std::string(8189, 'a') + "\r\nb", fmtAnsiLf,
                   16389},
        FormatCase{"ReturnAndLineFeedEndTheBlock", "a\n" + std::string(8188, 'a') + "\r\nb\n",
                   fmtAnsi, 8195}),
    [](const auto& row) { return row.param.pszName; });

INSTANTIATE_TEST_SUITE_P(
    Marks, TextFormatTest,
    testing::Values(
        FormatCase{"Utf16Alone", kUtf16, fmtUnicode, 1},
        FormatCase{"Utf16BEAlone", kUtf16BE, fmtUnicodeBE, 1},
        FormatCase{"Utf16AndAByte", kUtf16 + "a", fmtUnicode, 1},
        FormatCase{"Utf16BEAndAByte", kUtf16BE + "a", fmtUnicodeBE, 1},
        FormatCase{"Utf16", kUtf16 + Bytes("a\0\n\0"), fmtUnicode, 3},
        FormatCase{"Utf16BE", kUtf16BE + Bytes("\0a\0\n"), fmtUnicodeBE, 3},
        FormatCase{"Utf16Odd", kUtf16 + Bytes("a\0b\0c"), fmtUnicode, 3},
        FormatCase{"Utf32", kUtf16 + Bytes("\0\0a\0\0\0"), fmtUnicode, 4},
        FormatCase{"Utf16Large", kUtf16 + std::string(20000, 'a'), fmtUnicode, 10001},
        FormatCase{"Utf8Alone", kUtf8, fmtUtf8, 1}, FormatCase{"Utf8", kUtf8 + "abc", fmtUtf8, 4},
        FormatCase{"Utf8Control", kUtf8 + "a\1c", fmtUtf8, 4},
        FormatCase{"Utf8Zero", kUtf8 + Bytes("a\0c"), fmtUtf8, 4},
        FormatCase{"Utf8Lines", kUtf8 + "a\r\nb\r\n", fmtUtf8, 7},
        FormatCase{"Utf8LineFeedFirst", kUtf8 + "\n", fmtUtf8Lf, 3},
        FormatCase{"Utf8LineFeeds", kUtf8 + "a\nb\n", fmtUtf8Lf, 7},
        FormatCase{"Utf8Mixed", kUtf8 + "a\nb\r\nc\r\n", fmtUtf8Lf, 10},
        FormatCase{"Utf8Wide", kUtf8 + "\xE2\x82\xAC\xC3\xB6\xF0\x9F\x98\x80", fmtUtf8, 5},
        FormatCase{"Utf8WideLineFeed", kUtf8 + "\xE2\x82\xAC\n", fmtUtf8Lf, 4},
        FormatCase{"Utf8TwoMarks", kUtf8 + kUtf8, fmtUtf8, 2},
        FormatCase{"Utf8FillsTheBlock", kUtf8 + std::string(8187, 'a') + "\xC3\xB6", fmtUtf8, 8189},
        FormatCase{"Utf8CharacterCutByTheBlock", kUtf8 + std::string(8188, 'a') + "\xC3\xB6",
                   fmtUtf8, 8191},
        FormatCase{"Utf8LineFeedBehindTheBlock", kUtf8 + std::string(8189, 'a') + "\n", fmtUtf8,
                   8191},
        FormatCase{"Utf8BetweenReturnAndLineFeed", kUtf8 + std::string(8188, 'a') + "\r\nb",
                   fmtUtf8, 8192},
        FormatCase{"Utf8LargeLineFeeds", kUtf8 + Times(5000, "a\n"), fmtUtf8Lf, 20001}),
    [](const auto& row) { return row.param.pszName; });

TEST(TextFormat, IsToldFromEveryPrefix) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"a.txt");
    const std::string files[] = {
        "one\r\ntwo\nthree\r\n\xE4\t\f\n\r\n",
        "\none\ntwo\r\nthree\n",
        "one\ntwo\r\n\x1B[0m",
        kUtf16 + Bytes("o\0n\0e\0\r\0\n\0\xAC\x20"),
        kUtf16BE + Bytes("\0o\0n\0e\0\r\0\n\x20\xAC"),
        kUtf8 + "one\r\n\xE2\x82\xAC\xF0\x9F\x98\x80\r\ntwo",
        kUtf8 + "one\r\n\xE2\x82\xAC\n\xC3\xB6\r\n",
    };
    for (const std::string& bytes : files) {
        for (std::size_t cb = 0; cb <= bytes.size(); ++cb) {
            const std::string prefix = bytes.substr(0, cb);
            folder.MakeFile(L"a.txt", prefix);
            const ToldText expected = TellText(prefix), told = Tell(strPath);
            SCOPED_TRACE(testing::PrintToString(prefix));
            EXPECT_EQ(expected.fmt, told.fmt);
            EXPECT_EQ(expected.cch, told.cch);
            TextRead read = ReadTextOf(strPath);
            EXPECT_EQ(cb > 0, read.bText);
            EXPECT_EQ(expected.fmt, read.fmt);
            EXPECT_EQ(DecodeText(prefix, expected.fmt, L'?'), read.str);
            EXPECT_EQ(cb ? read.str.size() + 1 : 0, read.cch);
        }
    }
}

TEST(TextFormat, IsToldFromEveryPrefixThatEndsAroundTheBlock) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"a.txt");
    const std::string tail = "a\r\n\xC3\xB6\xE2\x82\xAC\r\n\xF0\x9F\x98\x80\r\nb\n";
    for (const std::string& mark : {std::string(), kUtf8}) {
        for (std::size_t cbLine : {8180u}) {
            const std::string bytes = mark + std::string(cbLine - mark.size(), 'a') + tail;
            for (std::size_t cb = 8186; cb <= bytes.size(); ++cb) {
                const std::string prefix = bytes.substr(0, cb);
                folder.MakeFile(L"a.txt", prefix);
                const ToldText expected = TellText(prefix), told = Tell(strPath);
                SCOPED_TRACE(testing::Message() << mark.size() << " " << cbLine << " " << cb);
                EXPECT_EQ(expected.fmt, told.fmt);
                EXPECT_EQ(expected.cch, told.cch);
                EXPECT_EQ(DecodeText(prefix, expected.fmt, L'?'), ReadTextOf(strPath).str);
            }
        }
    }
}

TEST(TextSize, WithoutAFormatIsTwiceTheSizeAndReadsNothing) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", kUtf16 + "abcd");
    cbReadAsked = 0;
    ReplaceImport replaced(__imp_ReadFile, &CountReadFile);
    pfnReadFile = replaced.Original<ReadFileFunc>();
    for (DWORD cbTold : {2u, 6u, 100u, 8192u, 100000u, 0x7FFFFFFEu}) {
        DWORD cb = cbTold;
        EXPECT_EQ(2 * cbTold + 1, CSFile::GetTextSize(strPath.c_str(), &cb, nullptr));
        EXPECT_EQ(cbTold, cb);
    }
    DWORD cb = 1;
    EXPECT_EQ(2u, CSFile::GetTextSize(strPath.c_str(), &cb, nullptr));
    CSFileTextFmt fmt = fmtUnknown;
    EXPECT_EQ(2u, CSFile::GetTextSize(strPath.c_str(), &cb, &fmt));
    EXPECT_EQ(fmtAnsi, fmt);
    EXPECT_EQ(0u, cbReadAsked);
    cb = 6;
    EXPECT_EQ(0u, CSFile::GetTextSize(folder.File(L"missing").c_str(), &cb, nullptr));
}

TEST(TextSize, ThatNoNumberHoldsCannotBeTold) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "a\nb");
    for (DWORD cbTold : {0x80000000u, 0xFFFFFFFEu}) {
        DWORD cb = cbTold;
        EXPECT_EQ(kTextSizeUnknown, CSFile::GetTextSize(strPath.c_str(), &cb, nullptr));
    }
}

TEST(TextSize, OfALargeFileReadsOneBlock) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", std::string(8192, 'a'));
    constexpr DWORD kSize = 0xFFFFFFFE;
    MakeSparse(strPath, kSize);
    cbReadAsked = 0;
    ReplaceImport replaced(__imp_ReadFile, &CountReadFile);
    pfnReadFile = replaced.Original<ReadFileFunc>();
    ToldText told = Tell(strPath);
    EXPECT_EQ(fmtAnsi, told.fmt);
    EXPECT_EQ(0xFFFFFFFFu, told.cch); // the size and one, and no number at the same time
    EXPECT_EQ(8192u, cbReadAsked);
}

TEST(TextSize, OfNothingIsZero) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"empty", "");
    for (DWORD cbTold : {0u, 5u}) { // it has become empty meanwhile
        DWORD cb = cbTold;
        CSFileTextFmt fmt = fmtUtf8;
        EXPECT_EQ(0u, CSFile::GetTextSize(strPath.c_str(), &cb, &fmt));
        EXPECT_EQ(fmtUnknown, fmt);
    }
    DWORD cb = 5;
    CSFileTextFmt fmt = fmtUtf8;
    EXPECT_EQ(0u, CSFile::GetTextSize(folder.File(L"missing").c_str(), &cb, &fmt));
    EXPECT_EQ(fmtUnknown, fmt);
    EXPECT_EQ(0u, CSFile::GetTextSize(static_cast<const UniPath*>(nullptr), &cb, nullptr));
}
