#pragma once
#include "runtime/base/export.h"
#include <windows.h>

class CSComboList;
class RegKey;

// When the next check for updates is due. The schedule lies in four numbers of the key "Setup"
// below the product's root (ProductInfo::GetAppRootKey). Times are the product's own: seconds since
// 26 December 1995, 00:00 UTC (GetCurTime).

/// How often to check. Any other number counts as kCheckNever.
enum Check4UpdatesFreq : unsigned {
    kCheckDaily = 0,              // every day
    kCheckWeekly = 1,             // every 7 days
    kCheckMonthly = 2,            // every 30 days
    kCheckNever = 3,              // not by itself
    kCheckUnchanged = 0xFFFFFFFF, // for SetCheck4UpdatesSettings alone
};

/// The schedule in memory. A new one has never been checked and has nothing scheduled; its
/// frequency is the forced one (EnforceCheckForUpdates), else weekly, and it checks automatically
/// unless that is forced off.
class TESSALY_API UpdateState {
  public:
    /// As dwNextUpdate: checks are disabled.
    static constexpr DWORD kDisabled = 0xFFFFFFFF;
    /// As a number of days: those of the frequency.
    static constexpr unsigned kDaysOfFreq = 0xFFFFFFFF;

    UpdateState();

    /// Reads "LastUpdate", "NextUpdate" and, each unless it is forced, "RemindFreq" and
    /// "AutoCheck". What can't be read stays as it was. With a forced frequency a next check that
    /// lies further ahead than its days is brought back to them, here but not in the registry; one
    /// that is not scheduled or disabled is left alone. 1; 0 if there is no such key.
    int Read();
    /// Writes the four, without what is forced, and without a "LastUpdate" of 0 where there is none
    /// yet. 1 if all was written; 0 if not.
    int Write() const;
    /// Clears the lowest bit of the last check's time.
    void Reset();
    /// The last check was done now. The argument has no meaning.
    void SetupLastUpdate(int nUnused);
    /// Schedules the next check in that many days from now and up to an hour more, so that the
    /// checks of many users spread; how much more follows from the moment alone (AddUpdateJitter).
    void SetupNextUpdate(unsigned nDays = kDaysOfFreq);
    /// Whole days since the last check; 0 if there was none, or if it lies ahead.
    unsigned GetDaysSinceLastUpdate() const;
    /// The days of the frequency: 1, 7, 30, and 3,650 for never.
    unsigned DaysFromFreq() const;
    int IsDisabled() const { return dwNextUpdate == kDisabled; } ///< Whether no check is ever due.

    DWORD dwLastUpdate = 0; // 0: never; its lowest bit is clear
    DWORD dwNextUpdate = 0; // 0: none is scheduled
    DWORD dwFrequency;      // a Check4UpdatesFreq
    DWORD dwAutoCheck;      // nonzero: check without asking
};

/// Opens the key "Setup" below the product's root, which has the schedule and what else the program
/// keeps of its use; made if it is to be written and missing. False if it can't be opened.
[[nodiscard]] bool OpenSetupKey(RegKey& key, int bWrite);

/// That time and less than an hour more, with the lowest bit clear. The same for the same time.
DWORD AddUpdateJitter(DWORD dwTime);

/// As flags of EnforceCheckForUpdates; the frequency is the low four bits.
constexpr unsigned kForceAutoCheckOn = 16; // together with the next one: on; without this one: off
/// whether checks are automatic is forced, by kForceAutoCheckOn
constexpr unsigned kForceAutoCheck = 32;
constexpr unsigned kForceFrequency = 64; // the frequency is forced

/// Forces settings in this process for the rest of its life: what is forced is neither read from
/// the registry nor written there. A part whose flag is missing stays as it was.
TESSALY_API void EnforceCheckForUpdates(unsigned nFlags);

/// Schedules the next check from now, by the stored (or forced) frequency.
TESSALY_API void ResetCheck4Updates();
/// The stored (or forced) settings. Either may be null.
TESSALY_API void GetCheck4UpdatesSettings(int* pbAuto, Check4UpdatesFreq* pFrequency);
/// Stores the settings. A changed frequency schedules the next check anew, kCheckUnchanged leaves
/// the frequency alone.
TESSALY_API void SetCheck4UpdatesSettings(int bAuto, Check4UpdatesFreq frequency);
/// Fills the list with the names of the four frequencies, in the order of their values, in place of
/// what it has. The index that is selected stays selected.
TESSALY_API void PopulateFreqList(CSComboList& list);
