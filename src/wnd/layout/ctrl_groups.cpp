// Groups of controls that can be folded away.

#include "wnd/dialog/csdlg.h"
#include "wnd/layout/coordinates.h"
#include "wnd/layout/ctrl_place.h"

#include <algorithm>
#include <new>

namespace {
unsigned int GetCtrlId(HWND hwndCtl) { return static_cast<unsigned int>(::GetDlgCtrlID(hwndCtl)); }

/// Whether the control starts a group that is nested in the one that starts with nFirst.
bool StartsNestedGroup(const CSList& groups, unsigned int nId, unsigned int nFirst) {
    if (nId == nFirst) return false;
    for (POS pos = groups.GetHeadPos(); pos;) {
        const CSCtrlGroup* pGroup = static_cast<const CSCtrlGroup*>(groups.GetNext(pos));
        if (pGroup->firstId == nId && pGroup->parentGroupId == nFirst) return true;
    }
    return false;
}
} // namespace

int CSDlg::AddCtrlGroup(unsigned int nFirst, unsigned int nLast, unsigned int nContainer,
                        unsigned int nParentGroup) {
    ctrlGroupsMeasured = 0;
    CSCtrlGroup* pGroup =
        new (std::nothrow) CSCtrlGroup{nFirst, nLast, nContainer, nParentGroup, 0, 1};
    if (pGroup && ctrlGroups.AddTail(pGroup)) return 1;
    delete pGroup;
    return 0;
}

CSCtrlGroup* CSDlg::FindCtrlGroup(unsigned int nFirst, unsigned int nContainer) {
    for (POS pos = ctrlGroups.GetHeadPos(); pos;) {
        CSCtrlGroup* pGroup = static_cast<CSCtrlGroup*>(ctrlGroups.GetNext(pos));
        if (nFirst && pGroup->firstId == nFirst) return pGroup;
        if (nContainer && pGroup->containerId == nContainer) return pGroup;
    }
    return nullptr;
}

// A group's height is what moves when it is folded: it ends where the next control starts. The last
// group of a container, behind which the next container or nothing comes, ends with its container.
void CSDlg::MeasureCtrlGroups() {
    for (POS pos = ctrlGroups.GetHeadPos(); pos;) {
        CSCtrlGroup* pGroup = static_cast<CSCtrlGroup*>(ctrlGroups.GetNext(pos));
        RECT rcFirst, rcNext, rcEnd;
        if (!GetDlgItemRect(pGroup->firstId, &rcFirst)) continue; // nothing that could be folded
        bool bContainer = pGroup->containerId && GetDlgItemRect(pGroup->containerId, &rcEnd);
        if (!bContainer && !::GetClientRect(hWnd, &rcEnd)) continue;

        HWND hwndLast = GetDlgItem(static_cast<int>(pGroup->lastId));
        HWND hwndNext = hwndLast ? ::GetWindow(hwndLast, GW_HWNDNEXT) : nullptr;
        if (hwndNext && pGroup->containerId && FindCtrlGroup(0, GetCtrlId(hwndNext))) {
            hwndNext = nullptr;
        }
        int nEnd = rcEnd.bottom;
        if (::GetCtrlRect(hWnd, hwndNext, &rcNext)) {
            nEnd = bContainer ? std::min(rcNext.top, rcEnd.bottom) : rcNext.top;
        }
        pGroup->groupHeight = GetDistance(rcFirst.top, nEnd);
    }
    ctrlGroupsMeasured = 1;
}

int CSDlg::ShowCtrlGroup(unsigned int nFirst, int bShow, int bNested) {
    CSCtrlGroup* pFound = FindCtrlGroup(nFirst, 0);
    bShow = bShow != 0;
    if (!pFound || pFound->isShown == bShow) return 0;
    HWND hwndDlg = hWnd;
    ::InvalidateRect(hwndDlg, nullptr, FALSE);
    pFound->isShown = bShow;

    const CSCtrlGroup group = *pFound; // a handler of a control may end the dialog on the way
    int nShift = bShow ? group.groupHeight : -group.groupHeight;
    HWND hwndFirst = GetDlgItem(static_cast<int>(nFirst)), hwndLast = nullptr;
    // A group whose last control does not exist goes on to the last of the siblings.
    for (HWND hwndCtl = hwndFirst; hwndCtl; hwndCtl = ::GetWindow(hwndCtl, GW_HWNDNEXT)) {
        hwndLast = hwndCtl;
        unsigned int nId = GetCtrlId(hwndCtl);
        if (StartsNestedGroup(ctrlGroups, nId, nFirst)) {
            nShift = AddCoordinates(nShift, ShowCtrlGroup(nId, bShow, 1));
        } else {
            ::ShowWindow(hwndCtl, bShow ? SW_SHOW : SW_HIDE);
            ::EnableWindow(hwndCtl, bShow);
        }
        if (!::IsWindow(hwndDlg)) return 0;
        if (nId == group.lastId) break;
    }
    // The outer call moves what stands below by all heights at once.
    if (bNested || !hwndLast) return nShift;

    if (group.containerId) ResizeCtrl(group.containerId, 0, nShift, 1);
    if (!::IsWindow(hwndDlg)) return 0;
    if (bShow) EnsureDlgItemVisible(hwndLast);
    for (HWND hwndCtl = hwndLast; (hwndCtl = ::GetWindow(hwndCtl, GW_HWNDNEXT)) != nullptr;) {
        ::MoveCtrl(hwndDlg, hwndCtl, 0, nShift, 1);
    }
    if (!::IsWindow(hwndDlg)) return 0;
    EnsureDlgItemVisible(hwndFirst);
    return nShift;
}
