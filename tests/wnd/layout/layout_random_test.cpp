#include "wnd/layout/ctrl_place.h"
#include "wnd/layout/fake_monitors.h"
#include "wnd/layout/layout_probe.h"
#include "wnd/layout/wnd_place.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>

namespace {
constexpr int kFirstItem = 1200, kItems = 8, kReach = 1500;
// Together 100,000 operations: a step of sizes is three, one of groups some ten.
constexpr int kCtrlSteps = 20000, kSizeSteps = 22000, kGroupSteps = 1500;

/// Operations on the items of a hidden dialog, and what they should come to.
class ItemModel {
  public:
    explicit ItemModel(unsigned nSeed) : random(nSeed) {
        dlg.Make(IDD_LAYOUT_EMPTY);
        rcClient = ClientRect(dlg);
        for (int i = 0; i < kItems; ++i) {
            RECT rc = {Draw(0, 300), Draw(0, 300), 0, 0};
            rc.right = rc.left + Draw(0, 100);
            rc.bottom = rc.top + Draw(0, 100);
            rects.push_back(rc);
            hwnds.push_back(dlg.AddItem(kFirstItem + i, rc));
        }
    }
    void Step() {
        const int i = Draw(0, kItems - 1), j = Draw(0, kItems - 1), bFlag = Draw(0, 1);
        const int dx = Toward(rects[i].left), dy = Toward(rects[i].top);
        const int dw = Draw(-30, Width(rects[i]) > 300 ? 0 : 30);
        const int dh = Draw(-30, Height(rects[i]) > 300 ? 0 : 30);
        const int nId = kFirstItem + i;
        switch (nOp = Draw(0, 11)) {
        case 0:
            bFlag ? void(MoveCtrl(dlg, hwnds[i], dx, dy, 1)) : dlg.MoveCtrl(nId, dx, dy, 0);
            Put(i, rects[i].left + dx, rects[i].top + dy, Width(rects[i]), Height(rects[i]));
            break;
        case 1:
            bFlag ? void(ResizeDlgItem(dlg, nId, dw, dh, 1)) : dlg.ResizeCtrl(nId, dw, dh, 0);
            Put(i, rects[i].left, rects[i].top, Width(rects[i]) + dw, Height(rects[i]) + dh);
            break;
        case 2:
            bFlag ? void(MoveResizeCtrl(dlg, hwnds[i], dx, dy, dw, dh, 1))
                  : dlg.MoveResizeCtrl(nId, dx, dy, dw, dh, 0);
            Put(i, rects[i].left + dx, rects[i].top + dy, Width(rects[i]) + dw,
                Height(rects[i]) + dh);
            break;
        case 3:
            CenterDlgItem(dlg, nId, bFlag, j == i ? 0 : kFirstItem + j);
            Center(i, bFlag, j == i ? rcClient : rects[j]);
            break;
        case 4:
            dlg.CenterCtrl(nId, bFlag, kFirstItem + j);
            Center(i, bFlag, rects[j]);
            break;
        case 5:
            bFlag ? dlg.MoveCtrlToSlot(nId, kFirstItem + j)
                  : dlg.MoveButtonToSlot(nId, kFirstItem + j);
            Put(i, rects[j].left, rects[j].top, Width(rects[i]), Height(rects[i]));
            break;
        case 6:
            dlg.MoveResizeCtrlToSlot(nId, kFirstItem + j);
            rects[i] = rects[j];
            break;
        case 7:
            dlg.MoveCtrlEdge(nId, kFirstItem + j, bFlag);
            if (bFlag) {
                Put(i, rects[i].left, rects[i].top, rects[j].right - rects[i].left,
                    Height(rects[i]));
            } else {
                Put(i, rects[j].left, rects[i].top, rects[i].right - rects[j].left,
                    Height(rects[i]));
            }
            break;
        case 8: CenterInSpan(i, bFlag); break;
        case 9: AlignRun(std::min(i, j), std::max(i, j), bFlag); break;
        case 10: ::ShowWindow(hwnds[i], bFlag ? SW_SHOWNA : SW_HIDE); break;
        default:
            // Nothing by which a missing item could be noticed.
            dlg.MoveResizeCtrl(kFirstItem + kItems + j, dx, dy, dw, dh, bFlag);
            break;
        }
        nTouched = i;
    }
    std::string Compare(bool bAll) {
        for (int i = bAll ? 0 : nTouched; i < (bAll ? kItems : nTouched + 1); ++i) {
            RECT rc = ChildRect(hwnds[i]);
            if (rc == rects[i]) continue;
            return "operation " + std::to_string(nOp) + " on " + std::to_string(i) + ": " +
                   testing::PrintToString(rc) + " for " + testing::PrintToString(rects[i]);
        }
        return "";
    }

