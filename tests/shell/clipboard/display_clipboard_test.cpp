// The other side is a program of the display below the test platform, which knows nothing of the
// platform's clipboard.

#include "e2e/support/unix_shell.h"
#include "shell/clipboard/clipboard.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <vector>

namespace {
std::string Utf8(const std::wstring& str) {
    int cch = int(str.size());
    std::string strOut(str.size() * 3, 0);
    strOut.resize(std::size_t(::WideCharToMultiByte(CP_UTF8, 0, str.data(), cch, strOut.data(),
                                                    int(strOut.size()), nullptr, nullptr)));
    return strOut;
}

class DisplayClipboard : public testing::Test {
  protected:
    void SetUp() override {
        if (::GetFileAttributesW(L"Z:\\usr\\bin\\xclip") == INVALID_FILE_ATTRIBUTES) {
            GTEST_SKIP() << "no xclip";
        }
    }
    void TearDown() override {
        // A program that offers a text to the display runs until somebody else offers one.
        if (bOffered) PutAndRead(L"taken back");
    }
    /// A file for the shell line.
    std::wstring UnixPath(const std::wstring& strName) const {
        using PathFunc = char* CDECL(const wchar_t*);
        auto* pfn = reinterpret_cast<PathFunc*>(reinterpret_cast<void*>(
            ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
        char* psz = pfn(temp.File(strName).c_str());
        std::wstring str(psz, psz + std::strlen(psz));
        ::HeapFree(::GetProcessHeap(), 0, psz);
        return str;
    }
    /// Puts the text on our clipboard, which the platform may be looking into.
    bool Put(const std::wstring& str) {
        return PumpUntil([&] { return Clipboard::SetText(window, str.c_str()) != 0; });
    }
    /// Waits until the display's program reads just that.
    bool ReadByDisplay(const std::string& strExpected) {
        return PumpUntil([&] {
            RunUnixShell(L"timeout 5 xclip -o -selection clipboard -t UTF8_STRING > '" +
                         UnixPath(L"read") + L"' 2>/dev/null; true");
            strRead = temp.ReadFile(L"read");
            return strRead == strExpected;
        });
    }
    bool PutAndRead(const std::wstring& str) { return Put(str) && ReadByDisplay(Utf8(str)); }
    /// Offers a text to the display, and tells whether GetText gives just that. The platform does
    /// not hear of an offer while anybody has its clipboard open: nobody may look until something
    /// has come, and an offer that was missed is made again.
    bool OfferByDisplay(const std::string& strUtf8, const std::wstring& strExpected) {
        constexpr int kTries = 4;
        constexpr DWORD kTryMs = kTestDeadlineMs / kTries, kQuietMs = 30;
        temp.MakeFile(L"offered", strUtf8);
        for (int n = 0; n < kTries; ++n) {
            const DWORD nBefore = ::GetClipboardSequenceNumber();
            RunUnixShell(L"xclip -i -selection clipboard -t UTF8_STRING '" + UnixPath(L"offered") +
                         L"' > /dev/null 2>&1");
            bOffered = true;
            PumpUntil([&] { return ::GetClipboardSequenceNumber() != nBefore; }, kTryMs);
            DWORD nLast = 0, nSince = ::GetTickCount();
            PumpUntil(
                [&] {
                    const DWORD nNow = ::GetClipboardSequenceNumber();
                    if (nNow != nLast) nSince = ::GetTickCount();
                    nLast = nNow;
                    return ::GetTickCount() - nSince >= kQuietMs;
                },
                kTryMs);
            if (GetText() && strGot == strExpected) return true;
        }
        return false;
    }
    bool GetText() {
        strGot.clear();
        const int cch = Clipboard::GetText(nullptr, 0);
        std::vector<wchar_t> text(static_cast<std::size_t>(cch) + 1);
        if (!cch || Clipboard::GetText(text.data(), UINT(cch)) != cch) return false;
        strGot = text.data();
        return true;
    }
    TempFolder temp;
    TestWindow window;
    bool bOffered = false;
    std::string strRead;
    std::wstring strGot;
};

const std::wstring kTexts[] = {
    L"plain",
    L"\u00DCml\u00E4ut \u00DF \u20AC",
    L"\u0395\u03BB\u03BB\u03B7\u03BD\u03B9\u03BA\u03AC \u0420\u0443\u0441\u0441\u043A\u0438\u0439",
    L"\u05E2\u05D1\u05E8\u05D9\u05EA \u0627\u0644\u0639\u0631\u0628\u064A\u0629 \u0E44\u0E17\u0E22",
    L"\u4E2D\u6587 \u65E5\u672C\u8A9E \uD55C\uAD6D\uC5B4",
    L"\U0001F600 beyond \U00010348"};

TEST_F(DisplayClipboard, ReadsWhatIsPutThere) {
    for (const auto& str : kTexts) {
        EXPECT_TRUE(PutAndRead(str)) << Utf8(str) << " / " << strRead;
    }
    EXPECT_TRUE(PutAndRead(std::wstring(200000, L'x') + L"\u4E2D")) << strRead.size();
}

TEST_F(DisplayClipboard, GivesWhatIsOfferedThere) {
    for (const auto& str : kTexts) {
        EXPECT_TRUE(OfferByDisplay(Utf8(str), str)) << Utf8(str) << " / " << Utf8(strGot);
    }
    std::wstring strLong = std::wstring(200000, L'y') + L"\u4E2D";
    EXPECT_TRUE(OfferByDisplay(Utf8(strLong), strLong)) << strGot.size();
}

TEST_F(DisplayClipboard, LinesOfEitherSide) {
    // The platform makes each side's own ends of lines.
    EXPECT_TRUE(OfferByDisplay("one\ntwo\n", L"one\r\ntwo\r\n")) << Utf8(strGot);
    ASSERT_TRUE(Put(L"three\r\nfour"));
    EXPECT_TRUE(ReadByDisplay("three\nfour")) << strRead;
}

TEST_F(DisplayClipboard, TextOfOursReplacesTheirs) {
    EXPECT_TRUE(OfferByDisplay("theirs", L"theirs"));
    EXPECT_TRUE(PutAndRead(L"ours")) << strRead;
    EXPECT_TRUE(OfferByDisplay("theirs again", L"theirs again")) << Utf8(strGot);
}
} // namespace
