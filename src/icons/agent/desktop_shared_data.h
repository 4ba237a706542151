#pragma once
#include <windows.h>
#include <atomic>

// What the two halves of the engine have in common: the names, the codes and the words by which the
// monitor process and the agent in the shell know each other.

/// The monitor window's class, and its title. The host finds the running monitor by it.
constexpr const wchar_t* kMonitorClass = L"TessalyWnd";

// The codes that the company message carries (in wParam) between the monitor, the agent in the
// shell and the tray icon. Where a code does not say otherwise, lParam is 0 and nobody looks at it.

constexpr WPARAM kCodeOpenMenu = 371;   // tray icon to monitor window: open the tray menu; lParam 1
constexpr WPARAM kCodeCapture = 372;    // posted to the list view: capture now
constexpr WPARAM kCodeAttach = 373;     // to list view and view; lParam 1: subclass, 0: undo it
constexpr WPARAM kCodeIconsMoved = 374; // agent to monitor window: icons may have moved
constexpr WPARAM kCodeTellFolderView = 375; // agent to its own list view: after a restore
constexpr WPARAM kCodeDisplaysSwitch = 376; // to monitor window: read anew whether it is on

/// The words of one session. They lie in a section of the library whose pages every process that
/// maps the library shares, in every session: whoever can map it can write them, so that what they
/// say is checked before it is acted upon. All zero until a monitor runs. Of the engine the
/// monitor's thread alone writes them.
struct DesktopSharedData {
    unsigned long long nCompanyMsg; // id of the registered company message, 32 bits; 0 before
    HWND hwndListView;              // the desktop's "SysListView32"
    HHOOK hhook;                    // the WH_GETMESSAGE hook on its thread; null: none is set
    HWND hwndView;                  // the desktop's "SHELLDLL_DefView"
    HWND hwndMonitor;               // the monitor window; null: no monitor runs
};
static_assert(sizeof(DesktopSharedData) == 40, "five words, the same for every process");

/// The words of this process's session. Before a monitor of the session has claimed them, words of
/// this process alone, all zero unless it has written them itself.
DesktopSharedData& GetDesktopSharedData();
/// For the monitor, before it writes: sees to it that the logon session has words of its own. False
/// if there is no room for more sessions; what is written then is this process's alone.
bool ClaimDesktopSharedData();
/// The hook of GetDesktopSharedData; null while this process has not yet found the words. For the
/// path that every message of the shell's desktop thread takes.
HHOOK GetSharedHook();

/// Whether the window is of the monitor's class. A handle that was left behind or forged may name
/// any other.
bool IsMonitorWindow(HWND hwnd);

// The words of the engine are those of a session: each user who is logged on has a shell and a
// monitor, while the section that holds the words is the same for all of them.

/// The words of one session in the shared section. A session keeps its place until it ends.
struct SessionPlace {
    DesktopSharedData words;
    volatile LONG nHolder; // the session's id plus 1; 0: no session has had this place yet
};

constexpr int kSessionPlaces = 64;

/// All zero at the start. Places are given away from the first one on, and none is ever given
/// back: the places in use lie in front of all others.
struct SessionTable {
    SessionPlace places[kSessionPlaces];
};

/// This process's way to the words of its session. The place is looked for until it is found and
/// then kept. Any thread may ask.
class SessionWords {
  public:
    explicit constexpr SessionWords(SessionTable& tableShared) noexcept : table(tableShared) {}
    SessionWords(const SessionWords&) = delete; // owns the words without a place
    SessionWords& operator=(const SessionWords&) = delete;

    /// The session's words. While it has no place, words of this object's own, which nobody else
    /// sees; they move along into a place that Claim makes the session's.
    DesktopSharedData& Get();
    /// The same without looking for the place.
    const DesktopSharedData& GetIfFound() const { return *pWords.load(std::memory_order_relaxed); }
    /// Sees to it that the session has a place: the one it has, else a new one, else one whose
    /// session has ended. False, without a change, if there is none or the platform does not tell
    /// this process's session.
    bool Claim();

  private:
    bool IsFound() const { return pWords.load(std::memory_order_relaxed) != &ownWords; }
    void Keep(SessionPlace& place) { pWords.store(&place.words, std::memory_order_relaxed); }

    SessionTable& table;
    DesktopSharedData ownWords{};
    std::atomic<DesktopSharedData*> pWords{&ownWords};
};
