#pragma once
#include <windows.h>
#include <algorithm>
#include <climits>

// Arithmetic on coordinates. Callers, the registry and other programs may give any number, so it is
// done in 64 bits and cut to what the platform's 32 can hold.

constexpr int ToCoordinate(long long n) {
    return static_cast<int>(std::clamp<long long>(n, INT_MIN, INT_MAX));
}

constexpr int AddCoordinates(int a, int b) { return ToCoordinate(static_cast<long long>(a) + b); }
constexpr int GetDistance(int nFrom, int nTo) {
    return ToCoordinate(static_cast<long long>(nTo) - nFrom);
}
constexpr int GetWidth(const RECT& rc) { return GetDistance(rc.left, rc.right); }
constexpr int GetHeight(const RECT& rc) { return GetDistance(rc.top, rc.bottom); }

/// Where something of that size starts that stands in the middle of the span. Half the free space
/// is rounded toward 0.
constexpr int GetCenteredStart(int nFrom, int nTo, int nSize) {
    return ToCoordinate(nFrom + (static_cast<long long>(nTo) - nFrom - nSize) / 2);
}
