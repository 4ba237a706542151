#pragma once
#include "runtime/base/export.h"
#include "runtime/base/ownership.h"
#include <windows.h>

/// Writes the name of a kernel object with its name space before it: "Global\" if bGlobal, else
/// "Local\". A name that does not fit is cut. Returns pszBuffer; without a name the buffer is empty
/// and the result null, which makes an unnamed object.
const wchar_t* PrepareObjectName(wchar_t* pszBuffer, unsigned cchBuffer, const wchar_t* pszName,
                                 int bGlobal);

/// Characters, with the terminator, of the longest name of a kernel object here.
constexpr unsigned kMaxObjectName = 260;

/// A kernel object that can be found by name and waited for. The handle is closed by the derived
/// class, which knows what it opened.
class TESSALY_API Synch {
  public:
    Synch(const Synch&) = delete; // owns the handle
    Synch& operator=(const Synch&) = delete;

    /// Opens the object of that name, which must exist; what was open before is closed. dwAccess
    /// are the platform's rights, such as EVENT_MODIFY_STATE. Returns 1 if there is a handle.
    int Open(const wchar_t* pszName, int bGlobal, DWORD dwAccess, int bInherit);
    /// Closes the handle, if there is one.
    void Close();
    /// 1 only if the object was signalled; 0 after the time, for an abandoned mutex or without a
    /// handle. GetLastWaitResult tells which.
    int Wait(DWORD nTimeoutMs);
    /// Wait, which input of the kinds in dwWakeMask (QS_...) also ends, with 0.
    int MsgWait(DWORD nTimeoutMs, DWORD dwWakeMask);
    /// The platform's result (WAIT_...) of the last wait.
    DWORD GetLastWaitResult() const { return dwLastWait; }
    operator HANDLE() const { return h; }

  protected:
    explicit Synch(int nKindOfObject) : nKind(nKindOfObject) {}
    ~Synch() = default;
    /// Opens by the full name; null if there is no such object. The base knows no kind of object.
    virtual HANDLE Win32_Open(DWORD dwAccess, int bInherit, const wchar_t* pszName);
    static const wchar_t* PrepareName(wchar_t* pszBuffer, unsigned cchBuffer,
                                      const wchar_t* pszName, int bGlobal);

    HANDLE h = nullptr;
    int nKind; // 1 for events; for derived classes, nothing here reads it
    DWORD dwLastWait = 0;
};

/// A named or unnamed event. Manual events stay set until they are cleared; the others let one
/// waiter through.
class TESSALY_API Event : public Synch {
  public:
    Event() : Synch(1) {}
    ~Event() { Close(); }

    /// Makes the event or opens the one of that name. pSecurity may be null. Returns 1 if there is
    /// a handle.
    int CreateOrOpen(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
                     SECURITY_ATTRIBUTES* pSecurity = nullptr);
    /// Makes the event; one of that name that exists already is a failure. Returns 1 if there is a
    /// handle; 0 without one.
    int CreateNew(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
                  SECURITY_ATTRIBUTES* pSecurity = nullptr);
    /// A new event that the user with that SID (as text) may use with the rights of dwAccess, and
    /// LOCAL SERVICE with all; its handle is inherited. Returns 1; 0 for a bad SID or if the event
    /// exists already.
    int CreateNewForUser(const wchar_t* pszName, int bGlobal, const wchar_t* pszSid, DWORD dwAccess,
                         int bManual, int bInitial);
    /// Sets the event; nothing without a handle.
    void Set();
    void Clear(); ///< Clears the event; nothing without a handle.
    void Pulse(); ///< Lets the present waiters through and clears; nothing without a handle.
    /// 1 if the event is set, asked without waiting; that clears an event that is not manual.
    int IsSet() { return Wait(0); }

  protected:
    HANDLE Win32_Open(DWORD dwAccess, int bInherit, const wchar_t* pszName) override;

  private:
    /// CreateOrOpen; bExisted tells whether the event was there before.
    int Create(const wchar_t* pszName, int bGlobal, int bManual, int bInitial,
               SECURITY_ATTRIBUTES* pSecurity, int& bExisted);
};

/// An event under exactly the name given, without a name space put before it.
class TESSALY_API EventSimple {
  public:
    /// An unnamed event that is not manual and not set.
    EventSimple();
    /// Makes the event or opens the one of that name; IsReady and HasExisted tell what came.
    EventSimple(const wchar_t* pszName, int bManual, int bInitial);
    EventSimple(const EventSimple&) = delete; // owns the handle
    EventSimple& operator=(const EventSimple&) = delete;

    /// Makes the event or opens the one of that name; what was open is closed. Returns 1 if there
    /// is a handle.
    int Open(const wchar_t* pszName, int bManual, int bInitial);
    /// Opens an event that exists. Returns 1 if it could be opened.
    int OpenEventW(DWORD dwAccess, int bInherit, const wchar_t* pszName);
    /// Sets the event; bSignalled 0 clears it, as Clear does. Both do nothing without a handle.
    void Set(int bSignalled = 1);
    void Clear();                                      ///< Clears the event.
    int IsReady() const { return h.Get() != nullptr; } ///< Whether there is a handle.
    /// After making: 1 if an event of that name existed already. After OpenEventW: its result.
    int HasExisted() const { return bExisted; }
    operator HANDLE() const { return h.Get(); }

  private:
    OwnedHandle h;
    int bExisted = 0;
};

/// A mutex, not owned by anybody at first; of this logon session or, if bGlobal, of the whole
/// machine.
class TESSALY_API MyMutex {
  public:
    /// A null name makes an unnamed mutex. Without a handle, when the platform refused, every Wait
    /// gives 0.
    MyMutex(int bGlobal, const wchar_t* pszName);
    MyMutex(const MyMutex&) = delete; // owns the handle
    MyMutex& operator=(const MyMutex&) = delete;

    /// 1 if the mutex is now owned and its last owner had released it. After an abandonment it is
    /// owned too, but the result is 0.
    int Wait(DWORD nTimeoutMs);
    /// Gives the mutex up; the thread must own it.
    void Release();
    operator HANDLE() const { return h.Get(); }

  private:
    OwnedHandle h;
};
