#pragma once
#include <windows.h>
#include <span>

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

/// The commands of the three rows: this one and the two that follow.
constexpr unsigned kRecommendationId = 100;

/// Takes the recommendations of a table in turn, from the last one back to the first.
class RecommendationRotation {
  public:
    /// The table, of at least one entry, is not owned.
    explicit constexpr RecommendationRotation(std::span<Recommendation> tableToUse) noexcept
        : table(tableToUse) {}
    /// Moves on to the next one, the first time to the first, and appends its three rows. The first
    /// row is the menu's default item and has the bitmap.
    void AddRows(CSMenu& menu);
    /// The one that was appended last; null before the first.
    const Recommendation* GetCurrent() const {
        return nCurrent < table.size() ? &table[nCurrent] : nullptr;
    }

  private:
    static constexpr std::size_t kNoneShown = 1000; // out of range: the first step leads to entry 0

    std::span<Recommendation> table;
    std::size_t nCurrent = kNoneShown;
};

/// How many recommendations the menu has.
constexpr int kRecommendations = 5;

/// Appends the menu's next recommendation, in the turn of this process.
void AddRecommendationRows(CSMenu& menu);
/// The menu's recommendation that was appended last; null before the first.
const Recommendation* GetRecommendation();
