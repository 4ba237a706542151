#pragma once
#include "runtime/base/export.h"

/// A heap block of zeros with its size in bytes; size 0 has no block. Out of memory leaves the
/// block null and the size as given, so IsReady is what to test.
///
/// A copy shares the block with its original: one of the two must be given up (Abandon) before the
/// other goes away.
class TESSALY_API CSBuf {
  public:
    explicit CSBuf(unsigned cbWanted);        ///< A block of so many bytes; 0: none.
    CSBuf(const CSBuf&) = default;            // shares the block
    CSBuf& operator=(const CSBuf&) = default; // shares the block; what was held is not freed
    virtual ~CSBuf();

    /// The block, which stays the object's; null without one.
    operator unsigned char*() const { return pBlock; }
    /// 1 without a block, and if its first byte is 0.
    int IsEmpty() const { return !pBlock || !*pBlock; }
    /// 1 if there is a block.
    int IsReady() const { return pBlock != nullptr; }
    /// The byte at that index; 0 outside the block.
    unsigned char GetAt(unsigned nIndex) const;
    /// Outside the block nothing is stored.
    void SetAt(unsigned nIndex, unsigned char bNew);
    /// Forgets the block without freeing it.
    void Abandon() { pBlock = nullptr; }

  protected:
    unsigned char* pBlock = nullptr;
    unsigned cb = 0;
};

/// A CSBuf that is filled with zeros before it is freed: for what shall not linger in memory.
class TESSALY_API CSBufZ : public CSBuf {
  public:
    explicit CSBufZ(unsigned cbWanted) : CSBuf(cbWanted) {} ///< A block of so many bytes; 0: none.
    CSBufZ(const CSBufZ&) = default;
    CSBufZ& operator=(const CSBufZ&) = default;
    ~CSBufZ() override;
};
