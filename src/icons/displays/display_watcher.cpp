#include "icons/displays/display_watcher.h"
#include "icons/agent/desktop_shared_data.h"
#include "icons/displays/display_layouts.h"
#include "icons/displays/restore_on_change.h"
#include "icons/snapshots/auto_arrange.h"
#include "icons/snapshots/layout.h"
#include "wnd/core/company_msg.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {
constexpr unsigned kSettleMs = 2000;
constexpr unsigned kAtOnceMs = USER_TIMER_MINIMUM;
constexpr unsigned kTimerSlackMs = 100; // by which a timer may come before its time

/// What a round leaves behind for the next one of the process.
struct LastRound {
    bool bKnown = false; // there was one, and it was on
    bool bCalm = false;
    SetupName present;
};
constinit LastRound lastRound;

/// Whether the round's shell still stands. Its windows go before the round ends, and with them
/// whatever was on the way to it.
bool IsShellThere() {
    const DesktopSharedData& shared = GetDesktopSharedData();
    return ::IsWindow(shared.hwndListView) && ::IsWindow(shared.hwndView);
}

/// Whether the user or the shell has icons or a menu in hand.
bool IsShellBusy() {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    DWORD dwThread = ::GetWindowThreadProcessId(GetDesktopSharedData().hwndListView, nullptr);
    // Without a thread it would be that of the foreground.
    if (!dwThread || !::GetGUIThreadInfo(dwThread, &info)) return false;
    constexpr DWORD kBusy =
        GUI_INMENUMODE | GUI_INMOVESIZE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE;
    return info.hwndCapture || info.flags & kBusy;
}

/// From the list view's coordinates to those of the virtual screen. By numbers, not point by point:
/// a stored point may be anywhere. The list view of a system that writes from right to left counts
/// from its right edge. What is mapped are edges: its pixel 0 is the one before that edge.
class ScreenMapping {
  public:
    explicit ScreenMapping(HWND hwndListView) {
        TruePixels pixels;
        POINT ptNext{1, 0};
        ::MapWindowPoints(hwndListView, nullptr, &ptOrigin, 1);
        ::MapWindowPoints(hwndListView, nullptr, &ptNext, 1);
        nStep = ptNext.x < ptOrigin.x ? -1 : 1;
        nFirst = nStep < 0 ? ptOrigin.x - 1LL : ptOrigin.x;
    }
    bool IsShown(const POINT& pt, const DisplaySetup& setup) const {
        return setup.Contains(nFirst + nStep * pt.x, static_cast<long long>(ptOrigin.y) + pt.y);
    }

  private:
    POINT ptOrigin{};
    long long nFirst = 0; // the column of pixels at 0
    long long nStep = 1;
};

/// A record of that name, and with bSamePlace of that place; null if there is none.
IconRecord* FindRecord(std::span<IconRecord> records, const IconRecord& wanted, bool bSamePlace) {
    for (IconRecord& record : records) {
        if (record.qwNameKey != wanted.qwNameKey) continue;
        if (!bSamePlace || (record.pt.x == wanted.pt.x && record.pt.y == wanted.pt.y))
            return &record;
    }
    return nullptr;
}

/// Whether some icon would be moved to a place where none of its name lies. Index and order do not
/// count, nor do icons that only one of the two has. Both are written to.
bool IsMoved(std::span<IconRecord> known, std::span<IconRecord> present) {
    std::size_t nLeft = 0; // of those known
    for (const IconRecord& record : known) {
        if (IconRecord* pSame = FindRecord(present, record, true)) {
            *pSame = present.back(); // serves one
            present = present.first(present.size() - 1);
        } else {
            known[nLeft++] = record;
        }
    }
    return std::ranges::any_of(known.first(nLeft), [&](const IconRecord& record) {
        return FindRecord(present, record, false) != nullptr;
    });
}

