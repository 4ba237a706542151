#pragma once
#include "runtime/base/export.h"

/// The MD5 digest (RFC 1321) of cbData bytes. pData may be null if there are none.
extern "C" TESSALY_API void CalcMD5(unsigned char digest[16], const void* pData,
                                    unsigned long long cbData);
