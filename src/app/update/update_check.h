#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// The check for updates: who asks, when, and what the user sees of it. CheckForUpdates is for
// everybody and may be called often; the other two talk to the server, on the calling thread.

/// The event that is there while CheckForUpdates runs in any process of the machine.
constexpr const wchar_t* kCheckEventName = L"Global\\Tessaly_CHECK4UPDATES_EVENT";

/// The switches of the program, in any case of letters: the check that only speaks if there is an
/// update, and the one for a person.
constexpr const wchar_t* kSilentCheckSwitch = L"/CHECK4UPDATES";
constexpr const wchar_t* kCheckSwitch = L"check4updates"; ///< The check for a person.

/// Does what is due by the schedule (app/update/update_state.h). Nothing while another call runs
/// anywhere, or while a DlgCheckForUpdates is open anywhere, which is brought forward. The first
/// call of all schedules the first check. If a check is due, it is done by the program that is
/// started with kSilentCheckSwitch, or if the user wants to be asked by DlgCheckForUpdates, of
/// which hwnd, which may be null, is the owner.
///
/// Returns 0, or 1 if the user was asked and chose to get an update.
TESSALY_API int CheckForUpdates(HWND hwnd);

/// Asks the maker's server, and schedules the next check: by the frequency, or if there was no
/// usable answer in one day. An update is shown as DlgGetUpdates; if one is open anywhere that is
/// brought forward instead. With the user's yes its page is opened.
///
/// pszSwitch null: the user is also told if there is nothing new, or what went wrong, and may try
/// again then; hwnd, which may be null, owns the boxes. kSilentCheckSwitch: those are not shown.
/// Any other text: 0, without doing anything. Otherwise the result is 1. *pbGetUpdate, unless null,
/// becomes 1 if the user chose to get an update; otherwise it stays.
TESSALY_API int DoCheckForUpdates(HWND hwnd, int* pbGetUpdate, const wchar_t* pszSwitch);

/// For a program's command line: does the check if the text is one of the two switches, and returns
/// 1; 0 for any other text, also for null. With bForce daily and automatic checks are forced
/// (EnforceCheckForUpdates), as in the monitor.
TESSALY_API int DoCheckForUpdatesCmdln(const wchar_t* pszSwitch, int bForce);
