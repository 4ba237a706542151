#include "shell/clipboard/clipboard.h"
#include "support/guard_page.h"
#include "support/replace_import.h"
#include "support/start_process.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <cstring>
#include <random>

extern "C" FARPROC __imp_GetClipboardData;
extern "C" FARPROC __imp_GlobalAlloc;
extern "C" FARPROC __imp_GlobalLock;
extern "C" FARPROC __imp_GlobalSize;
extern "C" FARPROC __imp_GlobalUnlock;

namespace {
/// The clipboard by the platform's own calls. Its window is the owner of what is put there, so that
/// a thread that has the clipboard open has it open for that window.
class ClipboardTest : public testing::Test {
  protected:
    ClipboardTest() { Put(0, nullptr, 0); }
    ~ClipboardTest() override { Put(0, nullptr, 0); }
    /// Empties it and puts a block of that format there; 0: nothing.
    void Put(UINT nFormat, const void* pData, std::size_t cb) {
        ASSERT_TRUE(WaitUntil([&] { return ::OpenClipboard(window) != 0; }));
        ::EmptyClipboard();
        if (nFormat) {
            HGLOBAL h = ::GlobalAlloc(GMEM_MOVEABLE, cb);
            std::memcpy(::GlobalLock(h), pData, cb);
            ::GlobalUnlock(h);
            ::SetClipboardData(nFormat, h);
        }
        ::CloseClipboard();
    }
    void PutText(const std::wstring& str) {
        Put(CF_UNICODETEXT, str.c_str(), (str.size() + 1) * sizeof(wchar_t));
    }
    std::string Bytes(UINT nFormat) {
        ::OpenClipboard(window);
        HANDLE h = ::GetClipboardData(nFormat);
        std::string str;
        if (h) str.assign(static_cast<const char*>(::GlobalLock(h)), ::GlobalSize(h));
        if (h) ::GlobalUnlock(h);
        ::CloseClipboard();
        return str;
    }
    static std::string BytesOfText(const std::wstring& str) {
        return {reinterpret_cast<const char*>(str.c_str()), (str.size() + 1) * sizeof(wchar_t)};
    }
    TestWindow window;
    UINT nOwn = ::RegisterClipboardFormatW(L"Tessaly Test Bytes");
};

TEST_F(ClipboardTest, IsOpenAsLongAsTheObjectLives) {
    {
        Clipboard clipboard(window);
        EXPECT_EQ(window.Get(), ::GetOpenClipboardWindow());
    }
    EXPECT_EQ(nullptr, ::GetOpenClipboardWindow());
    EXPECT_FALSE(::EmptyClipboard()); // nobody has it open
}

TEST_F(ClipboardTest, ClearEmptiesIt) {
    PutText(L"text");
    Clipboard clipboard(window);
    EXPECT_NE(0, clipboard.IsDataAvailable(CF_UNICODETEXT));
    EXPECT_EQ(1, clipboard.Clear());
    EXPECT_EQ(0, clipboard.IsDataAvailable(CF_UNICODETEXT));
    EXPECT_EQ(0, ::CountClipboardFormats());
    EXPECT_EQ(window.Get(), ::GetClipboardOwner());
}

TEST_F(ClipboardTest, DataOfAnyFormatComesBack) {
    const BYTE data[] = {0, 1, 0, 0xFF, 0x80, 0};
    {
        Clipboard clipboard(window);
        clipboard.Clear();
        EXPECT_EQ(1, clipboard.AddData(nOwn, data, sizeof(data)));
        EXPECT_EQ(1, clipboard.AddStr(L"beside it"));
        EXPECT_NE(0, clipboard.IsDataAvailable(nOwn));
    }
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(data), sizeof(data)), Bytes(nOwn));
    EXPECT_EQ(BytesOfText(L"beside it"), Bytes(CF_UNICODETEXT));
    Clipboard clipboard(window);
    GuardedMemory out(sizeof(data));
    EXPECT_EQ(1, clipboard.GetData(nOwn, static_cast<BYTE*>(out.Get()), sizeof(data)));
    EXPECT_EQ(0, std::memcmp(data, out.Get(), sizeof(data)));
    GuardedMemory small(3);
    EXPECT_EQ(1, clipboard.GetData(nOwn, static_cast<BYTE*>(small.Get()), 3));
    EXPECT_EQ(0, std::memcmp(data, small.Get(), 3));
    EXPECT_EQ(0, clipboard.GetData(nOwn, nullptr, 3));
}

