#include "wnd/draw/rect_util.h"

#include <algorithm>
#include <utility>

void RectCopy(RECT& rcDst, const RECT& rcSrc) { rcDst = rcSrc; }

void RectSet(RECT& rc, int left, int top, int right, int bottom) {
    rc = {left, top, right, bottom};
}

void RectShift(RECT& rc, int dx, int dy) {
    rc = {rc.left + dx, rc.top + dy, rc.right + dx, rc.bottom + dy};
}

void RectInflate(RECT& rc, int dx, int dy) {
    rc = {rc.left - dx, rc.top - dy, rc.right + dx, rc.bottom + dy};
}

void DeflateRect(RECT* prc, int dx, int dy) { RectInflate(*prc, -dx, -dy); }

void RectCenter(RECT& rc, const RECT& rcRef) {
    long cx = rc.right - rc.left, cy = rc.bottom - rc.top;
    long x = rcRef.left + (rcRef.right - rcRef.left - cx) / 2;
    long y = rcRef.top + (rcRef.bottom - rcRef.top - cy) / 2;
    rc = {x, y, x + cx, y + cy};
}

int IsRectDifferent(const RECT& a, const RECT& b) {
    return a.left != b.left || a.top != b.top || a.right != b.right || a.bottom != b.bottom;
}

int IsRectEmpty(const RECT& rc) { return rc.left == rc.right && rc.top == rc.bottom; }

void RectUnion(RECT& rcDst, const RECT& a, const RECT& b) {
    rcDst = {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
             std::max(a.bottom, b.bottom)};
}

int RectHasPoint(const RECT& rc, const POINT& pt) {
    return pt.x >= rc.left && pt.x < rc.right && pt.y >= rc.top && pt.y < rc.bottom;
}

int RectHasRect(const RECT& rcOuter, const RECT& rcInner) {
    return rcInner.left >= rcOuter.left && rcInner.top >= rcOuter.top &&
           rcInner.right < rcOuter.right && rcInner.bottom < rcOuter.bottom;
}

void TwistRect(RECT* prc) {
    std::swap(prc->left, prc->right);
    std::swap(prc->top, prc->bottom);
}

void FlipRect(RECT* prc) {
    std::swap(prc->left, prc->top);
    std::swap(prc->right, prc->bottom);
}

void FlipSize(SIZE* psize) { std::swap(psize->cx, psize->cy); }

int ClientToScreen(HWND hwnd, RECT* prc) {
    POINT ptNear{prc->left, prc->top}, ptFar{prc->right, prc->bottom};
    if (!::ClientToScreen(hwnd, &ptNear) || !::ClientToScreen(hwnd, &ptFar)) return 0;
    *prc = {ptNear.x, ptNear.y, ptFar.x, ptFar.y};
    return 1;
}
