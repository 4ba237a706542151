// What commands send to a running monitor, sent by somebody else and damaged.

#include "e2e/command_test_support.h"
#include "support/temp_folder.h"
#include "support/window_thread.h"

#include <random>

namespace {
/// A message as it came to a monitor's window.
struct Seen {
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    ULONG_PTR dwData;
    std::vector<BYTE> bytes; // of WM_COPYDATA
};

/// A window of the monitor's class that writes down what is sent to it, and answers nothing.
class Recorder {
  public:
    Recorder() {
        pThis = this;
        thread.Run([this] {
            WNDCLASSW wc{};
            wc.lpfnWndProc = &Proc;
            wc.hInstance = ::GetModuleHandleW(nullptr);
            wc.lpszClassName = kMonitorClass;
            ::RegisterClassW(&wc);
            hwnd = ::CreateWindowExW(0, kMonitorClass, kMonitorClass, WS_POPUP, 0, 0, 0, 0, nullptr,
                                     nullptr, wc.hInstance, nullptr);
        });
    }
    ~Recorder() {
        thread.Run([this] {
            ::DestroyWindow(hwnd);
            ::UnregisterClassW(kMonitorClass, ::GetModuleHandleW(nullptr));
        });
        pThis = nullptr;
    }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    std::vector<Seen> Take() {
        std::vector<Seen> taken;
        thread.Run([&] { taken.swap(seen); });
        return taken;
    }

  private:
    static LRESULT CALLBACK Proc(HWND hwndMsg, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        constexpr UINT kFirstRegistered = 0xC000;
        if (pThis && uMsg == WM_COPYDATA) {
            auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            auto* p = static_cast<const BYTE*>(data.lpData);
            pThis->seen.push_back({uMsg, wParam, 0, data.dwData, {p, p + data.cbData}});
            return 0;
        }
        if (pThis && uMsg >= kFirstRegistered) pThis->seen.push_back({uMsg, wParam, lParam, 0, {}});
        return ::DefWindowProcW(hwndMsg, uMsg, wParam, lParam);
    }
    static inline Recorder* pThis = nullptr;
    TakenMark mark;
    WindowThread thread;
    HWND hwnd = nullptr;
    std::vector<Seen> seen;
};

class CommandMessages : public CommandTest {
  protected:
    /// What each command begins with.
    std::vector<Seen> Record() {
        TempFolder folder;
        strImported = NameBeforeNow(50);
        std::wstring strFile =
            folder.MakeFile(L"in.txt", FileText({SectionText(strImported, MadeIcons(2, 77))}));
        StartPlain(3);
        Plant(100);
        Recorder recorder;
        for (const std::wstring& str :
             {std::wstring(L"/REMEMBER"), std::wstring(L"/RESTORE"), std::wstring(L"/DELETE:1"),
              std::wstring(L"/DELETEALL"), L"\"/IMPORT:" + strFile + L"\""})
            EXPECT_EQ(DWORD{kCodeNoShell}, RunCommand(str).dwCode);
        return recorder.Take();
    }
    void Send(const Seen& message, const std::vector<BYTE>& bytes, ULONG_PTR dwData) {
        DWORD_PTR nResult = 0;
        COPYDATASTRUCT data{dwData, static_cast<DWORD>(bytes.size()),
                            const_cast<BYTE*>(bytes.data())};
        LPARAM lParam =
            message.uMsg == WM_COPYDATA ? reinterpret_cast<LPARAM>(&data) : message.lParam;
        ::SendMessageTimeoutW(monitor.Window(), message.uMsg, message.wParam, lParam, SMTO_NORMAL,
                              kTestDeadlineMs, &nResult);
    }
    /// Nothing damaged was stored, and everybody works on.
    void ExpectWorking() {
        for (const StoredSnapshot& value : store.Values()) {
            EXPECT_TRUE(value.DigestHolds()) << ToUtf8(value.strName);
            EXPECT_FALSE(value.Icons().empty()) << ToUtf8(value.strName);
        }
        EXPECT_GE(25, store.Count());
        EXPECT_TRUE(StillCaptures());
        Expect(kCodeDone, L"/DELETEALL");
        Expect(kCodeDone, L"/REMEMBER");
        EXPECT_EQ(1, store.Count());
    }
    std::wstring strImported;
};

TEST_F(CommandMessages, CutAnywhereDoNoHarm) {
    std::vector<Seen> messages = Record();
    EXPECT_LE(5u, messages.size());
    StartMonitor();
    for (const Seen& message : messages) {
        for (size_t n = 0; n < message.bytes.size(); n += n < 64 ? 1 : 7)
            Send(message,
                 {message.bytes.begin(), message.bytes.begin() + static_cast<long long>(n)},
                 message.dwData);
        std::vector<BYTE> longer = message.bytes;
        longer.resize(longer.size() + 1000);
        Send(message, longer, message.dwData);
    }
    EXPECT_FALSE(store.Named(strImported)); // none of them held what it told of
    ExpectWorking();
}

TEST_F(CommandMessages, ChangedAnywhereDoNoHarm) {
    std::vector<Seen> messages = Record();
    StartMonitor();
    std::mt19937 random(21);
    for (const Seen& message : messages) {
        for (size_t n = 0; n < message.bytes.size(); ++n) {
            for (BYTE b : {BYTE{1}, BYTE{0x80}, BYTE{0xFF}}) {
                std::vector<BYTE> bytes = message.bytes;
                bytes[n] ^= b;
                Send(message, bytes, message.dwData);
            }
        }
        // What lay behind the bytes that were sent is stored by none.
        if (auto value = store.Named(strImported)) {
            EXPECT_GE(message.bytes.size() + sizeof(Digest), value->bytes.size());
        }
        for (int n = 0; n < 50; ++n) {
            std::vector<BYTE> bytes(message.bytes.size() + random() % 100);
            for (BYTE& b : bytes) b = static_cast<BYTE>(random());
            Send(message, bytes, message.dwData);
        }
        for (ULONG_PTR n : {message.dwData + 1, message.dwData - 1, ~message.dwData, ULONG_PTR{0}})
            Send(message, message.bytes, n);
    }
    ExpectWorking();
}
} // namespace