TEST_F(ClipboardTest, DataThatIsNotThereLeavesTheBuffer) {
    Clipboard clipboard(window);
    BYTE data[] = {1, 2, 3};
    EXPECT_EQ(0, clipboard.GetData(nOwn, data, 3));
    EXPECT_EQ(0, std::memcmp("\1\2\3", data, 3));
    EXPECT_EQ(0, clipboard.GetStr(nullptr, 0));
    wchar_t sz[] = L"before";
    EXPECT_EQ(0, clipboard.GetStr(sz, 7));
    EXPECT_STREQ(L"before", sz);
}

TEST_F(ClipboardTest, SmallerBlockIsFilledUpWithZeros) {
    Put(nOwn, "abc", 3);
    Clipboard clipboard(window);
    GuardedMemory out(8);
    std::memset(out.Get(), 0xEE, 8);
    EXPECT_EQ(1, clipboard.GetData(nOwn, static_cast<BYTE*>(out.Get()), 8));
    EXPECT_EQ(0, std::memcmp("abc\0\0\0\0\0", out.Get(), 8));
}

/// A block on the clipboard whose memory ends at a page that may not be read.
class GuardedClipboardBlock {
  public:
    explicit GuardedClipboardBlock(const std::string& strBytes)
        : memory(strBytes.size()), give(__imp_GetClipboardData, &Give),
          size(__imp_GlobalSize, &Size), lock(__imp_GlobalLock, &Lock),
          unlock(__imp_GlobalUnlock, &Unlock) {
        std::memcpy(memory.Get(), strBytes.data(), strBytes.size());
        pThere = memory.Get();
        cb = strBytes.size();
        nLocks = 0;
    }
    static inline int nLocks = 0;

  private:
    static HANDLE WINAPI Give(UINT) { return reinterpret_cast<HANDLE>(0x7E55AA); }
    static SIZE_T WINAPI Size(HGLOBAL) { return cb; }
    static LPVOID WINAPI Lock(HGLOBAL) {
        ++nLocks;
        return pThere;
    }
    static BOOL WINAPI Unlock(HGLOBAL) { return --nLocks > 0; }
    static inline void* pThere = nullptr;
    static inline std::size_t cb = 0;
    GuardedMemory memory;
    ReplaceImport give, size, lock, unlock;
};

TEST_F(ClipboardTest, NothingBehindTheBlockIsRead) {
    PutText(L"so that there is one");
    for (std::size_t cb = 1; cb < 10; ++cb) {
        GuardedClipboardBlock block(std::string(cb, 'x'));
        Clipboard clipboard(window);
        GuardedMemory data(20);
        EXPECT_EQ(1, clipboard.GetData(nOwn, static_cast<BYTE*>(data.Get()), 20));
        EXPECT_EQ(std::string(cb, 'x') + std::string(20 - cb, 0),
                  std::string(static_cast<char*>(data.Get()), 20));
        // Text without its end: what whole characters there are, and an end of ours.
        int cch = int(cb / 2) + 1;
        EXPECT_EQ(cch, clipboard.GetStr(nullptr, 0)) << cb;
        GuardedMemory text(std::size_t(cch) * 2);
        auto* psz = static_cast<wchar_t*>(text.Get());
        EXPECT_EQ(cch, clipboard.GetStr(psz, 0));
        EXPECT_EQ(std::wstring(cb / 2, L'\x7878'), std::wstring(psz));
        EXPECT_EQ(cch, Clipboard::GetText(nullptr, 0));
        EXPECT_EQ(cch, Clipboard::GetText(psz, UINT(cch)));
        EXPECT_EQ(0, GuardedClipboardBlock::nLocks);
    }
}

TEST_F(ClipboardTest, TextEndsAtItsFirstZero) {
    const wchar_t szText[] = L"one\0two";
    Put(CF_UNICODETEXT, szText, sizeof(szText));
    Clipboard clipboard(window);
    wchar_t sz[10] = L"#########";
    EXPECT_EQ(4, clipboard.GetStr(sz, 10));
    EXPECT_EQ(0, std::memcmp(L"one\0#####", sz, 20));
}

TEST_F(ClipboardTest, EmptyTextIsTwoBytes) {
    {
        Clipboard clipboard(window);
        clipboard.Clear();
        EXPECT_EQ(1, clipboard.AddStr(L""));
        EXPECT_EQ(1, clipboard.GetStr(nullptr, 0));
    }
    EXPECT_EQ(std::string(2, 0), Bytes(CF_UNICODETEXT));
    EXPECT_EQ(1, Clipboard::GetText(nullptr, 0));
    wchar_t sz[] = L"x";
    EXPECT_EQ(1, Clipboard::GetText(sz, 1));
    EXPECT_STREQ(L"", sz);
}

