#include "support/no_memory.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/cscombo.h"
#include "wnd/control/ctrl_dialog.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>

namespace {
constexpr unsigned __int64 kBigValue = 0x123456789ABCDEF0;
constexpr unsigned kNone = 0xFFFFFFFF;
constexpr unsigned __int64 kRefused = ~0ULL;

/// A dialog whose combo box is tied to an object, with a tap below that.
struct Combos {
    explicit Combos(int nId = IDC_CTL_COMBO_LIST) {
        dialog.onInit = [this, nId] {
            tap.emplace(::GetDlgItem(dialog, nId));
            combo.Init(&dialog, static_cast<unsigned>(nId), nullptr, 0);
        };
        EXPECT_TRUE(dialog.Run(IDD_COMBOS));
        tap->seen.clear();
    }
    void Reset() {
        tap->answer = nullptr;
        tap->seen.clear();
    }
    LRESULT Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return ::SendMessageW(combo.hWnd, uMsg, wParam, lParam);
    }
    void AnswerAll(UINT uMsg, LRESULT lResult) {
        tap->answer = [=](UINT u, WPARAM, LPARAM) {
            return u == uMsg ? std::optional<LRESULT>(lResult) : std::nullopt;
        };
    }
    void Fill(int nCount) {
        for (int n = 0; n < nCount; ++n) {
            std::wstring str = L"item " + std::to_wstring(n);
            EXPECT_EQ(1, combo.AddItem(str.c_str(), kBigValue + static_cast<unsigned>(n)));
        }
    }
    std::vector<std::wstring> Items() {
        std::vector<std::wstring> items;
        for (unsigned n = 0; n < static_cast<unsigned>(Send(CB_GETCOUNT)); ++n) {
            std::wstring str(static_cast<std::size_t>(Send(CB_GETLBTEXTLEN, n)) + 1, 0);
            Send(CB_GETLBTEXT, n, reinterpret_cast<LPARAM>(str.data()));
            str.pop_back();
            items.push_back(str);
        }
        return items;
    }

    Recorded<CSComboBase> combo;
    std::optional<MessageTap> tap;
    CtrlDialog dialog;
};

// Each operation is one message

