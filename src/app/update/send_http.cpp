#include "app/update/send_http.h"
#include "runtime/base/heap_array.h"
#include "runtime/base/ownership.h"
#include "runtime/system/runtime_func.h"
#include "runtime/text/encoding.h"

#include <wininet.h>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>

// WinINet waits for a server that sends a byte now and then, or for a name that is not resolved, as
// long as that takes: its time-outs are each for one step. So a worker asks, and who waits for it
// goes when the time is over. What the two share goes with the last of them.

namespace {
constexpr const wchar_t* kAgent = L"Mozilla/4.0 (Orvanta Software)";
constexpr const wchar_t* kFormHeader = L"Content-Type: application/x-www-form-urlencoded";
constexpr DWORD kRequestFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_RESYNCHRONIZE | INTERNET_FLAG_NO_UI;
constexpr DWORD_PTR kContext = 1;

/// The platform's own time-outs shall come first: then everything ends in good order.
constexpr DWORD kMarginMs = 1000;
/// For the worker, after the connection was taken from it.
constexpr DWORD kCancelMs = 500;
constexpr DWORD kLongestMs = 24 * 60 * 60 * 1000;

/// WinINet's functions, which the library does not import: only this exchange maps them.
struct WebFunctions {
    decltype(&::InternetOpenW) pfnOpen;
    decltype(&::InternetConnectW) pfnConnect;
    decltype(&::HttpOpenRequestW) pfnOpenRequest;
    decltype(&::InternetQueryOptionW) pfnQueryOption;
    decltype(&::InternetSetOptionW) pfnSetOption;
    decltype(&::HttpSendRequestW) pfnSendRequest;
    decltype(&::InternetQueryDataAvailable) pfnQueryDataAvailable;
    decltype(&::InternetReadFile) pfnReadFile;
    decltype(&::InternetCloseHandle) pfnCloseHandle;
    decltype(&::DeleteUrlCacheEntryW) pfnDeleteEntry; // may be null

    bool Load() {
        Find(pfnDeleteEntry, "DeleteUrlCacheEntryW");
        return Find(pfnOpen, "InternetOpenW") && Find(pfnConnect, "InternetConnectW") &&
               Find(pfnOpenRequest, "HttpOpenRequestW") &&
               Find(pfnQueryOption, "InternetQueryOptionW") &&
               Find(pfnSetOption, "InternetSetOptionW") &&
               Find(pfnSendRequest, "HttpSendRequestW") &&
               Find(pfnQueryDataAvailable, "InternetQueryDataAvailable") &&
               Find(pfnReadFile, "InternetReadFile") && Find(pfnCloseHandle, "InternetCloseHandle");
    }

  private:
    template <class Fn>
    static bool Find(Fn*& pfn, const char* pszName) {
        pfn = FindSystemFunc<Fn>(L"wininet.dll", pszName);
        return pfn != nullptr;
    }
};

/// Where the platform keeps a copy of an answer on the disk, which it does even of one that it was
/// told to fetch anew.
class CachedCopy {
  public:
    /// Asks for its names, once the answer has begun.
    void Find(const WebFunctions& webFunctions, HINTERNET hRequest) {
        DWORD cb = sizeof(szUrl);
        if (!webFunctions.pfnQueryOption(hRequest, INTERNET_OPTION_URL, szUrl, &cb)) *szUrl = 0;
        cb = sizeof(szFile);
        if (!webFunctions.pfnQueryOption(hRequest, INTERNET_OPTION_DATAFILE_NAME, szFile, &cb))
            *szFile = 0;
    }
    void Forget() { *szUrl = *szFile = 0; }
    /// Deletes it. Not before the request is closed, which puts it there.
    void Delete(const WebFunctions& webFunctions) const {
        if (*szUrl && webFunctions.pfnDeleteEntry && webFunctions.pfnDeleteEntry(szUrl)) return;
        // The file of an answer that was not read to its end has no entry.
        if (*szFile) ::DeleteFileW(szFile);
    }

  private:
    wchar_t szUrl[INTERNET_MAX_URL_LENGTH + 1] = {}; // the last one of those asked
    wchar_t szFile[MAX_PATH] = {};
};

/// One question and its answer. Owned by who waits and by each thread that works on it.
class Exchange {
  public:
    Exchange() = default;
    Exchange(const Exchange&) = delete; // shared by its address
    Exchange& operator=(const Exchange&) = delete;

    /// Copies the question. False without memory.
    bool Prepare(const wchar_t* pszServer, const wchar_t* pszObject, unsigned cbMaximum,
                 const wchar_t* pszPost, DWORD nMs);
    /// Asks and reads, with every handle closed at the end.
    void Run();
    /// Takes the connection from the worker, whatever it waits for.
    void Cancel();
    /// The answer as a text of malloc's; null if there is none, or no memory. What a worker reads
    /// from now on does not count.
    wchar_t* TakeText() const;

