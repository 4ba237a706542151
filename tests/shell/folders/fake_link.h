#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <shlobj.h>
#include <map>
#include <string>
#include <vector>

extern "C" FARPROC __imp_CoCreateInstance;

/// A link object of the test's own in the place of the platform's, for the length of a block. It
/// writes down what it is asked, and refuses what the test says.
class FakeLink {
  public:
    FakeLink() { pNow = this; }
    ~FakeLink() { pNow = nullptr; }
    FakeLink(const FakeLink&) = delete;
    FakeLink& operator=(const FakeLink&) = delete;

    std::vector<std::wstring> calls;
    std::map<std::wstring, HRESULT> results; // by the calls' first words; S_OK if missing
    std::wstring strTarget = L"C:\\target";
    std::wstring strArgs = L"arguments", strDir = L"C:\\dir";
    ITEMIDLIST* pidl = nullptr; // of the test's
    int nAlive = 0;
    static inline FakeLink* pNow = nullptr;

  private:
    class Object : public IShellLinkW, public IPersistFile {
      public:
        Object() { ++pNow->nAlive; }
        virtual ~Object() {
            if (pNow) --pNow->nAlive;
        }
        static HRESULT Answer(const std::wstring& strCall, const std::wstring& strMore = L"") {
            pNow->calls.push_back(strMore.empty() ? strCall : strCall + L" " + strMore);
            auto it = pNow->results.find(strCall);
            return it == pNow->results.end() ? S_OK : it->second;
        }
        static std::wstring Number(unsigned long long n) { return std::to_wstring(n); }
        static std::wstring Text(const wchar_t* psz) { return psz ? psz : L"(null)"; }
        static HRESULT Give(const std::wstring& strCall, const std::wstring& strText, LPWSTR psz,
                            int cch) {
            HRESULT hr = Answer(strCall, Number(static_cast<unsigned>(cch)));
            if (SUCCEEDED(hr) && psz && cch > 0) ::lstrcpynW(psz, strText.c_str(), cch);
            return hr;
        }

        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** pp) override {
            *pp = nullptr;
            if (iid == IID_IPersistFile) {
                HRESULT hr = Answer(L"QueryFile");
                if (FAILED(hr)) return hr;
                *pp = static_cast<IPersistFile*>(this);
            } else if (iid == IID_IShellLinkW || iid == IID_IUnknown) {
                *pp = static_cast<IShellLinkW*>(this);
            } else {
                return E_NOINTERFACE;
            }
            AddRef();
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
        ULONG STDMETHODCALLTYPE Release() override {
            ULONG n = --nReferences;
            if (!n) delete this;
            return n;
        }
        HRESULT STDMETHODCALLTYPE GetPath(LPWSTR psz, int cch, WIN32_FIND_DATAW* p,
                                          DWORD nFlags) override {
            if (p) p->nFileSizeLow = 99;
            HRESULT hr = Give(L"GetPath", pNow->strTarget, psz, cch);
            pNow->calls.back() += L" " + Number(nFlags);
            return hr;
        }
        HRESULT STDMETHODCALLTYPE GetIDList(LPITEMIDLIST* ppidl) override {
            HRESULT hr = Answer(L"GetIDList");
            *ppidl = SUCCEEDED(hr) && pNow->pidl ? ::ILClone(pNow->pidl) : nullptr;
            return hr;
        }
        HRESULT STDMETHODCALLTYPE SetIDList(LPCITEMIDLIST p) override {
            return Answer(L"SetIDList", Number(reinterpret_cast<ULONG_PTR>(p)));
        }
        HRESULT STDMETHODCALLTYPE GetDescription(LPWSTR psz, int cch) override {
            return Give(L"GetDescription", L"description", psz, cch);
        }
        HRESULT STDMETHODCALLTYPE SetDescription(LPCWSTR psz) override {
            return Answer(L"SetDescription", Text(psz));
        }
        HRESULT STDMETHODCALLTYPE GetWorkingDirectory(LPWSTR psz, int cch) override {
            return Give(L"GetWorkingDirectory", pNow->strDir, psz, cch);
        }
        HRESULT STDMETHODCALLTYPE SetWorkingDirectory(LPCWSTR psz) override {
            return Answer(L"SetWorkingDirectory", Text(psz));
        }
        HRESULT STDMETHODCALLTYPE GetArguments(LPWSTR psz, int cch) override {
            return Give(L"GetArguments", pNow->strArgs, psz, cch);
        }
        HRESULT STDMETHODCALLTYPE SetArguments(LPCWSTR psz) override {
            return Answer(L"SetArguments", Text(psz));
        }
        HRESULT STDMETHODCALLTYPE GetHotkey(WORD* p) override {
            *p = 0x641;
            return Answer(L"GetHotkey");
        }
        HRESULT STDMETHODCALLTYPE SetHotkey(WORD n) override {
            return Answer(L"SetHotkey", Number(n));
        }
        HRESULT STDMETHODCALLTYPE GetShowCmd(int* p) override {
            *p = SW_SHOWMAXIMIZED;
            return Answer(L"GetShowCmd");
        }
        HRESULT STDMETHODCALLTYPE SetShowCmd(int n) override {
            return Answer(L"SetShowCmd", Number(static_cast<unsigned>(n)));
        }
        HRESULT STDMETHODCALLTYPE GetIconLocation(LPWSTR psz, int cch, int* p) override {
            *p = -7;
            return Give(L"GetIconLocation", L"icon.dll", psz, cch);
        }
        HRESULT STDMETHODCALLTYPE SetIconLocation(LPCWSTR psz, int n) override {
            return Answer(L"SetIconLocation", Text(psz) + L" " + std::to_wstring(n));
        }
        HRESULT STDMETHODCALLTYPE SetRelativePath(LPCWSTR psz, DWORD n) override {
            return Answer(L"SetRelativePath", Text(psz) + L" " + Number(n));
        }
        HRESULT STDMETHODCALLTYPE Resolve(HWND hwnd, DWORD nFlags) override {
            return Answer(L"Resolve",
                          Number(reinterpret_cast<ULONG_PTR>(hwnd)) + L" " + Number(nFlags));
        }
        HRESULT STDMETHODCALLTYPE SetPath(LPCWSTR psz) override {
            return Answer(L"SetPath", Text(psz));
        }
        HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }
        HRESULT STDMETHODCALLTYPE Load(LPCOLESTR psz, DWORD nMode) override {
            return Answer(L"Load", Text(psz) + L" " + Number(nMode));
        }
        HRESULT STDMETHODCALLTYPE Save(LPCOLESTR psz, BOOL bRemember) override {
            return Answer(L"Save", Text(psz) + L" " + Number(static_cast<unsigned>(bRemember)));
        }
        HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR) override { return S_OK; }
        HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR*) override { return E_NOTIMPL; }

      private:
        ULONG nReferences = 1;
    };

    static HRESULT WINAPI Create(REFCLSID clsid, IUnknown* pOuter, DWORD nContext, REFIID iid,
                                 void** pp) {
        *pp = nullptr;
        bool bAsTold = clsid == CLSID_ShellLink && iid == IID_IShellLinkW && !pOuter &&
                       nContext == CLSCTX_INPROC_SERVER;
        HRESULT hr = Object::Answer(L"Create", bAsTold ? L"link" : L"other");
        if (FAILED(hr)) return hr;
        *pp = static_cast<IShellLinkW*>(new Object);
        return S_OK;
    }
    ReplaceImport create{__imp_CoCreateInstance, &Create};
};
