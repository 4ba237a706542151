// PrepareTextData, WriteText, AppendText.
#include "files/disk/uni_path.h"
#include "files/read_only.h"
#include "files/text/cs_file.h"
#include "files/text/text_support.h"
#include "support/no_memory.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <shlobj.h>
#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

extern "C" FARPROC __imp_SHChangeNotify, __imp_WriteFile, __imp_SetEndOfFile,
    __imp_FlushFileBuffers;

namespace {
/// The protected members.
class Prepare : public CSFile {
  public:
    using CSFile::PrepareTextData;
};

struct Prepared {
    bool bData;
    std::string bytes;
};
Prepared PrepareOf(const wchar_t* pszText, CSFileTextFmt fmt, int bMarker) {
    DWORD cb = 77;
    BYTE* p = Prepare::PrepareTextData(pszText, fmt, &cb, bMarker);
    Prepared prepared{p != nullptr, p ? std::string(reinterpret_cast<char*>(p), cb) : ""};
    EXPECT_TRUE(p || cb == 0);
    FreeDllBuf(p);
    return prepared;
}

std::string FromWide(UINT nCodePage, const std::wstring& str) {
    std::string bytes(str.size() * 4, '\0');
    int cb = str.empty() ? 0
                         : ::WideCharToMultiByte(nCodePage, 0, str.data(),
                                                 static_cast<int>(str.size()), bytes.data(),
                                                 static_cast<int>(bytes.size()), nullptr, nullptr);
    return bytes.substr(0, static_cast<std::size_t>(cb));
}

std::string WithLineFeedsAlone(std::string bytes) {
    for (std::size_t i = 0; (i = bytes.find("\r\n", i)) != std::string::npos; ++i)
        bytes.erase(i, 1);
    return bytes;
}

/// The bytes of a text, written down a second time.
std::string Encode(const std::wstring& str, CSFileTextFmt fmt, bool bMarker) {
    std::string bytes;
    switch (fmt) {
    case fmtUnicode:
    case fmtUnicodeBE:
        for (wchar_t ch : (bMarker ? L"\xFEFF" : L"") + str) {
            char chLow = static_cast<char>(ch & 0xFF), chHigh = static_cast<char>(ch >> 8);
            bytes += fmt == fmtUnicode ? chLow : chHigh;
            bytes += fmt == fmtUnicode ? chHigh : chLow;
        }
        return bytes;
    case fmtUtf8: return (bMarker ? kUtf8 : "") + FromWide(CP_UTF8, str);
    case fmtUtf8Lf: return WithLineFeedsAlone(Encode(str, fmtUtf8, bMarker));
    case fmtAnsiLf: return WithLineFeedsAlone(Encode(str, fmtAnsi, bMarker));
    default: return FromWide(::GetACP(), str);
    }
}

constexpr CSFileTextFmt kFormats[] = {fmtAnsi, fmtUnicode, fmtUnicodeBE,
                                      fmtUtf8, fmtUtf8Lf,  fmtAnsiLf};
const std::wstring kTexts[] = {
    L"",
    L"a",
    L"one\r\ntwo\r\n",
    L"\r\n",
    L"\r\r\n\n\r\n\r",
    L"a\n",
    L"\x20AC \xF6 \xD83D\xDE00 \x4E2D\r\n",
    L"\xD83D",
    L"control \x01\x7F\r\n",
    std::wstring(8190, L'a') + L"\r\n\xF6\r\n",
    std::wstring(70000, L'\x20AC') + L"\r\n",
};

/// What the shell is told, on its way there.
class ShellTold {
  public:
    ShellTold() { events.clear(); }
    static inline std::vector<std::pair<LONG, std::wstring>> events;

  private:
    static void WINAPI Note(LONG nEvent, UINT nFlags, LPCVOID p1, LPCVOID p2) {
        EXPECT_EQ(static_cast<UINT>(SHCNF_PATHW), nFlags & SHCNF_TYPE);
        EXPECT_EQ(nullptr, p2);
        events.emplace_back(nEvent, static_cast<const wchar_t*>(p1));
    }
    ReplaceImport replaced{__imp_SHChangeNotify, &Note};
};

/// A disk on which writing goes wrong: only so many bytes of each write go, and with an error the
/// write fails.
class BadDisk {
  public:
    explicit BadDisk(DWORD cbMost, DWORD dwWriteError = 0) {
        cbLimit = cbMost;
        dwError = dwWriteError;
        pfnWrite = replaced.Original<Func>();
    }

