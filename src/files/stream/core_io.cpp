#include "files/stream/core_io.h"

#include <algorithm>
#include <atomic>

namespace {
constexpr unsigned kMaxTextMeasured = 32767; // bytes; what is longer counts as that long

// One for the process. Atomic so that threads that open files side by side do not tear it; there
// is no order between them.
constinit std::atomic<long> lLastResult{0};

/// The text's length, which ends at the limit also where the text does not.
unsigned MeasureText(const char* pszText) {
    unsigned cb = 0;
    while (cb < kMaxTextMeasured && pszText[cb]) ++cb;
    return cb;
}
} // namespace

CoreIOObj::~CoreIOObj() = default;

long CoreIOObj::GetLastHRESULT() { return lLastResult.load(std::memory_order_relaxed); }

void CoreIOObj::SetLastHRESULT(long lNew) { lLastResult.store(lNew, std::memory_order_relaxed); }

void CoreIOObj::SetLastWin32Error(DWORD dwError) { SetLastHRESULT(HRESULT_FROM_WIN32(dwError)); }

// The rest of construction stands where files are known: CreateFileObject in core_file.cpp, the
// stream on a UniPath in disk/uni_path.cpp.
CoreIO::~CoreIO() { delete pInner; }

void CoreIO::Close() {
    if (pInner) pInner->Close();
}

int CoreIO::IsReady() { return pInner ? pInner->IsReady() : 0; }

int CoreIO::IsToWrite() { return pInner ? pInner->IsToWrite() : 0; }

unsigned __int64 CoreIO::GetSize64() { return pInner ? pInner->GetSize64() : 0; }

int CoreIO::SetEndOfFile() { return pInner ? pInner->SetEndOfFile() : 0; }

__int64 CoreIO::MoveTo64(__int64 nDistance, DWORD nMethod) {
    return pInner ? pInner->MoveTo64(nDistance, nMethod) : 0;
}

int CoreIO::Flush() { return pInner ? pInner->Flush() : 0; }

int CoreIO::ReadBin(void* pBuffer, DWORD cb, DWORD* pcbDone) {
    return pInner ? pInner->ReadBin(pBuffer, cb, pcbDone) : 0;
}

int CoreIO::WriteBin(const void* pData, DWORD cb, DWORD* pcbDone) {
    return pInner ? pInner->WriteBin(pData, cb, pcbDone) : 0;
}

int CoreIO::ReadStr(char* pszBuffer) {
    if (!pszBuffer) return 0;
    *pszBuffer = 0;
    unsigned char cb = 0;
    if (!Read(cb)) return 0;
    if (!cb) return 1;
    DWORD cbDone = 0;
    int bDone = ReadBin(pszBuffer, cb, &cbDone);
    // After a failure the count is not taken at its word: other streams than ours may be below.
    pszBuffer[bDone ? cb : std::min<DWORD>(cbDone, cb)] = 0;
    return bDone;
}

int CoreIO::WriteStr(const char* pszText) {
    if (!pszText) return 0;
    auto cb = static_cast<unsigned char>(MeasureText(pszText) & 0xFF);
    if (!Write(cb)) return 0;
    return cb ? WriteBin(pszText, cb, nullptr) : 1;
}
