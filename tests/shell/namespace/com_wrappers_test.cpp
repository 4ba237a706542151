#include "shell/folders/shell_folder.h"
#include "shell/folders/shell_link.h"
#include "shell/namespace/com_wrappers.h"
#include "shell/namespace/freed_blocks.h"
#include "shell/namespace/made_namespace.h"
#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

extern "C" FARPROC __imp_CoCreateInstance;

namespace {
/// Counts its references, and is what it is asked for unless told otherwise. Its first members are
/// those of every interface; it is an IPersistFile besides.
struct CountedObject : IPersistFile {
    LONG nReferences = 1; // the test's
    bool bRefuse = false;
    IID iidAsked{};
    std::wstring strPath;
    DWORD dwMode = 0xFFFFFFFF;
    BOOL bRemember = -1;
    HRESULT hrAnswer = S_OK;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppOut) override {
        iidAsked = iid;
        *ppOut = nullptr;
        if (bRefuse) return E_NOINTERFACE;
        *ppOut = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --nReferences; }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(LPCOLESTR pszFile, DWORD dw) override {
        strPath = pszFile;
        dwMode = dw;
        return hrAnswer;
    }
    HRESULT STDMETHODCALLTYPE Save(LPCOLESTR pszFile, BOOL b) override {
        strPath = pszFile;
        bRemember = b;
        return hrAnswer;
    }
    HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR*) override { return E_NOTIMPL; }
};

TEST(ComWrappers, ObjectHoldsAReference) {
    CountedObject object, other;
    {
        iUnk unk(&object);
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(&object, static_cast<IUnknown*>(unk));
        EXPECT_EQ(1, unk.IsReady());
        unk.Attach(&other);
        EXPECT_EQ(1, object.nReferences);
        EXPECT_EQ(2, other.nReferences);
        unk.Attach(&other); // itself
        EXPECT_EQ(2, other.nReferences);
        unk.Attach(nullptr);
        EXPECT_EQ(1, other.nReferences);
        EXPECT_EQ(nullptr, static_cast<IUnknown*>(unk));
        unk.Attach(&object);
        unk.Detach();
        EXPECT_EQ(1, object.nReferences);
        EXPECT_EQ(nullptr, static_cast<IUnknown*>(unk));
        unk.Detach();
        unk.Attach(&object);
    }
    EXPECT_EQ(1, object.nReferences);
    iUnk none(nullptr);
    EXPECT_EQ(0, none.IsReady());
}

TEST(ComWrappers, CountsAreForwarded) {
    CountedObject object;
    iUnk unk(&object);
    EXPECT_EQ(3u, unk.AddRef());
    EXPECT_EQ(2u, unk.Release());
    iUnk none;
    EXPECT_EQ(0u, none.AddRef());
    EXPECT_EQ(0u, none.Release());
}

TEST(ComWrappers, QueryFillsTheOther) {
    CountedObject object, held;
    iUnk unk(&object);
    {
        iUnk out(&held);
        EXPECT_EQ(1, unk.QueryInterface(IID_IStream, out));
        EXPECT_TRUE(object.iidAsked == IID_IStream);
        EXPECT_EQ(1, held.nReferences);
        EXPECT_EQ(3, object.nReferences);
        iUnk second(unk, IID_IPersist);
        EXPECT_TRUE(object.iidAsked == IID_IPersist);
        EXPECT_EQ(4, object.nReferences);
        EXPECT_EQ(1, second.IsReady());
    }
    EXPECT_EQ(2, object.nReferences);
    object.bRefuse = true;
    iUnk refused(unk, IID_IPersist);
    EXPECT_EQ(0, refused.IsReady());
    iUnk out(&held);
    EXPECT_EQ(0, unk.QueryInterface(IID_IPersist, out));
    EXPECT_EQ(0, out.IsReady());
    EXPECT_EQ(1, held.nReferences);
    iUnk none;
    iUnk ofNone(none, IID_IUnknown);
    EXPECT_EQ(0, ofNone.IsReady());
    EXPECT_EQ(0, none.QueryInterface(IID_IUnknown, out));
}

TEST(ComWrappers, QueryIntoItself) {
    CountedObject object;
    {
        iUnk unk(&object);
        EXPECT_EQ(1, unk.QueryInterface(IID_IStream, unk));
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(1, unk.IsReady());
    }
    EXPECT_EQ(1, object.nReferences);
}

TEST(ComWrappers, CopiesShareTheReference) {
    CountedObject object, held;
    {
        iUnk unk(&object), copy(unk), assigned(&held);
        assigned = unk;
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(2, held.nReferences); // not released
        copy.Abandon();
        assigned.Abandon();
        EXPECT_EQ(2, object.nReferences);
    }
    EXPECT_EQ(1, object.nReferences);
}

