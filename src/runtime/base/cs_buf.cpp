#include "runtime/base/cs_buf.h"

#include <windows.h>
#include <cstdlib>

CSBuf::CSBuf(unsigned cbWanted) : cb(cbWanted) {
    if (cb) pBlock = static_cast<unsigned char*>(std::calloc(cb, 1));
}

CSBuf::~CSBuf() { std::free(pBlock); }

unsigned char CSBuf::GetAt(unsigned nIndex) const {
    return pBlock && nIndex < cb ? pBlock[nIndex] : 0;
}

void CSBuf::SetAt(unsigned nIndex, unsigned char bNew) {
    if (pBlock && nIndex < cb) pBlock[nIndex] = bNew;
}

CSBufZ::~CSBufZ() {
    if (pBlock) ::SecureZeroMemory(pBlock, cb); // a plain fill before a free may be optimised away
}
