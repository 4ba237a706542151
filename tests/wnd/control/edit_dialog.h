#pragma once
#include "wnd/control/csedit.h"
#include "wnd/control/ctrl_dialog.h"

#include <windows.h>
#include <gtest/gtest.h>
#include <optional>
#include <utility>

/// A dialog whose edit is tied to an object, with a tap below that.
template <class Base = CSEdit>
struct Edits {
    explicit Edits(int nId = IDC_CTL_EDIT, int nShow = 0) {
        dialog.onInit = [this, nId] {
            tap.emplace(::GetDlgItem(dialog, nId));
            edit.Init(&dialog, static_cast<unsigned>(nId), nullptr, 0);
        };
        EXPECT_TRUE(dialog.Run(IDD_EDITS, nShow));
        tap->seen.clear();
    }
    void Reset() {
        tap->answer = nullptr;
        tap->seen.clear();
        edit.SetReadOnly(0);
        edit.BlockNextSelAll(0);
    }
    HWND Get() const { return edit.hWnd; }
    LRESULT Send(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return ::SendMessageW(Get(), uMsg, wParam, lParam);
    }
    void SetText(LPCWSTR psz) const { ::SetWindowTextW(Get(), psz); }
    std::pair<int, int> Selection() const {
        DWORD dwStart = 0, dwEnd = 0;
        Send(EM_GETSEL, reinterpret_cast<WPARAM>(&dwStart), reinterpret_cast<LPARAM>(&dwEnd));
        return {static_cast<int>(dwStart), static_cast<int>(dwEnd)};
    }
    void AnswerAll(UINT uMsg, LRESULT lResult) {
        tap->answer = [=](UINT u, WPARAM, LPARAM) {
            return u == uMsg ? std::optional<LRESULT>(lResult) : std::nullopt;
        };
    }

    struct : Recorded<Base> {
        using Base::blockSelAll;
        HBRUSH Brush() const { return this->editBrush.Get(); }
        using Base::readOnly;
    } edit;
    std::optional<MessageTap> tap;
    CtrlDialog dialog;
};