struct OperationCase {
    const char* pszName;
    UINT uMsg;
    std::function<__int64(CSComboBase&)> fn;
    WPARAM wParam;
    LPARAM lParam;
    LRESULT lAnswer;
    __int64 nResult;
};
using CSComboBaseOperation = SharedBy<Combos, OperationCase>;
TEST_P(CSComboBaseOperation, IsOneMessageWithItsResult) {
    auto& row = GetParam();
    auto& t = Get();
    t.AnswerAll(row.uMsg, row.lAnswer);
    EXPECT_EQ(row.nResult, row.fn(t.combo));
    ASSERT_EQ(1u, t.tap->seen.size());
    EXPECT_EQ(row.uMsg, t.tap->seen[0].uMsg);
    EXPECT_EQ(row.wParam, t.tap->seen[0].wParam);
    EXPECT_EQ(row.lParam, t.tap->seen[0].lParam);
}
const wchar_t kText[] = L"text";
wchar_t szOut[100];
const auto kTextParam = reinterpret_cast<LPARAM>(kText);
using Combo = CSComboBase;
INSTANTIATE_TEST_SUITE_P(
    Each, CSComboBaseOperation,
    testing::Values(
        OperationCase{"GetCount", 326, [](Combo& c) { return c.GetCount(); }, 0, 0, 12, 12},
        OperationCase{"AddStr", 323, [](Combo& c) { return c.AddStr(kText); }, 0, kTextParam, 5, 5},
        OperationCase{"AddStrRefused", 323, [](Combo& c) { return c.AddStr(kText); }, 0, kTextParam,
                      -2, -2},
        OperationCase{"InsertStr", 330, [](Combo& c) { return c.InsertStr(4, kText); }, 4,
                      kTextParam, 4, 4},
        OperationCase{"GetStrLen", 329, [](Combo& c) { return c.GetStrLen(6); }, 6, 0, 31, 31},
        OperationCase{"GetStr", 328, [](Combo& c) { return c.GetStr(6, szOut); }, 6,
                      reinterpret_cast<LPARAM>(szOut), 31, 31},
        OperationCase{"GetItemData", 336,
                      [](Combo& c) { return static_cast<__int64>(c.GetItemData(6)); }, 6, 0,
                      static_cast<LRESULT>(kBigValue), static_cast<__int64>(kBigValue)},
        OperationCase{"SetItemData", 337, [](Combo& c) { return c.SetItemData(6, kBigValue) != 0; },
                      6, static_cast<LPARAM>(kBigValue), 0, 1},
        OperationCase{"SetItemDataTaken", 337,
                      [](Combo& c) { return c.SetItemData(6, kRefused) != 0; }, 6, -1, 7, 1},
        OperationCase{"SetItemDataRefused", 337, [](Combo& c) { return c.SetItemData(6, 1); }, 6, 1,
                      -1, 0},
        OperationCase{"FindStrExact", 344, [](Combo& c) { return c.FindStrExact(kText, 8); }, 8,
                      kTextParam, 9, 9},
        OperationCase{"DelStrEmptied", 324, [](Combo& c) { return c.DelStr(3) != 0; }, 3, 0, 0, 1},
        OperationCase{"DelStrLeft", 324, [](Combo& c) { return c.DelStr(3); }, 3, 0, 5, 0},
        OperationCase{"DelStrRefused", 324, [](Combo& c) { return c.DelStr(3); }, 3, 0, -1, 0},
        OperationCase{"DelAll", 331, [](Combo& c) { return c.DelAll() != 0; }, 0, 0, 0, 1},
        OperationCase{"DelAllRefused", 331, [](Combo& c) { return c.DelAll(); }, 0, 0, -1, 0},
        OperationCase{"SetExtendedUI", 341, [](Combo& c) { return c.SetExtendedUI(1) != 0; }, 1, 0,
                      0, 1},
        OperationCase{"SetExtendedUIRefused", 341, [](Combo& c) { return c.SetExtendedUI(0); }, 0,
                      0, -1, 0},
        OperationCase{"GetCurSel", 327, [](Combo& c) { return c.GetCurSel(); }, 0, 0, 3, 3},
        OperationCase{"GetCurSelNone", 327, [](Combo& c) { return c.GetCurSel(); }, 0, 0, -1, -1},
        OperationCase{"SetCurSel", 334, [](Combo& c) { return c.SetCurSel(2); }, 2, 0, 2, 2}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSComboBase, DelStrTellsWhetherTheListIsEmpty) {
    Combos t;
    t.Fill(2);
    EXPECT_EQ(0, t.combo.DelStr(0));
    EXPECT_EQ(0, t.combo.DelStr(5)) << "there is no such item";
    EXPECT_NE(0, t.combo.DelStr(0));
    EXPECT_EQ(0, t.combo.GetCount());
}

TEST(CSComboBase, RealListDoesWhatIsAsked) {
    Combos t;
    EXPECT_EQ(0, t.combo.AddStr(L"one"));
    EXPECT_EQ(1, t.combo.AddStr(L"three"));
    EXPECT_EQ(1, t.combo.InsertStr(1, L"two"));
    EXPECT_EQ((std::vector<std::wstring>{L"one", L"two", L"three"}), t.Items());
    EXPECT_EQ(5, t.combo.GetStrLen(2));
    wchar_t sz[20] = L"";
    EXPECT_EQ(5, t.combo.GetStr(2, sz));
    EXPECT_STREQ(L"three", sz);
    EXPECT_EQ(-1, t.combo.GetStrLen(3));
    EXPECT_NE(0, t.combo.SetItemData(1, kBigValue));
    EXPECT_EQ(kBigValue, t.combo.GetItemData(1)) << "all of its bits";
    EXPECT_EQ(0, t.combo.SetItemData(3, 1));
    EXPECT_EQ(kRefused, t.combo.GetItemData(3));
    EXPECT_EQ(1, t.combo.FindStrExact(L"TWO", kNone));
    EXPECT_EQ(-1, t.combo.FindStrExact(L"tw", kNone));
    EXPECT_EQ(-1, t.combo.GetCurSel());
    EXPECT_EQ(2, t.combo.SetCurSel(2));
    EXPECT_EQ(2, t.combo.GetCurSel());
    EXPECT_NE(0, t.combo.SetExtendedUI(1));
    EXPECT_NE(0, t.Send(CB_GETEXTENDEDUI));
    bool bZero = t.Send(CB_RESETCONTENT) == 0; // what it answers differs between platforms
    EXPECT_EQ(bZero, t.combo.DelAll() != 0);
    t.combo.AddStr(L"one");
    t.combo.DelAll();
    EXPECT_EQ(0, t.combo.GetCount());
}

TEST(CSComboBase, ListIsTheSameUnderItsName) {
    CSComboList list;
    EXPECT_NE(0, list.IsKindOf(L"CSCtrl"));
    CtrlDialog dialog;
    dialog.onInit = [&] { list.Init(&dialog, IDC_CTL_COMBO_LIST, nullptr, 0); };
    ASSERT_TRUE(dialog.Run(IDD_COMBOS));
    EXPECT_EQ(1, list.AddItem(L"x", 5));
    EXPECT_EQ(5u, list.GetItem(0, nullptr));
}

// Items with a value

TEST(CSComboBase, ItemsKeepTheirValueWhereverTheyCome) {
    Combos t(IDC_CTL_COMBO_SORTED);
    EXPECT_EQ(1, t.combo.AddItem(L"m", 1));
    EXPECT_EQ(1, t.combo.AddItem(L"z", 2));
    EXPECT_EQ(1, t.combo.AddItem(L"a", kBigValue));
    EXPECT_EQ((std::vector<std::wstring>{L"a", L"m", L"z"}), t.Items());
    EXPECT_EQ(kBigValue, t.combo.GetItem(0, nullptr));
    EXPECT_EQ(1u, t.combo.GetItem(1, nullptr));
    EXPECT_EQ(2u, t.combo.GetItem(2, nullptr));
    EXPECT_EQ(1, t.combo.InsertItem(1, L"zz", 9)) << "inserted, not sorted";
    wchar_t sz[10] = L"";
    EXPECT_EQ(9u, t.combo.GetItem(1, sz));
    EXPECT_STREQ(L"zz", sz);
    EXPECT_EQ(1, t.combo.InsertItem(kNone, L"last", 10)) << "as the message has it";
    EXPECT_EQ(10u, t.combo.GetItem(4, sz));
    EXPECT_STREQ(L"last", sz);
}

class CSComboBaseNoRoom : public testing::TestWithParam<int> {};
TEST_P(CSComboBaseNoRoom, AddsNothingAndSetsNoValue) {
    Combos t;
    t.Fill(2);
    t.tap->seen.clear();
    t.tap->answer = [](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == CB_ADDSTRING || uMsg == CB_INSERTSTRING) return GetParam();
        return std::nullopt;
    };
    EXPECT_EQ(0, t.combo.AddItem(L"x", 5));
    EXPECT_EQ(0, t.combo.InsertItem(0, L"x", 5));
    EXPECT_EQ(1, t.tap->Count(CB_ADDSTRING));
    EXPECT_EQ(1, t.tap->Count(CB_INSERTSTRING));
    EXPECT_EQ(0, t.tap->Count(CB_SETITEMDATA));
}
INSTANTIATE_TEST_SUITE_P(Answers, CSComboBaseNoRoom, testing::Values(CB_ERR, CB_ERRSPACE));

