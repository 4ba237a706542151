#pragma once
#include "support/http_server.h"
#include "support/runtime_lookup.h"

#include <windows.h>
#include <wininet.h>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// The platform's HTTP client with the test's server behind the names of hosts, while the object
/// lives: what is asked of "server", port 80, goes to the loopback address and the server's port.
/// "refused" is where nobody listens, "full" where nobody takes a connection; any other name is
/// looked up as usual. All else is the platform's, and what it is called with is kept.
class LoopbackWinInet {
  public:
    struct Opened { // InternetOpenW
        std::wstring strAgent;
        DWORD nAccess, dwFlags;
        bool bProxy;
    };
    struct Connected { // InternetConnectW
        std::wstring strServer;
        WORD nPort;
        bool bUser;
        DWORD nService, dwFlags;
        DWORD_PTR nContext;
    };
    struct Requested { // HttpOpenRequestW
        std::wstring strVerb, strObject;
        bool bVersion, bReferrer;
        std::vector<std::wstring> accept;
        DWORD dwFlags;
        DWORD_PTR nContext;
    };
    struct Sent { // HttpSendRequestW
        std::wstring strHeaders;
        std::string strBody;
        bool bHeaders, bBody;
    };

    explicit LoopbackWinInet(const HttpServer& server) {
        // They come from the process's environment too, and would go before the platform's.
        for (const wchar_t* psz : {L"http_proxy", L"HTTP_PROXY", L"all_proxy", L"ALL_PROXY"})
            ::SetEnvironmentVariableW(psz, nullptr);
        hRelease = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        ports = {{L"server", server.Port()},
                 {L"refused", server.RefusedPort()},
                 {L"full", server.FullPort()},
                 {L"updates.orvanta.example", server.Port()}}; // as the product is built
        Clear();
        Find(real.pfnOpen, "InternetOpenW");
        Find(real.pfnConnect, "InternetConnectW");
        Find(real.pfnRequest, "HttpOpenRequestW");
        Find(real.pfnSend, "HttpSendRequestW");
        Find(real.pfnRead, "InternetReadFile");
        Find(real.pfnQuery, "InternetQueryOptionW");
        Find(real.pfnSet, "InternetSetOptionW");
        Find(real.pfnClose, "InternetCloseHandle");
        windows.Set("InternetOpenW", &Open);
        windows.Set("InternetConnectW", &Connect);
        windows.Set("HttpOpenRequestW", &Request);
        windows.Set("HttpSendRequestW", &Send);
        windows.Set("InternetReadFile", &Read);
        windows.Set("InternetQueryOptionW", &Query);
        windows.Set("InternetSetOptionW", &Set);
        windows.Set("InternetCloseHandle", &Close);
    }
    LoopbackWinInet(const LoopbackWinInet&) = delete;
    LoopbackWinInet& operator=(const LoopbackWinInet&) = delete;

    /// What that name stands for from now on: that of another one.
    void SetName(const std::wstring& strServer, const std::wstring& strOther) {
        std::lock_guard lock(mutex);
        ports[strServer] = ports[strOther];
    }
    /// The functions of these names fail from now on.
    void Fail(const std::set<std::string>& names) {
        std::lock_guard lock(mutex);
        failing = names;
    }
    /// What a query of an option gives from now on.
    void TellOption(DWORD nOption, DWORD dwValue) {
        std::lock_guard lock(mutex);
        told[nOption] = dwValue;
    }
    void Hide(const char* pszName) { windows.Hide(pszName); }

    std::vector<Opened> TakeOpened() { return Take(opened); }
    std::vector<Connected> TakeConnected() { return Take(connected); }
    std::vector<Requested> TakeRequested() { return Take(requested); }
    std::vector<Sent> TakeSent() { return Take(sent); }
    /// Option and value of each one that was set.
    std::vector<std::pair<DWORD, DWORD>> TakeOptions() { return Take(options); }
    /// Forgets what was kept and told, without a block of memory left.
    void Clear() {
        {
            std::lock_guard lock(mutex);
            failing.clear();
            told.clear();
        }
        TakeOpened();
        TakeConnected();
        TakeRequested();
        TakeSent();
        TakeOptions();
    }
    /// Handles that were made and not closed yet.
    static int CountOpen() {
        std::lock_guard lock(mutex);
        return static_cast<int>(open.size());
    }
    /// Handles that were closed and had not been made, or were closed already.
    static int CountBadCloses() { return nBadCloses; }

