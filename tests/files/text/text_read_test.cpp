// GetText and ReadText.
#include "files/disk/uni_path.h"
#include "files/text/cs_file.h"
#include "files/text/text_support.h"
#include "support/guard_page.h"
#include "support/no_memory.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

extern "C" FARPROC __imp_CreateFileW;

namespace {
struct TextCase {
    const char* pszName;
    CSFileTextFmt fmt; // that is asked for; fmtUnknown: to be told
    std::string bytes;
    CSFileTextFmt fmtTold;
    std::wstring str;
};
void PrintTo(const TextCase& row, std::ostream* pOut) { *pOut << row.pszName; }

class TextReadTest : public testing::TestWithParam<TextCase> {};

/// Does something before the file is opened for the n-th time; 1 is the first.
class BeforeOpening {
  public:
    BeforeOpening(const std::wstring& strFile, int n, std::function<void()> fn) {
        strPath = strFile;
        nLeft = n;
        fnBefore = std::move(fn);
        pfnOriginal = replaced.Original<Func>();
    }

  private:
    using Func = HANDLE WINAPI(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
    static HANDLE WINAPI Open(LPCWSTR psz, DWORD n1, DWORD n2, LPSECURITY_ATTRIBUTES p, DWORD n3,
                              DWORD n4, HANDLE h) {
        if (psz && strPath == psz && --nLeft == 0) fnBefore();
        return pfnOriginal(psz, n1, n2, p, n3, n4, h);
    }
    static inline std::wstring strPath;
    static inline int nLeft;
    static inline std::function<void()> fnBefore;
    static inline Func* pfnOriginal;
    ReplaceImport replaced{__imp_CreateFileW, &Open};
};
} // namespace

TEST_P(TextReadTest, GivesTheText) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", GetParam().bytes);
    const std::wstring& strText = GetParam().str;
    TextRead read = ReadTextOf(strPath, GetParam().fmt, L'#');
    ASSERT_TRUE(read.bText);
    EXPECT_EQ(strText, read.str);
    EXPECT_EQ(strText.size() + 1, read.cch);
    EXPECT_EQ(GetParam().fmtTold, read.fmt);

    UniPath path(strPath.c_str());
    unsigned cch = 0;
    CSFileTextFmt fmt = GetParam().fmt;
    wchar_t* psz = CSFile::ReadText(&path, &cch, &fmt, L'#');
    ASSERT_NE(nullptr, psz);
    EXPECT_EQ(strText, std::wstring(psz, cch - 1));
    FreeDllBuf(psz);