  private:
    using Func = BOOL WINAPI(HANDLE, LPCVOID, DWORD, DWORD*, OVERLAPPED*);
    static BOOL WINAPI Write(HANDLE h, LPCVOID p, DWORD cb, DWORD* pcbDone, OVERLAPPED* pOver) {
        DWORD dwBefore = ::GetLastError();
        pfnWrite(h, p, std::min(cb, cbLimit), pcbDone, pOver);
        ::SetLastError(dwError ? dwError : dwBefore);
        return dwError == 0;
    }
    static inline DWORD cbLimit, dwError;
    static inline Func* pfnWrite;
    ReplaceImport replaced{__imp_WriteFile, &Write};
};

std::string strCalls; // W write, E set the end, F flush, C close
using OneHandle = BOOL WINAPI(HANDLE);
OneHandle *pfnSetEnd, *pfnFlush;
BOOL WINAPI NoteSetEnd(HANDLE h) {
    strCalls += 'E';
    return pfnSetEnd(h);
}
BOOL WINAPI NoteFlush(HANDLE h) {
    strCalls += 'F';
    return pfnFlush(h);
}
using WriteFunc = BOOL WINAPI(HANDLE, LPCVOID, DWORD, DWORD*, OVERLAPPED*);
WriteFunc* pfnNotedWrite;
BOOL WINAPI NoteWrite(HANDLE h, LPCVOID p, DWORD cb, DWORD* pcbDone, OVERLAPPED* pOver) {
    strCalls += 'W';
    return pfnNotedWrite(h, p, cb, pcbDone, pOver);
}
} // namespace

