#include "files/copy_chunks.h"

#include "files/core_io.h"

#include <algorithm>

int CopyChunks(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb) {
    if (cb && !cbBuffer) return 0;
    while (cb) {
        DWORD cbChunk = std::min(cb, cbBuffer);
        if (!source.ReadBin(pBuffer, cbChunk, nullptr)) return 0;
        if (!target.WriteBin(pBuffer, cbChunk, nullptr)) return 0;
        cb -= cbChunk;
    }
    return 1;
}
