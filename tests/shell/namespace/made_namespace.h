#pragma once
#include "shell/namespace/made_lists.h"
#include "support/replace_import.h"
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <algorithm>
#include <cwchar>
#include <functional>
#include <set>
#include <string>
#include <vector>

extern "C" FARPROC __imp_SHGetDesktopFolder;

/// A namespace of the test's in the place of the platform's: each folder holds whatever is asked
/// for. The item of a name is that name (TextItem), and what a folder is asked is written down.
class MadeNamespace {
  public:
    /// Folders of its own; the desktop's path is empty.
    struct Folder : IShellFolder {
        Folder(MadeNamespace& ownerOfIt, std::wstring strOwnPath)
            : space(ownerOfIt), strPath(std::move(strOwnPath)) {
            ++space.nFolders;
        }
        virtual ~Folder() { --space.nFolders; }
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppOut) override {
            *ppOut = nullptr;
            if (iid != IID_IShellFolder && iid != IID_IUnknown) return E_NOINTERFACE;
            *ppOut = this;
            AddRef();
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
        ULONG STDMETHODCALLTYPE Release() override {
            ULONG n = --nReferences;
            if (n == 0) delete this;
            return n;
        }
        HRESULT STDMETHODCALLTYPE ParseDisplayName(HWND, IBindCtx*, LPWSTR, ULONG*,
                                                   PIDLIST_RELATIVE*, ULONG*) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE EnumObjects(HWND hwnd, SHCONTF nFlags,
                                              IEnumIDList** ppOut) override {
            *ppOut = nullptr;
            return space.enumObjects ? space.enumObjects(hwnd, nFlags, ppOut) : E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE BindToObject(PCUIDLIST_RELATIVE pidl, IBindCtx*, REFIID iid,
                                               void** ppOut) override {
            *ppOut = nullptr;
            std::wstring strName = space.NameOf(pidl);
            space.log.push_back(L"bind " + strPath + L"/" + strName);
            if (iid != IID_IShellFolder) return E_NOINTERFACE;
            if (space.noFolders.contains(strName)) return E_FAIL;
            *ppOut = static_cast<IShellFolder*>(new Folder(space, strPath + L"/" + strName));
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID,
                                                void** ppOut) override {
            *ppOut = nullptr;
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE CompareIDs(LPARAM, PCUIDLIST_RELATIVE pidlA,
                                             PCUIDLIST_RELATIVE pidlB) override {
            std::wstring strA = space.NameOf(pidlA), strB = space.NameOf(pidlB);
            space.log.push_back(L"compare " + strPath + L"/ " + strA + L" " + strB);
            if (space.compare) return space.compare(strA, strB);
            int n = std::wcscmp(strA.c_str(), strB.c_str());
            return MAKE_HRESULT(SEVERITY_SUCCESS, 0,
                                static_cast<USHORT>(n < 0   ? -7
                                                    : n > 0 ? 7
                                                            : 0));
        }
        HRESULT STDMETHODCALLTYPE CreateViewObject(HWND, REFIID, void** ppOut) override {
            *ppOut = nullptr;
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetAttributesOf(UINT nCount, PCUITEMID_CHILD_ARRAY ppidl,
                                                  SFGAOF* pnAttributes) override {
            if (nCount)
                space.log.push_back(L"attributes " + strPath + L"/" + space.NameOf(ppidl[0]));
            *pnAttributes &= SFGAO_FOLDER;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetUIObjectOf(HWND, UINT, PCUITEMID_CHILD_ARRAY, REFIID, UINT*,
                                                void** ppOut) override {
            *ppOut = nullptr;
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetDisplayNameOf(PCUITEMID_CHILD pidl, SHGDNF nFlags,
                                                   STRRET* pName) override {
            std::wstring strName = space.NameOf(pidl);
            space.log.push_back(L"name" + std::to_wstring(nFlags) + L" " + strPath + L"/" +
                                strName);
            if (space.nameless.contains(strName)) return E_FAIL;
            if (!pidl->mkid.cb) {
                strName = nFlags ? L"Desk in folder" : L"Desk";
            }
            pName->uType = space.nNameKind;
            if (space.nNameKind == STRRET_WSTR) {
                auto cb = (strName.size() + 1) * sizeof(wchar_t);
                pName->pOleStr = static_cast<wchar_t*>(::CoTaskMemAlloc(cb));
                std::memcpy(pName->pOleStr, strName.c_str(), cb);
            } else if (space.nNameKind == STRRET_CSTR) {
                std::size_t n = 0;
                for (; n < strName.size() && n < MAX_PATH - 1; ++n) {
                    pName->cStr[n] = static_cast<char>(strName[n]);
                }
                pName->cStr[n] = 0;
            } else if (space.nNameKind == STRRET_OFFSET) {
                pName->uOffset = space.nNameOffset;
            }
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE SetNameOf(HWND, PCUITEMID_CHILD, LPCOLESTR, SHGDNF,
                                            PITEMID_CHILD*) override {
            return E_NOTIMPL;
        }

        MadeNamespace& space;
        std::wstring strPath;
        ULONG nReferences = 1;
    };

    MadeNamespace() : replaced(__imp_SHGetDesktopFolder, &GiveDesktop) { pCurrent = this; }
    ~MadeNamespace() { pCurrent = nullptr; }

    /// How many lines of the log are that.
    auto Count(const std::wstring& strLine) const {
        return std::count(log.begin(), log.end(), strLine);
    }
    static std::wstring NameOf(const ITEMIDLIST* pidl) {
        if (!pidl || pidl->mkid.cb < 4) return L"";
        return std::wstring(reinterpret_cast<const wchar_t*>(pidl->mkid.abID),
                            (pidl->mkid.cb - 4) / sizeof(wchar_t));
    }

    std::vector<std::wstring> log;
    std::set<std::wstring> noFolders; // names that cannot be bound to
    std::set<std::wstring> nameless;  // names that are not told
    UINT nNameKind = STRRET_WSTR;
    UINT nNameOffset = 0;
    bool bNoDesktop = false;
    std::function<HRESULT(const std::wstring&, const std::wstring&)> compare;
    std::function<HRESULT(HWND, DWORD, IEnumIDList**)> enumObjects;
    int nFolders = 0; // alive

  private:
    static inline MadeNamespace* pCurrent = nullptr;
    static HRESULT WINAPI GiveDesktop(IShellFolder** ppOut) {
        *ppOut = nullptr;
        pCurrent->log.push_back(L"desktop");
        if (pCurrent->bNoDesktop) return E_FAIL;
        *ppOut = new Folder(*pCurrent, L"");
        return S_OK;
    }
    ReplaceImport replaced;
};