TEST(CSComboBase, RefusedValueIsIgnored) {
    Combos t;
    t.AnswerAll(CB_SETITEMDATA, CB_ERR);
    EXPECT_EQ(1, t.combo.AddItem(L"x", 5));
    EXPECT_EQ(1, t.combo.InsertItem(0, L"x", 5));
    EXPECT_EQ(2, t.tap->Count(CB_SETITEMDATA));
}

TEST(CSComboBase, GetItemEmptiesTheTextThatItCannotRead) {
    Combos t;
    t.Fill(2);
    wchar_t sz[] = L"before";
    EXPECT_EQ(0u, t.combo.GetItem(2, sz));
    EXPECT_STREQ(L"", sz);
    EXPECT_EQ(kRefused, t.combo.GetItem(2, nullptr)) << "the message's answer";
    t.combo.AddItem(L"", 6);
    std::wmemset(sz, L'#', 6);
    EXPECT_EQ(6u, t.combo.GetItem(2, sz)) << "an empty text is read";
    EXPECT_STREQ(L"", sz);
}

TEST(CSComboBase, FindItemScansFromTheStart) {
    Combos t;
    EXPECT_EQ(kNone, t.combo.FindItem(0)) << "an empty list";
    for (unsigned __int64 qw : {7ULL, kBigValue, 8ULL, kBigValue, kRefused}) {
        t.combo.AddItem(L"same text", qw);
    }
    EXPECT_EQ(1u, t.combo.FindItem(kBigValue));
    EXPECT_EQ(2u, t.combo.FindItem(8));
    EXPECT_EQ(4u, t.combo.FindItem(kRefused)) << "a value like any other";
    EXPECT_EQ(kNone, t.combo.FindItem(kBigValue & 0xFFFFFFFF));
    EXPECT_EQ(kNone, t.combo.FindItem(0));
}

