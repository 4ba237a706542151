#pragma once
#include "icons/agent/icon_record.h"
#include "runtime/base/heap_array.h"
#include <windows.h>

/// What a restore moved on the list view and the shell's folder view is still to be told, so that
/// the icons are there after the next start of the shell, too. A part of the agent: all of it runs
/// on the shell's own thread.
///
/// The telling has a message of its own (kCodeTellFolderView), which the agent posts when it has
/// kept something: COM refuses calls out of a thread that is within a message sent by another
/// program, as a restore is, and the monitor need not wait for it. Whatever fails on the way
/// changes nothing: the icons then lie where the list view has them.
class ToldPositions {
  public:
    constexpr ToldPositions() noexcept = default;
    ToldPositions(const ToldPositions&) = delete; // owns the records
    ToldPositions& operator=(const ToldPositions&) = delete;

    /// Takes what a restore moved, in the list view's order, in place of what was kept before, and
    /// returns true. False, without a change, if nothing was moved (recordsMoved is not ready) or
    /// this Windows needs no telling.
    [[nodiscard]] bool Keep(HWND hwndMovedIn, HeapArray<IconRecord> recordsMoved);
    /// Forgets it: the agent leaves the list view, or the list view has gone.
    void Drop();
    /// Whether there is something to tell for that list view.
    [[nodiscard]] bool IsPendingFor(HWND hwnd) const;

    /// Tells the folder view the places of all items that were moved, in one call, and forgets them
    /// first: there is no second try. Items of the folder view match by their names, as icons match
    /// records in a restore. Messages that are sent to the list view may be handled meanwhile;
    /// after a Drop among them nothing more is told, and after a Keep the newer places are.
    void TellFolderView();

  private:
    void TellOnce();

    HWND hwndListView = nullptr;
    HeapArray<IconRecord> moved; // not ready: nothing is pending
    unsigned nChanges = 0;       // of what is pending, by Keep and Drop
    bool bTelling = false;
};