TEST(TextData, IsTheTextInItsFormat) {
    struct {
        CSFileTextFmt fmt;
        const wchar_t* pszText;
        std::string bytes, bytesWithMark;
    } const rows[] = {
        {fmtUnicode, L"a\r\n", Bytes("a\0\r\0\n\0"), kUtf16 + Bytes("a\0\r\0\n\0")},
        {fmtUnicodeBE, L"a\x20AC", Bytes("\0a\x20\xAC"), kUtf16BE + Bytes("\0a\x20\xAC")},
        {fmtUtf8, L"\x20AC\r\n", "\xE2\x82\xAC\r\n", kUtf8 + "\xE2\x82\xAC\r\n"},
        {fmtUtf8Lf, L"\x20AC\r\n\r", "\xE2\x82\xAC\n\r", kUtf8 + "\xE2\x82\xAC\n\r"},
        {fmtAnsi, L"a\r\n\n", "a\r\n\n", "a\r\n\n"},
        {fmtAnsiLf, L"a\r\n\n\r\r\n", "a\n\n\r\n", "a\n\n\r\n"},
        {fmtUnicode, L"", "", kUtf16},
        {fmtUnicodeBE, L"", "", kUtf16BE},
        {fmtUtf8, L"", "", kUtf8},
        {fmtUtf8Lf, L"", "", kUtf8},
        {fmtAnsi, L"", "", ""},
        {fmtAnsiLf, L"", "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.bytes, PrepareOf(row.pszText, row.fmt, 0).bytes) << row.fmt;
        EXPECT_EQ(row.bytesWithMark, PrepareOf(row.pszText, row.fmt, 1).bytes) << row.fmt;
    }
}

TEST(TextData, IsTheTextOfEveryKindInEveryFormat) {
    for (CSFileTextFmt fmt : kFormats) {
        for (const std::wstring& str : kTexts) {
            for (int bMarker : {0, 1, 2}) {
                Prepared prepared = PrepareOf(str.c_str(), fmt, bMarker);
                ASSERT_TRUE(prepared.bData || str.empty());
                ASSERT_TRUE(Encode(str, fmt, bMarker != 0) == prepared.bytes)
                    << fmt << " " << str.size();
            }
        }
    }
}

TEST(TextData, OfOtherFormatsIsNull) {
    for (int n : {0, 7, 8, -1}) {
        EXPECT_FALSE(PrepareOf(L"abc", static_cast<CSFileTextFmt>(n), 1).bData);
    }
}

TEST(TextData, WithoutMemoryIsNull) {
    for (CSFileTextFmt fmt : kFormats) {
        DWORD cb = 77;
        const BYTE* p = nullptr;
        {
            NoMemory none;
            p = Prepare::PrepareTextData(L"abc", fmt, &cb, 1);
        }
        EXPECT_EQ(nullptr, p);
        EXPECT_EQ(0u, cb);
    }
}

TEST(TextWrite, RoundTripsInEveryFormat) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"a.txt");
    for (CSFileTextFmt fmt : kFormats) {
        const bool bLf = fmt == fmtUtf8Lf || fmt == fmtAnsiLf;
        for (const std::wstring& str : kTexts) {
            ASSERT_EQ(1, CSFile::WriteText(strPath.c_str(), str.c_str(), fmt, 0));
            const std::string bytes = Encode(str, fmt, true);
            ASSERT_TRUE(bytes == folder.ReadFile(L"a.txt")) << fmt << " " << str.size();
            TextRead read = ReadTextOf(strPath, fmt, L'#');
            EXPECT_EQ(!bytes.empty(), read.bText);
            ASSERT_TRUE(DecodeText(bytes, fmt, L'#') == read.str) << fmt << " " << str.size();
            EXPECT_EQ(TellText(bytes).fmt, ReadTextOf(strPath).fmt);
        }
        const std::wstring strLines =
            bLf && fmt == fmtAnsiLf ? L"one\r\ntwo\r\n\r\n" : L"one\xF6\r\ntwo\r\n\r\n";
        ASSERT_EQ(1, CSFile::WriteText(strPath.c_str(), strLines.c_str(), fmt, 0));
        TextRead read = ReadTextOf(strPath);
        EXPECT_EQ(fmt, read.fmt);
        EXPECT_EQ(strLines, read.str);
    }
}

TEST(TextWrite, OfAnEmptyTextLeavesTheMarkAlone) {
    TempFolder folder;
    const struct {
        CSFileTextFmt fmt;
        std::string bytes;
    } rows[] = {{fmtUnicode, kUtf16}, {fmtUnicodeBE, kUtf16BE},
                {fmtUtf8, kUtf8},     {fmtUtf8Lf, kUtf8},
                {fmtAnsi, ""},        {fmtAnsiLf, ""}};
    for (const auto& row : rows) {
        const std::wstring strPath = folder.MakeFile(L"a.txt", "old contents");
        EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"", row.fmt, 0));
        EXPECT_EQ(row.bytes, folder.ReadFile(L"a.txt")) << row.fmt;
    }
}

TEST(TextWrite, CutsALongerFileAndMakesAMissingOne) {
    TempFolder folder;
    const std::wstring strOld = folder.MakeFile(L"old", std::string(5000, 'x'));
    EXPECT_EQ(1, CSFile::WriteText(strOld.c_str(), L"new", fmtAnsi, 0));
    EXPECT_EQ("new", folder.ReadFile(L"old"));
    UniPath path(folder.File(L"made").c_str());
    EXPECT_EQ(1, CSFile::WriteText(&path, L"made", fmtAnsi, 0));
    EXPECT_EQ("made", folder.ReadFile(L"made"));
}

TEST(TextWrite, WritesSetsTheEndAndFlushes) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"a.txt");
    strCalls.clear();
    {
        ReplaceImport write(__imp_WriteFile, &NoteWrite);
        ReplaceImport end(__imp_SetEndOfFile, &NoteSetEnd);
        ReplaceImport flush(__imp_FlushFileBuffers, &NoteFlush);
        pfnNotedWrite = write.Original<WriteFunc>();
        pfnSetEnd = end.Original<OneHandle>();
        pfnFlush = flush.Original<OneHandle>();
        EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"abc", fmtUtf8, 0));
        EXPECT_EQ("WEF", strCalls);
        strCalls.clear();
        EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"", fmtAnsi, 0));
        EXPECT_EQ("EF", strCalls);
    }
}

