// Random files, read into memory that ends at its end, beside a second decoder; and beside a third,
// of another make (text_files.py).
#include "files/text/cs_file.h"
#include "files/text/text_decoder_test_support.h"
#include "files/text/text_support.h"
#include "support/guard_page.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {
constexpr int kFilesOfEach = 100;

class Random {
  public:
    explicit Random(unsigned nSeed) : engine(nSeed) {}
    unsigned Below(unsigned n) { return static_cast<unsigned>(engine() % n); }
    template <class T>
    const T& Of(const std::vector<T>& items) {
        return items[Below(static_cast<unsigned>(items.size()))];
    }

  private:
    std::mt19937 engine;
};

/// Bytes that are likely to be something: marks, line ends, characters, halves of them.
std::string RandomBytes(Random& random, std::size_t cbMost) {
    static const std::vector<std::string> pieces{"\r\n",
                                                 "\n",
                                                 "\r",
                                                 "\n\n",
                                                 "a",
                                                 "text ",
                                                 "\xC3\xB6",
                                                 "\xE2\x82\xAC",
                                                 "\xF0\x9F\x98\x80",
                                                 "\xC3",
                                                 "\xE2\x82",
                                                 "\xF0\x9F",
                                                 "\xFF",
                                                 "\x80",
                                                 "\t",
                                                 "\f",
                                                 kUtf8,
                                                 kUtf16,
                                                 kUtf16BE,
                                                 Bytes("\0"),
                                                 "\1",
                                                 "\x7F",
                                                 "\xED\xA0\x80",
                                                 "\xC0\x80",
                                                 "\xF4\x90\x80\x80",
                                                 "\r\r\n"};
    static const std::vector<std::string> starts{"", "", kUtf8, kUtf8, kUtf16, kUtf16BE};
    std::string bytes = random.Of(starts);
    const unsigned nLikely = 1 + random.Below(static_cast<unsigned>(pieces.size()));
    for (std::size_t cb = random.Below(static_cast<unsigned>(cbMost + 1)); bytes.size() < cb;)
        bytes += pieces[random.Below(nLikely)];
    return bytes;
}

std::wstring RandomText(Random& random, const std::vector<std::wstring>& characters) {
    std::wstring str;
    for (unsigned nLines = random.Below(random.Below(10) ? 12 : 900); nLines > 0; --nLines) {
        for (unsigned n = random.Below(40); n > 0; --n) str += random.Of(characters);
        str += L"\r\n";
    }
    return str;
}
} // namespace

TEST(TextRandom, FilesAreReadAsTheyStandIntoExactlyTheirRoom) {
    TempFolder folder;
    Random random(83);
    for (int n = 0; n < 1500; ++n) {
        const std::string bytes = RandomBytes(random, n % 50 ? 60 : 20000);
        const std::wstring strPath = folder.MakeFile(L"a.txt", bytes);
        const ToldText told = TellText(bytes);
        SCOPED_TRACE(testing::Message() << n);
        TextRead read = ReadTextOf(strPath);
        ASSERT_EQ(!bytes.empty(), read.bText);
        ASSERT_EQ(told.fmt, read.fmt);
        ASSERT_TRUE(DecodeText(bytes, told.fmt, L'?') == read.str);

        const auto fmt = static_cast<CSFileTextFmt>(random.Below(9));
        const auto cb = static_cast<DWORD>(bytes.size());
        const std::wstring str = DecodeText(bytes, fmt, L'#');
        const unsigned nSizes[] = {static_cast<unsigned>(str.size() + 1),
                                   static_cast<unsigned>(str.size()),
                                   random.Below(static_cast<unsigned>(str.size() + 20))};
        if (bytes.size() < 2) continue;
        for (unsigned nSize : nSizes) {
            GuardedMemory memory(nSize * sizeof(wchar_t));
            auto* pszOut = static_cast<wchar_t*>(memory.Get());
            DWORD nResult = CSFile::GetText(strPath.c_str(), cb, fmt, pszOut, nSize, L'#');
            if (nSize <= str.size()) {
                ASSERT_EQ(kTextSizeUnknown, nResult) << fmt << " " << nSize;
            } else {
                ASSERT_EQ(str.size() + 1, nResult) << fmt;
                ASSERT_TRUE(str == std::wstring(pszOut, nResult - 1)) << fmt;
            }
        }
    }
}

