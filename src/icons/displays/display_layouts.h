#pragma once
#include "icons/agent/icon_record.h"
#include "icons/displays/display_setup.h"
#include "runtime/base/heap_array.h"
#include "store/registry/reg_key.h"

#include <span>

// The layouts that were seen last under each set-up of the displays, as keys below
// HKCU\Software\Orvanta\<product>\Displays. Such a key is named as its set-up (SetupName) and has
// the values "Displays", the set-up's text; "Layout", the layout as a snapshot's value; "Used", the
// UTC file time since which the set-up was used last, as a REG_QWORD. A key of which any but the
// last does not hold together is of no set-up that is known.
//
// They are none of the snapshots. As those: nothing is kept between calls, all run on the monitor's
// thread, and what can't be opened does nothing, silently.

/// So many set-ups are kept, those that were used last.
constexpr unsigned kMaxSetups = 32;

/// Opens the key above those of the set-ups; with bWrite it is created if missing. 1 if it is open,
/// 0 if not.
int OpenDisplaysKey(RegKey& key, int bWrite);

/// The layout of a set-up that is known. Not ready if it is not known, and when out of memory.
[[nodiscard]] HeapArray<IconRecord> ReadDisplayLayout(const DisplaySetup& setup);

/// Keeps the layout as the one seen last under that set-up, which counts as used now, and forgets
/// the set-ups beyond the kMaxSetups used last; one whose time is missing or is none goes first. A
/// layout that is kept already is not written again: false then. Nothing for no records, and for
/// more than a capture has.
bool KeepDisplayLayout(const DisplaySetup& setup, std::span<const IconRecord> records);

/// Notes that the set-up is the present one from now on; nothing if it has no key.
void NoteSetupUse(const SetupName& name);

/// Whether some other set-up was used after that one.
[[nodiscard]] bool WasOtherSetupUsedLast(const SetupName& present);