TEST(ComWrappers, StreamIsAReferenceAndNoMore) {
    ::CoInitialize(nullptr);
    IStream* pStream = nullptr;
    ASSERT_EQ(S_OK, ::CreateStreamOnHGlobal(nullptr, TRUE, &pStream));
    {
        iStream stream(pStream), none;
        EXPECT_EQ(pStream, static_cast<IStream*>(stream));
        EXPECT_EQ(nullptr, static_cast<IStream*>(none));
        IStream* pOfWrapper = stream;
        ULONG cb = 0;
        EXPECT_EQ(S_OK, pOfWrapper->Write("abc", 3, &cb));
    }
    EXPECT_EQ(0u, pStream->Release());
    ::CoUninitialize();
}

TEST(ComWrappers, MallocIsTheShells) {
    iMalloc memory;
    EXPECT_EQ(S_OK, memory.GetLastResult());
    IMalloc* pMalloc = memory;
    ASSERT_NE(nullptr, pMalloc);
    void* p = memory.Alloc(100);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(1, pMalloc->DidAlloc(p));
    std::memset(p, 7, 100);
    p = memory.Realloc(p, 5000);
    ASSERT_NE(nullptr, p);
    EXPECT_EQ(Bytes(100, 7), BytesAt(p, 100));
    EXPECT_GE(pMalloc->GetSize(p), 5000u);
    memory.Free(p);
    memory.Free(nullptr);
    p = memory.Realloc(nullptr, 10);
    EXPECT_NE(nullptr, p);
    memory.Free(p);
    memory.HeapMinimize();
    // What one gave, the other takes back.
    p = PIDL::csiMem.Alloc(10);
    p = PIDL::csiMem.Realloc(p, 20);
    memory.Free(p);
    PIDL::csiMem.HeapMinimize();
}

TEST(ComWrappers, MallocForwards) {
    FreedBlocks shells;
    iMalloc memory;
    EXPECT_EQ(static_cast<IMalloc*>(&shells), static_cast<IMalloc*>(memory));
    void* p = memory.Alloc(10);
    memory.Free(p);
    EXPECT_TRUE(shells.Has(p));
    memory.HeapMinimize();
    EXPECT_EQ(1, shells.nMinimized);
    PIDL::csiMem.HeapMinimize();
    EXPECT_EQ(2, shells.nMinimized);
}

HRESULT WINAPI RefuseMalloc(LPMALLOC* pp) {
    *pp = nullptr;
    return E_ACCESSDENIED;
}

TEST(ComWrappers, MallocThatIsRefused) {
    ReplaceImport replaced(__imp_SHGetMalloc, &RefuseMalloc);
    iMalloc memory;
    EXPECT_EQ(E_ACCESSDENIED, memory.GetLastResult());
    EXPECT_EQ(0, memory.IsReady());
    EXPECT_EQ(nullptr, memory.Alloc(1));
    EXPECT_EQ(nullptr, memory.Realloc(nullptr, 1));
    memory.Free(&memory);
    memory.HeapMinimize();
}

CountedObject* pLinkObject = nullptr;
HRESULT WINAPI GiveLinkObject(REFCLSID, IUnknown*, DWORD, REFIID, void** ppOut) {
    *ppOut = pLinkObject;
    pLinkObject->AddRef();
    return S_OK;
}

/// Links are objects that count; they are only asked for other interfaces.
class LinkWrappers : public testing::Test {
  protected:
    LinkWrappers() { pLinkObject = &object; }
    CountedObject object;
    ReplaceImport replaced{__imp_CoCreateInstance, &GiveLinkObject};
};

TEST_F(LinkWrappers, PersistFileIsTheLinks) {
    {
        iShellLink link;
        iPersistFile file(link), none;
        EXPECT_TRUE(object.iidAsked == IID_IPersistFile);
        EXPECT_EQ(&object, static_cast<IPersistFile*>(file));
        EXPECT_EQ(nullptr, static_cast<IPersistFile*>(none));
        EXPECT_EQ(3, object.nReferences);
    }
    EXPECT_EQ(1, object.nReferences);
    {
        iShellLink link;
        object.bRefuse = true;
        iPersistFile file(link);
        EXPECT_EQ(0, file.IsReady());
        EXPECT_EQ(0, file.Load(L"x", 0));
        EXPECT_EQ(0, file.Save(L"x", 0));
    }
    EXPECT_EQ(1, object.nReferences);
}

TEST_F(LinkWrappers, PersistStreamIsTheLinks) {
    {
        iShellLink link;
        iPersistStream stream(link), none;
        EXPECT_TRUE(object.iidAsked == IID_IPersistStream);
        EXPECT_EQ(1, stream.IsReady());
        EXPECT_EQ(nullptr, static_cast<IPersistStream*>(none));
        EXPECT_EQ(3, object.nReferences);
    }
    EXPECT_EQ(1, object.nReferences);
}

