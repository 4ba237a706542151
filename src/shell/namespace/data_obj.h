#pragma once
#include "shell/namespace/com_wrappers.h"
#include <objidl.h>

/// What a drag or the clipboard offers, one format at a time, as a block of global memory.
///
/// A copy is the same word for word: reference and medium are shared, and only one of the two may
/// give them back.
class TESSALY_API iDataObj : public iUnkResult {
  public:
    iDataObj() = default;
    /// Takes the interface, with a reference of its own; null for none.
    explicit iDataObj(IDataObject* pShared) { Init(pShared); }

    /// Asks for one format, a registered one or CF_.... *phBlock is the block, which belongs to the
    /// object's medium and is good until ReleaseMedium. 1; 0 and a null block if there is no such
    /// format, or only as something else than a block. What an earlier call gave is not released by
    /// this one.
    int GetData(WORD nFormat, void** phBlock);
    /// Gives back what GetData got; nothing else, and nothing twice.
    void ReleaseMedium();
    operator IDataObject*() const { return static_cast<IDataObject*>(pUnk); }

  protected:
    /// Takes the interface, with a reference of its own, into an object that has none.
    void Init(IDataObject* pShared);

    FORMATETC request{0, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    STGMEDIUM medium{};
};
