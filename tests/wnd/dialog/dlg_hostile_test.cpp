// What other programs can do to a dialog.
#include "support/program_folder.h"
#include "support/start_process.h"
#include "wnd/core/company_msg.h"
#include "wnd/dialog/html_help.h"
#include "wnd/dialog/probe_dlg.h"

namespace {
/// Has another program post a message, and waits for that program; whether it could.
bool PostFromOutside(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    std::wstring strLine = L"\"" + ProgramFolder() + L"post_probe.exe\"";
    for (unsigned long long n :
         {reinterpret_cast<unsigned long long>(hwnd), static_cast<unsigned long long>(uMsg), wParam,
          static_cast<unsigned long long>(lParam)}) {
        strLine += L' ' + std::to_wstring(n);
    }
    return RunToEnd(strLine);
}

TEST(CSDlgHostile, AnotherProgramMayCloseADialogLikeItsUser) {
    ProbeDlg dlg;
    dlg.bStayOpen = true;
    EXPECT_EQ(2, dlg.RunModal([](ProbeDlg& d) {
        EXPECT_TRUE(PostFromOutside(d, WM_COMMAND, IDCANCEL, 0));
    }));
}

TEST(CSDlgHostile, HelpRequestsOfAnotherProgramAreNotFollowed) {
    ProbeDlg dlg;
    dlg.pages[0] = L"page.htm";
    dlg.bStayOpen = true;
    EXPECT_EQ(2, dlg.RunModal([](ProbeDlg& d) {
        // Pointers that are none, odd ones, and one into the program's code.
        auto* pCode = reinterpret_cast<void*>(&PostFromOutside);
        for (LPARAM l : {LPARAM{0}, LPARAM{1}, LPARAM{8}, LPARAM{-8}, LPARAM{0x7FFF12345678},
                         reinterpret_cast<LPARAM>(pCode) & ~LPARAM{15}}) {
            PostFromOutside(d, GetMyCompanyMsgId(), kMsgHelpRequest, l);
        }
        PostFromOutside(d, WM_COMMAND, IDCANCEL, 0);
    }));
    EXPECT_LT(0, dlg.record.Count("OnMyCompanyMsg 100 1")) << "it came";
}

TEST(CSDlgHostile, PropertyOfTheDialogMayHoldAnything) {
    ProbeDlg dlg, other;
    ASSERT_NE(nullptr, dlg.Modeless(IDD_DIALOG_HIDDEN, nullptr, nullptr, 0));
    int nGarbage[64] = {};
    for (void* p : {reinterpret_cast<void*>(1), static_cast<void*>(nGarbage),
                    reinterpret_cast<void*>(0x7FFF12345678), static_cast<void*>(&other)}) {
        ::SetPropW(dlg, L"CSDLG", p);
        ::SendMessageW(dlg, WM_COMMAND, IDC_DIALOG_BUTTON, 0);
        EXPECT_EQ("", other.record.Only({"OnCommand"}));
    }
    ::SetPropW(dlg, L"CSDLG", static_cast<CSDlg*>(&dlg));
    dlg.record.log.clear();
    ::SendMessageW(dlg, WM_COMMAND, IDC_DIALOG_BUTTON, 0);
    EXPECT_EQ(1, dlg.record.Count("OnCommand 1006 0 0"));
    dlg.Destroy();
}

TEST(CSDlgHostile, MessagesAsAnyProgramMaySendThem) {
    OpenDlg dlg(IDD_DIALOG_FEW);
    dlg.nCanClose = 0;
    dlg.bQuietHelp = true;
    for (WPARAM w : {WPARAM{0}, WPARAM{1}, WPARAM{0xFFFF}, WPARAM{0xFFFFFFFFFFFFFFFF}}) {
        ::SendMessageW(dlg, WM_COMMAND, w, 0x12345);
        ::SendMessageW(dlg, WM_COMMAND, w, -1);
        ::SendMessageW(dlg, WM_TIMER, w, 0);
        ::SendMessageW(dlg, WM_MOUSELEAVE, w, -1);
        ::SendMessageW(dlg, WM_SHOWWINDOW, w, -1);
        ::SendMessageW(dlg, WM_SYSCOMMAND, SC_CLOSE | (w & 15), -1);
        for (WPARAM nCode : {WPARAM{3}, WPARAM{121}, WPARAM{0xFFFFFFFF}}) {
            SendMyCompanyMsg(dlg, nCode, static_cast<LPARAM>(w));
        }
    }
    PumpUntil([] { return true; });
    EXPECT_TRUE(::IsWindow(dlg));
    EXPECT_EQ(&dlg, CSWnd::FromHandle(dlg.hWnd));
}

TEST(CSDlgHostile, DrawnItemsOfForeignIdsDoNothing) {
    OpenDlg dlg(IDD_DIALOG_FEW);
    DRAWITEMSTRUCT draw{};
    for (WPARAM w : {WPARAM{0}, WPARAM{IDC_DIALOG_NO_ITEM}, WPARAM{0xFFFF},
                     WPARAM{0xFFFFFFFFFFFFFFFF}, WPARAM{0x100000000 + IDC_DIALOG_BUTTON}}) {
        for (UINT uMsg : {WM_DRAWITEM, WM_MEASUREITEM, WM_DELETEITEM}) {
            EXPECT_EQ(1, dlg.Handle(uMsg, w, reinterpret_cast<LPARAM>(&draw)));
        }
    }
}

TEST(CSDlgHostile, SecondInitialisationMakesNoSecondObjects) {
    OpenDlg dlg(IDD_DIALOG_FEW);
    CSCtrl* pCtrl = dlg.GetDlgCtrl(IDC_DIALOG_EDIT);
    ::SendMessageW(dlg, WM_INITDIALOG, 0, 0);
    EXPECT_EQ(pCtrl, dlg.GetDlgCtrl(IDC_DIALOG_EDIT));
}
} // namespace
