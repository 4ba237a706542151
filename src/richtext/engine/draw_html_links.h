#pragma once
#include "runtime/base/cs_list.h"
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"
#include <windows.h>

/// Where one link of a drawn text lies: a rectangle for each line that it covers, in drawing order,
/// relative to the top left corner of the layout, right and bottom outside.
class TESSALY_API DrawHTMLLinkArea : public CSList {
  public:
    /// Characters of a link's source that are kept.
    static constexpr int kMaxText = 512;

    /// An area without rectangles, of a link with that id.
    explicit DrawHTMLLinkArea(unsigned idLinkNew = 0) : idLink(idLinkNew) {}
    ~DrawHTMLLinkArea() override;
    DrawHTMLLinkArea(const DrawHTMLLinkArea&) = delete; // owns the rectangles
    DrawHTMLLinkArea& operator=(const DrawHTMLLinkArea&) = delete;

    /// A new rectangle with both corners at the point; none when out of memory.
    void StartRect(int x, int y);
    /// The right and bottom of the last rectangle.
    void EndRect(int x, int y);
    /// The last rectangle; null before the first.
    RECT* GetCurrentRect();
    int IsPointOverLink(int x, int y); ///< 1 if the point lies in one of the rectangles.
    /// Keeps the link's source, tags and all, up to its end, the terminator or kMaxText characters.
    void AddText(const wchar_t* pszBegin, const wchar_t* pszEnd);
    /// The link's source; null until AddText.
    const wchar_t* GetText() const { return pszText.Get(); }
    /// The id of the link's command; 0: it does nothing.
    unsigned GetLinkID() const { return idLink; }

  private:
    unsigned idLink;
    HeapArray<wchar_t> pszText;
};

/// The links of a text as it was drawn last, in the order in which their spans end. Owns them.
class TESSALY_API DrawHTMLLinks : public CSList {
  public:
    DrawHTMLLinks() = default;
    ~DrawHTMLLinks() override;
    DrawHTMLLinks(const DrawHTMLLinks&) = delete; // owns the areas
    DrawHTMLLinks& operator=(const DrawHTMLLinks&) = delete;

    /// Frees all areas.
    void Reset();
    /// The number of links.
    unsigned GetLinkCount() const { return static_cast<unsigned>(GetCount()); }
    /// The first area that the point hits; null for none.
    DrawHTMLLinkArea* Find(int x, int y);
};
