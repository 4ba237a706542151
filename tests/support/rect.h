#pragma once
#include <windows.h>
#include <ostream>

// Rectangles in expectations: compared by their edges, and shown with them.

inline bool operator==(const RECT& left, const RECT& right) { return ::EqualRect(&left, &right); }

inline void PrintTo(const RECT& rc, std::ostream* pOut) {
    *pOut << rc.left << ',' << rc.top << ',' << rc.right << ',' << rc.bottom;
}
