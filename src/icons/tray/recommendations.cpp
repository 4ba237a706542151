#include "icons/tray/recommendations.h"
#include "resources/resource_ids.h"
#include "wnd/draw/csicon.h"
#include "wnd/menu/csmenu.h"

namespace {
// Lines 2 and 3 are indented below the headline.
constinit Recommendation recommendations[kRecommendations] = {
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

constinit RecommendationRotation rotation{recommendations};

void MakeBitmap(Recommendation& entry) {
    CSIcon icon;
    icon.Load(entry.nIconId, 1, 1); // small, in the system's size
    entry.hbm = CSMenu::GenerateBitmap(icon);
}
} // namespace

void RecommendationRotation::AddRows(CSMenu& menu) {
    if (++nCurrent >= table.size()) nCurrent = 0;
    Recommendation& entry = table[nCurrent];
    // Never freed: the menu of each opening has the same one.
    if (!entry.hbm && entry.nIconId) MakeBitmap(entry);
    // The texts are data and no formats, whatever a later one may hold.
    menu.AppendItem(kRecommendationId, L"%s", entry.pszLine1);
    if (entry.hbm) menu.SetItemBitmapsByID(kRecommendationId, entry.hbm, entry.hbm);
    menu.SetDefaultByID(kRecommendationId);
    menu.AppendItem(kRecommendationId + 1, L"%s", entry.pszLine2);
    menu.AppendItem(kRecommendationId + 2, L"%s", entry.pszLine3);
}

void AddRecommendationRows(CSMenu& menu) { rotation.AddRows(menu); }

const Recommendation* GetRecommendation() { return rotation.GetCurrent(); }
