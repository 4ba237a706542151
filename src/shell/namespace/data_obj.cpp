#include "shell/namespace/data_obj.h"

#include <ole2.h> // ReleaseStgMedium

void iDataObj::Init(IDataObject* pShared) {
    pUnk = pShared;
    AddRef();
}

int iDataObj::GetData(WORD nFormat, void** phBlock) {
    request.cfFormat = nFormat;
    request.tymed = TYMED_HGLOBAL;
    medium = {};
    IDataObject* pObject = *this;
    int bGot = Keep(pObject ? pObject->GetData(&request, &medium) : E_POINTER);
    if (!bGot) medium = {}; // whatever the object did to it: there is nothing to give back
    if (medium.tymed != TYMED_NULL && medium.tymed != TYMED_HGLOBAL) {
        ReleaseMedium(); // not what was asked for: a stream taken for a block would be no memory
        bGot = Keep(DV_E_TYMED);
    }
    if (phBlock) *phBlock = bGot ? medium.hGlobal : nullptr;
    return bGot;
}

void iDataObj::ReleaseMedium() {
    ::ReleaseStgMedium(&medium);
    medium = {};
}
