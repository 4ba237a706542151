#pragma once
#include "wnd/core/cswnd.h"

#include <windows.h>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

constexpr const wchar_t* kProbeClass = L"TessalyProbeWindow";

/// A window class of CSWnd for the length of a test.
class ProbeClass {
  public:
    explicit ProbeClass(const wchar_t* pszClass = kProbeClass) : psz(pszClass) {
        atom = CSWnd::RegisterClassExWithWndExtra(psz, 0);
    }
    ProbeClass(const ProbeClass&) = delete;
    ProbeClass& operator=(const ProbeClass&) = delete;
    ~ProbeClass() { CSWnd::UnregisterClassW(psz); }
    ATOM GetAtom() const { return atom; }

  private:
    const wchar_t* psz;
    ATOM atom = 0;
};

/// What happened to a ProbeWnd; outlives it.
struct ProbeRecord {
    std::vector<std::string> log; // what is noted, in its order
    std::vector<UINT> messages;   // all that reached OnWndMessage
    int nPreInits = 0;
    int nPostNcDestroys = 0;
    int nDeletes = 0;
    int nFrames = 0;          // calls of OnWndMessage under way
    int nFramesAtPost = -1;   // how many there were at OnPostNcDestroy,
    int nFramesAtDelete = -1; // and when the object went

    int Count(UINT uMsg) const {
        int n = 0;
        for (UINT u : messages) n += u == uMsg;
        return n;
    }
    bool Saw(UINT uMsg) const { return Count(uMsg) > 0; }
};

/// A window object that writes down what happens to it. Handlers that are set decide; without them,
/// or when onMessage gives nothing, everything is as in CSWnd.
class ProbeWnd : public CSWnd {
  public:
    using Answer = std::optional<LRESULT>;

    explicit ProbeWnd(ProbeRecord& recordNew) : record(recordNew) {}
    ~ProbeWnd() override {
        ++record.nDeletes;
        record.nFramesAtDelete = record.nFrames;
    }

    void PreInit() override {
        ++record.nPreInits;
        record.log.push_back("PreInit");
        if (onPreInit) onPreInit(*this);
    }
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        ProbeRecord& kept = record; // also good if the object should go too early
        kept.messages.push_back(uMsg);
        ++kept.nFrames;
        Answer answer;
        auto fn = onMessage;
        if (fn) answer = fn(*this, uMsg, wParam, lParam);
        LRESULT lResult = answer ? *answer : CSWnd::OnWndMessage(uMsg, wParam, lParam);
        --kept.nFrames;
        return lResult;
    }
    void OnPostNcDestroy() override {
        ++record.nPostNcDestroys;
        record.nFramesAtPost = record.nFrames;
        if (onPost) onPost(*this);
        CSWnd::OnPostNcDestroy();
    }
    void OnActivate(int bActive) override {
        record.log.push_back("OnActivate " + std::to_string(bActive));
    }
    void OnEnable(int bEnabled) override {
        record.log.push_back("OnEnable " + std::to_string(bEnabled));
    }
    void OnSystemSettingChange(WPARAM wParam, LPARAM lParam) override {
        record.log.push_back("setting " + std::to_string(wParam) + " " + std::to_string(lParam));
        if (onSetting) onSetting(*this);
        CSWnd::OnSystemSettingChange(wParam, lParam);
    }

    /// A hidden window of the class ProbeClass; with a parent a child of it.
    int Make(HWND hwndParent = nullptr, const wchar_t* pszTitle = L"probe", DWORD dwStyle = 0) {
        DWORD dwKind = hwndParent ? WS_CHILD : WS_OVERLAPPEDWINDOW;
        return Create(kProbeClass, pszTitle, dwStyle | dwKind, 10, 20, 300, 200, hwndParent,
                      nullptr, nullptr);
    }

    using CSWnd::CommonSubclass;
    using CSWnd::CommonUnsubclass;
    using CSWnd::hooks;
    using CSWnd::hooksRemovalPending;
    using CSWnd::hWnd;
    using CSWnd::msgDepth;
    using CSWnd::ncDestroyed;
    using CSWnd::oldWndProc;
    using CSWnd::shellSubclassed;

    ProbeRecord& record;
    std::function<void(ProbeWnd&)> onPreInit, onPost, onSetting;
    std::function<Answer(ProbeWnd&, UINT, WPARAM, LPARAM)> onMessage;
};

/// A hook that does what it is told.
class ProbeHook : public WMHook {
  public:
    using Fn = std::function<int(CSWnd*, UINT, WPARAM, LPARAM, LRESULT*)>;
    ProbeHook() = default;
    explicit ProbeHook(Fn fnNew) : fn(std::move(fnNew)) {}
    int OnWndMessage(CSWnd* pWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                     LRESULT* plResult) override {
        return fn ? fn(pWnd, uMsg, wParam, lParam, plResult) : 0;
    }
    Fn fn;
};

/// A plain window of the platform, gone with the guard.
class PlainWnd {
  public:
    explicit PlainWnd(HWND hwndParent = nullptr, const wchar_t* pszClass = L"STATIC")
        : hwnd(::CreateWindowExW(0, pszClass, L"plain", hwndParent ? WS_CHILD : WS_POPUP, 0, 0, 50,
                                 50, hwndParent, nullptr, nullptr, nullptr)) {}
    PlainWnd(const PlainWnd&) = delete;
    PlainWnd& operator=(const PlainWnd&) = delete;
    ~PlainWnd() {
        if (::IsWindow(hwnd)) ::DestroyWindow(hwnd);
    }
    operator HWND() const { return hwnd; }

  private:
    HWND hwnd;
};

/// A handle that was a window's and is none any more.
inline HWND DeadWindow() {
    PlainWnd plain;
    return plain;
}

inline std::wstring TextOf(HWND hwnd) {
    wchar_t sz[4096] = L"";
    ::GetWindowTextW(hwnd, sz, 4096);
    return sz;
}