TEST_F(LinkWrappers, LoadAsksForItsMode) {
    iShellLink link;
    iPersistFile file(link);
    EXPECT_EQ(1, file.Load(L"one.lnk", 1));
    EXPECT_EQ(L"one.lnk", object.strPath);
    EXPECT_EQ(18u, object.dwMode);
    EXPECT_EQ(1, file.Load(L"two.lnk", 0));
    EXPECT_EQ(L"two.lnk", object.strPath);
    EXPECT_EQ(32u, object.dwMode);
    object.hrAnswer = S_FALSE;
    EXPECT_EQ(1, file.Load(L"two.lnk", 0));
    EXPECT_EQ(S_FALSE, file.GetLastResult());
    object.hrAnswer = STG_E_FILENOTFOUND;
    EXPECT_EQ(0, file.Load(L"two.lnk", 0));
    EXPECT_EQ(STG_E_FILENOTFOUND, file.GetLastResult());
}

TEST_F(LinkWrappers, SavePassesTheFlagOn) {
    iShellLink link;
    iPersistFile file(link);
    EXPECT_EQ(1, file.Save(L"one.lnk", 1));
    EXPECT_EQ(L"one.lnk", object.strPath);
    EXPECT_TRUE(object.bRemember);
    EXPECT_EQ(1, file.Save(L"one.lnk", 0));
    EXPECT_FALSE(object.bRemember);
    object.hrAnswer = STG_E_ACCESSDENIED;
    EXPECT_EQ(0, file.Save(L"one.lnk", 0));
    EXPECT_EQ(STG_E_ACCESSDENIED, file.GetLastResult());
}

TEST(RealLinkWrappers, SavedLinkIsLoadedAgain) {
    ::CoInitialize(nullptr);
    {
        TempFolder folder;
        std::wstring strLink = folder.File(L"one.lnk");
        iShellLink link;
        ASSERT_EQ(1, link.SetArgs(L"some arguments"));
        iPersistFile file(link);
        EXPECT_EQ(1, file.Save(strLink.c_str(), 0));
        iShellLink other;
        iPersistFile fileOther(other);
        EXPECT_EQ(1, fileOther.Load(strLink.c_str(), 0));
        wchar_t szArgs[MAX_PATH] = L"";
        EXPECT_EQ(1, other.GetArgs(szArgs, MAX_PATH));
        EXPECT_STREQ(L"some arguments", szArgs);
        EXPECT_EQ(1, fileOther.Load(strLink.c_str(), 1));
        EXPECT_EQ(0, fileOther.Load(folder.File(L"missing.lnk").c_str(), 0));
        EXPECT_LT(fileOther.GetLastResult(), 0);
        iPersistStream stream(link);
        EXPECT_EQ(1, stream.IsReady());
    }
    ::CoUninitialize();
}

/// Gives lists until they are out; those that the wrapper gave away.
struct CountedEnum : IEnumIDList {
    explicit CountedEnum(int nThere) : nLeft(nThere) {}
    int nLeft;
    HRESULT hrEnd = S_FALSE;
    HRESULT hrReset = S_OK;
    std::vector<ULONG> asked;
    std::vector<void*> given;
    LONG nReferences = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --nReferences; }
    HRESULT STDMETHODCALLTYPE Next(ULONG nCount, PITEMID_CHILD* ppidl, ULONG* pnFetched) override {
        asked.push_back(nCount);
        ULONG n = 0;
        for (; n < nCount && nLeft > 0; ++n, --nLeft) {
            Bytes bytes = TextList({std::to_wstring(nLeft)});
            ppidl[n] = PIDL::Alloc(static_cast<DWORD>(bytes.size()));
            PIDL::Copy(ppidl[n], AsList(bytes), static_cast<DWORD>(bytes.size()));
            given.push_back(ppidl[n]);
        }
        if (pnFetched) *pnFetched = n;
        return n == nCount ? S_OK : hrEnd;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reset() override { return hrReset; }
    HRESULT STDMETHODCALLTYPE Clone(IEnumIDList**) override { return E_NOTIMPL; }
};

class EnumWrapper : public testing::Test {
  protected:
    EnumWrapper() {
        space.enumObjects = [this](HWND hwnd, DWORD nFlags, IEnumIDList** ppOut) {
            hwndAsked = hwnd;
            nAskedFlags = nFlags;
            if (hrBegin == S_OK) *ppOut = &items, items.AddRef();
            return hrBegin;
        };
    }
    int CountAlive() const {
        int n = 0;
        for (void* p : items.given) n += !freed.Has(p);
        return n;
    }
    FreedBlocks freed;
    MadeNamespace space;
    CountedEnum items{5};
    HWND hwndAsked = nullptr;
    DWORD nAskedFlags = 0;
    HRESULT hrBegin = S_OK;
    iShellFolder folder{nullptr, nullptr};
};

