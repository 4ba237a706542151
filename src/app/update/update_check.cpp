#include "app/update/update_check.h"
#include "app/identity/product_info.h"
#include "app/instance/single_instance.h"
#include "app/launch/open_html.h"
#include "app/launch/run_file.h"
#include "app/update/dlg_update.h"
#include "app/update/send_http.h"
#include "app/update/update_reply.h"
#include "app/update/update_state.h"
#include "buttons/icon_btn.h"
#include "resources/resource_ids.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/msg.h"
#include "runtime/messages/wait_cursor.h"
#include "runtime/system/system_facts.h"
#include "runtime/text/str_copy.h"
#include "runtime/text/str_find.h"
#include "runtime/threads/synch.h"

#include <cstddef>

namespace {
constexpr const wchar_t* kObject = L"updates/index.php";
constexpr unsigned kMaxReply = 1024; // bytes
constexpr unsigned kTimeoutSeconds = 10;
constexpr unsigned kDaysAfterFailure = 1;

constexpr UINT kTellFlags = MB_OK | MB_ICONINFORMATION;
constexpr UINT kRetryFlags = MB_RETRYCANCEL | MB_ICONEXCLAMATION;

void FreeText(wchar_t* psz) { StrRealloc(psz, nullptr); }
using OwnedText = OwnedHandleOf<wchar_t*, &FreeText>;

int AskWhetherToCheck(HWND hwnd, UpdateState& state) {
    if (ActivatePrevDlg(DlgUpdateBase::kCheckNumber)) return 0;
    int bGetUpdate = 0;
    DlgCheckForUpdates dlg(static_cast<int>(state.dwFrequency), state.GetDaysSinceLastUpdate(),
                           &bGetUpdate, nullptr, hwnd);
    const int nResult = dlg.Show();
    if (nResult == IDOK && !dlg.bYes) {
        state.dwFrequency = static_cast<DWORD>(dlg.nFrequency);
        state.dwAutoCheck = static_cast<DWORD>(dlg.bAutoCheck);
        state.SetupNextUpdate();
        state.Write();
    }
    return bGetUpdate;
}

OwnedText AskServer() {
    CSWaitCursor wait;
    wchar_t szBody[kRequestSize];
    MakeUpdateRequest(szBody);
    return OwnedText(SendHttp(GetUpdateServer(), kObject, kMaxReply, szBody, kTimeoutSeconds));
}

/// How long to wait for the next check is the user's choice there. True if the update is wanted.
bool OfferUpdate(HWND hwnd, const wchar_t* pszReply, UpdateState& state) {
    UpdateIni update;
    update.ReadAll(pszReply, 0); // what has passed before it stopped counts
    update.DeleteParser();
    if (ActivatePrevDlg(DlgUpdateBase::kGetNumber)) return false;
    DlgGetUpdates dlg(static_cast<int>(state.dwFrequency), update.szDescription,
                      update.szUrlMoreInfo, nullptr, hwnd);
    const int nResult = dlg.Show();
    state.dwFrequency = static_cast<DWORD>(dlg.nFrequency);
    if (nResult != IDOK || !dlg.bYes) return false;
    if (*update.GetUrlToOpen()) OpenHTML(hwnd, update.GetUrlToOpen(), 0, 0);
    return true;
}

/// Whether to ask again, in a check for a person.
bool TellFailure(HWND hwnd, UpdateReply reply, const wchar_t* pszReply) {
    const int nAnswer = reply == UpdateReply::kNone ? Msg(hwnd, kRetryFlags, -IDS_NO_UPDATE_SERVER)
                                                    : MsgFmt(hwnd, kRetryFlags, -IDS_UPDATE_ERROR,
                                                             GetReplyDetail(pszReply));
    return nAnswer == IDRETRY;
}

/// One check, as often as the user has it tried. False if nothing usable came.
bool Check(HWND hwnd, bool bSilent, UpdateState& state, int* pbGetUpdate) {
    for (;;) {
        const OwnedText answer = AskServer();
        const UpdateReply reply = ReadUpdateReply(answer.Get());
        if (reply == UpdateReply::kNothingNew) {
            if (!bSilent) Msg(hwnd, kTellFlags, -IDS_NO_UPDATES);
            return true;
        }
        if (reply == UpdateReply::kUpdate) {
            const bool bWanted = OfferUpdate(hwnd, answer.Get(), state);
            if (bWanted && pbGetUpdate) *pbGetUpdate = 1;
            return true;
        }
        if (bSilent || !TellFailure(hwnd, reply, answer.Get())) return false;
    }
}
} // namespace

int CheckForUpdates(HWND hwnd) {
    EventSimple running(kCheckEventName, 0, 0);
    if (!running.IsReady() || running.HasExisted()) return 0;
    if (ActivatePrevDlg(DlgUpdateBase::kCheckNumber)) return 0;
    UpdateState state;
    state.Read();
    if (state.IsDisabled()) return 0;
    if (!state.dwNextUpdate) {
        state.SetupNextUpdate();
        state.Write();
        return 0;
    }
    if (GetCurTime() <= state.dwNextUpdate) return 0;
    if (!state.dwAutoCheck) return AskWhetherToCheck(hwnd, state);
    RunLocalFile(hwnd, GetMyProductInfo().GetAutoUpdateFile(), kSilentCheckSwitch, nullptr);
    return 0;
}

int DoCheckForUpdates(HWND hwnd, int* pbGetUpdate, const wchar_t* pszSwitch) {
    const bool bSilent = pszSwitch != nullptr;
    if (bSilent && !StrIsSame(pszSwitch, kSilentCheckSwitch, 1)) return 0;
    UpdateState state;
    state.Read();
    if (Check(hwnd, bSilent, state, pbGetUpdate)) {
        state.SetupLastUpdate(0);
        state.SetupNextUpdate();
    } else {
        state.SetupNextUpdate(kDaysAfterFailure);
    }
    state.Write();
    return 1;
}

int DoCheckForUpdatesCmdln(const wchar_t* pszSwitch, int bForce) {
    const bool bSilent = StrIsSame(pszSwitch, kSilentCheckSwitch, 1) != 0;
    if (!bSilent && !StrIsSame(pszSwitch, kCheckSwitch, 1)) return 0;
    IconBtn::Initialize(kIconCenterVertically | kIconLink, 2, 0); // the dialogs' close button
    ScopeExit uninitialize([] { IconBtn::Uninitialize(); });
    if (bForce) {
        EnforceCheckForUpdates(kCheckDaily | kForceFrequency | kForceAutoCheck | kForceAutoCheckOn);
    }
    DoCheckForUpdates(nullptr, nullptr, bSilent ? pszSwitch : nullptr);
    return 1;
}
