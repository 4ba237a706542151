#pragma once
#include "support/replace_import.h"

#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
#include <cstring>
#include <string>
#include <vector>

extern "C" FARPROC __imp_SHGetDesktopFolder;
extern "C" FARPROC __imp_SHGetPathFromIDListW;
extern "C" FARPROC __imp_SHGetFileInfoW;
extern "C" FARPROC __imp_SHGetSpecialFolderLocation;
extern "C" FARPROC __imp_SHBindToParent;

/// An item id list of the test's own.
struct MadeList {
    std::vector<BYTE> bytes;
    operator const ITEMIDLIST*() const { return reinterpret_cast<const ITEMIDLIST*>(bytes.data()); }
};

/// A namespace of the test's own in the place of the platform's, for the length of a block: what no
/// platform has at hand, such as zip folders, names of every kind, folders that vanish. What is
/// asked of it is written down. The desktop is node 0.
class FakeShell {
  public:
    struct Node {
        int nParent = 0;
        std::wstring strName;    // in its folder
        std::wstring strAddress; // what else it is called; its name if empty
        DWORD nAttributes = 0;
        std::wstring strPath; // in the file system; empty for none
        int bGone = 0;        // every question about it fails
        UINT nKind = STRRET_WSTR;
    };

    FakeShell() {
        pNow = this;
        nFolders = 0;
        nodes.push_back({0, L"Desk", L"Desk of all", SFGAO_FOLDER, L"", 0, STRRET_WSTR});
    }
    FakeShell(const FakeShell&) = delete;
    FakeShell& operator=(const FakeShell&) = delete;
    ~FakeShell() { pNow = nullptr; }

    int Add(int nParent, const std::wstring& strName, DWORD nAttributes,
            const std::wstring& strPath = L"") {
        nodes.push_back({nParent, strName, L"", nAttributes, strPath, 0, STRRET_WSTR});
        return static_cast<int>(nodes.size()) - 1;
    }
    Node& operator[](int n) { return nodes[static_cast<std::size_t>(n)]; }
    /// The node's own item, and its list from the desktop on, or from a node above it.
    MadeList Item(int n) const { return Close(n ? ItemBytes(n) : std::vector<BYTE>()); }
    MadeList List(int n, int nFrom = 0) const {
        std::vector<BYTE> bytes;
        for (; n && n != nFrom; n = nodes[static_cast<std::size_t>(n)].nParent) {
            auto item = ItemBytes(n);
            bytes.insert(bytes.begin(), item.begin(), item.end());
        }
        return Close(bytes);
    }
    /// The node that a list leads to from another node; -1 if to none that is there.
    int Find(int nFrom, const ITEMIDLIST* pidl) const {
        if (!pidl) return -1;
        const BYTE* p = reinterpret_cast<const BYTE*>(pidl);
        for (WORD cb; std::memcpy(&cb, p, sizeof(cb)), cb; p += cb) {
            ItemData data{};
            if (cb < sizeof(data)) return -1;
            std::memcpy(&data, p, sizeof(data));
            int n = data.nNode;
            if (data.nMark != kMark || n <= 0 || n >= static_cast<int>(nodes.size())) return -1;
            const Node& node = nodes[static_cast<std::size_t>(n)];
            if (node.nParent != nFrom || node.bGone) return -1;
            nFrom = n;
        }
        return nFrom;
    }
    static int FindAbs(const ITEMIDLIST* pidl) { return pNow->Find(0, pidl); }
    int CountOf(const std::wstring& strCall) const {
        int nCount = 0;
        for (const auto& str : calls) nCount += str == strCall;
        return nCount;
    }

    std::vector<Node> nodes;
    std::vector<std::wstring> calls;
    HRESULT hrCompare = S_OK;
    LPARAM nCompareParam = 0;
    HRESULT hrDesktop = S_OK;
    std::vector<std::pair<int, int>> special; // CSIDL, node
    static inline FakeShell* pNow = nullptr;
    static inline int nFolders = 0; // folder objects that are alive

  private:
    static constexpr WORD kMark = 0x6B46;
#pragma pack(push, 1)
    struct ItemData {
        WORD cb;
        WORD nMark;
        WORD nNode;
    };
#pragma pack(pop)
    // The ANSI name of an item stands behind its data: where STRRET_OFFSET leads.
    static constexpr UINT kNameOffset = sizeof(ItemData);

