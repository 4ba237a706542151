// The built product on a desktop of 999 icons: a restore beside the bare list-view messages, and
// the whole way of a capture, from code 372 to the stored value, beside bare messages, one
// WM_COPYDATA and one written value. `bench_product`; starts a second process of itself that is the
// desktop.

#include "../measure.h"
#include "e2e/support/monitor_process.h"
#include "e2e/support/snapshot_reader.h"
#include "key_watch.h"
#include "list_view_owner.h"
#include "support/test_window.h"
#include "support/window_thread.h"

#include <windows.h>
#include <commctrl.h>
#include <optional>
#include <string>

namespace {
// To the owner's window.
constexpr UINT kMsgRestore = kMsgOwnWork;         // wParam: the monitor's window; microseconds
constexpr UINT kMsgBareRestore = kMsgOwnWork + 1; // wParam: 1 on the plain list; microseconds
constexpr WPARAM kPlainList = 1;
constexpr UINT kMsgMoveOne = kMsgOwnWork + 2;  // so that the next capture finds a change
constexpr UINT kMsgBareSend = kMsgOwnWork + 3; // wParam: the window that gets what was read

// In the desktop's process.

LRESULT CALLBACK EmptySubclass(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam, UINT_PTR,
                               DWORD_PTR) {
    return ::DefSubclassProc(hwnd, uMsg, wParam, lParam);
}

/// Lists like the desktop's, but strange to the product: one as it is, one with a subclass
/// procedure that does nothing, as on this platform each of those costs far more than the message
/// itself.
HWND BareList(HWND hwndList, bool bPlain) {
    auto makeOne = [hwndList] { return MakeList(::GetAncestor(hwndList, GA_ROOT)); };
    if (bPlain) {
        static HWND hwndPlain = makeOne();
        return hwndPlain;
    }
    static HWND hwndSubclassed = [&] {
        HWND hwnd = makeOne();
        ::SetWindowSubclass(hwnd, EmptySubclass, 1, 0);
        return hwnd;
    }();
    return hwndSubclassed;
}

/// The first snapshot, as the product sends it: to the list view, which the agent has subclassed.
void Restore(HWND hwndList, WPARAM wSender) {
    static std::vector<StoredIcon> icons = SnapshotReader().Newest().value().Icons();
    COPYDATASTRUCT data{icons.size(), static_cast<DWORD>(icons.size() * sizeof(StoredIcon)),
                        icons.data()};
    ::SendMessageW(hwndList, WM_COPYDATA, wSender, reinterpret_cast<LPARAM>(&data));
}

LRESULT DoOwnWork(HWND hwndList, UINT uMsg, WPARAM wParam, LPARAM) {
    static std::vector<BareIcon> scratch(kIcons);
    static int nMoves = 0;
    switch (uMsg) {
    case kMsgRestore: return TimeRestore(hwndList, [&] { Restore(hwndList, wParam); });
    case kMsgBareRestore: {
        HWND hwndBare = BareList(hwndList, wParam == kPlainList);
        return TimeRestore(hwndBare, [hwndBare] { RestoreBare(hwndBare); });
    }
    case kMsgMoveOne: {
        // To a new place each time: a value that is written anew as it was changes nothing.
        constexpr int kPlaces = 60;
        POINT pt{1 + nMoves++ % kPlaces, 0};
        MoveIcon(hwndList, 0, pt);
        MoveIcon(BareList(hwndList, false), 0, pt);
        return 0;
    }
    case kMsgBareSend: {
        ReadBare(BareList(hwndList, false), scratch);
        COPYDATASTRUCT data{kIcons, static_cast<DWORD>(kIcons * sizeof(BareIcon)), scratch.data()};
        ::SendMessageW(reinterpret_cast<HWND>(wParam), WM_COPYDATA, 0,
                       reinterpret_cast<LPARAM>(&data));
        return 0;
    }
    }
    return 0;
}

// In the benchmark's process.

constexpr const wchar_t* kBarePath = L"Software\\TessalyBench";

/// The bare monitor: writes what it gets. On a thread of its own, as the benchmark's own waits for
/// what is written.
class Receiver {
  public:
    explicit Receiver(HKEY hkey) {
        thread.Run([this, hkey] {
            window.emplace([hkey](UINT uMsg, WPARAM, LPARAM lParam) -> std::optional<LRESULT> {
                if (uMsg != WM_COPYDATA) return {};
                const auto* pData = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
                ::RegSetValueExW(hkey, L"Layout", 0, REG_BINARY,
                                 static_cast<const BYTE*>(pData->lpData), pData->cbData);
                return 1;
            });
        });
    }
    ~Receiver() {
        thread.Run([this] { window.reset(); });
    }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;
    HWND Window() const { return window->Get(); }