    // The same into memory of every size.
    const auto cb = static_cast<DWORD>(GetParam().bytes.size());
    for (unsigned nSize = 0; nSize < strText.size() + 4; ++nSize) {
        GuardedMemory memory(nSize * sizeof(wchar_t));
        auto* pszOut = static_cast<wchar_t*>(memory.Get());
        DWORD nResult = nSize % 2
                            ? CSFile::GetText(strPath.c_str(), cb, read.fmt, pszOut, nSize, L'#')
                            : CSFile::GetText(&path, cb, read.fmt, pszOut, nSize, L'#');
        if (nSize <= strText.size()) {
            EXPECT_EQ(kTextSizeUnknown, nResult) << nSize;
        } else {
            ASSERT_EQ(strText.size() + 1, nResult) << nSize;
            EXPECT_EQ(strText, std::wstring(pszOut, nResult - 1)) << nSize;
            EXPECT_EQ(L'\0', pszOut[nResult - 1]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextReadTest,
    testing::Values(
        TextCase{"OneByte", fmtUnknown, "a", fmtAnsi, L"a"},
        TextCase{"OneControl", fmtUnknown, "\1", fmtAnsi, L"#"},
        TextCase{"OneLineFeed", fmtUnknown, "\n", fmtAnsi, L"\n"},
        TextCase{"TwoBytes", fmtUnknown, "ab", fmtAnsi, L"ab"},
        TextCase{"ThreeBytes", fmtUnknown, "a\r\n", fmtAnsi, L"a\r\n"},
        TextCase{"Mixed", fmtUnknown, "a\nb\r\nc", fmtAnsi, L"a\nb\r\nc"},
        TextCase{"LineFeeds", fmtUnknown, "\na\nb\r\nc\n\n", fmtAnsiLf, L"\na\r\nb\r\nc\r\n\r\n"},
        TextCase{"LineFeedsWithSign", fmtUnknown, "\xE4\n\x80\xFF\x7E", fmtAnsiLf,
                 L"\xFFE4\r\n\xFF80\xFFFF~"},
        TextCase{"LineFeedsAllowed", fmtUnknown, "\t\f\x1A\n", fmtAnsiLf, L"\t\f\x1A\r\n"},
        TextCase{"LineFeedsAndReturns", fmtUnknown, "a\r\rb\n", fmtAnsiLf, L"a\r\rb\r\n"},
        TextCase{"Binary", fmtUnknown, "a\1b\x7F\n\t", fmtBinary, L"a#b#\n\t"},
        TextCase{"BinaryZeros", fmtUnknown, Bytes("\0a\0\0b\0"), fmtBinary, L"#a##b#"},
        TextCase{"Utf16", fmtUnknown, kUtf16 + Bytes("a\0\xAC\x20\1\0\0\0b\0\n\0"), fmtUnicode,
                 std::wstring(L"a\x20AC\1\0b\n", 6)},
        TextCase{"Utf16BE", fmtUnknown, kUtf16BE + Bytes("\0a\x20\xAC\0\1\0\0\0b\0\n"),
                 fmtUnicodeBE, std::wstring(L"a\x20AC\1\0b\n", 6)},
        TextCase{"Utf16Odd", fmtUnknown, kUtf16 + Bytes("a\0b"), fmtUnicode, L"a"},
        TextCase{"Utf16BEOdd", fmtUnknown, kUtf16BE + Bytes("\0a\0"), fmtUnicodeBE, L"a"},
        TextCase{"Utf16Alone", fmtUnknown, kUtf16, fmtUnicode, L""},
        TextCase{"Utf16BEAlone", fmtUnknown, kUtf16BE, fmtUnicodeBE, L""},
        TextCase{"Utf16AndAByte", fmtUnknown, kUtf16 + "a", fmtUnicode, L""},
        TextCase{"Utf16TwoMarks", fmtUnknown, kUtf16 + kUtf16, fmtUnicode, L"\xFEFF"},
        TextCase{"Utf16Pairs", fmtUnknown, kUtf16 + Bytes("\x3D\xD8\x00\xDE\x3D\xD8"), fmtUnicode,
                 L"\xD83D\xDE00\xD83D"},
        TextCase{"Utf8", fmtUnknown, kUtf8 + "a\xE2\x82\xAC\r\n\xF0\x9F\x98\x80\t", fmtUtf8,
                 L"a\x20AC\r\n\xD83D\xDE00\t"},
        TextCase{"Utf8PairLast", fmtUnknown, kUtf8 + "ab\xF0\x9F\x98\x80", fmtUtf8,
                 L"ab\xD83D\xDE00"},
        TextCase{"Utf8Alone", fmtUnknown, kUtf8, fmtUtf8, L""},
        TextCase{"Utf8Controls", fmtUnknown, kUtf8 + Bytes("a\1\0\x7F"), fmtUtf8, L"a###"},
        TextCase{"Utf8TwoMarks", fmtUnknown, kUtf8 + kUtf8 + "a", fmtUtf8, L"\xFEFF\x61"},
        TextCase{"Utf8LineFeeds", fmtUnknown, kUtf8 + Bytes("\n\xC3\xB6\n\r\n\n\0"), fmtUtf8Lf,
                 L"\r\n\xF6\r\n\r\n\r\n#"},
        TextCase{"Utf8Broken", fmtUnknown, kUtf8 + "\xC3(\xE2\x82", fmtUtf8,
                 Converted(CP_UTF8, "\xC3(\xE2\x82")}),
    [](const auto& row) { return row.param.pszName; });

INSTANTIATE_TEST_SUITE_P(
    Asked, TextReadTest,
    testing::Values(
        TextCase{"AnsiOfLineFeeds", fmtAnsi, "a\nb", fmtAnsi, L"a\nb"},
        TextCase{"LineFeedsOfLines", fmtAnsiLf, "a\r\nb\r", fmtAnsiLf, L"a\r\nb\r"},
        TextCase{"LineFeedsOfOne", fmtAnsiLf, "\n", fmtAnsiLf, L"\n"},
        TextCase{"AnsiOfUtf8", fmtAnsi, kUtf8 + "a", fmtAnsi, Converted(::GetACP(), kUtf8) + L"a"},
        TextCase{"Utf8WithoutMark", fmtUtf8, "a\xC3\xB6\n", fmtUtf8, L"a\xF6\n"},
        TextCase{"Utf8LineFeedsWithoutMark", fmtUtf8Lf, "\na\r\n", fmtUtf8Lf, L"\r\na\r\n"},
        TextCase{"Utf8OfPartOfTheMark", fmtUtf8, "a\xEF\xBB", fmtUtf8,
                 Converted(CP_UTF8, "a\xEF\xBB")},
        TextCase{"Utf16WithoutMark", fmtUnicode, Bytes("a\0b\0"), fmtUnicode, L"ab"},
        TextCase{"Utf16OfTheOther", fmtUnicode, kUtf16BE + Bytes("\0a"), fmtUnicode,
                 L"\xFFFE\x6100"},
        TextCase{"Utf16BEWithoutMark", fmtUnicodeBE, Bytes("\0a\0b"), fmtUnicodeBE, L"ab"},
        TextCase{"Utf16BEOfTheOther", fmtUnicodeBE, kUtf16 + Bytes("a\0"), fmtUnicodeBE,
                 L"\xFFFE\x6100"},
        TextCase{"Utf16WithoutMarkOdd", fmtUnicode, Bytes("a\0b\0c"), fmtUnicode, L"ab"},
        TextCase{"BinaryOfText", fmtBinary, "a\r\n", fmtBinary, L"a\r\n"},
        TextCase{"AnotherValue", static_cast<CSFileTextFmt>(8), "a\1\n",
                 static_cast<CSFileTextFmt>(8), L"a#\n"}),
    [](const auto& row) { return row.param.pszName; });

TEST(TextRead, CharactersAreCutNowhereByTheBlock) {
    TempFolder folder;
    for (std::size_t n = 8186; n < 8192; ++n) {
        std::string bytes = kUtf8 + std::string(n, 'a') + "\xF0\x9F\x98\x80\xE2\x82\xAC\r\nb";
        EXPECT_TRUE(DecodeText(bytes, fmtUtf8, L'?') ==
                    ReadTextOf(folder.MakeFile(L"a", bytes)).str);
        bytes = kUtf8 + "\n" + bytes.substr(3) + "\n";
        EXPECT_TRUE(DecodeText(bytes, fmtUtf8Lf, L'?') ==
                    ReadTextOf(folder.MakeFile(L"a", bytes)).str);
        bytes = "a\n" + std::string(n, '\xE4') + "\r\n\n"; // the block may end before the last
        EXPECT_TRUE(DecodeText(bytes, TellText(bytes).fmt, L'?') ==
                    ReadTextOf(folder.MakeFile(L"a", bytes)).str);
    }
}

TEST(TextRead, LineEndsAreWholeWhereverTheyStandInALargeFile) {
    TempFolder folder;
    for (std::size_t cbBefore = 65528; cbBefore < 65538; ++cbBefore) {
        const std::string tail = "\r\n\xE2\x82\xAC\n\r\n\xF0\x9F\x98\x80\n";
        for (const std::string& start : {std::string("\n"), kUtf8 + "\n"}) {
            std::string bytes = start + std::string(cbBefore, 'a') + tail;
            const CSFileTextFmt fmt = start.size() > 1 ? fmtUtf8Lf : fmtAnsi;
            TextRead read = ReadTextOf(folder.MakeFile(L"a", bytes));
            EXPECT_EQ(fmt, read.fmt);
            ASSERT_TRUE(DecodeText(bytes, fmt, L'?') == read.str) << cbBefore;
        }
    }
}

TEST(TextRead, PointersMayBeNull) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "a\1");
    wchar_t* psz = CSFile::ReadText(strPath.c_str(), nullptr, nullptr, L'?');
    ASSERT_NE(nullptr, psz);
    EXPECT_STREQ(L"a?", psz);
    FreeDllBuf(psz);
}

TEST(TextRead, ControlCharactersMayBeReplacedByZeros) {
    TempFolder folder;
    TextRead read = ReadTextOf(folder.MakeFile(L"a.txt", "a\1b"), fmtUnknown, L'\0');
    EXPECT_EQ(std::wstring(L"a\0b", 3), read.str);
}

TEST(TextRead, OfNothingGivesNull) {
    TempFolder folder;
    for (CSFileTextFmt fmt : {fmtUnknown, fmtAnsi, fmtUnicode, fmtUtf8Lf}) {
        for (const std::wstring& strPath :
             {folder.MakeFile(L"empty", ""), folder.File(L"missing"), folder.Get()}) {
            TextRead read = ReadTextOf(strPath, fmt);
            EXPECT_FALSE(read.bText);
            EXPECT_EQ(0u, read.cch);
        }
    }
    wchar_t sz[4] = L"abc";
    for (int n = 0; n < 8; ++n) {
        auto fmt = static_cast<CSFileTextFmt>(n);
        EXPECT_EQ(0u, CSFile::GetText(folder.File(L"missing").c_str(), 3, fmt, sz, 4, L'?'));
    }
    unsigned cch = 0;
    EXPECT_EQ(nullptr, CSFile::ReadText(static_cast<const wchar_t*>(nullptr), &cch, nullptr, L'?'));
    EXPECT_EQ(nullptr, CSFile::ReadText(static_cast<const UniPath*>(nullptr), &cch, nullptr, L'?'));
}

TEST(TextRead, AFileThatGrewIsReadAsFarAsItWasMeasured) {
    TempFolder folder;
    const struct {
        CSFileTextFmt fmt;
        std::string bytes, more;
    } rows[] = {
        {fmtAnsi, "ab\r\n", "cdefgh"},
        {fmtAnsiLf, "ab\n", "\n\n\n\n\n\n"},
        {fmtBinary, "ab\1", "\1\1\1\1\1"},
        {fmtUtf8, kUtf8 + "ab\r\n", "cdefgh"},
        {fmtUtf8Lf, kUtf8 + "ab\n", "\n\n\n\n\n\n\n\n"},
        {fmtUnicode, kUtf16 + "abcd", "efghijklmn"},
        {fmtUnicodeBE, kUtf16BE + "abcd", "efghijklmn"},
    };
    for (const auto& row : rows) {
        for (int nOpening : {2, 3}) {
            const std::wstring strPath = folder.MakeFile(L"a.txt", row.bytes);
            TextRead read;
            {
                BeforeOpening grow(strPath, nOpening,
                                   [&] { folder.MakeFile(L"a.txt", row.bytes + row.more); });
                read = ReadTextOf(strPath);
            }
            ASSERT_TRUE(read.bText) << row.fmt << nOpening;
            EXPECT_EQ(DecodeText(row.bytes, row.fmt, L'?'), read.str) << row.fmt << nOpening;
        }
    }
}

TEST(TextRead, AFileThatShrankGivesWhatIsLeft) {
    TempFolder folder;
    const std::string bytes = kUtf8 + "ab\ncd\nef\n";
    for (std::size_t cbLeft = 0; cbLeft < bytes.size(); ++cbLeft) {
        const std::wstring strPath = folder.MakeFile(L"a.txt", bytes);
        TextRead read;
        {
            BeforeOpening shrink(strPath, 3,
                                 [&] { folder.MakeFile(L"a.txt", bytes.substr(0, cbLeft)); });
            read = ReadTextOf(strPath);
        }
        if (cbLeft == 0) continue; // a text of nothing, or none
        ASSERT_TRUE(read.bText) << cbLeft;
        EXPECT_EQ(DecodeText(bytes.substr(0, cbLeft), fmtUtf8Lf, L'?'), read.str) << cbLeft;
    }
}

TEST(TextRead, AFileThatWentGivesNull) {
    TempFolder folder;
    for (int nOpening : {2, 3}) {
        const std::wstring strPath = folder.MakeFile(L"a.txt", "abc");
        BeforeOpening remove(strPath, nOpening, [&] { ::DeleteFileW(strPath.c_str()); });
        TextRead read = ReadTextOf(strPath);
        EXPECT_FALSE(read.bText);
        EXPECT_EQ(0u, read.cch);
    }
}

TEST(TextRead, WithoutMemoryGivesNull) {
    TempFolder folder;
    for (const std::string& bytes :
         {std::string("abc"), kUtf8 + "a\n", std::string("a\n"), kUtf16 + "ab"}) {
        const std::wstring strPath = folder.MakeFile(L"a.txt", bytes);
        const wchar_t* pszText = L"";
        unsigned cch = 7;
        {
            NoMemory none;
            pszText = CSFile::ReadText(strPath.c_str(), &cch, nullptr, L'?');
        }
        EXPECT_EQ(nullptr, pszText);
        EXPECT_EQ(0u, cch);
    }
}
