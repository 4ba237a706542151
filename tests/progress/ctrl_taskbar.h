#pragma once
#include "support/replace_import.h"
#include "support/told_version.h"

#include <gtest/gtest.h>
#include <shobjidl.h>
#include <windows.h>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>

extern "C" FARPROC __imp_CoCreateInstance;

/// The taskbar as an object of the test's, in the place of CoCreateInstance while it lives: writes
/// down what it is told. On a Windows 7 unless told otherwise. Fails the test at its end if
/// references that it gave away have not been given back.
class FakeTaskbar {
  public:
    FakeTaskbar() : version(Version(VER_PLATFORM_WIN32_NT, 6, 1, VER_NT_WORKSTATION)) {
        pNow = this;
        list.pTaskbar = this;
    }
    ~FakeTaskbar() {
        EXPECT_EQ(0, nReferences.load());
        pNow = nullptr;
    }
    FakeTaskbar(const FakeTaskbar&) = delete;
    FakeTaskbar& operator=(const FakeTaskbar&) = delete;

    /// What was told since the last call: "state <window> <state>; ", "value <window> <done> <all>;
    /// " and "gone; " for the last reference.
    std::string Take() {
        std::lock_guard lock(mutex);
        std::string strTaken;
        strTaken.swap(str);
        return strTaken;
    }
    static std::string State(HWND hwnd, TBPFLAG state) {
        return "state " + Name(hwnd) + " " + std::to_string(state) + "; ";
    }
    static std::string Value(HWND hwnd, ULONGLONG nDone, ULONGLONG nAll) {
        return "value " + Name(hwnd) + " " + std::to_string(nDone) + " " + std::to_string(nAll) +
               "; ";
    }

    HRESULT hrCreate = S_OK;       // what the creation gives
    std::function<void()> fnValue; // before a value is written down
    std::atomic<int> nCreated{0};  // times that the taskbar was asked for

  private:
    void Add(const std::string& strCall) {
        std::lock_guard lock(mutex);
        str += strCall;
    }
    static std::string Name(HWND hwnd) { return std::to_string(reinterpret_cast<ULONG_PTR>(hwnd)); }

    struct List final : ITaskbarList3 {
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** ppv) override {
            *ppv = nullptr;
            return E_NOINTERFACE;
        }
        ULONG STDMETHODCALLTYPE AddRef() override {
            return static_cast<ULONG>(++pTaskbar->nReferences);
        }
        ULONG STDMETHODCALLTYPE Release() override {
            int n = --pTaskbar->nReferences;
            if (n == 0) pTaskbar->Add("gone; ");
            return static_cast<ULONG>(n);
        }
        HRESULT STDMETHODCALLTYPE HrInit() override { return S_OK; }
        HRESULT STDMETHODCALLTYPE AddTab(HWND) override { return Other("AddTab"); }
        HRESULT STDMETHODCALLTYPE DeleteTab(HWND) override { return Other("DeleteTab"); }
        HRESULT STDMETHODCALLTYPE ActivateTab(HWND) override { return Other("ActivateTab"); }
        HRESULT STDMETHODCALLTYPE SetActiveAlt(HWND) override { return Other("SetActiveAlt"); }
        HRESULT STDMETHODCALLTYPE MarkFullscreenWindow(HWND, WINBOOL) override {
            return Other("MarkFullscreenWindow");
        }
        HRESULT STDMETHODCALLTYPE SetProgressValue(HWND hwnd, ULONGLONG nDone,
                                                   ULONGLONG nAll) override {
            if (pTaskbar->fnValue) pTaskbar->fnValue();
            pTaskbar->Add(Value(hwnd, nDone, nAll));
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE SetProgressState(HWND hwnd, TBPFLAG state) override {
            pTaskbar->Add(State(hwnd, state));
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE RegisterTab(HWND, HWND) override { return Other("RegisterTab"); }
        HRESULT STDMETHODCALLTYPE UnregisterTab(HWND) override { return Other("UnregisterTab"); }
        HRESULT STDMETHODCALLTYPE SetTabOrder(HWND, HWND) override { return Other("SetTabOrder"); }
        HRESULT STDMETHODCALLTYPE SetTabActive(HWND, HWND, DWORD) override {
            return Other("SetTabActive");
        }
        HRESULT STDMETHODCALLTYPE ThumbBarAddButtons(HWND, UINT, LPTHUMBBUTTON) override {
            return Other("ThumbBarAddButtons");
        }
        HRESULT STDMETHODCALLTYPE ThumbBarUpdateButtons(HWND, UINT, LPTHUMBBUTTON) override {
            return Other("ThumbBarUpdateButtons");
        }
        HRESULT STDMETHODCALLTYPE ThumbBarSetImageList(HWND, HIMAGELIST) override {
            return Other("ThumbBarSetImageList");
        }
        HRESULT STDMETHODCALLTYPE SetOverlayIcon(HWND, HICON, LPCWSTR) override {
            return Other("SetOverlayIcon");
        }
        HRESULT STDMETHODCALLTYPE SetThumbnailTooltip(HWND, LPCWSTR) override {
            return Other("SetThumbnailTooltip");
        }
        HRESULT STDMETHODCALLTYPE SetThumbnailClip(HWND, RECT*) override {
            return Other("SetThumbnailClip");
        }
        HRESULT Other(const char* pszMethod) {
            pTaskbar->Add(std::string(pszMethod) + "; ");
            return E_NOTIMPL;
        }
        FakeTaskbar* pTaskbar = nullptr;
    };

    static HRESULT WINAPI Create(REFCLSID clsid, IUnknown* pOuter, DWORD dwContext, REFIID iid,
                                 void** ppv) {
        constexpr GUID kClass = {
            0x56FDF344, 0xFD6D, 0x11D0, {0x95, 0x8A, 0, 0x60, 0x97, 0xC9, 0xA0, 0x90}};
        constexpr GUID kInterface = {
            0xEA1AFB91, 0x9E28, 0x4B86, {0x90, 0xE9, 0x9E, 0x9F, 0x8A, 0x5E, 0xEF, 0xAF}};
        if (!::IsEqualGUID(clsid, kClass)) {
            auto* pfn = pNow->create.Original<decltype(::CoCreateInstance)>();
            return pfn(clsid, pOuter, dwContext, iid, ppv);
        }
        ++pNow->nCreated;
        *ppv = nullptr;
        EXPECT_EQ(nullptr, pOuter);
        EXPECT_EQ(static_cast<DWORD>(CLSCTX_INPROC_SERVER), dwContext);
        EXPECT_TRUE(::IsEqualGUID(iid, kInterface));
        if (FAILED(pNow->hrCreate)) return pNow->hrCreate;
        ++pNow->nReferences;
        *ppv = &pNow->list;
        return S_OK;
    }

    static inline FakeTaskbar* pNow = nullptr;
    List list;
    std::atomic<int> nReferences{0};
    std::mutex mutex;
    std::string str;
    ToldVersion version;
    ReplaceImport create{__imp_CoCreateInstance, &Create};
};
