#include "icons/agent/told_positions.h"
#include "icons/agent/desktop_folder_view.h"
#include "runtime/base/ownership.h"

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <utility>

namespace {
/// Item ids and texts that the folder view gives away lie in the task's memory.
using OwnedItemId = OwnedHandleOf<PITEMID_CHILD, &::CoTaskMemFree>;
using OwnedText = OwnedHandleOf<wchar_t*, &::CoTaskMemFree>;

/// Items of the folder view, each with its place, as SelectAndPositionItems takes them.
class ItemPlaces {
  public:
    explicit ItemPlaces(std::size_t nMost) : itemIds(nMost), places(nMost) {}
    ~ItemPlaces() {
        for (std::size_t i = 0; i < nItems; ++i) ::CoTaskMemFree(itemIds[i]);
    }
    ItemPlaces(const ItemPlaces&) = delete; // owns the item ids
    ItemPlaces& operator=(const ItemPlaces&) = delete;

    [[nodiscard]] bool IsReady() const { return itemIds.IsReady() && places.IsReady(); }
    bool IsEmpty() const { return nItems == 0; }
    bool IsFull() const { return nItems == places.GetCount(); }
    void Add(OwnedItemId itemId, POINT pt) {
        itemIds[nItems] = itemId.Release();
        places[nItems++] = pt;
    }
    void PutInto(IFolderView* pView) {
        // The array has pointers to constant ids, which C++ does not convert to by itself.
        auto* ppidl = const_cast<PCUITEMID_CHILD*>(itemIds.Get());
        pView->SelectAndPositionItems(static_cast<UINT>(nItems), ppidl, places.Get(),
                                      SVSI_POSITIONITEM);
    }

  private:
    HeapArray<PITEMID_CHILD> itemIds;
    HeapArray<POINT> places;
    std::size_t nItems = 0;
};

/// The name key of an item as the list view shows it; 0, which names nothing, if it can't be read.
unsigned __int64 MakeItemKey(IShellFolder* pFolder, PCUITEMID_CHILD pidl) {
    STRRET name{};
    if (FAILED(pFolder->GetDisplayNameOf(pidl, SHGDN_NORMAL | SHGDN_INFOLDER, &name))) return 0;
    if (name.uType == STRRET_WSTR && !name.pOleStr) return 0;
    OwnedText text;
    if (FAILED(::StrRetToStrW(&name, pidl, text.Put())) || !text) return 0;
    return MakeIconKey(text.Get());
}

/// Looks the moved icons up among the folder view's items. Some may have gone since they were
/// moved, or go while this runs: what can't be read is passed over.
void FindItems(IFolderView* pView, HeapArray<IconRecord>& moved, ItemPlaces& places) {
    OwnedInterface<IShellFolder> folder;
    int nItems = 0;
    if (FAILED(pView->GetFolder(IID_IShellFolder, reinterpret_cast<void**>(folder.Put()))) ||
        !folder || FAILED(pView->ItemCount(SVGIO_ALLVIEW, &nItems)))
        return;
    RecordMatcher matcher({moved.Get(), moved.GetCount()});
    for (int i = 0; i < nItems && !places.IsFull(); ++i) {
        OwnedItemId itemId;
        if (FAILED(pView->Item(i, itemId.Put())) || !itemId) continue;
        const POINT* ppt = matcher.Take(MakeItemKey(folder.Get(), itemId.Get()));
        if (ppt) places.Add(std::move(itemId), *ppt);
    }
}
} // namespace

bool ToldPositions::Keep(HWND hwndMovedIn, HeapArray<IconRecord> recordsMoved) {
    if (!recordsMoved.IsReady() || !IsFolderViewInCharge()) return false;
    ++nChanges;
    hwndListView = hwndMovedIn;
    moved = std::move(recordsMoved);
    return true;
}

void ToldPositions::Drop() {
    ++nChanges;
    HeapArray<IconRecord> dropped = std::move(moved);
}

bool ToldPositions::IsPendingFor(HWND hwnd) const {
    return moved.IsReady() && hwnd == hwndListView;
}

void ToldPositions::TellFolderView() {
    if (bTelling) return; // from within a call of the telling below, which looks again
    bTelling = true;
    ScopeExit done([&] { bTelling = false; });
    while (moved.IsReady()) TellOnce();
}

void ToldPositions::TellOnce() {
    // The way to the view is the long one. What is pending is taken after it: a detach on the way
    // leaves nothing to be told, another restore leaves the newer places.
    OwnedInterface<IFolderView> view = FindDesktopFolderView(::GetParent(hwndListView));
    HeapArray<IconRecord> telling = std::move(moved);
    if (!view || !telling.IsReady()) return;
    HWND hwndTellingOf = hwndListView;
    unsigned nChangesBefore = nChanges;
    ItemPlaces places(telling.GetCount());
    if (!places.IsReady()) return;
    FindItems(view.Get(), telling, places);
    if (places.IsEmpty() || nChanges != nChangesBefore) return;
    // The end of a window whose message is being handled is dealt with after that message.
    if (!::IsWindow(hwndTellingOf)) return;
    places.PutInto(view.Get());
}