  private:
    int Draw(int nLow, int nHigh) {
        return std::uniform_int_distribution<int>(nLow, nHigh)(random);
    }
    /// A distance that leads back when the place is far off.
    int Toward(int nPlace) {
        if (nPlace > kReach) return Draw(-200, 0);
        return nPlace < -kReach ? Draw(0, 200) : Draw(-60, 60);
    }
    void Put(int i, int x, int y, int cx, int cy) {
        rects[i] = {x, y, x + std::max(0, cx), y + std::max(0, cy)};
    }
    void Center(int i, int bHorizontal, const RECT& rcRef) {
        const int cx = Width(rects[i]), cy = Height(rects[i]);
        if (bHorizontal) {
            Put(i, rcRef.left + (Width(rcRef) - cx) / 2, rects[i].top, cx, cy);
        } else {
            Put(i, rects[i].left, rcRef.top + (Height(rcRef) - cy) / 2, cx, cy);
        }
    }
    void CenterInSpan(int i, int bHorizontal) {
        int nFrom = Draw(-10, 300), nTo = Draw(nFrom, nFrom + 200);
        if (Draw(0, 9) == 0) nFrom = nTo = -1;
        dlg.CenterDlgItem(kFirstItem + i, bHorizontal, nFrom, nTo);
        if (nFrom == -1 && nTo == -1) {
            nFrom = 0;
            nTo = bHorizontal ? rcClient.right : rcClient.bottom;
        }
        Center(i, bHorizontal, {nFrom, nFrom, nTo, nTo});
        if (bHorizontal) return;
        const int nTop = std::max<int>(rects[i].top, nFrom);
        Put(i, rects[i].left, nTop, Width(rects[i]), std::min<int>(rects[i].bottom, nTo) - nTop);
    }
    void AlignRun(int nFirst, int nLast, int bHorizontal) {
        dlg.AlignDlgItems(kFirstItem + nFirst, kFirstItem + nLast, bHorizontal);
        const RECT first = rects[nFirst], last = rects[nLast];
        const int dx = (rcClient.right - (last.right - first.left)) / 2 - first.left;
        const int dy = (rcClient.bottom - (last.bottom - first.top)) / 2 - first.top;
        for (int i = nFirst; i <= nLast; ++i) {
            ::OffsetRect(&rects[i], bHorizontal ? dx : 0, bHorizontal ? 0 : dy);
        }
    }