    /// Ends the waiting of what hangs: a call of the function that the name of a server or, behind
    /// a
    /// "?", of an object ends with does not reach the platform before
    /// ("text/4F4B?InternetReadFile"). Nothing else ends it, for far longer than any test takes.
    static void Release() { ::SetEvent(hRelease); }
    /// From now on they wait again.
    static void Hold() { ::ResetEvent(hRelease); }
    ~LoopbackWinInet() { ::CloseHandle(std::exchange(hRelease, nullptr)); }

  private:
    template <class T>
    static std::vector<T> Take(std::vector<T>& calls) {
        std::lock_guard lock(mutex);
        return std::exchange(calls, {});
    }
    template <class Fn>
    static void Find(Fn*& pfn, const char* pszName) {
        pfn = FindSystemFunc<Fn>(L"wininet.dll", pszName);
    }
    /// Whether the call shall fail; waits if it shall hang.
    static bool Enter(const char* pszName, const std::wstring& strFor = {}) {
        constexpr DWORD kHangMs = 30000;
        std::wstring strName(pszName, pszName + std::strlen(pszName));
        if (strFor.ends_with(strName)) ::WaitForSingleObject(hRelease, kHangMs);
        std::lock_guard lock(mutex);
        if (!failing.contains(pszName)) return false;
        ::SetLastError(ERROR_INTERNET_INTERNAL_ERROR);
        return true;
    }
    /// What was asked for with that handle.
    static std::wstring ObjectOf(HINTERNET h) {
        std::lock_guard lock(mutex);
        auto it = objects.find(h);
        return it == objects.end() ? L"" : it->second;
    }
    static HINTERNET Keep(HINTERNET h) {
        std::lock_guard lock(mutex);
        if (h) open.insert(h);
        return h;
    }

