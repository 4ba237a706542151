// Real controls in a real dialog, with real keys; and a dialog over a window of another process.
#include "support/input.h"
#include "support/program_folder.h"
#include "support/start_process.h"
#include "support/test_window.h"
#include "wnd/dialog/probe_dlg.h"

#include <thread>

namespace {
/// Presses keys while the test's thread runs the dialog: each when the dialog is ready for it.
class KeyDriver {
  public:
    KeyDriver() : dwThread(::GetCurrentThreadId()) {}
    ~KeyDriver() {
        if (thread.joinable()) thread.join();
    }
    KeyDriver(const KeyDriver&) = delete;
    KeyDriver& operator=(const KeyDriver&) = delete;

    void Start(std::function<void(KeyDriver&)> fn) {
        thread = std::thread([this, fn = std::move(fn)] { fn(*this); });
    }
    /// The id of the item with the focus.
    int FocusId() const {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        return ::GetGUIThreadInfo(dwThread, &info) && info.hwndFocus
                   ? ::GetDlgCtrlID(info.hwndFocus)
                   : -1;
    }
    bool WaitForFocus(int nId) const {
        return WaitUntil([&] { return FocusId() == nId; }, 5000);
    }

  private:
    DWORD dwThread;
    std::thread thread;
};

/// Runs the dialog of all kinds of items modally and has keys pressed; ends by itself.
int RunWithKeys(ProbeDlg& dlg, std::function<void(KeyDriver&)> fn) {
    KeyDriver driver;
    dlg.bStayOpen = true;
    return static_cast<int>(
        dlg.RunModal([&](ProbeDlg&) { driver.Start(std::move(fn)); }, IDD_DIALOG_TABS));
}

TEST(CSDlgKeyboard, TabWalksTheItemsInTheirOrderAndRoundAgain) {
    ProbeDlg dlg;
    std::vector<int> walked;
    RunWithKeys(dlg, [&](KeyDriver& driver) {
        driver.WaitForFocus(IDC_EDIT);
        for (int nId : {IDC_CHECK, IDC_RADIO_1, IDC_COMBO, IDC_LIST, IDC_LIST_VIEW, IDC_BUTTON,
                        IDOK, IDCANCEL, IDC_EDIT}) {
            SendKey(VK_TAB);
            if (!driver.WaitForFocus(nId)) break;
            walked.push_back(nId);
        }
        SendKey(VK_ESCAPE);
    });
    EXPECT_EQ((std::vector<int>{IDC_CHECK, IDC_RADIO_1, IDC_COMBO, IDC_LIST, IDC_LIST_VIEW,
                                IDC_BUTTON, IDOK, IDCANCEL, IDC_EDIT}),
              walked);
    EXPECT_EQ(2, dlg.result);
    EXPECT_EQ(1, dlg.record.Count("OnCancel"));
}

TEST(CSDlgKeyboard, ReturnIsTheDefaultButton) {
    ProbeDlg dlg;
    EXPECT_EQ(1, RunWithKeys(dlg, [](KeyDriver& driver) {
                  driver.WaitForFocus(IDC_EDIT);
                  SendKey(VK_RETURN);
              }));
    EXPECT_EQ("OnButtonClicked 1; OnOK", dlg.record.Only({"OnButtonClicked", "OnOK"}));
}

TEST(CSDlgKeyboard, ReturnOnAButtonIsThatButton) {
    ProbeDlg dlg;
    RunWithKeys(dlg, [&](KeyDriver& driver) {
        driver.WaitForFocus(IDC_EDIT);
        dlg.PostMsg(WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(::GetDlgItem(dlg.hWnd, IDC_BUTTON)),
                    TRUE);
        driver.WaitForFocus(IDC_BUTTON);
        SendKey(VK_RETURN);
        WaitUntil([&] { return driver.FocusId() != IDC_BUTTON; }, 50);
        SendKey(VK_ESCAPE);
    });
    EXPECT_EQ(1, dlg.record.Count("OnButtonClicked 1006"));
    EXPECT_EQ(0, dlg.record.Count("OnOK"));
}

TEST(CSDlgKeyboard, SpaceChecksAndArrowsChooseAmongRadioButtonsAndInTheCombo) {
    ProbeDlg dlg;
    dlg.onInit = [](ProbeDlg& d) {
        for (const wchar_t* psz : {L"one", L"two"}) {
            d.SendDlgItemMsg(IDC_COMBO, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(psz));
        }
    };
    unsigned bChecked = 0;
    int nRadio = 0;
    dlg.onCanClose = [&](ProbeDlg& d) {
        bChecked = d.IsDlgButtonChecked(IDC_CHECK);
        nRadio = d.GetCheckedRadioButton(IDC_RADIO_1, IDC_RADIO_2);
    };
    RunWithKeys(dlg, [](KeyDriver& driver) {
        driver.WaitForFocus(IDC_EDIT);
        SendKey(VK_TAB);
        driver.WaitForFocus(IDC_CHECK);
        SendKey(VK_SPACE);
        SendKey(VK_TAB);
        driver.WaitForFocus(IDC_RADIO_1);
        SendKey(VK_DOWN);
        driver.WaitForFocus(IDC_RADIO_2);
        SendKey(VK_TAB);
        driver.WaitForFocus(IDC_COMBO);
        SendKey(VK_DOWN);
        SendKey(VK_TAB);
        driver.WaitForFocus(IDC_LIST);
        SendKey(VK_ESCAPE);
    });
    EXPECT_EQ(1u, bChecked);
    EXPECT_EQ(IDC_RADIO_2, nRadio);
    EXPECT_EQ(1, dlg.record.Count("OnComboSelChanged 1008"));
    EXPECT_LT(0, dlg.record.Count("OnButtonClicked 1002"));
}

TEST(CSDlgKeyboard, F1AsksForHelp) {
    ProbeDlg dlg;
    dlg.bQuietHelp = true;
    RunWithKeys(dlg, [&](KeyDriver& driver) {
        driver.WaitForFocus(IDC_EDIT);
        SendKey(VK_F1);
        SendKey(VK_ESCAPE);
    });
    EXPECT_EQ(1, dlg.record.Count("OnHelp 1000"));
}

TEST(CSDlgKeyboard, TypedTextReachesTheEdit) {
    ProbeDlg dlg;
    std::wstring strText;
    dlg.onCanClose = [&](ProbeDlg& d) { strText = ItemText(d, IDC_EDIT); };
    RunWithKeys(dlg, [](KeyDriver& driver) {
        driver.WaitForFocus(IDC_EDIT);
        for (WORD w : {'A', 'B', '7'}) SendKey(w);
        SendKey(VK_RETURN);
    });
    EXPECT_EQ(L"ab7", strText);
}

/// A program that shows a window until it is closed.
class OtherProgram {
  public:
    OtherProgram() {
        strTitle = L"owner " + std::to_wstring(::GetCurrentProcessId());
        std::wstring strProgram = ProgramFolder() + L"owner_probe.exe";
        std::wstring strLine = L"\"" + strProgram + L"\" \"" + strTitle + L"\"";
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        if (!StartProcessSurely(strProgram.c_str(), strLine.data(), nullptr, nullptr, FALSE, 0,
                                nullptr, nullptr, &si, &pi)) {
            return;
        }
        PumpUntil([this] {
            hwnd = ::FindWindowW(nullptr, strTitle.c_str());
            return hwnd != nullptr && ::IsWindowVisible(hwnd);
        });
    }
    ~OtherProgram() {
        if (hwnd) ::PostMessageW(hwnd, WM_CLOSE, 0, 0);
        if (!pi.hProcess) return;
        if (::WaitForSingleObject(pi.hProcess, kTestDeadlineMs) != WAIT_OBJECT_0) {
            ADD_FAILURE() << "the owner's program has not ended";
            ::TerminateProcess(pi.hProcess, 1);
        }
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    HWND hwnd = nullptr;

  private:
    std::wstring strTitle;
    PROCESS_INFORMATION pi{};
};

TEST(CSDlgForeignOwner, ModalRunsOverAWindowOfAnotherProcess) {
    OtherProgram other;
    ASSERT_NE(nullptr, other.hwnd);
    ProbeDlg dlg;
    EXPECT_EQ(7, dlg.RunModal(
                     [&](ProbeDlg& d) {
                         EXPECT_EQ(other.hwnd, d.hParent);
                         EXPECT_EQ(other.hwnd, ::GetWindow(d, GW_OWNER));
                         EXPECT_FALSE(::IsWindowEnabled(other.hwnd));
                     },
                     IDD_DIALOG_PLAIN, other.hwnd));
    EXPECT_TRUE(::IsWindowEnabled(other.hwnd));
}

TEST(CSDlgForeignOwner, OwnLoopRunsOverAWindowOfAnotherProcess) {
    OtherProgram other;
    ASSERT_NE(nullptr, other.hwnd);
    ProbeDlg dlg;
    dlg.onInside = [&](ProbeDlg&) { EXPECT_FALSE(::IsWindowEnabled(other.hwnd)); };
    EXPECT_EQ(7, dlg.ModelessWithLoop(1, IDD_DIALOG_PLAIN, nullptr, other.hwnd, nullptr));
    EXPECT_TRUE(::IsWindowEnabled(other.hwnd));
    EXPECT_TRUE(WaitUntil([&] { return ::GetForegroundWindow() == other.hwnd; }));
}

TEST(CSDlgForeignOwner, HelpRequestDoesNotHangOnIt) {
    OtherProgram other;
    ASSERT_NE(nullptr, other.hwnd);
    ProbeDlg dlg;
    dlg.RunModal([](ProbeDlg& d) { d.OnHelp(nullptr); }, IDD_DIALOG_PLAIN, other.hwnd);
    EXPECT_EQ(0, dlg.record.Count("OnHtmlHelpError"));
}
} // namespace