    std::mt19937 random;
    LayoutDlg dlg;
    RECT rcClient{};
    std::vector<HWND> hwnds;
    std::vector<RECT> rects;
    int nTouched = 0, nOp = 0;
};

TEST(LayoutRandom, ItemsStandWhereTheModelSays) {
    ItemModel model(20240917);
    for (int nStep = 0; nStep < kCtrlSteps; ++nStep) {
        model.Step();
        ASSERT_EQ("", model.Compare(nStep % 500 == 0)) << "step " << nStep;
    }
    ASSERT_EQ("", model.Compare(true));
}

TEST(LayoutRandom, SizesAreWhatTheModelSays) {
    std::mt19937 random(4711);
    auto Draw = [&](int nLow, int nHigh) {
        return std::uniform_int_distribution<int>(nLow, nHigh)(random);
    };
    constexpr unsigned long kSizing = kDlgResizeWidth | kDlgResizeHeight;
    constexpr unsigned long kFixed = kDlgFixedWidth | kDlgFixedHeight;
    FakeMonitors screen(FakeMonitors::Two());
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.MakeSizing());
    const SIZE smallest = {dlg.minWidth, dlg.minHeight};
    SIZE size = smallest;
    for (int nStep = 0; nStep < kSizeSteps; ++nStep) {
        SCOPED_TRACE(nStep);
        const unsigned long dwFlags = static_cast<unsigned long>(Draw(0, 15));
        const unsigned long dwAll = (dwFlags & 3) | (dwFlags & 12) << 2;
        int cx = Draw(-50, 600), cy = Draw(-50, 500);
        dlg.flags = dwAll | kDlgStartHidden;
        int nExpectedX = cx, nExpectedY = cy;
        if (dwAll & kSizing) {
            nExpectedX = dwAll & kDlgResizeWidth ? std::max<int>(cx, smallest.cx) : smallest.cx;
            nExpectedY = dwAll & kDlgResizeHeight ? std::max<int>(cy, smallest.cy) : smallest.cy;
        } else if ((dwAll & kFixed) && cx && cy) {
            if (dwAll & kDlgFixedWidth) nExpectedX = smallest.cx;
            if (dwAll & kDlgFixedHeight) nExpectedY = smallest.cy;
        }
        WINDOWPOS pos = dlg.AskChanging(cx, cy);
        ASSERT_EQ(nExpectedX, pos.cx) << dwAll;
        ASSERT_EQ(nExpectedY, pos.cy) << dwAll;
        if (nStep % 40 == 0) { // a real change, which is dearer
            dlg.flags = kSizing | kDlgStartHidden;
            dlg.ForgetLog();
            dlg.SetSize(cx, cy);
            const SIZE next = {std::max<LONG>(cx, smallest.cx), std::max<LONG>(cy, smallest.cy)};
            ASSERT_EQ(next.cx - size.cx, dlg.nSumDw);
            ASSERT_EQ(next.cy - size.cy, dlg.nSumDh);
            ASSERT_EQ(next.cx, dlg.curWidth);
            ASSERT_EQ(next.cy - smallest.cy, dlg.GetResizeData().cy);
            ASSERT_EQ(next.cx, Width(WindowRect(dlg)));
            size = next;
        }
        RECT rcClient = {0, 0, cx, cy};
        const int x = Draw(cx - 20, cx + 5), y = Draw(cy - 20, cy + 5);
        ASSERT_EQ(cx + cy - x - y < 16, dlg.IsPtInResizingCorner(x, y, rcClient) != 0);

        RECT rc = {Draw(-500, 2500), Draw(-500, 1000), 0, 0};
        rc.right = rc.left + Draw(0, 1500);
        rc.bottom = rc.top + Draw(0, 1200);
        MONITORINFO info{};
        info.cbSize = sizeof(info);
        ::GetMonitorInfoW(::MonitorFromRect(&rc, MONITOR_DEFAULTTONEAREST), &info);
        const RECT& rcWork = info.rcWork;
        RECT rcExpected = rc;
        ::OffsetRect(&rcExpected, std::min<int>(0, rcWork.right - rc.right),
                     std::min<int>(0, rcWork.bottom - rc.bottom));
        rcExpected.left = std::max(rcExpected.left, rcWork.left);
        rcExpected.top = std::max(rcExpected.top, rcWork.top);
        FitRectToNearestMonitor(&rc);
        ASSERT_EQ(rcExpected, rc);
    }
}

TEST(LayoutRandom, GroupsStandWhereTheModelSays) {
    // Ten items of 10 pixels each, 20 apart. The third group lies in the second one.
    struct Group {
        int nFirst, nLast, nParent, nHeight;
        bool bShown;
    };
    std::vector<Group> groups = {{1, 2, -1, 40, true}, {4, 7, -1, 80, true}, {5, 6, 4, 40, true}};
    constexpr int kRun = 10;
    std::mt19937 random(815);
    LayoutDlg dlg;
    ASSERT_TRUE(dlg.Make(IDD_LAYOUT_EMPTY));
    std::vector<int> tops;
    std::vector<bool> shown(kRun, true);
    for (int i = 0; i < kRun; ++i) {
        tops.push_back(20 * i);
        dlg.AddItem(kFirstItem + i, {0, 20 * i, 50, 20 * i + 10});
    }
    for (const Group& group : groups) {
        dlg.AddCtrlGroup(kFirstItem + group.nFirst, kFirstItem + group.nLast, 0,
                         group.nParent < 0 ? 0 : kFirstItem + group.nParent);
    }
    dlg.OnShowWindow(1, 0);
    for (int nStep = 0; nStep < kGroupSteps; ++nStep) {
        SCOPED_TRACE(nStep);
        Group& group = groups[random() % groups.size()];
        const bool bShow = random() % 2;
        int nShift = 0;
        if (group.bShown != bShow) {
            nShift = bShow ? group.nHeight : -group.nHeight;
            group.bShown = bShow;
            for (Group& inner : groups) {
                if (inner.nParent != group.nFirst || inner.bShown == bShow) continue;
                inner.bShown = bShow;
                nShift += bShow ? inner.nHeight : -inner.nHeight;
            }
            for (int i = group.nFirst; i <= group.nLast; ++i) shown[i] = bShow;
            for (int i = group.nLast + 1; i < kRun; ++i) tops[i] += nShift;
        }
        ASSERT_EQ(nShift, dlg.ShowCtrlGroup(kFirstItem + group.nFirst, bShow, 0));
        for (int i = 0; i < kRun; ++i) {
            HWND hwnd = ::GetDlgItem(dlg, kFirstItem + i);
            ASSERT_EQ(tops[i], ChildRect(hwnd).top) << i;
            ASSERT_EQ(shown[i], IsShown(hwnd)) << i;
        }
    }
}
} // namespace
