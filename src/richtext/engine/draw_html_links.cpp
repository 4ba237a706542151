#include "richtext/engine/draw_html_links.h"
#include "wnd/draw/rect_util.h"

#include <new>

DrawHTMLLinkArea::~DrawHTMLLinkArea() {
    while (!IsEmpty()) delete static_cast<RECT*>(RemoveHead());
}

void DrawHTMLLinkArea::StartRect(int x, int y) {
    RECT* prc = new (std::nothrow) RECT{x, y, x, y};
    if (prc && !AddTail(prc)) delete prc;
}

void DrawHTMLLinkArea::EndRect(int x, int y) {
    RECT* prc = GetCurrentRect();
    if (!prc) return;
    prc->right = x;
    prc->bottom = y;
}

RECT* DrawHTMLLinkArea::GetCurrentRect() {
    return IsEmpty() ? nullptr : static_cast<RECT*>(GetTail());
}

int DrawHTMLLinkArea::IsPointOverLink(int x, int y) {
    for (POS pos = GetHeadPos(); pos;) {
        if (RectHasPoint(*static_cast<RECT*>(GetNext(pos)), POINT{x, y})) return 1;
    }
    return 0;
}

void DrawHTMLLinkArea::AddText(const wchar_t* pszBegin, const wchar_t* pszEnd) {
    std::size_t cch = 0;
    while (cch < kMaxText && pszBegin + cch < pszEnd && pszBegin[cch]) ++cch;
    HeapArray<wchar_t> copy(cch + 1);
    if (copy.IsReady()) std::wmemcpy(copy.Get(), pszBegin, cch);
    pszText = std::move(copy);
}

DrawHTMLLinks::~DrawHTMLLinks() { Reset(); }

void DrawHTMLLinks::Reset() {
    while (!IsEmpty()) delete static_cast<DrawHTMLLinkArea*>(RemoveHead());
}

DrawHTMLLinkArea* DrawHTMLLinks::Find(int x, int y) {
    for (POS pos = GetHeadPos(); pos;) {
        auto* pArea = static_cast<DrawHTMLLinkArea*>(GetNext(pos));
        if (pArea->IsPointOverLink(x, y)) return pArea;
    }
    return nullptr;
}
