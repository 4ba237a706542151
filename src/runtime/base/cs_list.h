#pragma once
#include "runtime/base/export.h"

/// A node of a CSList; pElement is not owned by it.
struct CSNode {
    CSNode* pNext;  // null at the tail
    CSNode* pPrev;  // null at the head
    void* pElement; // whatever the list's user put there
};

/// A place in a CSList. Null is the end. It stays good until its own node is removed.
using POS = struct CSListPosition*;

/// Told when an element leaves a list. nCode is always 1; the result is ignored.
using CSListCallback = int (*)(unsigned long long qwContext, unsigned nCode, void* pElement);

/// A doubly linked list of untyped pointers. It owns its nodes and not its elements: what removes a
/// node hands a non-null element to the callback, if one is set, and that is the only way in which
/// elements are released by themselves.
///
/// A copy shares the nodes with its original, a shallow view: neither may change while both live,
/// and one of the two must be given up (Abandon) before the other goes away.
class TESSALY_API CSList {
  public:
    constexpr CSList() noexcept = default;
    CSList(const CSList&) = default;            // shares the nodes
    CSList& operator=(const CSList&) = default; // what was held is not released
    virtual ~CSList();

    /// Puts a new node at the head, or at the tail. Its position; null when out of memory.
    POS AddHead(void* pElement);
    POS AddTail(void* pElement);
    /// Copies the other list's elements in their order; the other list stays as it is. A list may
    /// be added to itself.
    void AddHead(const CSList& other);
    void AddTail(const CSList& other);
    /// A new node before pos (null: at the head), or after it (null: at the tail). Its position,
    /// null when out of memory.
    POS InsertBefore(POS pos, void* pElement);
    POS InsertAfter(POS pos, void* pElement);

    /// Removes the end node and returns its element, which the callback may already have released.
    /// Null if the list is empty.
    void* RemoveHead();
    void* RemoveTail();
    /// Removes the node at pos, with the callback, which must not remove the next one; pos moves on
    /// to that. A null position is nothing to do.
    void RemoveAt(POS& pos);
    /// Removes the node at pos without the callback and returns its element; pos moves on. Null for
    /// a null position.
    void* ExtractAt(POS& pos);
    /// Removes everything, from the tail, with the callback.
    void RemoveAll();
    /// Relinks the node at pos behind posAfter, or to the head if that is null. A node moved behind
    /// itself or its present predecessor stays. Returns pos, also if that is null.
    POS MoveAfter(POS pos, POS posAfter);

    /// The element at the head, or at the tail; the list must not be empty.
    void*& GetHead() { return pHead->pElement; }
    void* GetHead() const { return pHead->pElement; }
    void*& GetTail() { return pTail->pElement; }
    void* GetTail() const { return pTail->pElement; }
    /// The position of the head, or of the tail; null if the list is empty.
    POS GetHeadPos() const { return ToPos(pHead); }
    POS GetTailPos() const { return ToPos(pTail); }
    /// The element at pos, which must not be null. GetNext moves pos on, GetPrev moves it back.
    void*& GetNext(POS& pos);
    void* GetNext(POS& pos) const;
    void*& GetPrev(POS& pos);
    void* GetPrev(POS& pos) const;
    /// The element at pos, which must not be null.
    void*& GetAt(POS pos) { return ToNode(pos)->pElement; }
    void* GetAt(POS pos) const { return ToNode(pos)->pElement; }
    /// Puts another element there; the callback is not called.
    void SetAt(POS pos, void* pElement) { ToNode(pos)->pElement = pElement; }

    int GetCount() const { return nCount; }     ///< The number of nodes.
    int IsEmpty() const { return nCount == 0; } ///< Whether there is no node.
    /// The number of nodes before pos; -1 for a null position.
    int GetIndex(POS pos) const;
    /// The position of the index-th node, from 0; null if there is none.
    POS FindIndex(int nIndex) const;
    /// The first node, from the head or from behind posAfter, whose element is that pointer.
    POS Find(const void* pElement, POS posAfter = nullptr) const;

    /// What is told from now on when an element leaves the list, with qwContext; null for nobody.
    void SetCallback(unsigned long long qwContext, CSListCallback pfnNew);
    /// Forgets the nodes without releasing anything: for one of two lists that share them.
    void Abandon();

  protected:
    /// Makes and frees the nodes. A class that replaces them calls RemoveAll in its own destructor:
    /// in this one's the replacement is gone already. CreateNode may give null.
    virtual CSNode* CreateNode();
    virtual void DeleteNode(CSNode* pNode);

  private:
    static CSNode* ToNode(POS pos) { return reinterpret_cast<CSNode*>(pos); }
    static POS ToPos(CSNode* pNode) { return reinterpret_cast<POS>(pNode); }
    void Unlink(CSNode* pNode);
    void LinkAfter(CSNode* pNode, CSNode* pAfter);
    void* Remove(CSNode* pNode);

    CSNode* pHead = nullptr;
    CSNode* pTail = nullptr;
    int nCount = 0;
    unsigned long long qwCallbackContext = 0;
    CSListCallback pfnCallback = nullptr;
};
