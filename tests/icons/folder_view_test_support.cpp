#include "icons/folder_view_test_support.h"

#include <shlobj.h>
#include <exdisp.h>
#include <servprov.h>
#include <shlguid.h>
#include <shlwapi.h>
#include <cstring>
#include <ostream>

extern "C" FARPROC __imp_CoCreateInstance;
extern "C" FARPROC __imp_CoTaskMemFree;
extern "C" FARPROC __imp_StrRetToStrW;

namespace {
FakeFolderView* pFake = nullptr; // the one in force
DWORD dwFakeBuild = 0;
LONG nFakeStatus = 0;

LONG WINAPI GetFakeVersion(OSVERSIONINFOW* pInfo) {
    EXPECT_EQ(sizeof(OSVERSIONINFOW), pInfo->dwOSVersionInfoSize);
    pInfo->dwMajorVersion = dwFakeBuild < 10240 ? 6 : 10;
    pInfo->dwBuildNumber = dwFakeBuild;
    return nFakeStatus;
}

FARPROC FindInFakeBuild(const wchar_t* pszModule, const char* pszName) {
    if (std::strcmp(pszName, "RtlGetVersion") != 0) return FindSystemFunc(pszModule, pszName);
    EXPECT_STREQ(L"ntdll.dll", pszModule);
    if (!dwFakeBuild) return nullptr;
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&GetFakeVersion));
}

IID IidOf(const wchar_t* psz) {
    IID iid{};
    EXPECT_EQ(S_OK, ::CLSIDFromString(psz, &iid));
    return iid;
}

struct ItemId { // an ITEMIDLIST with one item
    USHORT cb;
    unsigned nIndex;
    USHORT cbEnd;
} __attribute__((packed));

wchar_t* CopyToTask(const std::wstring& str) {
    auto* psz = static_cast<wchar_t*>(::CoTaskMemAlloc((str.size() + 1) * sizeof(wchar_t)));
    std::memcpy(psz, str.c_str(), (str.size() + 1) * sizeof(wchar_t));
    return psz;
}
} // namespace

FakeBuild::FakeBuild(DWORD dwBuild, LONG nStatus) {
    dwFakeBuild = dwBuild;
    nFakeStatus = nStatus;
    SetRuntimeLookup(&FindInFakeBuild);
}

std::string StepName(Step step) {
    constexpr const char* kNames[] = {"Create",   "FindWindow", "Services",   "Browser",
                                      "View",     "Window",     "FolderView", "FolderView2",
                                      "GetFlags", "SetFlags",   "Folder",     "Count",
                                      "Item",     "Name",       "Position",   "None"};
    return kNames[static_cast<int>(step)];
}

bool operator==(const PlacedItem& a, const PlacedItem& b) {
    return a.strName == b.strName && a.pt.x == b.pt.x && a.pt.y == b.pt.y;
}

std::ostream& operator<<(std::ostream& out, const PlacedItem& item) {
    return out << testing::PrintToString(item.strName) << " at " << item.pt.x << "," << item.pt.y;
}

/// What the product gets for an interface: a pointer to a table of methods, and our own behind it.
struct FakeFolderView::Object {
    void** ppMethods = methods;
    void* methods[32] = {};
    long nRefs = 0;
};

struct FakeFolderView::Methods {
    template <class Fn>
    static void* At(Fn* pfn) {
        return reinterpret_cast<void*>(pfn);
    }