TEST_F(ClipboardTest, GetTextMeasuresAndStores) {
    PutText(L"12345");
    EXPECT_EQ(6, Clipboard::GetText(nullptr, 0));
    EXPECT_EQ(6, Clipboard::GetText(nullptr, 6));
    EXPECT_EQ(0, Clipboard::GetText(nullptr, 5));
    GuardedMemory memory(12);
    auto* psz = static_cast<wchar_t*>(memory.Get());
    std::memset(psz, 0x55, 12);
    EXPECT_EQ(0, Clipboard::GetText(psz, 5));
    EXPECT_EQ(0x5555, psz[0]);
    EXPECT_EQ(6, Clipboard::GetText(psz, 6));
    EXPECT_EQ(0, std::memcmp(L"12345", psz, 12));
    std::memset(psz, 0x55, 12);
    EXPECT_EQ(6, Clipboard::GetText(psz, 0)); // does not count
    EXPECT_EQ(0, std::memcmp(L"12345", psz, 12));
    EXPECT_EQ(6, Clipboard::GetText(psz, 0x80000000));
    EXPECT_EQ(nullptr, ::GetOpenClipboardWindow());
    EXPECT_FALSE(::EmptyClipboard()); // it is closed again
    EXPECT_EQ(BytesOfText(L"12345"), Bytes(CF_UNICODETEXT));
}

TEST_F(ClipboardTest, GetTextWithoutOneGivesAnEmptyText) {
    wchar_t sz[] = L"before";
    EXPECT_EQ(0, Clipboard::GetText(sz, 7));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(0, Clipboard::GetText(nullptr, 0));
    Put(nOwn, "abc", 3);
    sz[0] = L'x';
    EXPECT_EQ(0, Clipboard::GetText(sz, 0));
    EXPECT_STREQ(L"", sz);
    EXPECT_FALSE(::EmptyClipboard());
}

UINT nAllocFlags = 0;
SIZE_T cbAlloc = 0;
bool bRefuseAlloc = false;
HGLOBAL WINAPI NoteAlloc(UINT nFlags, SIZE_T cb) {
    nAllocFlags = nFlags;
    cbAlloc = cb;
    if (bRefuseAlloc) return nullptr;
    static const auto pfn =
        reinterpret_cast<HGLOBAL(WINAPI*)(UINT, SIZE_T)>(reinterpret_cast<void*>(
            ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "GlobalAlloc")));
    return pfn(nFlags, cb);
}
LPVOID WINAPI RefuseLock(HGLOBAL) { return nullptr; }

TEST_F(ClipboardTest, BlocksAreMoveableAndShared) {
    Clipboard clipboard(window);
    clipboard.Clear();
    bRefuseAlloc = false;
    ReplaceImport replaced(__imp_GlobalAlloc, &NoteAlloc);
    EXPECT_EQ(1, clipboard.AddStr(L"abc"));
    EXPECT_EQ(8194u, nAllocFlags);
    EXPECT_EQ(8u, cbAlloc);
    BYTE b = 1;
    EXPECT_EQ(1, clipboard.AddData(nOwn, &b, 1));
    EXPECT_EQ(8194u, nAllocFlags);
    EXPECT_EQ(1u, cbAlloc);
    bRefuseAlloc = true;
    EXPECT_EQ(0, clipboard.AddData(nOwn, &b, 1));
    EXPECT_EQ(0, clipboard.AddStr(L"more"));
    EXPECT_EQ(4, clipboard.GetStr(nullptr, 0)); // as it was
}

TEST_F(ClipboardTest, BlockThatCannotBeLocked) {
    PutText(L"there");
    Clipboard clipboard(window);
    ReplaceImport replaced(__imp_GlobalLock, &RefuseLock);
    BYTE data[2] = {7, 7};
    EXPECT_EQ(0, clipboard.AddData(nOwn, data, 2));
    EXPECT_EQ(0, clipboard.AddStr(L"x"));
    EXPECT_EQ(0, clipboard.GetStr(nullptr, 0));
    wchar_t sz[] = L"before";
    EXPECT_EQ(0, clipboard.GetStr(sz, 7));
    EXPECT_STREQ(L"before", sz);
}

TEST_F(ClipboardTest, DataWithoutAByteIsRefused) {
    Clipboard clipboard(window);
    clipboard.Clear();
    BYTE b = 0;
    EXPECT_EQ(0, clipboard.AddData(nOwn, &b, 0)); // has no memory that could be locked
}