  private:
    WindowThread thread;
    std::optional<TestWindow> window; // of the thread
};

double RestoreTurn(HWND hwnd, UINT uMsg, WPARAM wParam) {
    LRESULT nMicroseconds = ::SendMessageW(hwnd, uMsg, wParam, 0);
    if (nMicroseconds < 0) throw std::runtime_error("the icons are not where they belong");
    return static_cast<double>(nMicroseconds) / 1e6;
}

/// From the post to the first change of the key. Returns when hwndStorer has done the rest, too.
double StoreTurn(KeyWatch& watch, HWND hwndTarget, UINT uMsg, WPARAM wParam, HWND hwndOwner,
                 HWND hwndStorer) {
    ::SendMessageW(hwndOwner, kMsgMoveOne, 0, 0);
    watch.Forget();
    double dSeconds = Seconds([&] {
        ::PostMessageW(hwndTarget, uMsg, wParam, 0);
        watch.Wait();
    });
    ::SendMessageW(hwndStorer, WM_NULL, 0, 0);
    return dSeconds;
}

bool Measure(HWND hwnd) {
    SnapshotReader().Clear();
    MonitorProcess monitor;
    monitor.Start();
    if (!WaitUntil([&] { return monitor.Window() && SnapshotReader().Count() > 0; })) {
        throw std::runtime_error("the monitor stored no snapshot");
    }
    HWND hwndMonitor = monitor.Window(), hwndList = ListOf(hwnd);
    ::SendMessageW(hwndMonitor, WM_NULL, 0, 0);
    auto restore = [hwnd, hwndMonitor] {
        return RestoreTurn(hwnd, kMsgRestore, reinterpret_cast<WPARAM>(hwndMonitor));
    };
    bool bOk =
        Report("restore by the product / bare messages, empty subclass",
               CompareTimed(21, restore, [hwnd] { return RestoreTurn(hwnd, kMsgBareRestore, 0); }),
               1.20, true);
    // Without a limit: what it costs on this platform that a window is subclassed at all.
    Comparison c = CompareTimed(
        21, [hwnd] { return RestoreTurn(hwnd, kMsgBareRestore, 0); },
        [hwnd] { return RestoreTurn(hwnd, kMsgBareRestore, kPlainList); });
    std::printf("%-58s %8.3f ms / %8.3f ms = %6.1f\n",
                "bare messages, empty subclass / bare messages, none", c.dFirst * 1e3,
                c.dSecond * 1e3, c.Ratio());
    KeyWatch watch(SnapshotReader::kPath), watchBare(kBarePath);
    Receiver receiver(watchBare.Key());
    bOk &= Report("from code 372 to the stored value / read, send and write bare",
                  CompareTimed(
                      31,
                      [&] {
                          return StoreTurn(watch, hwndList, CompanyMsg(), kCodeCapture, hwnd,
                                           hwndMonitor);
                      },
                      [&] {
                          return StoreTurn(watchBare, hwnd, kMsgBareSend,
                                           reinterpret_cast<WPARAM>(receiver.Window()), hwnd,
                                           receiver.Window());
                      }),
                  2.0, true);
    monitor.Exit();
    ::RegDeleteKeyW(HKEY_CURRENT_USER, kBarePath);
    return bOk;
}
} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--owner") return RunOwner(&DoOwnWork);
    HANDLE hProcess = nullptr;
    HWND hwnd = StartOwner(hProcess);
    if (!hwnd) {
        std::puts("the process that owns the list view did not start");
        return 2;
    }
    bool bOk = false;
    try {
        bOk = Measure(hwnd);
    } catch (const std::exception& failure) {
        std::printf("bench_product: %s\n", failure.what());
    }
    ::SendMessageW(hwnd, WM_CLOSE, 0, 0);
    ::WaitForSingleObject(hProcess, 5000);
    return bOk ? 0 : 1;
}
