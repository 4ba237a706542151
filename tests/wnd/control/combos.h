#pragma once
#include "support/input.h"
#include "wnd/control/control_ids.h"
#include "wnd/control/cscombo.h"
#include "wnd/control/ctrl_dialog.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <functional>
#include <optional>
#include <string>
#include <vector>

constexpr int kEditInside = 1001; // the platform's id
constexpr unsigned kTextSet = 0x63;

/// An editable combo box that writes down what its edit field gets.
struct Combo : Recorded<CSCombo> {
    int OnEditCtrlMsg(unsigned int uMsg, unsigned __int64 wParam, __int64 lParam,
                      __int64* plResult) override {
        editMessages.push_back(uMsg);
        if (plResult) lResultBefore = *plResult;
        if (onEdit && onEdit(uMsg, wParam, lParam, plResult)) return 1;
        return CSCombo::OnEditCtrlMsg(uMsg, wParam, lParam, plResult);
    }
    int CountEdit(UINT uMsg) const {
        int n = 0;
        for (UINT u : editMessages) n += u == uMsg;
        return n;
    }
    HWND Edit() const { return static_cast<HWND>(editCtrl); }
    const CSCombo* Owner() const { return editCtrl.owner; }

    std::vector<UINT> editMessages;
    __int64 lResultBefore = -1;
    std::function<bool(UINT, WPARAM, LPARAM, __int64*)> onEdit;
    using CSCombo::blockEditText;
    using CSCombo::editCtrl;
    using CSCombo::keepEditText;
};

/// Such a box with three items in a dialog, what its windows get, and what the dialog hears of it.
struct Combos {
    explicit Combos(int nId = IDC_CTL_COMBO, int nShow = 0) {
        dialog.onInit = [this, nId] {
            HWND hwnd = ::GetDlgItem(dialog, nId);
            hwndEdit = ::GetDlgItem(hwnd, kEditInside);
            tap.emplace(hwnd);
            if (hwndEdit) editTap.emplace(hwndEdit);
            combo.Init(&dialog, static_cast<unsigned>(nId), nullptr, 0);
        };
        dialog.onCommand = [this](unsigned nIdFrom, unsigned nCode, HWND hwnd) {
            codes.push_back(nCode);
            if (nCode == kTextSet && nIdFrom == combo.GetID() && hwnd == combo.hWnd) ++nTextsSet;
        };
        EXPECT_TRUE(dialog.Run(IDD_COMBOS, nShow));
        for (auto* psz : {L"apple", L"banana", L"cherry"}) combo.AddStr(psz);
        TakePosted();
        tap->seen.clear();
    }
    void Reset() {
        tap->answer = nullptr;
        tap->seen.clear();
    }
    /// Dispatches what is posted; how many texts that told of.
    int TakePosted() {
        nTextsSet = 0;
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
        return nTextsSet;
    }
    std::wstring Text() const { return WndText(hwndEdit); }
    bool IsOpen() const { return ::SendMessageW(combo.hWnd, CB_GETDROPPEDSTATE, 0, 0) != 0; }
    template <class Fn>
    bool Pump(Fn fnDone) {
        return PumpDialogUntil(dialog, fnDone);
    }
    /// Types into the empty field with real keys.
    bool Type(const std::string& strLetters) {
        if (!FocusIn(dialog, combo.hWnd)) return false;
        for (char ch : strLetters) SendKey(static_cast<WORD>(ch - 'a' + 'A'));
        return Pump([&] { return Text() == std::wstring(strLetters.begin(), strLetters.end()); });
    }
    bool Press(WORD wKey, bool bOpen) {
        return SendKey(wKey) && Pump([&] { return IsOpen() == bOpen; });
    }
    int Command(unsigned short nCode) {
        __int64 lResult = 77;
        int nReturn = static_cast<CSCombo&>(combo).CSCombo::OnCommand(nCode, &lResult);
        EXPECT_EQ(77, lResult);
        return nReturn;
    }

    Combo combo;
    std::optional<MessageTap> tap, editTap;
    HWND hwndEdit = nullptr;
    std::vector<unsigned> codes;
    int nTextsSet = 0;
    CtrlDialog dialog;
};