TEST(TextWrite, IntoWhatCannotBeOpenedGivesZero) {
    TempFolder folder;
    EXPECT_EQ(0, CSFile::WriteText(folder.Get().c_str(), L"abc", fmtAnsi, 0));
    EXPECT_EQ(0, CSFile::WriteText((folder.Get() + L"\\no\\a").c_str(), L"abc", fmtAnsi, 0));
    EXPECT_EQ(0, CSFile::WriteText(static_cast<const wchar_t*>(nullptr), L"abc", fmtAnsi, 0));
    EXPECT_EQ(0, CSFile::WriteText(static_cast<const UniPath*>(nullptr), L"abc", fmtAnsi, 0));
    const std::wstring strPath = folder.MakeFile(L"a.txt", "old");
    {
        CSFile reader(strPath.c_str(), 0);
        EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), L"abc", fmtAnsi, 0));
    }
    EXPECT_EQ("old", folder.ReadFile(L"a.txt"));
}

TEST(TextWrite, WithoutDataLeavesTheFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "old");
    for (int n : {0, 7, 8}) {
        EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), L"abc", static_cast<CSFileTextFmt>(n), 0));
    }
    EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), nullptr, fmtAnsi, 0));
    int nResult = 7;
    {
        NoMemory none;
        nResult = CSFile::WriteText(strPath.c_str(), L"abc", fmtAnsi, 0);
    }
    EXPECT_EQ(0, nResult);
    EXPECT_EQ("old", folder.ReadFile(L"a.txt"));
}

TEST(TextWrite, ThatFailsLeavesTheFileAsItStands) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "old contents");
    ShellTold told;
    {
        BadDisk full(2);
        EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), L"abcd", fmtAnsi, 1));
    }
    EXPECT_EQ("abd contents", folder.ReadFile(L"a.txt"));
    {
        BadDisk broken(0, ERROR_CRC);
        EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), L"xyz", fmtAnsi, 1));
        EXPECT_EQ(static_cast<DWORD>(ERROR_CRC), ::GetLastError());
    }
    EXPECT_EQ("abd contents", folder.ReadFile(L"a.txt"));
    EXPECT_TRUE(told.events.empty());
}

TEST(TextWrite, TellsTheShell) {
    TempFolder folder;
    const std::wstring strPath = folder.File(L"a.txt");
    ShellTold told;
    EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"a", fmtAnsi, 1));
    EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"b", fmtAnsi, 1));
    EXPECT_EQ(1, CSFile::WriteText(strPath.c_str(), L"c", fmtAnsi, 0));
    EXPECT_EQ(1, CSFile::AppendText(strPath.c_str(), L"d", 0));
    EXPECT_EQ(1, CSFile::AppendText(strPath.c_str(), L"e", 1));
    UniPath path(strPath.c_str());
    EXPECT_EQ(1, CSFile::AppendText(&path, L"f", 1));
    EXPECT_EQ(0, CSFile::WriteText(folder.Get().c_str(), L"a", fmtAnsi, 1));
    EXPECT_EQ(0, CSFile::AppendText(folder.File(L"missing").c_str(), L"a", 1));
    std::vector<std::pair<LONG, std::wstring>> expected{{SHCNE_CREATE, strPath},
                                                        {SHCNE_UPDATEITEM, strPath},
                                                        {SHCNE_UPDATEITEM, strPath},
                                                        {SHCNE_UPDATEITEM, strPath}};
    EXPECT_EQ(expected, told.events);
    EXPECT_EQ("cdef", folder.ReadFile(L"a.txt"));
}

