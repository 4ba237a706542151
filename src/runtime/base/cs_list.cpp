#include "runtime/base/cs_list.h"

#include <new>

namespace {
constexpr unsigned kCodeRemoved = 1; // the only code that a callback is given
} // namespace

CSList::~CSList() { RemoveAll(); }

CSNode* CSList::CreateNode() { return new (std::nothrow) CSNode; }

void CSList::DeleteNode(CSNode* pNode) { delete pNode; }

/// Links the node behind pAfter, or at the head if that is null. The count is the caller's.
void CSList::LinkAfter(CSNode* pNode, CSNode* pAfter) {
    pNode->pPrev = pAfter;
    pNode->pNext = pAfter ? pAfter->pNext : pHead;
    (pNode->pPrev ? pNode->pPrev->pNext : pHead) = pNode;
    (pNode->pNext ? pNode->pNext->pPrev : pTail) = pNode;
}

/// Each side has one field that names the node: its neighbour's, or the list's at an end.
void CSList::Unlink(CSNode* pNode) {
    (pNode->pPrev ? pNode->pPrev->pNext : pHead) = pNode->pNext;
    (pNode->pNext ? pNode->pNext->pPrev : pTail) = pNode->pPrev;
}

/// The node is out of the list before the callback runs, which may use the list.
void* CSList::Remove(CSNode* pNode) {
    void* pElement = pNode->pElement;
    Unlink(pNode);
    --nCount;
    if (pElement && pfnCallback) pfnCallback(qwCallbackContext, kCodeRemoved, pElement);
    DeleteNode(pNode);
    return pElement;
}

POS CSList::InsertAfter(POS pos, void* pElement) {
    CSNode* pNode = CreateNode();
    if (!pNode) return nullptr;
    pNode->pElement = pElement;
    LinkAfter(pNode, pos ? ToNode(pos) : pTail);
    ++nCount;
    return ToPos(pNode);
}

POS CSList::InsertBefore(POS pos, void* pElement) {
    CSNode* pNode = CreateNode();
    if (!pNode) return nullptr;
    pNode->pElement = pElement;
    LinkAfter(pNode, pos ? ToNode(pos)->pPrev : nullptr);
    ++nCount;
    return ToPos(pNode);
}

POS CSList::AddHead(void* pElement) { return InsertBefore(nullptr, pElement); }

POS CSList::AddTail(void* pElement) { return InsertAfter(nullptr, pElement); }

void CSList::AddHead(const CSList& other) {
    // From the back, each to the head. The count is taken first, so that a list can be added to
    // itself: its new nodes stand before the place that is read.
    const CSNode* pNode = other.pTail;
    for (int n = other.nCount; n > 0 && pNode; --n, pNode = pNode->pPrev) AddHead(pNode->pElement);
}

void CSList::AddTail(const CSList& other) {
    const CSNode* pNode = other.pHead;
    for (int n = other.nCount; n > 0 && pNode; --n, pNode = pNode->pNext) AddTail(pNode->pElement);
}

void* CSList::RemoveHead() { return pHead ? Remove(pHead) : nullptr; }

void* CSList::RemoveTail() { return pTail ? Remove(pTail) : nullptr; }

void CSList::RemoveAt(POS& pos) {
    if (!pos) return;
    CSNode* pNode = ToNode(pos);
    pos = ToPos(pNode->pNext);
    Remove(pNode);
}

void* CSList::ExtractAt(POS& pos) {
    if (!pos) return nullptr;
    CSNode* pNode = ToNode(pos);
    void* pElement = pNode->pElement;
    pos = ToPos(pNode->pNext);
    Unlink(pNode);
    --nCount;
    DeleteNode(pNode);
    return pElement;
}

void CSList::RemoveAll() {
    while (pTail) Remove(pTail);
}

POS CSList::MoveAfter(POS pos, POS posAfter) {
    if (!pos) return nullptr;
    CSNode* pNode = ToNode(pos);
    CSNode* pAfter = ToNode(posAfter);
    if (pNode == pAfter || pNode->pPrev == pAfter) return pos;
    Unlink(pNode);
    LinkAfter(pNode, pAfter);
    return pos;
}

void*& CSList::GetNext(POS& pos) {
    CSNode* pNode = ToNode(pos);
    pos = ToPos(pNode->pNext);
    return pNode->pElement;
}

void* CSList::GetNext(POS& pos) const { return const_cast<CSList*>(this)->GetNext(pos); }

void*& CSList::GetPrev(POS& pos) {
    CSNode* pNode = ToNode(pos);
    pos = ToPos(pNode->pPrev);
    return pNode->pElement;
}

void* CSList::GetPrev(POS& pos) const { return const_cast<CSList*>(this)->GetPrev(pos); }

int CSList::GetIndex(POS pos) const {
    int nIndex = -1;
    for (const CSNode* pNode = ToNode(pos); pNode; pNode = pNode->pPrev) ++nIndex;
    return nIndex;
}

POS CSList::FindIndex(int nIndex) const {
    if (nIndex < 0 || nIndex >= nCount) return nullptr;
    CSNode* pNode = pHead;
    while (nIndex-- > 0) pNode = pNode->pNext;
    return ToPos(pNode);
}

POS CSList::Find(const void* pElement, POS posAfter) const {
    CSNode* pNode = posAfter ? ToNode(posAfter)->pNext : pHead;
    while (pNode && pNode->pElement != pElement) pNode = pNode->pNext;
    return ToPos(pNode);
}

void CSList::SetCallback(unsigned long long qwContext, CSListCallback pfnNew) {
    qwCallbackContext = qwContext;
    pfnCallback = pfnNew;
}

void CSList::Abandon() {
    pHead = pTail = nullptr;
    nCount = 0;
}
