// Texts that come from streams of unknown length.
#include "files/text/cs_file.h"
#include "files/text/text_support.h"
#include "support/guard_page.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {
/// A pipe that gives everybody who opens it the same bytes, in pieces of a size.
class PipedText {
  public:
    PipedText(std::string newBytes, DWORD cbNewPiece)
        : bytes(std::move(newBytes)), cbPiece(cbNewPiece) {
        static int nCount = 0;
        strPath = L"\\\\.\\pipe\\tessaly_text_" + std::to_wstring(::GetCurrentProcessId()) + L"_" +
                  std::to_wstring(++nCount);
        for (int n = 0; n < kInstances; ++n) {
            HANDLE h = ::CreateNamedPipeW(strPath.c_str(), PIPE_ACCESS_OUTBOUND, 0, kInstances,
                                          65536, 0, 0, nullptr);
            if (h != INVALID_HANDLE_VALUE) threads.emplace_back([this, h] { Serve(h); });
        }
    }
    PipedText(const PipedText&) = delete;
    PipedText& operator=(const PipedText&) = delete;
    ~PipedText() {
        bEnd = true;
        WaitUntil([&] {
            HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
            if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
            return nDone == static_cast<int>(threads.size());
        });
        for (std::thread& thread : threads) thread.join();
    }
    const std::wstring& Path() const { return strPath; }
    int Opened() const { return nOpened; }

  private:
    static constexpr int kInstances = 12; // how often it can be opened

    void Serve(HANDLE h) {
        if (::ConnectNamedPipe(h, nullptr) || ::GetLastError() == ERROR_PIPE_CONNECTED) {
            ++nOpened;
            DWORD cbDone = 0;
            for (std::size_t i = 0; i < bytes.size() && !bEnd; i += cbDone) {
                DWORD cb = std::min(cbPiece, static_cast<DWORD>(bytes.size() - i));
                if (!::WriteFile(h, bytes.data() + i, cb, &cbDone, nullptr)) break;
            }
            ::FlushFileBuffers(h); // until all of it is read
        }
        ::CloseHandle(h);
        ++nDone;
    }

    std::string bytes;
    DWORD cbPiece;
    std::wstring strPath;
    std::atomic<bool> bEnd{false};
    std::atomic<int> nDone{0}, nOpened{0};
    std::vector<std::thread> threads;
};

std::string Lines(std::size_t nLines, const char* pszEnd) {
    std::string str;
    for (std::size_t n = 0; n < nLines; ++n) str += "line " + std::to_string(n) + pszEnd;
    return str;
}

std::string AsUtf16(const std::wstring& str) {
    return std::string(reinterpret_cast<const char*>(str.data()), str.size() * sizeof(wchar_t));
}
} // namespace

TEST(TextStream, HasAnUnknownLength) {
    PipedText pipe("a\r\nb", 4);
    EXPECT_EQ(kTextSizeUnknown, CSFile::GetFileSizeForText(pipe.Path().c_str()));
}

TEST(TextStream, ThatEndsWithinTheBlockIsKnownFromThenOn) {
    const struct {
        std::string bytes;
        DWORD cbPiece;
    } rows[] = {
        {"a\nb", 1},          {"ab", 2},   {kUtf8 + "a\n\xC3\xB6", 1}, {kUtf16 + "abcd", 1},
        {kUtf16BE + "ab", 3}, {"ab\1", 1}, {Lines(500, "\n"), 7},      {Lines(500, "\r\n"), 4000}};
    for (const auto& row : rows) {
        PipedText pipe(row.bytes, row.cbPiece);
        ToldText expected = TellText(row.bytes);
        DWORD cb = kTextSizeUnknown;
        CSFileTextFmt fmt = fmtUnknown;
        EXPECT_EQ(expected.cch, CSFile::GetTextSize(pipe.Path().c_str(), &cb, &fmt));
        EXPECT_EQ(expected.fmt, fmt);
        EXPECT_EQ(row.bytes.size(), cb);
    }
}

