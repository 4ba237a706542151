#include "progress/progress_ex.h"
#include "runtime/text/str_format.h"

#include <windows.h>
#include <algorithm>
#include <climits>

namespace {
constexpr unsigned __int64 kBarMax = 65535; // what every progress bar can count to
constexpr unsigned kMsPerSecond = 1000;

/// What an int can hold of it.
int ToBarUnits(__int64 qn) { return static_cast<int>(std::clamp<__int64>(qn, INT_MIN, INT_MAX)); }

/// How many parts that are not larger than a bar the number has, at least 1.
unsigned __int64 CountBars(unsigned __int64 qw) {
    return qw <= kBarMax ? 1 : qw / kBarMax + (qw % kBarMax != 0);
}

/// Counts an event. The first one after the start or a pause has nothing before it to be measured
/// from.
void CountTime(unsigned& dwLastTick, unsigned __int64& qwTotalMs, unsigned& dwCount) {
    const unsigned dwNow = ::GetTickCount();
    if (dwLastTick) {
        qwTotalMs += dwNow - dwLastTick; // in 32 bits: the tick begins at 0 again after 49 days
        ++dwCount;
    }
    dwLastTick = dwNow;
}

void CountPause(int bPause, unsigned& dwLastTick, int& nPaused) {
    if (bPause) {
        ++nPaused;
        dwLastTick = 0;
    } else {
        --nPaused;
    }
}
} // namespace

// The timing alone

void ProgressTracker::Update() { CountTime(dwLastTick, qwTotalMs, dwEvents); }

void ProgressTracker::Pause(int bPause) { CountPause(bPause, dwLastTick, nPaused); }

unsigned ProgressTracker::GetAverageEventDuration() const { return GetAverageEventsDuration(1); }

unsigned ProgressTracker::GetAverageEventsDuration(unsigned n) const {
    return dwEvents ? static_cast<unsigned>(n * qwTotalMs / dwEvents) : 0;
}

unsigned ProgressTracker::GetAverageEventsPerSeconds(unsigned nSeconds) const {
    if (!qwTotalMs) return 0;
    const unsigned __int64 qwEventSeconds = static_cast<unsigned __int64>(dwEvents) * nSeconds;
    return static_cast<unsigned>(qwEventSeconds * kMsPerSecond / qwTotalMs);
}

// The range

void ProgressEx::Setup(__int64 qnLow, __int64 qnHigh, __int64 qnPos) {
    SetRange64(qnLow, qnHigh);
    SetPos64(qnPos);
}

void ProgressEx::SetRange64(__int64 qnLow, __int64 qnHigh) {
    nSubStep = 0;
    const auto qwLow = static_cast<unsigned __int64>(qnLow);
    unsigned __int64 qwDivisor = CountBars(qnLow < 0 ? 0 - qwLow : qwLow);
    // QUIRK: both factors multiply: with two large ends the divisor is larger than it needs to be,
    // and the bar coarser. Test: ProgressQuirks.TwoLargeEndsMultiplyTheDivisor
    const unsigned __int64 qwFactor =
        qnHigh > 0 ? CountBars(static_cast<unsigned __int64>(qnHigh)) : 1;
    // It has 32 bits; what would be more is the most that there is.
    qwDivisor = qwDivisor > UINT_MAX / qwFactor ? UINT_MAX : qwDivisor * qwFactor;
    dwDivisor = static_cast<unsigned>(qwDivisor);
    nLow = ToBarUnits(qnLow / static_cast<__int64>(qwDivisor));
    nHigh = ToBarUnits(qnHigh / static_cast<__int64>(qwDivisor));
    DoSetRange(nLow, nHigh);
}

void ProgressEx::SetPos64(__int64 qnPos) {
    nPos = ToBarUnits(qnPos / static_cast<__int64>(dwDivisor));
    DoSetPos(nPos);
}

int ProgressEx::StepBar() {
    if (nPos < INT_MAX) ++nPos;
    DoStepIt();
    TimeStep();
    return 1;
}

void ProgressEx::TimeStep() { CountTime(dwLastTick, qwTotalMs, dwSteps); }

// State

void ProgressEx::Cancel(int bCancel) { bCanceled = bCancel; }

int ProgressEx::IsCanceled() const { return bCanceled; }

void ProgressEx::Pause(int bPause) { CountPause(bPause, dwLastTick, nPaused); }

int ProgressEx::GetPercentCompleted() const {
    const __int64 qnRange = static_cast<__int64>(nHigh) - nLow;
    if (!qnRange) return 0;
    return ToBarUnits((static_cast<__int64>(nPos) - nLow) * 100 / qnRange);
}

// Time

unsigned ProgressEx::GetSecondsRemaining() const {
    if (!dwSteps) return 0;
    const unsigned __int64 qwStepUs = qwTotalMs * 1000 / dwSteps;
    // QUIRK: in 32 bits: from 4,294 seconds on the estimate begins at 0 again. A hint on a line of
    // a dialog does with that. Test: ProgressQuirks.RemainingTimeBeginsAgainBeyond32Bits
    const unsigned dwRemainingUs = (static_cast<unsigned>(nHigh) - static_cast<unsigned>(nPos)) *
                                   static_cast<unsigned>(qwStepUs);
    return dwRemainingUs / 1000 / 1000;
}

int ProgressEx::GetTextRemaining(wchar_t* pszText, unsigned cch, int bLongForm) const {
    return ::GetTextRemaining(GetSecondsRemaining(), pszText, cch, bLongForm);
}

unsigned __int64 ProgressEx::GetEventsPerSeconds(unsigned nSeconds) const {
    if (!qwTotalMs) return 0;
    const unsigned dwStepMs = dwSteps * nSeconds * kMsPerSecond; // in 32 bits, as the estimate
    return dwDivisor * (dwStepMs / qwTotalMs);
}

unsigned ProgressEx::GetAverageStepDuration() const {
    return dwSteps ? static_cast<unsigned>(qwTotalMs / dwSteps) : 0;
}

// Text

void ProgressEx::SetText(int, const wchar_t*, char*) {}

void ProgressEx::SetTextList(int nLine, const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    SetText(nLine, pszFormat, args); // a va_list: the virtual one
    va_end(args);
}
