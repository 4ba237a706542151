#include "icons/snapshots/auto_arrange.h"
#include "icons/agent/desktop_folder_view.h"
#include "runtime/messages/msg.h"
#include "runtime/threads/co_init.h"

#include <windows.h>
#include <commctrl.h> // LVS_AUTOARRANGE

namespace {
constexpr const wchar_t* kAutoArrangeQuestion =
    L"Your Desktop is currently set to auto arrange the icons. In order to restore the icons, the "
    L"auto arrange option needs to be cleared.\n\nOK to clear this option? (If you select No, the "
    L"icons will NOT be restored.)";

bool IsArrangedByListView(HWND hwndListView) {
    return ::GetWindowLongPtrW(hwndListView, GWL_STYLE) & LVS_AUTOARRANGE;
}

/// The style of a list view that belongs to another process can be written like one's own.
void ClearInListView(HWND hwndListView) {
    LONG_PTR dwStyle = ::GetWindowLongPtrW(hwndListView, GWL_STYLE);
    if (!(dwStyle & LVS_AUTOARRANGE)) return;
    ::SetWindowLongPtrW(hwndListView, GWL_STYLE, dwStyle & ~static_cast<LONG_PTR>(LVS_AUTOARRANGE));
}

// The folder view is found anew after the question: the shell may have started again meanwhile.

bool IsArrangedByFolderView(HWND hwndListView) {
    if (!IsFolderViewInCharge()) return false;
    CoInit com; // before the view, so that it ends after it
    OwnedInterface<IFolderView2> view = FindDesktopFolderView2(::GetParent(hwndListView));
    DWORD dwFlags = FWF_NONE;
    if (!view || FAILED(view.Get()->GetCurrentFolderFlags(&dwFlags))) return false;
    return dwFlags & FWF_AUTOARRANGE;
}

void ClearInFolderView(HWND hwndListView) {
    if (!IsFolderViewInCharge()) return;
    CoInit com;
    OwnedInterface<IFolderView2> view = FindDesktopFolderView2(::GetParent(hwndListView));
    if (view) view.Get()->SetCurrentFolderFlags(FWF_AUTOARRANGE, FWF_NONE);
}
} // namespace

bool IsAutoArranged(HWND hwndListView) {
    return IsArrangedByListView(hwndListView) || IsArrangedByFolderView(hwndListView);
}

bool AskToStopAutoArrange() {
    return Msg(nullptr, MB_YESNO | MB_ICONEXCLAMATION, kAutoArrangeQuestion) == IDYES;
}

void StopAutoArrange(HWND hwndListView) {
    ClearInListView(hwndListView);
    ClearInFolderView(hwndListView);
}

bool ClearAutoArrange(HWND hwndListView) {
    if (!IsAutoArranged(hwndListView)) return true;
    if (!AskToStopAutoArrange()) return false;
    StopAutoArrange(hwndListView);
    return true;
}