    std::vector<BYTE> ItemBytes(int n) const {
        const Node& node = nodes[static_cast<std::size_t>(n)];
        std::string strAnsi(node.strName.begin(), node.strName.end());
        ItemData data{static_cast<WORD>(sizeof(ItemData) + strAnsi.size() + 1), kMark,
                      static_cast<WORD>(n)};
        std::vector<BYTE> bytes(data.cb);
        std::memcpy(bytes.data(), &data, sizeof(data));
        std::memcpy(bytes.data() + kNameOffset, strAnsi.c_str(), strAnsi.size() + 1);
        return bytes;
    }
    static MadeList Close(std::vector<BYTE> bytes) {
        bytes.insert(bytes.end(), 2, 0);
        return {std::move(bytes)};
    }
    /// A root's path may lack its backslash.
    static bool IsPath(const Node& node, const std::wstring& str) {
        return !node.strPath.empty() && (!::lstrcmpiW(node.strPath.c_str(), str.c_str()) ||
                                         !::lstrcmpiW(node.strPath.c_str(), (str + L"\\").c_str()));
    }
    static ITEMIDLIST* Allocated(const MadeList& list) {
        void* p = ::CoTaskMemAlloc(list.bytes.size());
        std::memcpy(p, list.bytes.data(), list.bytes.size());
        return static_cast<ITEMIDLIST*>(p);
    }
    static wchar_t* Allocated(const std::wstring& str) {
        std::size_t cb = (str.size() + 1) * sizeof(wchar_t);
        void* p = ::CoTaskMemAlloc(cb);
        std::memcpy(p, str.c_str(), cb);
        return static_cast<wchar_t*>(p);
    }

