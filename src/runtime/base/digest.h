#pragma once
#include "runtime/base/export.h"

/// The sizes of the digests in bytes.
constexpr unsigned kSha1Size = 20;
constexpr unsigned kMd5Size = 16; ///< Bytes of an MD5 digest.

/// SHA-1 (FIPS 180-1) over data that comes in pieces: SHA1_Init, SHA1_Update for each piece,
/// SHA1_Final. A plain block of memory; a copy goes on by itself.
struct SHA1_Context {
    unsigned int state[5];      // the five words whose bytes are the digest at the end
    unsigned char block[64];    // the last, not yet full block
    unsigned long long cbSoFar; // bytes of all pieces
};

extern "C" {
/// Starts a digest.
TESSALY_API void SHA1_Init(SHA1_Context* pContext);
/// Adds cbData bytes. pData may be null if there are none.
TESSALY_API void SHA1_Update(SHA1_Context* pContext, const void* pData, unsigned long long cbData);
/// Gives the digest and fills the context with zeros: the next use starts with SHA1_Init.
TESSALY_API void SHA1_Final(unsigned char digest[kSha1Size], SHA1_Context* pContext);
/// The digest of data in one piece.
TESSALY_API void SHA1_Calc(unsigned char digest[kSha1Size], const void* pData,
                           unsigned long long cbData);
}

/// 1 if all bytes of the digest are 0, which stands for "none".
TESSALY_API int IsSHA1_Empty(const unsigned char digest[kSha1Size]);
/// Sets all bytes of the digest to 0.
TESSALY_API void DoSHA1_Empty(unsigned char digest[kSha1Size]);

/// The MD5 digest (RFC 1321) of cbData bytes. pData may be null if there are none.
extern "C" TESSALY_API void CalcMD5(unsigned char digest[kMd5Size], const void* pData,
                                    unsigned long long cbData);
