#pragma once
#include "files/text/cs_file.h"
#include "runtime/base/export.h"

// What CSFile::WipeDelete, whose class stands in files/text/cs_file.h, is told.

/// How a file is overwritten. Any other value means not at all.
enum WipeMethod : int {
    wipeNone = 0,        // the file is renamed and deleted only
    wipeZeros = 1,       // one pass of zeros
    wipeThreePasses = 2, // three passes, of the bytes 0x55, 0xAA and 0x00 in that order
};

/// The number of passes over the file's bytes: 1, 3 or 0.
TESSALY_API int GetWipePasses(int nMethod);

/// So much a turn is written over a file.
constexpr DWORD kWipeChunk = 0x20000;