HeapArray<IconRecord> CopyRecords(const IconRecord* pRecords, std::size_t nRecords) {
    HeapArray<IconRecord> copy(nRecords);
    if (copy.IsReady()) std::memcpy(copy.Get(), pRecords, copy.GetByteCount());
    return copy;
}
} // namespace

/// nTimerMs 0: no timer. Where the platform has no timer left, the phase lasts until the next
/// change: nothing is kept meanwhile, so that nothing known is lost.
void DisplayWatcher::Enter(Phase phaseNew, unsigned nTimerMs) {
    phase = phaseNew;
    timer.Stop();
    if (!nTimerMs) return;
    nTimerPeriodMs = nTimerMs;
    dwTimerStart = ::GetTickCount();
    timer.Start(hwnd, nTimerMs);
}

void DisplayWatcher::TurnOn() {
    bOn = true;
    bAsked = false;
    bUseDue = true;
    present = ReadSetupName();
    Enter(Phase::Calm, 0);
}

void DisplayWatcher::Start(HWND hwndMonitor) {
    hwnd = hwndMonitor;
    LastRound last = std::exchange(lastRound, {});
    if (!GetRestoreOnChange()) return;
    TurnOn();
    if (last.bKnown) bUseDue = false; // counted in an earlier round
    bool bChanged = last.bKnown ? !last.bCalm || !(last.present == present) : IsBackAtKnown();
    if (bChanged) OnChange();
}

/// Whether the displays have changed to those of a known layout while no monitor ran: what the
/// system has made of the icons meanwhile must not go over it.
bool DisplayWatcher::IsBackAtKnown() const {
    DisplaySetup setup;
    return WasOtherSetupUsedLast(present) && setup.Read() && setup.GetName() == present &&
           ReadDisplayLayout(setup).IsReady();
}

void DisplayWatcher::End() {
    if (hwnd && bOn) lastRound = {true, phase == Phase::Calm, present};
    Enter(Phase::Calm, 0);
    hwnd = nullptr;
    bOn = false;
}

bool DisplayWatcher::OnSwitch() {
    if (!hwnd) return false;
    bool bNow = GetRestoreOnChange() != 0;
    if (bNow && !bOn) TurnOn();
    if (!bNow) Enter(Phase::Calm, 0);
    bOn = bNow;
    return bOn;
}

void DisplayWatcher::OnChange() {
    if (bOn) Enter(Phase::Settling, kSettleMs);
}

void DisplayWatcher::OnCaptureAsked() {
    if (!bOn || bAsked) return;
    bAsked = true;
    askedUnder = ReadSetupName();
}

bool DisplayWatcher::OnTimer() {
    // Any program can send this; and one that waited in the queue comes though the timer has been
    // started anew.
    if (!timer.IsTicking()) return false;
    if (::GetTickCount() - dwTimerStart + kTimerSlackMs < nTimerPeriodMs) return false;
    timer.Stop();
    if (!IsShellThere()) {
        Enter(Phase::Settling, 0); // the next round begins with this
        return false;
    }
    if (IsShellBusy()) {
        OnChange();
        return false;
    }
    if (phase == Phase::Settling) OnSettled();
    if (phase != Phase::Differing) return false;

    due = {};
    bool bArranged = IsAutoArranged(GetDesktopSharedData().hwndListView);
    if (phase != Phase::Differing || timer.IsTicking()) return false; // a change came meanwhile
    DisplaySetup setup;
    if (!setup.Read() || !(setup.GetName() == present)) {
        OnChange();
        return false;
    }
    if (!bArranged) due = ReadUsableLayout(setup);
    if (!due.IsReady()) Enter(Phase::Calm, 0);
    return due.IsReady();
}

void DisplayWatcher::OnSettled() {
    DisplaySetup setup;
    setup.Read();
    present = setup.GetName();
    NoteSetupUse(present);
    bUseDue = false;
    bool bKnown = ReadDisplayLayout(setup).IsReady();
    Enter(bKnown ? Phase::Comparing : Phase::Calm, 0);
    if (bKnown) Ask();
}