TEST(TextAppend, GoesOnInTheFormatOfTheFile) {
    TempFolder folder;
    const std::string files[] = {
        "a",
        "a\r\n",
        "a\n",
        "\n",
        kUtf16,
        kUtf16 + Bytes("a\0"),
        kUtf16BE,
        kUtf16BE + Bytes("\0a"),
        kUtf8,
        kUtf8 + "a\r\n",
        kUtf8 + "a\n",
        std::string(10000, 'a') + "\n",
        "a\n" + std::string(10000, 'a'),
        kUtf8 + "\n" + std::string(70000, 'a'),
    };
    for (const std::string& bytes : files) {
        const CSFileTextFmt fmt = TellText(bytes).fmt;
        for (const std::wstring& str : kTexts) {
            const std::wstring strPath = folder.MakeFile(L"a.txt", bytes);
            EXPECT_EQ(1, CSFile::AppendText(strPath.c_str(), str.c_str(), 0));
            ASSERT_TRUE(bytes + Encode(str, fmt, false) == folder.ReadFile(L"a.txt"))
                << fmt << " " << bytes.size() << " " << str.size();
        }
    }
}

TEST(TextAppend, MakesNoFile) {
    TempFolder folder;
    EXPECT_EQ(0, CSFile::AppendText(folder.File(L"missing").c_str(), L"a", 0));
    EXPECT_FALSE(std::filesystem::exists(folder.File(L"missing")));
    EXPECT_EQ(0, CSFile::AppendText(folder.Get().c_str(), L"a", 0));
    EXPECT_EQ(0, CSFile::AppendText(folder.MakeFile(L"empty", "").c_str(), L"a", 0));
    EXPECT_EQ("", folder.ReadFile(L"empty"));
    EXPECT_EQ(0, CSFile::AppendText(static_cast<const wchar_t*>(nullptr), L"a", 0));
    EXPECT_EQ(0, CSFile::AppendText(static_cast<const UniPath*>(nullptr), L"a", 0));
}

TEST(TextAppend, LeavesWhatIsNoText) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.bin", "a\1b");
    EXPECT_EQ(0, CSFile::AppendText(strPath.c_str(), L"text", 0));
    EXPECT_EQ("a\1b", folder.ReadFile(L"a.bin"));
}

TEST(TextAppend, ThatIsShortTellsAWriteFault) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "old");
    {
        BadDisk full(2);
        EXPECT_EQ(0, CSFile::AppendText(strPath.c_str(), L"abcd", 0));
        EXPECT_EQ(static_cast<DWORD>(ERROR_WRITE_FAULT), ::GetLastError());
    }
    EXPECT_EQ("oldab", folder.ReadFile(L"a.txt"));
    BadDisk broken(1, ERROR_CRC);
    EXPECT_EQ(0, CSFile::AppendText(strPath.c_str(), L"xyz", 0));
    EXPECT_EQ(static_cast<DWORD>(ERROR_CRC), ::GetLastError());
}

TEST(TextAppend, OnAFullDiskTellsAnError) {
    SmallDisk disk;
    SKIP_WITHOUT_SMALL_DISK(disk);
    const std::wstring strPath = disk.MakeFile(L"a.txt", "old");
    ASSERT_TRUE(disk.Fill());
    ::SetLastError(0);
    EXPECT_EQ(0, CSFile::AppendText(strPath.c_str(), std::wstring(20000, L'a').c_str(), 0));
    EXPECT_NE(0u, ::GetLastError());
    EXPECT_EQ("old", disk.ReadFile(L"a.txt").substr(0, 3));
    EXPECT_EQ(0, CSFile::WriteText(strPath.c_str(), std::wstring(20000, L'b').c_str(), fmtAnsi, 0));
}

TEST(TextAppend, WithoutMemoryLeavesTheFile) {
    TempFolder folder;
    const std::wstring strPath = folder.MakeFile(L"a.txt", "old");
    int nResult = 7;
    {
        NoMemory none;
        nResult = CSFile::AppendText(strPath.c_str(), L"abc", 0);
    }
    EXPECT_EQ(0, nResult);
    EXPECT_EQ("old", folder.ReadFile(L"a.txt"));
    EXPECT_EQ(0, CSFile::AppendText(strPath.c_str(), nullptr, 0));
    EXPECT_EQ("old", folder.ReadFile(L"a.txt"));
}