TEST_F(EnumWrapper, BeginningIsACallToTheFolder) {
    {
        iEnumIDList walk(folder, ::GetDesktopWindow(), SHCONTF_FOLDERS | SHCONTF_INCLUDEHIDDEN);
        EXPECT_EQ(::GetDesktopWindow(), hwndAsked);
        EXPECT_EQ(DWORD(SHCONTF_FOLDERS | SHCONTF_INCLUDEHIDDEN), nAskedFlags);
        EXPECT_EQ(S_OK, folder.GetLastResult());
        EXPECT_EQ(&items, static_cast<IEnumIDList*>(walk));
        EXPECT_EQ(2, items.nReferences);
    }
    EXPECT_EQ(1, items.nReferences);
}

TEST_F(EnumWrapper, NextGivesOneAfterTheOther) {
    iEnumIDList walk(folder, nullptr, 0);
    for (int n = 5; n > 0; --n) {
        ITEMIDLIST* pidl = walk.Next();
        ASSERT_NE(nullptr, pidl);
        EXPECT_EQ(std::to_wstring(n), MadeNamespace::NameOf(pidl));
        PIDL::Free(pidl);
    }
    EXPECT_EQ(nullptr, walk.Next());
    EXPECT_EQ(nullptr, walk.Next());
    EXPECT_EQ(0, CountAlive());
    EXPECT_EQ(S_FALSE, walk.GetLastResult());
}

TEST_F(EnumWrapper, NextOfManyGivesTheNumber) {
    iEnumIDList walk(folder, nullptr, 0);
    ITEMIDLIST* pidls[4] = {};
    EXPECT_EQ(3u, walk.Next(3, pidls));
    for (int n = 0; n < 3; ++n) PIDL::Free(pidls[n]);
    // There are two more, and not three.
    EXPECT_EQ(0u, walk.Next(3, pidls));
    EXPECT_EQ(0, CountAlive()) << "nobody could free these";
    EXPECT_EQ(0u, walk.Next(1, pidls));
}

TEST_F(EnumWrapper, FailureGivesNothing) {
    iEnumIDList walk(folder, nullptr, 0);
    items.nLeft = 0;
    items.hrEnd = E_OUTOFMEMORY;
    EXPECT_EQ(nullptr, walk.Next());
    EXPECT_EQ(E_OUTOFMEMORY, walk.GetLastResult());
    EXPECT_EQ(1, walk.Reset());
    items.hrReset = E_FAIL;
    EXPECT_EQ(0, walk.Reset());
    EXPECT_EQ(E_FAIL, walk.GetLastResult());
    items.hrReset = S_FALSE;
    EXPECT_EQ(1, walk.Reset());
}

TEST_F(EnumWrapper, FolderThatRefusesGivesAnEmptyWalk) {
    for (HRESULT hr : {S_FALSE, E_ACCESSDENIED}) {
        hrBegin = hr;
        iEnumIDList walk(folder, nullptr, 0);
        EXPECT_EQ(hr, folder.GetLastResult());
        EXPECT_EQ(0, walk.IsReady());
        EXPECT_EQ(nullptr, walk.Next());
        ITEMIDLIST* pidl = nullptr;
        EXPECT_EQ(0u, walk.Next(1, &pidl));
        EXPECT_EQ(0, walk.Reset());
    }
    iShellFolder none;
    iEnumIDList walk(none, nullptr, 0);
    EXPECT_EQ(nullptr, walk.Next());
    EXPECT_LT(none.GetLastResult(), 0);
}

TEST(RealEnumWrapper, WalksAFolderAndBeginsAgain) {
    ::CoInitialize(nullptr);
    {
        TempFolder temp;
        for (const wchar_t* psz : {L"one.txt", L"two.txt", L"three.txt"}) temp.MakeFile(psz, "x");
        PIDL list;
        iShellFolder folder(temp.Get().c_str(), list);
        iEnumIDList walk(folder, nullptr, SHCONTF_NONFOLDERS);
        for (int nTurn = 0; nTurn < 2; ++nTurn) {
            int nFound = 0;
            while (ITEMIDLIST* pidl = walk.Next()) {
                ++nFound;
                PIDL::Free(pidl);
            }
            EXPECT_EQ(3, nFound);
            EXPECT_EQ(1, walk.Reset());
        }
        ITEMIDLIST* pidls[3] = {};
        EXPECT_EQ(3u, walk.Next(3, pidls));
        for (auto* pidl : pidls) PIDL::Free(pidl);
    }
    ::CoUninitialize();
}
} // namespace
