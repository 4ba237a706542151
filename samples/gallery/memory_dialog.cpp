#include "memory_dialog.h"

#include <memory>

namespace {
/// A dialog template as the platform wants it: structures and texts one behind the other, every
/// item at an address that can be divided by 4. Sizes are in dialog units.
class TemplateInMemory {
  public:
    TemplateInMemory(LPCWSTR pszTitle, short cx, short cy, WORD nItems) {
        PutBox(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SHELLFONT, nItems);
        PutPlace(0, 0, cx, cy);
        Put(0); // no menu
        Put(0); // the dialog class of the platform
        PutText(pszTitle);
        Put(8);
        PutText(L"MS Shell Dlg");
    }
    void AddItem(WORD nClass, LPCWSTR pszText, DWORD dwStyle, WORD nId, short x, short y, short cx,
                 short cy) {
        n = (n + 1) / 2 * 2;
        PutLong(WS_CHILD | WS_VISIBLE | dwStyle);
        PutLong(0); // extended style
        PutPlace(x, y, cx, cy);
        Put(nId);
        Put(0xFFFF); // a class by its number
        Put(nClass);
        PutText(pszText);
        Put(0); // no data
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words); }

  private:
    void PutBox(DWORD dwStyle, WORD nItems) {
        PutLong(dwStyle);
        PutLong(0); // extended style
        Put(nItems);
    }
    void PutPlace(short x, short y, short cx, short cy) {
        for (short value : {x, y, cx, cy}) Put(static_cast<WORD>(value));
    }
    void PutText(LPCWSTR psz) {
        do Put(*psz);
        while (*psz++);
    }
    void PutLong(DWORD dw) {
        Put(LOWORD(dw));
        Put(HIWORD(dw));
    }
    void Put(WORD w) {
        if (n < std::size(words)) words[n++] = w;
    }

    alignas(DWORD) WORD words[256] = {}; // zeros behind a template that is too long: no items
    size_t n = 0;
};

constexpr WORD kButtonClass = 0x0080; // the classes that have a number (DLGITEMTEMPLATE)
constexpr WORD kStaticClass = 0x0082;
} // namespace

int MemoryDialog::Open(HWND hwndParent) {
    auto pDialog = std::make_unique<MemoryDialog>();
    if (!pDialog->CreateFromMemory(hwndParent)) return 0;
    pDialog.release()->autoDelete = 1;
    return 1;
}

int MemoryDialog::CreateFromMemory(HWND hwndParent) {
    TemplateInMemory memory(L"From memory", 150, 50, 2);
    memory.AddItem(kStaticClass, L"No resource describes this dialog.", SS_LEFT, 0xFFFF, 7, 9, 136,
                   8);
    memory.AddItem(kButtonClass, L"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, IDOK, 93, 29, 50, 14);
    isModeless = 1; // a dialog from memory can be either: so closing destroys the window
    if (!CreateIndirect(memory.Get(), hwndParent)) return 0;
    Show(1);
    return 1;
}