TEST(CSComboBase, SelectItemSelectsOrClears) {
    Combos t;
    t.Fill(3);
    EXPECT_EQ(2, t.combo.SelectItem(kBigValue + 2));
    EXPECT_EQ(2, t.combo.GetCurSel());
    EXPECT_EQ(kBigValue + 2, t.combo.GetSelectedItem());
    t.tap->seen.clear();
    EXPECT_EQ(CB_ERR, t.combo.SelectItem(5)) << "the message's result for -1";
    EXPECT_EQ(-1, t.combo.GetCurSel());
    auto seen = t.tap->Of(CB_SETCURSEL);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(kNone, static_cast<unsigned>(seen[0].wParam));
    EXPECT_EQ(kRefused, t.combo.GetSelectedItem()) << "the message's answer";
}

TEST(CSComboBase, SelectStrLooksOverTheWholeList) {
    Combos t;
    t.Fill(3);
    t.combo.SetCurSel(2);
    EXPECT_EQ(0, t.combo.SelectStr(L"ITEM 0"));
    EXPECT_EQ(0, t.combo.GetCurSel());
    auto seen = t.tap->Of(CB_FINDSTRINGEXACT);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(-1, static_cast<int>(seen[0].wParam));
    EXPECT_EQ(-1, t.combo.SelectStr(L"item")) << "only the exact text";
    EXPECT_EQ(0, t.combo.GetCurSel()) << "stays";
    t.AnswerAll(CB_FINDSTRINGEXACT, -2);
    t.tap->seen.clear();
    EXPECT_EQ(-2, t.combo.SelectStr(L"item 1"));
    EXPECT_EQ(0, t.tap->Count(CB_SETCURSEL));
    t.AnswerAll(CB_SETCURSEL, 4711);
    EXPECT_EQ(4711, t.combo.SelectStr(L"item 1")) << "the result of the selection";
}

// Moving

