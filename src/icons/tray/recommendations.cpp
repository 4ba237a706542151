#include "icons/tray/recommendations.h"
#include "resources/resource_ids.h"
#include "wnd/draw/csicon.h"
#include "wnd/menu/csmenu.h"

namespace {
constexpr int kNoneShown = 1000; // out of range: the first step leads to row 0

constinit int nCurrent = kNoneShown;

constinit Recommendation rows[kRecommendations] = {
    {nullptr, -IDI_TESSALY, L"https://orvanta.example/tessaly/guide", L"The guide to Tessaly",
     L"   How layouts are kept and restored,", L"   and what to do after a change of screens"},
    {nullptr, -IDI_TESSALY, L"https://orvanta.example/tessaly/news", L"What is new in Tessaly",
     L"   The changes of each version,", L"   with the reasons for them"},
    {nullptr, -IDI_TESSALY, L"https://orvanta.example/support", L"Questions about Tessaly?",
     L"   Answers to those that are asked often,", L"   and an address for all others"},
    {nullptr, -IDI_TESSALY, L"https://orvanta.example/translate", L"Tessaly in your language",
     L"   How the texts are translated,", L"   and how to lend a hand"},
    {nullptr, -IDI_TESSALY, L"https://orvanta.example/tools", L"Other tools by Orvanta",
     L"   Small programs for Windows,", L"   each for one task"},
};

void MakeBitmap(Recommendation& row) {
    CSIcon icon;
    icon.Load(row.nIconId, 1, 1); // small, in the system's size
    row.hbm = CSMenu::GenerateBitmap(icon);
}
} // namespace

void AddRecommendationRows(CSMenu& menu) {
    if (++nCurrent >= kRecommendations) nCurrent = 0;
    Recommendation& row = rows[nCurrent];
    if (!row.hbm && row.nIconId) MakeBitmap(row);
    menu.AppendItem(kRecommendationId, L"%s", row.pszLine1);
    if (row.hbm) menu.SetItemBitmapsByID(kRecommendationId, row.hbm, row.hbm);
    menu.SetDefaultByID(kRecommendationId);
    menu.AppendItem(kRecommendationId + 1, L"%s", row.pszLine2);
    menu.AppendItem(kRecommendationId + 2, L"%s", row.pszLine3);
}

const Recommendation* GetRecommendation() {
    return nCurrent < kRecommendations ? &rows[nCurrent] : nullptr;
}

Recommendation (&GetRecommendationTable())[kRecommendations] { return rows; }

void RestartRecommendations() { nCurrent = kNoneShown; }