TEST_F(ClipboardTest, RandomTextsComeBack) {
    std::mt19937 random(906);
    for (int nRound = 0; nRound < 200; ++nRound) {
        std::wstring str(nRound == 99 ? 300000 : random() % 300, L' ');
        for (auto& c : str) c = static_cast<wchar_t>(1 + random() % (random() % 2 ? 0x7F : 0xFFFF));
        {
            Clipboard clipboard(window);
            ASSERT_EQ(1, clipboard.Clear());
            ASSERT_EQ(1, clipboard.AddStr(str.c_str()));
        }
        int cch = int(str.size()) + 1;
        ASSERT_EQ(cch, Clipboard::GetText(nullptr, 0));
        GuardedMemory memory(std::size_t(cch) * sizeof(wchar_t));
        auto* psz = static_cast<wchar_t*>(memory.Get());
        ASSERT_EQ(cch, Clipboard::GetText(psz, UINT(cch)));
        ASSERT_TRUE(str == psz) << nRound;
    }
}

TEST_F(ClipboardTest, SetTextReplacesAll) {
    Put(nOwn, "abc", 3);
    EXPECT_EQ(1, Clipboard::SetText(window, L"new"));
    EXPECT_EQ(BytesOfText(L"new"), Bytes(CF_UNICODETEXT));
    EXPECT_EQ("", Bytes(nOwn));
    EXPECT_FALSE(::EmptyClipboard());
}

/// Another process that has the clipboard open.
class Holder {
  public:
    Holder() {
        std::wstring strName = L"TessalyClipboardHolder" + std::to_wstring(::GetCurrentProcessId());
        hOpen = ::CreateEventW(nullptr, TRUE, FALSE, (strName + L"Open").c_str());
        hEnd = ::CreateEventW(nullptr, TRUE, FALSE, (strName + L"End").c_str());
        wchar_t szProgram[MAX_PATH];
        ::GetModuleFileNameW(nullptr, szProgram, MAX_PATH);
        std::wstring strProgram = szProgram;
        strProgram.resize(strProgram.rfind(L'\\') + 1);
        std::wstring strLine = L"\"" + strProgram + L"clipboard_holder_probe.exe\" " + strName;
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION info{};
        if (!StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                nullptr, &startup, &info)) {
            return;
        }
        ::CloseHandle(info.hThread);
        hProcess = info.hProcess;
        // The platform asks the window that owns what is there, before it lets anybody else in.
        PumpUntil([&] {
            bHolds = ::WaitForSingleObject(hOpen, 0) == WAIT_OBJECT_0;
            return bHolds || ::WaitForSingleObject(hProcess, 0) == WAIT_OBJECT_0;
        });
    }
    ~Holder() {
        ::SetEvent(hEnd);
        ::WaitForSingleObject(hProcess, kTestDeadlineMs);
        for (HANDLE h : {hOpen, hEnd, hProcess}) ::CloseHandle(h);
    }
    bool Holds() const { return bHolds; }

  private:
    HANDLE hOpen = nullptr, hEnd = nullptr, hProcess = nullptr;
    bool bHolds = false;
};

TEST_F(ClipboardTest, HeldByAnotherProcess) {
    PutText(L"kept");
    {
        Holder holder;
        ASSERT_TRUE(holder.Holds());
        {
            Clipboard clipboard(window);
            EXPECT_NE(0, clipboard.IsDataAvailable(CF_UNICODETEXT)); // needs no open one
            EXPECT_EQ(0, clipboard.Clear());
            // What comes to a clipboard that somebody else has open, is the platform's business:
            // the test platform takes it.
            BYTE b = 1;
            const bool bTakes =
                ::SetClipboardData(nOwn, ::GlobalAlloc(GMEM_MOVEABLE, 1)) != nullptr;
            EXPECT_EQ(bTakes, clipboard.AddData(nOwn, &b, 1));
            EXPECT_EQ(0, clipboard.GetData(CF_UNICODETEXT, &b, 1));
            EXPECT_EQ(1, b);
            EXPECT_EQ(0, clipboard.GetStr(nullptr, 0));
            EXPECT_EQ(0, Clipboard::GetText(nullptr, 0));
            wchar_t sz[] = L"before";
            EXPECT_EQ(0, Clipboard::GetText(sz, 7));
            EXPECT_STREQ(L"before", sz);
            EXPECT_EQ(0, Clipboard::SetText(window, L"new"));
        }
        EXPECT_NE(nullptr, ::GetOpenClipboardWindow()); // the other one still has it
    }
    EXPECT_EQ(BytesOfText(L"kept"), Bytes(CF_UNICODETEXT));
    EXPECT_EQ(5, Clipboard::GetText(nullptr, 0));
}
} // namespace