TEST(CSComboBase, CanMoveWithinTheList) {
    Combos t;
    for (int bUp : {0, 1}) {
        EXPECT_EQ(0, t.combo.CanMove(0, bUp)) << "an empty list";
        EXPECT_EQ(0, t.combo.CanMove(kNone, bUp));
    }
    t.Fill(1);
    for (int bUp : {0, 1}) EXPECT_EQ(0, t.combo.CanMove(0, bUp));
    t.Fill(2);
    struct {
        unsigned nIndex;
        bool bUp, bDown;
    } rows[] = {{0, false, true},      {1, true, true},          {2, true, false},
                {3, false, false},     {4, false, false},        {0x7FFFFFFF, false, false},
                {kNone, false, false}, {kNone - 1, false, false}};
    for (auto& row : rows) {
        EXPECT_EQ(row.bUp, t.combo.CanMove(row.nIndex, 1) != 0) << row.nIndex;
        EXPECT_EQ(row.bDown, t.combo.CanMove(row.nIndex, 0) != 0) << row.nIndex;
    }
}

TEST(CSComboBase, MoveItemKeepsTheValueAndSelects) {
    Combos t;
    t.Fill(3);
    t.combo.MoveItem(2, 1);
    EXPECT_EQ((std::vector<std::wstring>{L"item 0", L"item 2", L"item 1"}), t.Items());
    EXPECT_EQ(1, t.combo.GetCurSel());
    EXPECT_EQ(kBigValue + 2, t.combo.GetSelectedItem());
    t.combo.MoveItem(0, 0);
    EXPECT_EQ((std::vector<std::wstring>{L"item 2", L"item 0", L"item 1"}), t.Items());
    EXPECT_EQ(1, t.combo.GetCurSel());
    EXPECT_EQ(kBigValue, t.combo.GetSelectedItem());
    EXPECT_EQ(kBigValue + 1, t.combo.GetItem(2, nullptr));
}

TEST(CSComboBase, MoveItemThatCannotMoveDoesNothing) {
    Combos t;
    t.Fill(3);
    t.combo.SetCurSel(1);
    auto items = t.Items();
    t.tap->seen.clear();
    t.combo.MoveItem(0, 1);
    t.combo.MoveItem(2, 0);
    t.combo.MoveItem(3, 1);
    t.combo.MoveItem(kNone, 0);
    EXPECT_EQ(0, t.tap->Count(CB_DELETESTRING));
    EXPECT_EQ(0, t.tap->Count(CB_SETCURSEL));
    EXPECT_EQ(items, t.Items());
    EXPECT_EQ(1, t.combo.GetCurSel());
}

TEST(CSComboBase, MoveItemWithoutMemoryChangesNothing) {
    Combos t;
    t.combo.AddItem(std::wstring(3000, L'x').c_str(), 5);
    t.Fill(1);
    t.combo.SetCurSel(1);
    t.combo.messages.reserve(1000);
    t.tap->seen.reserve(1000);
    t.tap->seen.clear();
    {
        NoMemory none;
        t.combo.MoveItem(0, 0);
    }
    EXPECT_EQ(0, t.tap->Count(CB_DELETESTRING));
    EXPECT_EQ(2, t.combo.GetCount());
    EXPECT_EQ(1, t.combo.GetCurSel());
    EXPECT_EQ(5u, t.combo.GetItem(0, nullptr));
}

TEST(CSComboBase, MoveItemOfTextsOfAnyLength) {
    for (std::size_t cch : {0u, 1u, 259u, 260u, 1024u, 20000u}) {
        Combos t;
        std::wstring str(cch, L'x');
        if (cch) str.back() = L'y';
        t.combo.AddItem(str.c_str(), kBigValue);
        t.combo.AddItem(L"other", 2);
        t.combo.MoveItem(0, 0);
        EXPECT_EQ((std::vector<std::wstring>{L"other", str}), t.Items());
        EXPECT_EQ(kBigValue, t.combo.GetSelectedItem());
    }
}

TEST(CSComboBase, MoveItemWhoseLengthCannotBeReadHasAnEmptyText) {
    Combos t;
    t.Fill(2);
    t.tap->answer = [](UINT uMsg, WPARAM, LPARAM) -> std::optional<LRESULT> {
        if (uMsg == CB_GETLBTEXTLEN || uMsg == CB_GETLBTEXT) return CB_ERR;
        return std::nullopt;
    };
    t.combo.MoveItem(0, 0);
    t.tap->answer = nullptr;
    EXPECT_EQ(2, t.combo.GetCount());
    EXPECT_EQ((std::vector<std::wstring>{L"item 1", L""}), t.Items());
}

