#pragma once
#include <windows.h>
#include <chrono>
#include <vector>

// A process that owns a list view with icons, as the shell does, and does timed work on it when it
// is asked. Its windows have the shell's names, so that the product takes them for the desktop.
// Nothing of the product is in here.

constexpr int kIcons = 999;

/// What the list-view messages tell of an icon, as large as the record that the product makes of
/// it.
struct BareIcon {
    POINT pt;
    unsigned nReserved[4];
};

// Sent to the owner's window; results are the time of one turn in microseconds.
constexpr UINT kMsgBareRead = WM_APP + 1; // position and text of all items, and nothing else
constexpr UINT kMsgOwnWork = WM_APP + 16; // from here on: the benchmark's own

/// The benchmark's own messages; null for one without any.
using OwnWork = LRESULT (*)(HWND hwndList, UINT uMsg, WPARAM wParam, LPARAM lParam);

/// The owner's process: makes the windows with the list view, and runs until WM_CLOSE.
int RunOwner(OwnWork pfnWork);
/// Starts this program once more, with "--owner", and returns the owner's window, whose grandchild
/// is the list view; null if it does not come up.
HWND StartOwner(HANDLE& hProcess);
HWND ListOf(HWND hwndOwner);
/// A list view with all icons in their places.
HWND MakeList(HWND hwndParent);

/// The list-view messages of a capture, in the process that owns the list.
void ReadBare(HWND hwndList, std::vector<BareIcon>& out);
void MoveIcon(HWND hwndList, int nIndex, POINT pt);
/// Where the icon lies at first; beside it when bAside.
POINT PlaceOf(int nIndex, bool bAside = false);

/// The list-view messages of a restore: all are read and then moved to their places.
void RestoreBare(HWND hwndList);
void MoveAllAside(HWND hwndList);
bool AllAreInPlace(HWND hwndList);

template <class Fn>
LRESULT Microseconds(Fn&& fn) {
    using namespace std::chrono;
    auto tStart = steady_clock::now();
    fn();
    return duration_cast<microseconds>(steady_clock::now() - tStart).count();
}

/// The time of a restore of icons that lie elsewhere before; -1 if they are not in place after it.
/// Without redrawing, which costs the platform far more than the rest and would hide what we do.
template <class Fn>
LRESULT TimeRestore(HWND hwndList, Fn&& fnRestore) {
    ::SendMessageW(hwndList, WM_SETREDRAW, FALSE, 0);
    MoveAllAside(hwndList);
    LRESULT nMicroseconds = Microseconds(fnRestore);
    bool bInPlace = AllAreInPlace(hwndList);
    ::SendMessageW(hwndList, WM_SETREDRAW, TRUE, 0);
    return bInPlace ? nMicroseconds : -1;
}