TEST(TextRandom, LargeFilesAreConvertedAsIfInOnePiece) {
    TempFolder folder;
    Random random(84);
    for (int n = 0; n < 60; ++n) {
        const std::string bytes = RandomBytes(random, 400000);
        const CSFileTextFmt fmt = TellText(bytes).fmt;
        TextRead read = ReadTextOf(folder.MakeFile(L"a.txt", bytes));
        ASSERT_EQ(fmt, read.fmt) << n;
        ASSERT_TRUE(DecodeText(bytes, fmt, L'?') == read.str) << n;
    }
}

TEST(TextRandom, FilesAreReadAsAnotherDecoderReadsThem) {
    TempFolder folder;
    std::string strResult = RunTextFiles(L"make", folder.Get());
    if (strResult == kNoTextFiles) GTEST_SKIP() << "no Python here";
    ASSERT_EQ("", strResult);
    int nFiles = 0;
    for (int nFormat = fmtAnsi; nFormat <= fmtBinary; ++nFormat) {
        for (int n = 0; n < kFilesOfEach; ++n, ++nFiles) {
            const std::wstring strName = std::to_wstring(nFormat) + L"_" + std::to_wstring(n);
            const std::string expected = folder.ReadFile(strName + L".text");
            ASSERT_TRUE(std::filesystem::exists(folder.File(strName))) << nFormat << " " << n;
            TextRead read = ReadTextOf(folder.File(strName));
            ASSERT_TRUE(read.bText) << nFormat << " " << n;
            EXPECT_EQ(nFormat, read.fmt) << n;
            std::string text(reinterpret_cast<const char*>(read.str.data()),
                             read.str.size() * sizeof(wchar_t));
            ASSERT_TRUE(expected == text) << nFormat << " " << n;
        }
    }
    EXPECT_EQ(7 * kFilesOfEach, nFiles);
}

TEST(TextRandom, FilesThatAreWrittenAreReadByAnotherDecoder) {
    TempFolder folder;
    Random random(85);
    std::vector<std::wstring> ascii, ansi, all;
    for (int ch = 32; ch < 127; ++ch) ascii.emplace_back(1, static_cast<wchar_t>(ch));
    for (int ch = 32; ch < 256; ++ch) {
        std::wstring str = Converted(::GetACP(), std::string(1, static_cast<char>(ch)));
        if (ch != 127 && str.size() == 1 && str[0] != 0xFFFD) ansi.push_back(str);
    }
    for (unsigned n = 0; n < 400; ++n)
        all.emplace_back(1, static_cast<wchar_t>(0xA0 + random.Below(0xD000)));
    for (unsigned n = 0; n < 100; ++n)
        all.push_back({static_cast<wchar_t>(0xD800 + random.Below(0x400)),
                       static_cast<wchar_t>(0xDC00 + random.Below(0x400))});
    all.insert(all.end(), ascii.begin(), ascii.end());
    for (int nFormat = fmtAnsi; nFormat <= fmtAnsiLf; ++nFormat) {
        const auto fmt = static_cast<CSFileTextFmt>(nFormat);
        const bool bAnsi = fmt == fmtAnsi || fmt == fmtAnsiLf;
        for (int n = 0; n < kFilesOfEach; ++n) {
            std::wstring str = RandomText(random, bAnsi ? ansi : all);
            const std::wstring strName = std::to_wstring(nFormat) + L"_" + std::to_wstring(n);
            const std::wstring strPath = folder.File(strName);
            if (n % 2) {
                ASSERT_EQ(1, CSFile::WriteText(strPath.c_str(), str.c_str(), fmt, 0));
            } else { // one line first, so that all formats are told, and the rest behind it
                ASSERT_EQ(1, CSFile::WriteText(strPath.c_str(), L"first\r\n", fmt, 0));
                ASSERT_EQ(1, CSFile::AppendText(strPath.c_str(), str.c_str(), 0));
                str = L"first\r\n" + str;
            }
            folder.MakeFile(strName + L".text",
                            std::string(reinterpret_cast<const char*>(str.data()),
                                        str.size() * sizeof(wchar_t)));
        }
    }
    std::string strResult = RunTextFiles(L"check", folder.Get());
    if (strResult == kNoTextFiles) GTEST_SKIP() << "no Python here";
    EXPECT_EQ("", strResult);
}
