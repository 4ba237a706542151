#pragma once
#include <windows.h>

class CSMenu;

/// Something of the maker's that the tray menu recommends, in three rows.
struct Recommendation {
    HBITMAP hbm;           // of the icon, made when it is first shown and kept for the process
    int nIconId;           // negative: of the library; positive: of the current module; 0: none
    const wchar_t* pszUrl; // the page that all three rows open
    const wchar_t* pszLine1;
    const wchar_t* pszLine2;
    const wchar_t* pszLine3;
};

constexpr int kRecommendations = 5;

/// The commands of the three rows: this one and the two that follow.
constexpr unsigned kRecommendationId = 100;

/// Moves on to the next recommendation, from the last one to the first, and appends its three rows.
/// The first row is the menu's default item and has the bitmap.
void AddRecommendationRows(CSMenu& menu);

/// The one that was appended last; null before the first.
const Recommendation* GetRecommendation();

/// For tests: the table, and no recommendation shown yet.
Recommendation (&GetRecommendationTable())[kRecommendations];
void RestartRecommendations();
