#include "runtime/threads/cs_thread.h"
#include "runtime/threads/message_pump.h"

#include <process.h>
#include <new>

namespace {
constexpr unsigned kLiveMark = 0x4927FA34;
constexpr DWORD kReadyTimeoutMs = 5000;
constexpr DWORD kDestructorTimeoutMs = 6000;

/// A second handle of the same object, which stays good when the first is closed.
OwnedHandle Duplicate(HANDLE h) {
    HANDLE hCopy = nullptr;
    HANDLE hProcess = ::GetCurrentProcess();
    if (h) ::DuplicateHandle(hProcess, h, hProcess, &hCopy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return OwnedHandle(hCopy);
}

bool IsSignalled(HANDLE h) { return ::WaitForSingleObject(h, 0) == WAIT_OBJECT_0; }
} // namespace

/// Tells whoever is not the object's owner whether the object is still there: a worker at its end,
/// a wait during which the object went away. Counted, since any of them may be the last.
struct CSThread::Life {
    CritSec cs;                // held while somebody relies on what pObject says
    CSThread* pObject;         // null once the destructor has passed the worker
    bool bDestructing = false; // the owner destroys it: no work begins, no self-deletion
    std::atomic<int> nRefs{1};

    explicit Life(CSThread* pOf) : pObject(pOf) {}
    bool MayWork() {
        CritSecLock lock(cs);
        return pObject && !bDestructing;
    }
    void Release() {
        if (--nRefs == 0) delete this;
    }

    /// One counted reference for the length of a block.
    class Ref {
      public:
        explicit Ref(Life* p) : pLife(p) { ++pLife->nRefs; }
        ~Ref() { pLife->Release(); }
        Ref(const Ref&) = delete;
        Ref& operator=(const Ref&) = delete;
        Life* operator->() const { return pLife; }

      private:
        Life* pLife;
    };
};

CSThread::CSThread()
    : pLife(new (std::nothrow) Life(this)), hReady(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      hDone(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      hCancel(::CreateEventW(nullptr, TRUE, FALSE, nullptr)), nLiveMark(kLiveMark) {}

void CSThread::MarkDestruction() {
    if (!pLife) return;
    CritSecLock lock(pLife->cs);
    pLife->bDestructing = true;
}

CSThread::~CSThread() {
    MarkDestruction();
    CSThread::Destroy(kDestructorTimeoutMs);
    if (pLife) {
        {
            // A worker at its end holds the lock: from here on it finds no object.
            CritSecLock lock(pLife->cs);
            pLife->pObject = nullptr;
        }
        pLife->Release();
    }
    CloseThreadHandle();
    nLiveMark = 0;
}

int CSThread::Create(CSThreadProc pfnThread, void* pArgument, int nPriority) {
    if (!pLife) return 0; // was out of memory
    ::ResetEvent(hReady.Get());
    ::ResetEvent(hDone.Get());
    ::ResetEvent(hCancel.Get());
    CloseThreadHandle(); // of a thread that was left to itself

    // Suspended, so that the handle is stored before the worker can close it. After it runs, the
    // object may delete itself at any moment: only what is held here is used.
    OwnedHandle hReadyKept = Duplicate(hReady.Get());
    unsigned nId = 0;
    auto* hNew = reinterpret_cast<HANDLE>(
        ::_beginthreadex(nullptr, 0, pfnThread, pArgument, CREATE_SUSPENDED, &nId));
    if (!hNew) return 0;
    {
        CritSecLock lock(csThread);
        nThreadId = nId;
        hThread = hNew;
    }
    if (nPriority) ::SetThreadPriority(hNew, nPriority);
    ::ResumeThread(hNew);
    if (hReadyKept) WaitPumpingMessages(hReadyKept.Get(), kReadyTimeoutMs);
    return 1;
}

int CSThread::Destroy(DWORD nTimeoutMs) {
    if (!pLife || !hThread.load()) return 1;
    Life::Ref life(pLife);
    if (!IsSignalled(hCancel.Get())) SetCancel();
    // The worker may delete the object as soon as it is done, and with it the event.
    OwnedHandle hDoneKept = Duplicate(hDone.Get());
    bool bDone = nTimeoutMs ? WaitPumpingMessages(hDoneKept.Get(), nTimeoutMs)
                            : IsSignalled(hDoneKept.Get());
    CritSecLock lock(life->cs);
    if (life->pObject) CloseThreadHandle();
    return bDone;
}

int CSThread::WaitForThread(DWORD nTimeoutMs) {
    OwnedHandle hKept; // the worker closes the object's handle before it ends
    {
        CritSecLock lock(csThread);
        hKept = Duplicate(hThread.load());
    }
    return !hKept || ::WaitForSingleObject(hKept.Get(), nTimeoutMs) == WAIT_OBJECT_0;
}

int CSThread::WaitForEvent(HANDLE hEvent, DWORD nTimeoutMs) {
    if (!hThread.load()) return 1;
    return nTimeoutMs ? WaitPumpingMessages(hEvent, nTimeoutMs) : IsSignalled(hEvent);
}

int CSThread::CheckEvent(HANDLE hEvent) { return !hThread.load() || IsSignalled(hEvent); }

void CSThread::CloseThreadHandle() {
    CritSecLock lock(csThread);
    if (HANDLE hOld = hThread.exchange(nullptr)) ::CloseHandle(hOld);
}

int CSThread::ProcessAllMessages(HWND hwnd) { return ::ProcessAllMessages(hwnd); }

int CSThread::FinishOwnThread() {
    CritSecLock lock(csThread);
    // After a Destroy that did not wait, the object may already run another thread.
    if (nThreadId != ::GetCurrentThreadId()) return 0;
    CloseThreadHandle();
    SetDone();
    return 1;
}

// The worker's virtual call needs an object that is a CSThreadEx still: in ~CSThread it would find
// a table of functions that ends before DoThreadEx. So the worker is waited for here, one class
// above, and by operator delete even before a derived class begins to go.
CSThreadEx::~CSThreadEx() { EndWorker(); }

void CSThreadEx::EndWorker() {
    MarkDestruction();
    CSThread::Destroy(kDestructorTimeoutMs); // by then a second call has no thread to wait for
}

unsigned CSThreadEx::DoThreadEx() { return 0; }

int CSThreadEx::Start(int nPriority) { return Create(&ThreadProcEx, this, nPriority); }

unsigned __stdcall CSThreadEx::ThreadProcEx(void* pArgument) {
    auto* pThread = static_cast<CSThreadEx*>(pArgument);
    Life::Ref life(pThread->pLife); // before ready: until then the starter keeps the object
    pThread->SetReady();
    unsigned nExitCode = life->MayWork() ? pThread->DoThreadEx() : 0;

    bool bDelete = false;
    {
        CritSecLock lock(life->cs);
        if (!life->pObject) return nExitCode;
        int bFinished = pThread->FinishOwnThread();
        bDelete = bFinished && pThread->bDeleteSelf && !life->bDestructing;
    }
    if (bDelete) delete pThread;
    return nExitCode;
}