    static HRESULT WINAPI Unexpected() {
        ADD_FAILURE() << "a method that nobody has a reason to call";
        return E_NOTIMPL;
    }
    static ULONG WINAPI AddRef(Object* pThis) { return static_cast<ULONG>(++pThis->nRefs); }
    static ULONG WINAPI Release(Object* pThis) {
        EXPECT_GT(pThis->nRefs, 0) << "given back once too often";
        return static_cast<ULONG>(--pThis->nRefs);
    }
    static HRESULT WINAPI QueryInterface(Object*, REFIID iid, void** ppv) {
        static const IID iidView2 = IidOf(L"{1AF3A467-214F-4298-908E-06B03E0B39F9}");
        static const IID iidView = IidOf(L"{CDE725B0-CCC9-4519-917E-325D72FAB4CE}");
        static const IID iidServices = IidOf(L"{6D5140C1-7436-11CE-8034-00AA006009FA}");
        if (iid == iidServices)
            return pFake->Give(Step::Services, *pFake->objects["services"], ppv);
        if (iid == iidView) return pFake->Give(Step::FolderView, *pFake->objects["view2"], ppv);
        if (iid == iidView2) return pFake->Give(Step::FolderView2, *pFake->objects["view2"], ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }

    static HRESULT WINAPI Create(REFCLSID clsid, IUnknown* pOuter, DWORD dwContext, REFIID iid,
                                 void** ppv) {
        EXPECT_EQ(IidOf(L"{9BA05972-F6A8-11CF-A442-00A0C90A8F39}"), clsid);
        EXPECT_EQ(IidOf(L"{85CB6900-4D95-11CF-960C-0080C7F4EE85}"), iid);
        EXPECT_EQ(nullptr, pOuter);
        EXPECT_TRUE(dwContext & CLSCTX_LOCAL_SERVER);
        HRESULT hr = ::CoInitialize(nullptr);
        pFake->bHadCom = hr == S_FALSE; // it was there already
        if (SUCCEEDED(hr)) ::CoUninitialize();
        return pFake->Give(Step::Create, *pFake->objects["windows"], ppv);
    }
    static HRESULT WINAPI FindWindowSW(Object*, VARIANT* pLocation, VARIANT* pRoot, int nClass,
                                       LONG* plWindow, int nOptions, void** ppv) {
        EXPECT_EQ(VT_I4, pLocation->vt);
        EXPECT_EQ(CSIDL_DESKTOP, pLocation->lVal);
        EXPECT_EQ(VT_EMPTY, pRoot->vt);
        EXPECT_EQ(8, nClass); // SWC_DESKTOP
        EXPECT_NE(nullptr, plWindow);
        EXPECT_EQ(1, nOptions); // SWFO_NEEDDISPATCH
        return pFake->Give(Step::FindWindow, *pFake->objects["desktop"], ppv);
    }
    static HRESULT WINAPI QueryService(Object*, REFGUID service, REFIID iid, void** ppv) {
        EXPECT_EQ(IidOf(L"{4C96BE40-915C-11CF-99D3-00AA004AE837}"), service);
        EXPECT_EQ(IidOf(L"{000214E2-0000-0000-C000-000000000046}"), iid);
        return pFake->Give(Step::Browser, *pFake->objects["browser"], ppv);
    }
    static HRESULT WINAPI QueryActiveShellView(Object*, void** ppv) {
        return pFake->Give(Step::View, *pFake->objects["view"], ppv);
    }
    static HRESULT WINAPI GetWindow(Object*, HWND* phwnd) {
        HRESULT hr = pFake->Take(Step::Window);
        *phwnd = pFake->failing == Step::Window ? nullptr : pFake->hwndView;
        return hr;
    }

    static HRESULT WINAPI GetFolder(Object*, REFIID iid, void** ppv) {
        EXPECT_EQ(IidOf(L"{000214E6-0000-0000-C000-000000000046}"), iid);
        return pFake->Give(Step::Folder, *pFake->objects["folder"], ppv);
    }
    static HRESULT WINAPI ItemCount(Object*, UINT uFlags, int* pnItems) {
        EXPECT_EQ(2u, uFlags); // SVGIO_ALLVIEW
        HRESULT hr = pFake->Take(Step::Count);
        *pnItems = pFake->failing == Step::Count ? 0 : static_cast<int>(pFake->items.size());
        return hr;
    }
    static HRESULT WINAPI Item(Object*, int nItem, ITEMIDLIST** ppidl) {
        *ppidl = nullptr;
        HRESULT hr = pFake->Take(Step::Item);
        if (pFake->failing == Step::Item) return hr;
        auto nIndex = static_cast<unsigned>(nItem);
        if (nIndex >= pFake->items.size() || pFake->items[nIndex].bGone) return E_INVALIDARG;
        auto* pId = static_cast<ItemId*>(::CoTaskMemAlloc(sizeof(ItemId)));
        *pId = {sizeof(ItemId) - sizeof(USHORT), nIndex, 0};
        pFake->itemIds.insert(pId);
        *ppidl = reinterpret_cast<ITEMIDLIST*>(pId);
        return S_OK;
    }
    static HRESULT WINAPI SelectAndPositionItems(Object*, UINT nCount, const ITEMIDLIST** ppidl,
                                                 POINT* ppt, DWORD dwHow) {
        HRESULT hr = pFake->Take(Step::Position);
        std::vector<PlacedItem> placed;
        for (UINT i = 0; i < nCount; ++i) placed.push_back({NameOf(ppidl[i]), ppt[i]});
        pFake->placements.push_back(placed);
        pFake->placementFlags.push_back(dwHow);
        return hr;
    }
    static HRESULT WINAPI SetFlags(Object*, DWORD dwMask, DWORD dwNew) {
        HRESULT hr = pFake->Take(Step::SetFlags);
        pFake->flagChanges.emplace_back(dwMask, dwNew);
        if (SUCCEEDED(hr)) pFake->dwFlags = (pFake->dwFlags & ~dwMask) | (dwNew & dwMask);
        return hr;
    }
    static HRESULT WINAPI GetFlags(Object*, DWORD* pdwFlags) {
        HRESULT hr = pFake->Take(Step::GetFlags);
        if (pFake->failing != Step::GetFlags) *pdwFlags = pFake->dwFlags;
        return hr;
    }

    /// The folder's items without what the view's setting hides; to other questions than the list
    /// view's it gives the whole file name.
    static HRESULT WINAPI GetDisplayNameOf(Object*, const ITEMIDLIST* pidl, DWORD dwHow,
                                           STRRET* pName) {
        HRESULT hr = pFake->Take(Step::Name);
        pName->uType = STRRET_WSTR;
        pName->pOleStr = nullptr;
        if (pFake->failing == Step::Name) return hr;
        const FakeItem& item = pFake->items.at(IndexOf(pidl));
        if (item.bNameless) return E_FAIL;
        bool bAsShown = dwHow == (SHGDN_NORMAL | SHGDN_INFOLDER);
        pName->pOleStr = CopyToTask(bAsShown ? item.strName : item.strName + L".txt");
        return S_OK;
    }

    static unsigned IndexOf(const ITEMIDLIST* pidl) {
        auto* pId = reinterpret_cast<const ItemId*>(pidl);
        EXPECT_EQ(1u, pFake->itemIds.count(const_cast<ItemId*>(pId)));
        return pId->nIndex;
    }
    static std::wstring NameOf(const ITEMIDLIST* pidl) {
        return pFake->items.at(IndexOf(pidl)).strName;
    }

    static void WINAPI Free(void* p) {
        pFake->itemIds.erase(p);
        pFake->texts.erase(p);
        pFake->freeMemory.Original<void WINAPI(void*)>()(p);
    }
    static HRESULT WINAPI ToText(STRRET* pName, const ITEMIDLIST* pidl, wchar_t** ppsz) {
        HRESULT hr =
            pFake->toText.Original<HRESULT WINAPI(STRRET*, const ITEMIDLIST*, wchar_t**)>()(
                pName, pidl, ppsz);
        if (SUCCEEDED(hr) && *ppsz) pFake->texts.insert(*ppsz);
        return hr;
    }

    static std::unique_ptr<Object> Make(std::initializer_list<std::pair<int, void*>> own) {
        auto object = std::make_unique<Object>();
        for (void*& p : object->methods) p = At(&Unexpected);
        object->methods[0] = At(&QueryInterface);
        object->methods[1] = At(&AddRef);
        object->methods[2] = At(&Release);
        for (auto [nSlot, p] : own) object->methods[nSlot] = p;
        return object;
    }
};

FakeFolderView::FakeFolderView(HWND hwndOfView)
    : hwndView(hwndOfView), create(__imp_CoCreateInstance, &Methods::Create),
      freeMemory(__imp_CoTaskMemFree, &Methods::Free),
      toText(__imp_StrRetToStrW, &Methods::ToText) {
    // The numbers count from IUnknown's first method, as exdisp.idl, servprov.idl and shobjidl.idl
    // list them; those of IDispatch and IOleWindow come in between.
    objects["windows"] = Methods::Make({{15, Methods::At(&Methods::FindWindowSW)}});
    objects["desktop"] = Methods::Make({});
    objects["services"] = Methods::Make({{3, Methods::At(&Methods::QueryService)}});
    objects["browser"] = Methods::Make({{15, Methods::At(&Methods::QueryActiveShellView)}});
    objects["view"] = Methods::Make({{3, Methods::At(&Methods::GetWindow)}});
    objects["view2"] = Methods::Make({{5, Methods::At(&Methods::GetFolder)},
                                      {6, Methods::At(&Methods::Item)},
                                      {7, Methods::At(&Methods::ItemCount)},
                                      {16, Methods::At(&Methods::SelectAndPositionItems)},
                                      {24, Methods::At(&Methods::SetFlags)},
                                      {25, Methods::At(&Methods::GetFlags)}});
    objects["folder"] = Methods::Make({{11, Methods::At(&Methods::GetDisplayNameOf)}});
    pFake = this;
}

FakeFolderView::~FakeFolderView() {
    for (auto& [strName, object] : objects) EXPECT_EQ(0, object->nRefs) << strName;
    EXPECT_EQ(0u, itemIds.size());
    EXPECT_EQ(0u, texts.size());
}

long FakeFolderView::CountOfLoans() const {
    long nLoans = static_cast<long>(itemIds.size() + texts.size());
    for (auto& [strName, object] : objects) nLoans += object->nRefs;
    return nLoans;
}

HRESULT FakeFolderView::Take(Step step) {
    ++nTaken[static_cast<int>(step)];
    // What it calls may take the same step again.
    if (auto it = onStep.find(step); it != onStep.end()) {
        std::function<void()> fn = std::exchange(it->second, nullptr);
        if (fn) fn();
    }
    return step == failing ? hrFailing : S_OK;
}

HRESULT FakeFolderView::Give(Step step, Object& object, void** ppv) {
    *ppv = nullptr;
    HRESULT hr = Take(step);
    if (step == failing) return hr;
    ++object.nRefs;
    *ppv = &object;
    return hr;
}
