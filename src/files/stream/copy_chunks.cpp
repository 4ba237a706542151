#include "files/stream/copy_chunks.h"

#include "files/stream/core_io.h"

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

int CopyContents(CoreIOObj& source, CoreIOObj& target, void* pBuffer, DWORD cbBuffer, DWORD cb) {
    target.MoveTo64(0, FILE_BEGIN);
    return CopyChunks(source, target, pBuffer, cbBuffer, cb) && target.SetEndOfFile();
}