    void AddOwner() { ++nOwners; }
    void RemoveOwner() {
        if (--nOwners == 0) delete this;
    }

  private:
    enum Level { kSession, kConnection, kRequest, kLevels };

    /// The last of the owners: nobody has a handle open any more.
    ~Exchange() { copy.Delete(web); }
    HINTERNET Keep(Level level, HINTERNET hOpened);
    void CloseHandles();
    HINTERNET OpenRequest();
    void SetTimeout(HINTERNET hRequest, DWORD nOption) const;
    bool Send(HINTERNET hRequest);
    void Read(HINTERNET hRequest);

    std::atomic<int> nOwners{1};
    HeapArray<wchar_t> server, object;
    HeapArray<char> post; // none for GET
    HeapArray<unsigned char> block;
    std::size_t cbMax = 0;
    std::atomic<std::size_t> cbRead{0}; // what of the block is there to stay
    DWORD nTimeoutMs = 0;
    WebFunctions web{};
    std::atomic<HINTERNET> handles[kLevels] = {};
    std::atomic<bool> bCancelled{false};
    CachedCopy copy; // the worker's, and then the last owner's
};

struct ExchangeOwner {
    void operator()(Exchange* pExchange) const { pExchange->RemoveOwner(); }
};
using OwnedExchange = std::unique_ptr<Exchange, ExchangeOwner>;

bool Exchange::Prepare(const wchar_t* pszServer, const wchar_t* pszObject, unsigned cbMaximum,
                       const wchar_t* pszPost, DWORD nMs) {
    server = CopyToHeap(pszServer);
    object = CopyToHeap(pszObject);
    cbMax = cbMaximum;
    nTimeoutMs = nMs;
    block = HeapArray<unsigned char>(cbMax * 2 + 2); // ends with zeros, whatever is read
    if (!server.IsReady() || !object.IsReady() || !block.IsReady()) return false;
    if (!pszPost) return true;
    const int cb = wc2mb(pszPost, nullptr, 0);
    post = HeapArray<char>(static_cast<std::size_t>(cb));
    return post.IsReady() && wc2mb(pszPost, post.Get(), cb);
}

/// Null if it was cancelled meanwhile; the handle is closed then.
HINTERNET Exchange::Keep(Level level, HINTERNET hOpened) {
    handles[level] = hOpened;
    if (!bCancelled) return hOpened;
    CloseHandles();
    return nullptr;
}

/// Each handle by whoever takes it, once.
void Exchange::CloseHandles() {
    for (int i = kLevels; i-- > 0;) {
        if (HINTERNET h = handles[i].exchange(nullptr)) web.pfnCloseHandle(h);
    }
}

void Exchange::Cancel() {
    bCancelled = true; // before: a handle that comes later is closed by the worker
    CloseHandles();
}

HINTERNET Exchange::OpenRequest() {
    HINTERNET h =
        Keep(kSession, web.pfnOpen(kAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!h) return nullptr;
    h = Keep(kConnection, web.pfnConnect(h, server.Get(), INTERNET_DEFAULT_HTTP_PORT, nullptr,
                                         nullptr, INTERNET_SERVICE_HTTP, 0, kContext));
    if (!h) return nullptr;
    const wchar_t* ppszAccept[] = {L"*/*", nullptr};
    return Keep(kRequest,
                web.pfnOpenRequest(h, post.IsReady() ? L"POST" : L"GET", object.Get(), nullptr,
                                   nullptr, ppszAccept, kRequestFlags, kContext));
}

void Exchange::SetTimeout(HINTERNET hRequest, DWORD nOption) const {
    DWORD nPresent = 0, cb = sizeof(nPresent), nWanted = nTimeoutMs;
    if (web.pfnQueryOption(hRequest, nOption, &nPresent, &cb) && nPresent == nWanted) return;
    web.pfnSetOption(hRequest, nOption, &nWanted, sizeof(nWanted));
}

bool Exchange::Send(HINTERNET hRequest) {
    if (!post.IsReady()) return web.pfnSendRequest(hRequest, nullptr, 0, nullptr, 0);
    const DWORD cb = static_cast<DWORD>(post.GetCount() - 1);
    return web.pfnSendRequest(hRequest, kFormHeader, static_cast<DWORD>(-1), post.Get(), cb);
}

void Exchange::Read(HINTERNET hRequest) {
    std::size_t cbDone = 0;
    while (cbDone < cbMax && !bCancelled) {
        DWORD cbThere = 0, cbGot = 0;
        if (!web.pfnQueryDataAvailable(hRequest, &cbThere, 0, 0) || !cbThere) return;
        const auto cbWanted = static_cast<DWORD>(std::min<std::size_t>(cbThere, cbMax - cbDone));
        if (!web.pfnReadFile(hRequest, block.Get() + cbDone, cbWanted, &cbGot) || !cbGot) return;
        cbDone += cbGot;
        cbRead = cbDone;
    }
}

void Exchange::Run() {
    if (!web.Load()) return;
    if (HINTERNET hRequest = OpenRequest()) {
        SetTimeout(hRequest, INTERNET_OPTION_CONNECT_TIMEOUT);
        SetTimeout(hRequest, INTERNET_OPTION_RECEIVE_TIMEOUT);
        if (Send(hRequest)) {
            copy.Find(web, hRequest);
            if (bCancelled) copy.Forget(); // the number may have been another's request by then
            Read(hRequest);
        }
    }
    CloseHandles();
}

// The answer's text

wchar_t* AllocText(std::size_t cch) {
    auto* psz = static_cast<wchar_t*>(std::malloc((cch + 1) * sizeof(wchar_t)));
    if (psz) psz[cch] = 0;
    return psz;
}

/// By one of the functions of runtime/text/encoding.h, from bytes that end with a zero.
wchar_t* DecodeText(const unsigned char* pBytes, int (*pfnDecode)(const char*, wchar_t*, int)) {
    const auto* psz = reinterpret_cast<const char*>(pBytes);
    const int cch = pfnDecode(psz, nullptr, 0);
    wchar_t* pszText = cch > 0 ? AllocText(static_cast<std::size_t>(cch)) : nullptr;
    if (pszText) pfnDecode(psz, pszText, cch);
    return pszText;
}

wchar_t* Exchange::TakeText() const {
    const std::size_t cb = cbRead;
    HeapArray<unsigned char> bytes(cb ? cb + 2 : 0); // the worker may still write behind them
    if (!bytes.IsReady()) return nullptr;
    const unsigned char* p = bytes.Get();
    std::memcpy(bytes.Get(), block.Get(), cb);
    if (cb >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) return DecodeText(p + 3, &utf82wc);
    if (cb < 2 || p[0] != 0xFF || p[1] != 0xFE) return DecodeText(p, &mb2wc);
    const std::size_t cch = cb / sizeof(wchar_t) - 1; // half a character at the end is none
    wchar_t* pszText = AllocText(cch);
    if (pszText) std::memcpy(pszText, p + 2, cch * sizeof(wchar_t));
    return pszText;
}

// The threads

/// This module, with one more reference on it; null if the platform refused.
HMODULE HoldThisModule() {
    HMODULE hmod = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                         reinterpret_cast<LPCWSTR>(&HoldThisModule), &hmod);
    return hmod;
}

/// What a thread gets: its step of the exchange, its part of that, and the module that it runs in,
/// for which nobody may be waiting any more.
struct Task {
    void (Exchange::*pfnStep)();
    OwnedExchange exchange;
    OwnedModule module;
};

DWORD WINAPI RunTask(void* pArgument) {
    HMODULE hmodHeld = nullptr;
    {
        const std::unique_ptr<Task> task(static_cast<Task*>(pArgument));
        (task->exchange.get()->*task->pfnStep)();
        hmodHeld = task->module.Release();
    }
    ::FreeLibraryAndExitThread(hmodHeld, 0);
}

OwnedHandle StartThread(Exchange& exchange, void (Exchange::*pfnStep)()) {
    exchange.AddOwner();
    OwnedExchange share(&exchange);
    std::unique_ptr<Task> task(new (std::nothrow)
                                   Task{pfnStep, std::move(share), OwnedModule(HoldThisModule())});
    if (!task || !task->module) return {};
    OwnedHandle thread(::CreateThread(nullptr, 0, &RunTask, task.get(), 0, nullptr));
    if (thread) static_cast<void>(task.release()); // the thread's
    return thread;
}
} // namespace

wchar_t* SendHttp(const wchar_t* pszServer, const wchar_t* pszObject, unsigned cbMax,
                  const wchar_t* pszPost, unsigned nSeconds) {
    const DWORD nMs = std::min<DWORD>(nSeconds, kLongestMs / 1000) * 1000;
    const OwnedExchange exchange(new (std::nothrow) Exchange);
    if (!exchange || !exchange->Prepare(pszServer, pszObject, cbMax, pszPost, nMs)) return nullptr;
    const OwnedHandle worker = StartThread(*exchange, &Exchange::Run);
    if (!worker) return nullptr;
    if (::WaitForSingleObject(worker.Get(), nMs + kMarginMs) == WAIT_TIMEOUT) {
        // Closing a handle may wait for the call that uses it, so that is not done here either.
        const OwnedHandle canceller = StartThread(*exchange, &Exchange::Cancel);
        const HANDLE threads[] = {worker.Get(), canceller.Get()};
        ::WaitForMultipleObjects(canceller ? 2 : 1, threads, TRUE, kCancelMs);
    }
    return exchange->TakeText();
}
