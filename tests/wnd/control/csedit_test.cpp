#include "support/input.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/csedit.h"
#include "wnd/control/edit_dialog.h"

#include <gtest/gtest.h>

namespace {
using Message = MessageTap::Message;

constexpr UINT kHideBalloonTip = 5380;

// Each operation is one message

struct OperationCase {
    const char* pszName;
    UINT uMsg;
    std::function<LRESULT(CSMultiLineEdit&)> fn;
    WPARAM wParam;
    LPARAM lParam;
    LRESULT lAnswer, lResult; // of the window and of the operation
};
using CSEditOperation = SharedBy<Edits<CSMultiLineEdit>, OperationCase>;
TEST_P(CSEditOperation, IsOneMessageWithItsResult) {
    auto& row = GetParam();
    auto& t = Get();
    t.AnswerAll(row.uMsg, row.lAnswer);
    EXPECT_EQ(row.lResult, row.fn(t.edit));
    ASSERT_EQ(1u, t.tap->seen.size());
    EXPECT_EQ(row.uMsg, t.tap->seen[0].uMsg);
    EXPECT_EQ(row.wParam, t.tap->seen[0].wParam);
    EXPECT_EQ(row.lParam, t.tap->seen[0].lParam);
}
template <class Fn>
auto Silent(Fn fn) {
    return [fn](CSMultiLineEdit& edit) {
        fn(edit);
        return LRESULT{0};
    };
}
const wchar_t kNewText[] = L"new";
INSTANTIATE_TEST_SUITE_P(
    Each, CSEditOperation,
    testing::Values(
        OperationCase{"SetSel", 177, Silent([](auto& e) { e.SetSel(2, 5); }), 2, 5, 9, 0},
        OperationCase{"SelectAll", 177, Silent([](auto& e) { e.SetSel(0, -1); }), 0, -1, 9, 0},
        OperationCase{"ReplaceSel", 194, Silent([](auto& e) { e.ReplaceSel(kNewText, 1); }), 1,
                      reinterpret_cast<LPARAM>(kNewText), 9, 0},
        OperationCase{"ReplaceSelForGood", 194, Silent([](auto& e) { e.ReplaceSel(kNewText, 0); }),
                      0, reinterpret_cast<LPARAM>(kNewText), 9, 0},
        OperationCase{"PosFromChar", 214, [](auto& e) { return LRESULT{e.PosFromChar(7)}; }, 7, 0,
                      0x00120034, 0x00120034},
        OperationCase{"SetMaxTextLimit", 197, Silent([](auto& e) { e.SetMaxTextLimit(77); }), 77, 0,
                      9, 0},
        OperationCase{"IsModified", 184, [](auto& e) { return LRESULT{e.IsModified()}; }, 0, 0, 1,
                      1},
        OperationCase{"SetModified", 185, Silent([](auto& e) { e.SetModified(1); }), 1, 0, 9, 0},
        OperationCase{"ClearModified", 185, Silent([](auto& e) { e.SetModified(0); }), 0, 0, 9, 0},
        OperationCase{"GetPasswordChar", 210, [](auto& e) { return LRESULT{e.GetPasswordChar()}; },
                      0, 0, L'\x25CF', L'\x25CF'},
        OperationCase{"SetPasswordChar", 204, Silent([](auto& e) { e.SetPasswordChar(L'\x25CF'); }),
                      0x25CF, 0, 9, 0},
        OperationCase{"GetLineCount", 186, [](auto& e) { return LRESULT{e.GetLineCount()}; }, 0, 0,
                      12, 12},
        OperationCase{"LineFromChar", 201, [](auto& e) { return LRESULT{e.LineFromChar(33)}; }, 33,
                      0, 4, 4},
        OperationCase{"HideBalloon", kHideBalloonTip,
                      [](auto& e) { return LRESULT{e.HideBalloon()}; }, 0, 0, 1, 1}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSEdit, ClearSetsTheEmptyText) {
    Edits<> t;
    t.SetText(L"text");
    t.tap->seen.clear();
    std::wstring str = L"not asked";
    t.tap->answer = [&](UINT uMsg, WPARAM, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg == WM_SETTEXT) str = reinterpret_cast<LPCWSTR>(lParam);
        return std::nullopt;
    };
    t.edit.Clear();
    EXPECT_EQ(L"", str);
    EXPECT_EQ(1, t.tap->Count(WM_SETTEXT));
    EXPECT_EQ(L"", WndText(t.Get()));
}

TEST(CSEdit, GetSelHandsBothPointersOver) {
    Edits<> t;
    int nStart = -5, nEnd = -6;
    t.edit.GetSel(nStart, nEnd);
    auto seen = t.tap->Of(EM_GETSEL);
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(reinterpret_cast<WPARAM>(&nStart), seen[0].wParam);
    EXPECT_EQ(reinterpret_cast<LPARAM>(&nEnd), seen[0].lParam);
    EXPECT_EQ(0, nStart);
    EXPECT_EQ(0, nEnd);
    t.SetText(L"0123456789");
    t.edit.SetSel(3, 8);
    t.edit.GetSel(nStart, nEnd);
    EXPECT_EQ(3, nStart);
    EXPECT_EQ(8, nEnd);
    t.edit.SetSel(0, -1);
    t.edit.GetSel(nStart, nEnd);
    EXPECT_EQ(0, nStart);
    EXPECT_EQ(10, nEnd);
}

TEST(CSEdit, StatesSendNothing) {
    Edits<> t;
    EXPECT_EQ(0, t.edit.GetReadOnly());
    t.edit.SetReadOnly(1);
    EXPECT_EQ(1, t.edit.GetReadOnly());
    t.edit.SetReadOnly(0);
    EXPECT_EQ(0, t.edit.GetReadOnly());
    t.edit.BlockNextSelAll(1);
    EXPECT_EQ(1, t.edit.blockSelAll);
    t.edit.BlockNextSelAll(0);
    EXPECT_EQ(0, t.edit.blockSelAll);
    EXPECT_TRUE(t.tap->seen.empty());
}

TEST(CSEdit, RealEditDoesWhatIsAsked) {
    Edits<> t;
    t.SetText(L"one two three");
    t.edit.SetSel(4, 7);
    t.edit.ReplaceSel(L"2", 1);
    EXPECT_EQ(L"one 2 three", WndText(t.Get()));
    EXPECT_NE(0, t.Send(EM_UNDO));
    EXPECT_EQ(L"one two three", WndText(t.Get()));
    t.edit.SetSel(4, 7);
    t.edit.ReplaceSel(L"2", 0);
    EXPECT_EQ(0, t.Send(EM_CANUNDO));
    t.edit.SetModified(1);
    EXPECT_NE(0, t.edit.IsModified());
    t.edit.SetModified(0);
    EXPECT_EQ(0, t.edit.IsModified());
    EXPECT_EQ(0, t.edit.GetPasswordChar());
    t.edit.SetPasswordChar(L'*');
    EXPECT_EQ(L'*', t.edit.GetPasswordChar());
    t.edit.SetPasswordChar(0);
    EXPECT_EQ(t.Send(EM_POSFROMCHAR, 2), t.edit.PosFromChar(2));
    t.edit.Clear();
    t.edit.SetMaxTextLimit(3);
    for (wchar_t ch : std::wstring(L"abcde")) t.Send(WM_CHAR, ch, 1);
    EXPECT_EQ(L"abc", WndText(t.Get()));
}

TEST(CSMultiLineEdit, CountsRealLines) {
    Edits<CSMultiLineEdit> t(IDC_CTL_MULTI_EDIT);
    EXPECT_EQ(1, t.edit.GetLineCount());
    t.SetText(L"ab\r\ncde\r\n");
    EXPECT_EQ(3, t.edit.GetLineCount());
    EXPECT_EQ(0, t.edit.LineFromChar(2));
    EXPECT_EQ(1, t.edit.LineFromChar(4));
    EXPECT_EQ(2, t.edit.LineFromChar(9));
}

// Soft read-only

struct ReadOnlyCase {
    const char* pszName;
    UINT uMsg;
    WPARAM wParam;
    LPARAM lParam;
    bool bSwallowed; // while read-only
};
using CSEditReadOnly = SharedBy<Edits<>, ReadOnlyCase>;
TEST_P(CSEditReadOnly, SwallowsWhatWouldChangeTheText) {
    auto& row = GetParam();
    auto& t = Get();
    t.AnswerAll(row.uMsg, 4711);
    for (int bReadOnly : {0, 1, 0, 2}) {
        t.edit.SetReadOnly(bReadOnly);
        t.tap->seen.clear();
        bool bSwallowed = bReadOnly && row.bSwallowed;
        EXPECT_EQ(bSwallowed ? 0 : 4711, t.Send(row.uMsg, row.wParam, row.lParam));
        std::vector<Message> expected{{row.uMsg, row.wParam, row.lParam}};
        if (bSwallowed) expected.clear();
        EXPECT_EQ(expected, t.tap->Of(row.uMsg));
    }
}
INSTANTIATE_TEST_SUITE_P(
    Each, CSEditReadOnly,
    testing::Values(ReadOnlyCase{"DeleteDown", WM_KEYDOWN, VK_DELETE, 1, true},
                    ReadOnlyCase{"DeleteUp", WM_KEYUP, VK_DELETE, 1, true},
                    ReadOnlyCase{"DeleteInTheLowWord", WM_KEYDOWN, 0x5002E, 1, true},
                    ReadOnlyCase{"DeleteInTheHighWord", WM_KEYDOWN, 0x2E0000, 1, false},
                    ReadOnlyCase{"BackspaceDown", WM_KEYDOWN, VK_BACK, 1, false},
                    ReadOnlyCase{"BackspaceUp", WM_KEYUP, VK_BACK, 1, false},
                    ReadOnlyCase{"ArrowDown", WM_KEYDOWN, VK_LEFT, 1, false},
                    ReadOnlyCase{"Letter", WM_CHAR, L'a', 1, true},
                    ReadOnlyCase{"Point", WM_CHAR, L'.', 1, true},
                    ReadOnlyCase{"BackspaceChar", WM_CHAR, VK_BACK, 1, true},
                    ReadOnlyCase{"ControlC", WM_CHAR, 3, 1, true},
                    ReadOnlyCase{"SystemDeleteDown", WM_SYSKEYDOWN, VK_DELETE, 1, false},
                    ReadOnlyCase{"Cut", WM_CUT, 0, 0, true},
                    ReadOnlyCase{"Paste", WM_PASTE, 0, 0, true},
                    ReadOnlyCase{"Copy", WM_COPY, 0, 0, false},
                    ReadOnlyCase{"Clear", WM_CLEAR, 0, 0, false},
                    ReadOnlyCase{"ReplaceSel", EM_REPLACESEL, 0, 0, false},
                    ReadOnlyCase{"Select", EM_SETSEL, 1, 2, false},
                    ReadOnlyCase{"SelectAll", EM_SETSEL, 0, -1, false},
                    ReadOnlyCase{"OwnMessage", WM_APP, 0x2E, 0, false}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSEdit, SoftReadOnlyLetsClearAndReplaceThrough) {
    Edits<> t;
    t.SetText(L"one two three");
    t.edit.SetReadOnly(1);
    t.edit.SetSel(0, 4);
    t.Send(WM_CLEAR);
    EXPECT_EQ(L"two three", WndText(t.Get()));
    t.edit.SetSel(0, 3);
    t.edit.ReplaceSel(L"2", 1);
    EXPECT_EQ(L"2 three", WndText(t.Get()));
    t.edit.Clear();
    EXPECT_EQ(L"", WndText(t.Get())) << "as the program does with WM_SETTEXT";
}

std::wstring ClipboardText() {
    std::wstring str;
    PumpUntil([] { return ::OpenClipboard(nullptr) != FALSE; });
    HGLOBAL hBlock = ::GetClipboardData(CF_UNICODETEXT);
    if (auto* psz = static_cast<const wchar_t*>(::GlobalLock(hBlock))) str = psz;
    ::GlobalUnlock(hBlock);
    ::CloseClipboard();
    return str;
}

TEST(CSEdit, SoftReadOnlyIsCopiedFrom) {
    Edits<> t;
    t.SetText(L"some text to copy");
    t.edit.SetReadOnly(1);
    t.edit.SetSel(5, 9);
    t.Send(WM_COPY);
    EXPECT_EQ(L"text", ClipboardText());
    t.Send(WM_CUT);
    t.Send(WM_PASTE);
    EXPECT_EQ(L"some text to copy", WndText(t.Get()));
}

TEST(CSEdit, SoftReadOnlyAgainstRealKeys) {
    Edits<> t(IDC_CTL_EDIT, 1);
    t.SetText(L"text");
    ASSERT_TRUE(FocusIn(t.dialog, t.Get()));
    t.edit.SetReadOnly(1);
    for (int nKey : {VK_HOME, VK_DELETE, int{'X'}, VK_END, VK_BACK, int{'Y'}, VK_LEFT}) {
        ASSERT_TRUE(SendKey(static_cast<WORD>(nKey)));
    }
    EXPECT_TRUE(PumpDialogUntil(t.dialog, [&] { return t.Selection() == std::pair(3, 3); }));
    EXPECT_EQ(L"text", WndText(t.Get()));
    t.edit.SetReadOnly(0);
    ASSERT_TRUE(SendKey(VK_DELETE));
    EXPECT_TRUE(PumpDialogUntil(t.dialog, [&] { return WndText(t.Get()) == L"tex"; }));
}

// The block of the select-all

struct SelectCase {
    const char* pszName;
    WPARAM wParam;
    LPARAM lParam;
    bool bSwallowed;
};
using CSEditSelAll = SharedBy<Edits<>, SelectCase>;
TEST_P(CSEditSelAll, IsBlockedOnce) {
    auto& row = GetParam();
    auto& t = Get();
    t.AnswerAll(EM_SETSEL, 4711);
    t.edit.BlockNextSelAll(1);
    EXPECT_EQ(row.bSwallowed ? 0 : 4711, t.Send(EM_SETSEL, row.wParam, row.lParam));
    EXPECT_EQ(0, t.edit.blockSelAll) << "in every case";
    EXPECT_EQ(row.bSwallowed ? 0 : 1, t.tap->Count(EM_SETSEL));
    EXPECT_EQ(4711, t.Send(EM_SETSEL, 0, -1)) << "the next one gets through";
    EXPECT_EQ(4711, t.Send(EM_SETSEL, row.wParam, row.lParam));
}
INSTANTIATE_TEST_SUITE_P(Each, CSEditSelAll,
                         testing::Values(SelectCase{"All", 0, -1, true},
                                         SelectCase{"Some", 2, 5, false},
                                         SelectCase{"ToTheEnd", 1, -1, false},
                                         SelectCase{"FromTheStart", 0, 3, false},
                                         SelectCase{"Nothing", 0, 0, false},
                                         SelectCase{"None", static_cast<WPARAM>(-1), 0, false}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSEdit, OtherMessagesLeaveTheBlock) {
    Edits<> t;
    t.edit.BlockNextSelAll(1);
    t.SetText(L"text");
    int nStart = 0, nEnd = 0;
    t.edit.GetSel(nStart, nEnd);
    EXPECT_EQ(1, t.edit.blockSelAll);
    EXPECT_EQ(0, t.Send(EM_SETSEL, 0, -1));
    EXPECT_EQ(0, t.tap->Count(EM_SETSEL));
}

TEST(CSEdit, TabSelectsAllUnlessBlocked) {
    Edits<> t(IDC_CTL_EDIT, 1);
    t.SetText(L"some text");
    ASSERT_TRUE(FocusIn(t.dialog, ::GetDlgItem(t.dialog, IDC_CTL_OTHER_EDIT)));
    t.edit.SetSel(2, 4);
    t.edit.BlockNextSelAll(1);
    ASSERT_TRUE(SendKey(VK_TAB));
    ASSERT_TRUE(PumpDialogUntil(t.dialog, [&] { return ::GetFocus() == t.Get(); }));
    EXPECT_TRUE(PumpDialogUntil(t.dialog, [&] { return t.edit.blockSelAll == 0; }));
    EXPECT_EQ(std::pair(2, 4), t.Selection());
    ASSERT_NE(nullptr, ::SetFocus(::GetDlgItem(t.dialog, IDC_CTL_OTHER_EDIT)));
    ASSERT_TRUE(SendKey(VK_TAB));
    EXPECT_TRUE(PumpDialogUntil(t.dialog, [&] { return t.Selection() == std::pair(0, 9); }));
}

TEST(CSEdit, WithoutAWindowNothingHappens) {
    CSMultiLineEdit edit;
    int nStart = 3, nEnd = 4;
    edit.Clear();
    edit.GetSel(nStart, nEnd);
    edit.SetSel(0, -1);
    edit.ReplaceSel(L"x", 1);
    EXPECT_EQ(0, edit.IsModified());
    EXPECT_EQ(0, edit.GetPasswordChar());
    EXPECT_EQ(0, edit.GetLineCount());
    EXPECT_EQ(0, edit.ShowBalloon(L"a", L"b", 0));
    EXPECT_EQ(0, edit.HideBalloon());
}
} // namespace
