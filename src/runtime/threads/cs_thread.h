#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include "runtime/threads/crit_sec.h"
#include <windows.h>
#include <atomic>
#include <new>

/// What a thread runs; its result is the thread's exit code.
using CSThreadProc = unsigned(__stdcall*)(void* pArgument);

/// A worker thread with three events: ready (the worker has started), done (it has finished its
/// work) and cancel (it shall end). Waits keep the calling thread's windows alive.
///
/// States: created, running, done, destroyed. With no thread handle, before the first Create, after
/// Destroy, or once a CSThreadEx has ended by itself, every question is answered with yes: IsReady,
/// IsDone and IsCanceled give 1 and waits return 1 at once.
///
/// A worker that does not answer Destroy in time goes on running, without the object: it must not
/// touch it any more. A derived class whose worker uses its members calls Destroy in its own
/// destructor, since they are gone before this class's destructor waits.
class TESSALY_API CSThread {
  public:
    CSThread();
    /// Destroy with 6 seconds.
    virtual ~CSThread();
    CSThread(const CSThread&) = delete; // owns thread and events
    CSThread& operator=(const CSThread&) = delete;

    /// Asks the worker to end, waits up to nTimeoutMs for done, and gives the thread's handle back.
    /// Returns 1 if there was no thread or it was done; 0 if it goes on.
    virtual int Destroy(DWORD nTimeoutMs);

    /// Clears the events, starts pfnThread with pArgument and waits up to 5 seconds for ready.
    /// nPriority is a THREAD_PRIORITY_... value. Returns 1 if the thread was started, ready or not.
    /// The worker calls SetReady when it has begun and SetDone as its last step: nobody else does,
    /// and without them this and Destroy wait in vain.
    int Create(CSThreadProc pfnThread, void* pArgument, int nPriority = 0);

    /// Signal the events; the first two are for the worker, the third for whoever ends it.
    void SetReady() { ::SetEvent(hReady.Get()); }
    void SetDone() { ::SetEvent(hDone.Get()); }
    void SetCancel() { ::SetEvent(hCancel.Get()); }

    /// Waits that dispatch messages; see WaitForEvent.
    int WaitForReady(DWORD nTimeoutMs) { return WaitForEvent(hReady.Get(), nTimeoutMs); }
    int WaitForDone(DWORD nTimeoutMs) { return WaitForEvent(hDone.Get(), nTimeoutMs); }
    int WaitForCancel(DWORD nTimeoutMs) { return WaitForEvent(hCancel.Get(), nTimeoutMs); }
    /// Waits without dispatching: 1 if there is no thread or it has ended.
    int WaitForThread(DWORD nTimeoutMs);
    /// 1 if there is no thread or the event was signalled, 0 after the time. Time 0 only looks.
    /// Otherwise messages are dispatched meanwhile, and each round of them starts the time anew.
    int WaitForEvent(HANDLE hEvent, DWORD nTimeoutMs);
    /// 1 if there is no thread or the event is signalled.
    // QUIRK: with no thread, before the first Create as after the end, every question is answered
    // with yes. Test: CSThread.ThatNeverRanSaysYesToEverything
    int CheckEvent(HANDLE hEvent);
    int IsReady() { return CheckEvent(hReady.Get()); }     ///< Whether the worker has started.
    int IsDone() { return CheckEvent(hDone.Get()); }       ///< Whether it has finished its work.
    int IsCanceled() { return CheckEvent(hCancel.Get()); } ///< Whether it shall end.

    /// Gives the thread's handle back; the thread, if it runs, goes on.
    void CloseThreadHandle();
    /// The free function of the same name (runtime/threads/message_pump.h): 1; 0 if WM_QUIT was
    /// among the messages.
    int ProcessAllMessages(HWND hwnd = nullptr);
    /// Null before Create and after Destroy or CloseThreadHandle; of a CSThreadEx also when its
    /// thread has ended.
    operator HANDLE() const { return hThread.load(); }

  protected:
    struct Life; // outlives the object as long as its worker needs it
    /// The owner has begun to destroy the object: from here on its worker neither begins work nor
    /// deletes the object.
    void MarkDestruction();
    /// The end of the calling thread: handle closed, done set. 0 if the object runs another by now.
    int FinishOwnThread();

    Life* pLife;

  private:
    std::atomic<HANDLE> hThread{nullptr};
    unsigned nThreadId = 0;
    OwnedHandle hReady;
    OwnedHandle hDone;
    OwnedHandle hCancel;
    volatile unsigned nLiveMark; // 0x4927FA34 while the object lives
    CritSec csThread;            // for hThread, which owner and worker may close
};

/// A thread that runs DoThreadEx, is ready at once and done when that returns.
///
/// A class whose DoThreadEx uses members of its own calls Destroy first thing in its destructor,
/// whoever destroys it: its owner, the end of a block, or the object itself.
class TESSALY_API CSThreadEx : public CSThread {
  public:
    /// bDeleteSelfAtEnd: made with new, the object deletes itself when the work is done. Until then
    /// its owner may delete it as any other object; who cannot know that the work goes on must not.
    explicit CSThreadEx(int bDeleteSelfAtEnd = 0) : bDeleteSelf(bDeleteSelfAtEnd) {}
    /// Asks the worker to end and waits up to 6 seconds for done. Work that has not begun by then
    /// does not begin any more.
    ~CSThreadEx() override;
    /// Does the same before the first destructor of a derived class runs.
    static void operator delete(CSThreadEx* pThread, std::destroying_delete_t) {
        // Of an object with several bases this class need not be the beginning. Inline, since the
        // memory goes back to where the module that made the object took it from.
        void* pBlock = dynamic_cast<void*>(pThread);
        pThread->EndWorker();
        pThread->~CSThreadEx();
        ::operator delete(pBlock);
    }

    /// The work, on the worker's thread; the result becomes the exit code.
    virtual unsigned DoThreadEx();

    /// Create with ThreadProcEx. Returns 1 if the thread was started; an object that deletes itself
    /// may be gone by then.
    int Start(int nPriority = 0);
    /// Destroy under another name.
    int Stop(DWORD nTimeoutMs) { return Destroy(nTimeoutMs); }
    /// The thread's function; pArgument is the CSThreadEx.
    static unsigned __stdcall ThreadProcEx(void* pArgument);

  private:
    void EndWorker();

    int bDeleteSelf;
};