TEST(TextStream, ThatFillsTheBlockStaysUnknown) {
    for (const std::string& bytes :
         {std::string(9000, 'a'), kUtf8 + std::string(9000, 'a'), kUtf16 + std::string(9000, 'a'),
          Lines(2000, "\n"), kUtf8 + Lines(2000, "\n"), std::string(9000, '\1')}) {
        PipedText pipe(bytes, 3000);
        DWORD cb = kTextSizeUnknown;
        CSFileTextFmt fmt = fmtUnknown;
        EXPECT_EQ(kTextSizeUnknown, CSFile::GetTextSize(pipe.Path().c_str(), &cb, &fmt));
        EXPECT_EQ(TellText(bytes).fmt, fmt);
        EXPECT_EQ(kTextSizeUnknown, cb);
    }
}

TEST(TextStream, IsReadWhole) {
    const std::string files[] = {
        "a",
        "a\nb",
        kUtf8 + "a\n",
        kUtf16 + Bytes("a\0b\0"),
        Lines(1000, "\r\n"),
        Lines(1000, "\n"),
        kUtf8 + Lines(1000, "\xC3\xB6\n"),
        kUtf16BE + std::string(10001, 'a'),
        Lines(20000, "\n"), // more than the first buffer holds
        Lines(20000, "\r\n"),
        kUtf8 + Lines(20000, "\xE2\x82\xAC\n"),
        kUtf8 + Lines(20000, "\xE2\x82\xAC\r\n"),
        kUtf16 + AsUtf16(std::wstring(70000, L'a')),
        kUtf16BE + std::string(140001, 'a'),
        "\1" + Lines(20000, "\n"),
    };
    for (const std::string& bytes : files) {
        for (DWORD cbPiece : {701u, 65536u}) {
            PipedText pipe(bytes, cbPiece);
            TextRead read = ReadTextOf(pipe.Path());
            const CSFileTextFmt fmt = TellText(bytes).fmt;
            SCOPED_TRACE(testing::Message() << fmt << ", " << bytes.size());
            ASSERT_TRUE(read.bText);
            EXPECT_EQ(fmt, read.fmt);
            EXPECT_TRUE(DecodeText(bytes, fmt, L'?') == read.str);
        }
    }
}

TEST(TextStream, IsReadWholeInAFormatThatIsAskedFor) {
    const std::string bytes = "a\xC3\xB6\r\n" + Lines(3000, "\n");
    for (CSFileTextFmt fmt : {fmtUtf8, fmtUtf8Lf, fmtAnsi, fmtAnsiLf, fmtBinary, fmtUnicode}) {
        PipedText pipe(bytes, 65536);
        TextRead read = ReadTextOf(pipe.Path(), fmt);
        ASSERT_TRUE(read.bText) << fmt;
        EXPECT_EQ(fmt, read.fmt);
        EXPECT_TRUE(DecodeText(bytes, fmt, L'?') == read.str) << fmt;
    }
}

TEST(TextStream, WithNothingInItGivesNull) {
    PipedText pipe("", 1);
    TextRead read = ReadTextOf(pipe.Path());
    EXPECT_FALSE(read.bText);
    EXPECT_EQ(0u, read.cch);
    EXPECT_EQ(fmtUnknown, read.fmt);
}

TEST(TextStream, ThatFillsTheBufferIsTooLong) {
    const std::string bytes = Lines(10, "\r\n"); // 80 bytes
    for (unsigned cch : {1u, 8u, 39u}) {
        PipedText pipe(bytes, 11);
        GuardedMemory memory(cch * sizeof(wchar_t));
        for (CSFileTextFmt fmt : {fmtAnsi, fmtUtf8, fmtUtf8Lf, fmtAnsiLf, fmtUnicode}) {
            EXPECT_EQ(kTextSizeUnknown,
                      CSFile::GetText(pipe.Path().c_str(), kTextSizeUnknown, fmt,
                                      static_cast<wchar_t*>(memory.Get()), cch, L'?'))
                << cch << " " << fmt;
        }
    }
    PipedText pipe(bytes, 11);
    GuardedMemory memory((bytes.size() + 1) * sizeof(wchar_t));
    for (CSFileTextFmt fmt : {fmtAnsi, fmtUtf8, fmtUtf8Lf, fmtAnsiLf}) {
        EXPECT_EQ(bytes.size() + 1, CSFile::GetText(pipe.Path().c_str(), kTextSizeUnknown, fmt,
                                                    static_cast<wchar_t*>(memory.Get()),
                                                    static_cast<unsigned>(bytes.size() + 1), L'?'))
            << fmt;
    }
}
