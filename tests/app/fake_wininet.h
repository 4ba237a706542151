#pragma once
#include "support/runtime_lookup.h"

#include <windows.h>
#include <wininet.h>
#include <algorithm>
#include <cstring>
#include <string>

/// A network on which the server answers every question with the same bytes, or with none, for the
/// length of a block. One at a time, and none besides that replaces functions.
class FakeWinInet {
  public:
    explicit FakeWinInet(std::string strBytes = {}) {
        strReply = std::move(strBytes);
        nSent = nOpen = 0;
        functions.Set("InternetOpenW", &Open);
        functions.Set("InternetConnectW", &Connect);
        functions.Set("HttpOpenRequestW", &OpenRequest);
        functions.Set("InternetQueryOptionW", &Query);
        functions.Set("InternetSetOptionW", &Set);
        functions.Set("HttpSendRequestW", &Send);
        functions.Set("InternetQueryDataAvailable", &Available);
        functions.Set("InternetReadFile", &Read);
        functions.Set("InternetCloseHandle", &Close);
    }
    static inline std::string strReply;
    static inline int nSent = 0; // questions so far
    static inline int nOpen = 0; // handles

  private:
    static HINTERNET Handle() {
        ++nOpen;
        return reinterpret_cast<HINTERNET>(INT_PTR{0x7E57});
    }
    static HINTERNET WINAPI Open(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) { return Handle(); }
    static HINTERNET WINAPI Connect(HINTERNET, LPCWSTR, INTERNET_PORT, LPCWSTR, LPCWSTR, DWORD,
                                    DWORD, DWORD_PTR) {
        return Handle();
    }
    static HINTERNET WINAPI OpenRequest(HINTERNET, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR*,
                                        DWORD, DWORD_PTR) {
        return Handle();
    }
    static BOOL WINAPI Query(HINTERNET, DWORD, void*, DWORD*) { return FALSE; }
    static BOOL WINAPI Set(HINTERNET, DWORD, void*, DWORD) { return TRUE; }
    static BOOL WINAPI Send(HINTERNET, LPCWSTR, DWORD, void*, DWORD) {
        ++nSent;
        nRead = 0;
        return TRUE;
    }
    static BOOL WINAPI Available(HINTERNET, DWORD* pcb, DWORD, DWORD_PTR) {
        *pcb = static_cast<DWORD>(strReply.size() - nRead);
        return TRUE;
    }
    static BOOL WINAPI Read(HINTERNET, void* p, DWORD cb, DWORD* pcbRead) {
        *pcbRead = static_cast<DWORD>(std::min<std::size_t>(cb, strReply.size() - nRead));
        std::memcpy(p, strReply.data() + nRead, *pcbRead);
        nRead += *pcbRead;
        return TRUE;
    }
    static BOOL WINAPI Close(HINTERNET) {
        --nOpen;
        return TRUE;
    }
    static inline std::size_t nRead = 0;
    ReplaceFunctions functions;
};