    class Folder : public IShellFolder {
      public:
        explicit Folder(int nOwnNode) : nNode(nOwnNode) { ++nFolders; }
        virtual ~Folder() { --nFolders; }
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** pp) override {
            *pp = nullptr;
            if (iid != IID_IUnknown && iid != IID_IShellFolder) return E_NOINTERFACE;
            *pp = static_cast<IShellFolder*>(this);
            AddRef();
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
        ULONG STDMETHODCALLTYPE Release() override {
            ULONG n = --nReferences;
            if (!n) delete this;
            return n;
        }
        HRESULT STDMETHODCALLTYPE ParseDisplayName(HWND, IBindCtx*, LPWSTR psz, ULONG*,
                                                   LPITEMIDLIST* ppidl, ULONG* pn) override {
            Note(L"Parse", nNode, psz);
            *ppidl = nullptr;
            for (int n = 1; n < static_cast<int>(pNow->nodes.size()); ++n) {
                const Node& node = pNow->nodes[static_cast<std::size_t>(n)];
                if (node.bGone || !IsPath(node, psz)) continue;
                const MadeList list = pNow->List(n, nNode);
                if (pNow->Find(nNode, list) != n) continue; // not below this folder
                *ppidl = Allocated(list);
                if (pn) *pn &= node.nAttributes;
                return S_OK;
            }
            return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
        }
        HRESULT STDMETHODCALLTYPE EnumObjects(HWND, SHCONTF, IEnumIDList** pp) override {
            *pp = nullptr;
            return S_FALSE;
        }
        HRESULT STDMETHODCALLTYPE BindToObject(LPCITEMIDLIST pidl, IBindCtx*, REFIID iid,
                                               void** pp) override {
            *pp = nullptr;
            int n = pNow->Find(nNode, pidl);
            Note(iid == IID_IShellFolder ? L"Bind" : L"BindOther", n, L"");
            if (n < 0 || !(pNow->nodes[static_cast<std::size_t>(n)].nAttributes & SFGAO_FOLDER)) {
                return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
            }
            Folder* p = new Folder(n);
            HRESULT hr = p->QueryInterface(iid, pp);
            p->Release();
            return hr;
        }
        HRESULT STDMETHODCALLTYPE BindToStorage(LPCITEMIDLIST, IBindCtx*, REFIID, void**) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE CompareIDs(LPARAM lParam, LPCITEMIDLIST, LPCITEMIDLIST) override {
            Note(L"Compare", nNode, L"");
            pNow->nCompareParam = lParam;
            return pNow->hrCompare;
        }
        HRESULT STDMETHODCALLTYPE CreateViewObject(HWND hwnd, REFIID iid, void** pp) override {
            *pp = nullptr;
            Note(L"View", iid == IID_IShellView,
                 std::to_wstring(reinterpret_cast<ULONG_PTR>(hwnd)));
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetAttributesOf(UINT nCount, LPCITEMIDLIST* ppidl,
                                                  SFGAOF* pn) override {
            int n = nCount == 1 ? pNow->Find(nNode, *ppidl) : -1;
            Note(L"Attributes", n, Hex(*pn));
            if (n < 0) return E_INVALIDARG; // with the mask as it was: what failed tells nothing
            *pn &= pNow->nodes[static_cast<std::size_t>(n)].nAttributes;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetUIObjectOf(HWND hwnd, UINT nCount, LPCITEMIDLIST* ppidl,
                                                REFIID iid, UINT*, void** pp) override {
            *pp = nullptr;
            Note(L"UI", static_cast<int>(nCount),
                 std::to_wstring(pNow->Find(nNode, ppidl[0])) + L" " +
                     std::to_wstring(pNow->Find(nNode, ppidl[nCount - 1])) + L" " +
                     std::to_wstring(reinterpret_cast<ULONG_PTR>(hwnd)));
            return QueryInterface(iid, pp);
        }
        HRESULT STDMETHODCALLTYPE GetDisplayNameOf(LPCITEMIDLIST pidl, SHGDNF nFlags,
                                                   STRRET* pRet) override {
            int n = pNow->Find(nNode, pidl);
            Note(L"Name", n, std::to_wstring(nFlags));
            if (n < 0) return E_INVALIDARG;
            const Node& node = pNow->nodes[static_cast<std::size_t>(n)];
            const auto& str = !(nFlags & SHGDN_INFOLDER) && !node.strAddress.empty()
                                  ? node.strAddress
                                  : node.strName;
            pRet->uType = node.nKind;
            if (node.nKind == STRRET_WSTR) pRet->pOleStr = Allocated(str);
            if (node.nKind == STRRET_OFFSET) pRet->uOffset = kNameOffset;
            if (node.nKind == STRRET_CSTR) {
                std::string strAnsi(str.begin(), str.end());
                strncpy(pRet->cStr, strAnsi.c_str(), sizeof(pRet->cStr));
            }
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE SetNameOf(HWND, LPCITEMIDLIST, LPCWSTR, SHGDNF,
                                            LPITEMIDLIST*) override {
            return E_NOTIMPL;
        }

      private:
        static void Note(const wchar_t* pszWhat, int n, const std::wstring& strMore) {
            std::wstring strCall = std::wstring(pszWhat) + L" " + std::to_wstring(n);
            pNow->calls.push_back(strMore.empty() ? strCall : strCall + L" " + strMore);
        }
        static std::wstring Hex(DWORD n) {
            wchar_t sz[16];
            _snwprintf(sz, 16, L"%lx", n);
            return sz;
        }
        int nNode;
        ULONG nReferences = 1;
    };

    static HRESULT WINAPI Desktop(IShellFolder** pp) {
        *pp = nullptr;
        if (FAILED(pNow->hrDesktop)) return pNow->hrDesktop;
        *pp = new Folder(0);
        return S_OK;
    }
    static BOOL WINAPI PathOf(LPCITEMIDLIST pidl, LPWSTR pszOut) {
        int n = FindAbs(pidl);
        *pszOut = 0;
        if (n < 0 || pNow->nodes[static_cast<std::size_t>(n)].strPath.empty()) return FALSE;
        wcscpy(pszOut, pNow->nodes[static_cast<std::size_t>(n)].strPath.c_str());
        return TRUE;
    }
    static DWORD_PTR WINAPI InfoOf(LPCWSTR psz, DWORD, SHFILEINFOW* pInfo, UINT, UINT nFlags) {
        if (!(nFlags & SHGFI_PIDL)) return 0;
        int n = FindAbs(reinterpret_cast<LPCITEMIDLIST>(psz));
        if (n < 0) return 0;
        pInfo->dwAttributes = pNow->nodes[static_cast<std::size_t>(n)].nAttributes;
        return 1;
    }
    static HRESULT WINAPI Special(HWND, int nCsidl, LPITEMIDLIST* ppidl) {
        *ppidl = nullptr;
        for (const auto& row : pNow->special) {
            if (row.first != nCsidl) continue;
            *ppidl = Allocated(pNow->List(row.second));
            return S_OK;
        }
        return E_INVALIDARG;
    }
    ReplaceImport desktop{__imp_SHGetDesktopFolder, &Desktop};
    ReplaceImport path{__imp_SHGetPathFromIDListW, &PathOf};
    ReplaceImport info{__imp_SHGetFileInfoW, &InfoOf};
    ReplaceImport specials{__imp_SHGetSpecialFolderLocation, &Special};
};
