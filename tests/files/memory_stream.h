#pragma once
#include "files/stream/core_io.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

/// A stream over a text, which writes down what it is asked and can be full or broken.
class MemoryStream : public CoreIOObj {
  public:
    explicit MemoryStream(std::string strContent = "") : str(std::move(strContent)) {}
    ~MemoryStream() override {
        if (pbDeleted) *pbDeleted = true;
    }

    std::string str;
    std::size_t nPos = 0;
    std::size_t cbCapacity = ~std::size_t{0}; // a disk that is full behind so many bytes
    int nFailReadAt = -1;                     // the read with this number fails, counted from 0
    bool bReady = true, bCut = false, bFlushed = false;
    bool bCannotCut = false;
    std::vector<DWORD> reads, writes; // the sizes asked for
    int nDoneGiven = 0;               // calls that came with a place for the count
    bool* pbDeleted = nullptr;

    void Close() override { bReady = false; }
    int IsReady() override { return bReady; }
    int IsToWrite() override { return 7; }
    unsigned __int64 GetSize64() override { return str.size(); }
    int SetEndOfFile() override {
        bCut = !bCannotCut;
        return bCut ? 3 : 0;
    }
    __int64 MoveTo64(__int64 nDistance, DWORD nMethod) override {
        __int64 nFrom = nMethod == FILE_BEGIN     ? 0
                        : nMethod == FILE_CURRENT ? static_cast<__int64>(nPos)
                                                  : static_cast<__int64>(str.size());
        nPos = static_cast<std::size_t>(nFrom + nDistance);
        return static_cast<__int64>(nPos);
    }
    int Flush() override {
        bFlushed = true;
        return 5;
    }
    int ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) override {
        reads.push_back(cb);
        if (pcbDone) ++nDoneGiven;
        if (static_cast<int>(reads.size()) - 1 == nFailReadAt) return 0;
        std::size_t cbMoved = std::min<std::size_t>(cb, str.size() - std::min(nPos, str.size()));
        std::memcpy(pBuffer, str.data() + nPos, cbMoved);
        nPos += cbMoved;
        if (pcbDone) *pcbDone = static_cast<DWORD>(cbMoved);
        return cbMoved == cb;
    }
    int WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) override {
        writes.push_back(cb);
        if (pcbDone) ++nDoneGiven;
        std::size_t cbMoved = std::min<std::size_t>(cb, cbCapacity - std::min(nPos, cbCapacity));
        str.replace(nPos, std::min(cbMoved, str.size() - nPos), static_cast<const char*>(pData),
                    cbMoved);
        nPos += cbMoved;
        if (pcbDone) *pcbDone = static_cast<DWORD>(cbMoved);
        return cbMoved == cb;
    }
};