    static HINTERNET WINAPI Open(LPCWSTR pszAgent, DWORD nAccess, LPCWSTR pszProxy,
                                 LPCWSTR pszBypass, DWORD dwFlags) {
        if (Enter("InternetOpenW")) return nullptr;
        {
            std::lock_guard lock(mutex);
            opened.push_back({pszAgent, nAccess, dwFlags, pszProxy || pszBypass});
        }
        return Keep(real.pfnOpen(pszAgent, nAccess, pszProxy, pszBypass, dwFlags));
    }
    static HINTERNET WINAPI Connect(HINTERNET h, LPCWSTR pszServer, INTERNET_PORT nPort,
                                    LPCWSTR pszUser, LPCWSTR pszPassword, DWORD nService,
                                    DWORD dwFlags, DWORD_PTR nContext) {
        std::wstring strServer = pszServer ? pszServer : L"";
        if (Enter("InternetConnectW", strServer)) return nullptr;
        {
            std::lock_guard lock(mutex);
            connected.push_back(
                {strServer, nPort, pszUser || pszPassword, nService, dwFlags, nContext});
            auto it = ports.find(strServer);
            if (it != ports.end() && nPort == INTERNET_DEFAULT_HTTP_PORT) {
                nPort = it->second;
                strServer = L"127.0.0.1";
            }
        }
        return Keep(real.pfnConnect(h, pszServer ? strServer.c_str() : nullptr, nPort, pszUser,
                                    pszPassword, nService, dwFlags, nContext));
    }
    static HINTERNET WINAPI Request(HINTERNET h, LPCWSTR pszVerb, LPCWSTR pszObject,
                                    LPCWSTR pszVersion, LPCWSTR pszReferrer, LPCWSTR* ppszAccept,
                                    DWORD dwFlags, DWORD_PTR nContext) {
        std::wstring strObject = pszObject ? pszObject : L"";
        if (Enter("HttpOpenRequestW", strObject)) return nullptr;
        {
            std::lock_guard lock(mutex);
            std::vector<std::wstring> accept;
            for (LPCWSTR* p = ppszAccept; p && *p; ++p) accept.push_back(*p);
            requested.push_back({pszVerb ? pszVerb : L"", strObject, pszVersion != nullptr,
                                 pszReferrer != nullptr, accept, dwFlags, nContext});
        }
        HINTERNET hRequest = Keep(real.pfnRequest(h, pszVerb, pszObject, pszVersion, pszReferrer,
                                                  ppszAccept, dwFlags, nContext));
        std::lock_guard lock(mutex);
        if (hRequest) objects[hRequest] = strObject;
        return hRequest;
    }
    static BOOL WINAPI Send(HINTERNET h, LPCWSTR pszHeaders, DWORD cchHeaders, LPVOID pBody,
                            DWORD cbBody) {
        if (Enter("HttpSendRequestW", ObjectOf(h))) return FALSE;
        {
            std::lock_guard lock(mutex);
            Sent call{};
            call.bHeaders = pszHeaders != nullptr;
            call.bBody = pBody != nullptr;
            if (pszHeaders) {
                call.strHeaders = cchHeaders == ~0u ? std::wstring(pszHeaders)
                                                    : std::wstring(pszHeaders, cchHeaders);
            }
            if (pBody) call.strBody.assign(static_cast<const char*>(pBody), cbBody);
            sent.push_back(call);
        }
        return real.pfnSend(h, pszHeaders, cchHeaders, pBody, cbBody);
    }
    static BOOL WINAPI Read(HINTERNET h, LPVOID p, DWORD cb, LPDWORD pcbRead) {
        if (Enter("InternetReadFile", ObjectOf(h))) return FALSE;
        return real.pfnRead(h, p, cb, pcbRead);
    }
    static BOOL WINAPI Query(HINTERNET h, DWORD nOption, LPVOID p, LPDWORD pcb) {
        if (Enter("InternetQueryOptionW")) return FALSE;
        {
            std::lock_guard lock(mutex);
            auto it = told.find(nOption);
            if (it != told.end() && *pcb >= sizeof(DWORD)) {
                *static_cast<DWORD*>(p) = it->second;
                *pcb = sizeof(DWORD);
                return TRUE;
            }
        }
        return real.pfnQuery(h, nOption, p, pcb);
    }
    static BOOL WINAPI Set(HINTERNET h, DWORD nOption, LPVOID p, DWORD cb) {
        {
            std::lock_guard lock(mutex);
            options.push_back({nOption, cb == sizeof(DWORD) ? *static_cast<DWORD*>(p) : ~0u});
        }
        if (Enter("InternetSetOptionW")) return FALSE;
        return real.pfnSet(h, nOption, p, cb);
    }
    static BOOL WINAPI Close(HINTERNET h) {
        {
            std::lock_guard lock(mutex);
            if (!open.erase(h)) ++nBadCloses;
            objects.erase(h);
        }
        return real.pfnClose(h);
    }

    struct RealFunctions {
        decltype(::InternetOpenW)* pfnOpen;
        decltype(::InternetConnectW)* pfnConnect;
        decltype(::HttpOpenRequestW)* pfnRequest;
        decltype(::HttpSendRequestW)* pfnSend;
        decltype(::InternetReadFile)* pfnRead;
        decltype(::InternetQueryOptionW)* pfnQuery;
        decltype(::InternetSetOptionW)* pfnSet;
        decltype(::InternetCloseHandle)* pfnClose;
    };
    static inline RealFunctions real{};
    static inline std::mutex mutex; // for all below
    static inline std::map<std::wstring, WORD> ports;
    static inline std::set<std::string> failing;
    static inline std::map<DWORD, DWORD> told;
    static inline std::vector<Opened> opened;
    static inline std::vector<Connected> connected;
    static inline std::vector<Requested> requested;
    static inline std::vector<Sent> sent;
    static inline std::vector<std::pair<DWORD, DWORD>> options;
    static inline std::set<HINTERNET> open;
    static inline std::map<HINTERNET, std::wstring> objects;
    static inline std::atomic<int> nBadCloses{0};
    static inline HANDLE hRelease = nullptr;
    ReplaceFunctions windows;
};
