#pragma once
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

/// Repeated timings of two pieces of work, taken in turn so that what the machine does besides
/// falls on both, after one turn that does not count.
struct Comparison {
    double dFirst = 0, dSecond = 0; // medians, seconds
    double dSpread = 0;             // of the first's middle half, as a share of its median
    double Ratio() const { return dFirst / dSecond; }
};

template <class Fn>
double Seconds(Fn&& fn) {
    auto tStart = std::chrono::steady_clock::now();
    fn();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - tStart).count();
}

/// Takes the two rows of timings, which need not be sorted.
inline Comparison CompareTimes(std::vector<double> timesFirst, std::vector<double> timesSecond) {
    std::sort(timesFirst.begin(), timesFirst.end());
    std::sort(timesSecond.begin(), timesSecond.end());
    std::size_t n = timesFirst.size();
    double dMedian = timesFirst[n / 2];
    return {dMedian, timesSecond[n / 2], (timesFirst[3 * n / 4] - timesFirst[n / 4]) / dMedian};
}

/// Runs both in turn; each gives its own time in seconds.
template <class First, class Second>
Comparison CompareTimed(int nTurns, First&& first, Second&& second) {
    std::vector<double> timesFirst, timesSecond;
    for (int i = 0; i <= nTurns; ++i) {
        double dFirst = first(), dSecond = second();
        if (i == 0) continue;
        timesFirst.push_back(dFirst);
        timesSecond.push_back(dSecond);
    }
    return CompareTimes(timesFirst, timesSecond);
}

template <class First, class Second>
Comparison Compare(int nTurns, First&& first, Second&& second) {
    return CompareTimed(
        nTurns, [&] { return Seconds(first); }, [&] { return Seconds(second); });
}

/// One line of result; true if the ratio keeps to its limit.
inline bool Report(const char* pszWhat, const Comparison& c, double dLimit, bool bAtMost) {
    bool bOk = bAtMost ? c.Ratio() <= dLimit : c.Ratio() >= dLimit;
    std::printf("%-58s %8.3f ms / %8.3f ms = %6.3f (%s %.2f) spread %2.0f%% %s\n", pszWhat,
                c.dFirst * 1e3, c.dSecond * 1e3, c.Ratio(), bAtMost ? "at most" : "at least",
                dLimit, c.dSpread * 100, bOk ? "ok" : "MISSED");
    return bOk;
}