void DisplayWatcher::OnRestored() {
    if (!bOn || phase != Phase::Calm) return;
    bRestored = true;
    Ask();
}

/// Posted to the view, so that its answer is told from those to all others. The hook sees both.
void DisplayWatcher::Ask() {
    if (PostMyCompanyMsg(GetDesktopSharedData().hwndView, kCodeCapture, 0)) {
        bEverAsked = true;
        ++nAsked;
    }
}

bool DisplayWatcher::TakeCapture(HWND hwndAsked, std::span<const IconRecord> records) {
    if (!bEverAsked || hwndAsked != GetDesktopSharedData().hwndView) return false;
    // The hook answers each time that the shell looks at a request in its queue: no answer but the
    // first is of use, and none is a snapshot.
    if (!nAsked) return true;
    // It may have been turned off since it was asked for: it is no snapshot then either.
    --nAsked;
    bool bKeep = std::exchange(bRestored, false);
    if (bOn && phase == Phase::Comparing)
        Compare(records);
    else if (bOn && bKeep && phase == Phase::Calm)
        KeepRestored(records);
    return true;
}

void DisplayWatcher::KeepRestored(std::span<const IconRecord> records) {
    DisplaySetup setup;
    if (!setup.Read() || !(setup.GetName() == present))
        OnChange();
    else
        KeepDisplayLayout(setup, records);
}

void DisplayWatcher::OnCaptured(std::span<const IconRecord> records, bool bSeen) {
    if (!bOn) return;
    bool bOther = std::exchange(bAsked, false);
    DisplaySetup setup;
    setup.Read();
    SetupName name = setup.GetName();
    bOther = bOther && !(askedUnder == name);
    // The shell may not have answered the request to compare, as without icons; any answer does.
    if (phase == Phase::Comparing) Compare(records);
    if (phase != Phase::Calm || name.IsEmpty()) return;
    if (!(name == present)) {
        OnChange(); // of which no message has come, or not yet
        return;
    }
    if (bOther || !bSeen) return;
    if (!KeepDisplayLayout(setup, records) && bUseDue) NoteSetupUse(name);
    bUseDue = false;
}

/// Leaves Comparing, unless out of memory.
void DisplayWatcher::Compare(std::span<const IconRecord> records) {
    DisplaySetup setup;
    if (!setup.Read() || !(setup.GetName() == present)) {
        OnChange();
        return;
    }
    HeapArray<IconRecord> known = ReadUsableLayout(setup);
    HeapArray<IconRecord> there = CopyRecords(records.data(), records.size());
    if (!known.IsReady()) {
        Enter(Phase::Calm, 0);
    } else if (there.IsReady()) {
        bool bMoved = IsMoved({known.Get(), known.GetCount()}, {there.Get(), there.GetCount()});
        Enter(bMoved ? Phase::Differing : Phase::Calm, bMoved ? kAtOnceMs : 0);
    }
}

/// The set-up's layout but for the records outside of all displays.
HeapArray<IconRecord> DisplayWatcher::ReadUsableLayout(const DisplaySetup& setup) const {
    HeapArray<IconRecord> known = ReadDisplayLayout(setup);
    ScreenMapping mapping(GetDesktopSharedData().hwndListView);
    std::size_t nLeft = 0;
    for (const IconRecord& record : known) {
        if (mapping.IsShown(record.pt, setup)) known[nLeft++] = record;
    }
    return CopyRecords(known.Get(), nLeft);
}

bool DisplayWatcher::PutBack() {
    HeapArray<IconRecord> records = std::move(due);
    if (!records.IsReady()) return false;
    // Messages that come meanwhile may begin a new change, turn it off, or end the window.
    SendRestore(GetDesktopSharedData().hwndListView, {records.Get(), records.GetCount()});
    if (!bOn || phase != Phase::Differing || timer.IsTicking()) return false;
    bool bThere = IsShellThere();
    Enter(bThere ? Phase::Calm : Phase::Settling, 0);
    return bThere;
}