TEST(CSComboBase, WithoutAWindowNothingHappens) {
    CSComboBase combo;
    wchar_t sz[] = L"before";
    EXPECT_EQ(0, combo.GetCount());
    EXPECT_EQ(kNone, combo.FindItem(5));
    EXPECT_EQ(0, combo.CanMove(0, 0));
    combo.MoveItem(1, 1);
    EXPECT_EQ(0u, combo.GetItem(0, nullptr));
    combo.GetItem(0, sz);
}

TEST(CSComboBaseRandom, OperationsFollowAModel) {
    struct Item {
        std::wstring str;
        unsigned __int64 qw;
        bool operator==(const Item&) const = default;
    };
    Combos t;
    std::mt19937 engine(20240917);
    auto Below = [&](std::size_t n) { return static_cast<unsigned>(engine() % n); };
    std::vector<Item> model;
    int nSelected = -1;
    for (int nStep = 0; nStep < 1000; ++nStep) {
        Item item{std::wstring(Below(12), static_cast<wchar_t>(L'a' + Below(26))),
                  (static_cast<unsigned __int64>(engine()) << 32) | engine()};
        unsigned nAt = Below(model.size() + 2);
        auto it = model.begin() + std::min<std::ptrdiff_t>(nAt, std::ssize(model));
        bool bIn = nAt < model.size();
        int bUp = static_cast<int>(Below(2));
        switch (model.size() >= 20 ? 4 : Below(5)) {
        case 0:
            ASSERT_EQ(1, t.combo.AddItem(item.str.c_str(), item.qw));
            model.push_back(item);
            break;
        case 1:
            ASSERT_EQ(nAt <= model.size(), t.combo.InsertItem(nAt, item.str.c_str(), item.qw));
            if (nAt > model.size()) break;
            model.insert(it, item);
            // What becomes of a selection is the platform's: choose anew.
            nSelected = t.combo.SetCurSel(nAt);
            break;
        case 2: {
            bool bCan = bIn && (bUp ? nAt > 0 : nAt + 1 < model.size());
            ASSERT_EQ(bCan, t.combo.CanMove(nAt, bUp) != 0);
            t.combo.MoveItem(nAt, bUp);
            if (!bCan) break;
            std::iter_swap(it, bUp ? it - 1 : it + 1);
            nSelected = static_cast<int>(bUp ? nAt - 1 : nAt + 1);
            break;
        }
        case 3: {
            unsigned __int64 qw = bIn ? it->qw : item.qw;
            auto first = std::find_if(model.begin(), model.end(),
                                      [&](const Item& other) { return other.qw == qw; });
            nSelected = first == model.end() ? -1 : static_cast<int>(first - model.begin());
            ASSERT_EQ(static_cast<unsigned>(nSelected), t.combo.FindItem(qw));
            t.combo.SelectItem(qw);
            break;
        }
        default:
            ASSERT_EQ(bIn && model.size() == 1, t.combo.DelStr(nAt) != 0);
            if (bIn) model.erase(it);
            nSelected = t.combo.SetCurSel(kNone);
        }
        t.tap->seen.clear();
        t.combo.messages.clear();
        ASSERT_EQ(std::ssize(model), t.combo.GetCount()) << nStep;
        ASSERT_EQ(nSelected, t.combo.GetCurSel()) << nStep;
        std::vector<Item> items;
        for (unsigned n = 0; n < model.size(); ++n) {
            wchar_t sz[20] = L"";
            unsigned __int64 qw = t.combo.GetItem(n, sz);
            items.push_back({sz, qw});
        }
        ASSERT_EQ(model, items) << nStep;
    }
}
} // namespace
