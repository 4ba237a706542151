#include "shell/namespace/data_obj.h"
#include "shell/namespace/id_list.h"
#include "shell/namespace/made_lists.h"
#include "shell/namespace/pidl.h"
#include "support/replace_import.h"
#include "support/temp_folder.h"

#include <ole2.h>
#include <shlobj.h>
#include <gtest/gtest.h>
#include <random>

extern "C" FARPROC __imp_GlobalLock;
extern "C" FARPROC __imp_GlobalSize;
extern "C" FARPROC __imp_GlobalUnlock;

namespace {
void PutDword(Bytes& bytes, std::size_t nAt, DWORD dw) { std::memcpy(&bytes[nAt], &dw, 4); }

/// The array for a folder's list and those of its items.
Bytes ArrayBytes(const std::vector<Bytes>& lists) {
    Bytes bytes(4 + 4 * lists.size());
    PutDword(bytes, 0, static_cast<DWORD>(lists.size() - 1));
    for (std::size_t n = 0; n < lists.size(); ++n) {
        PutDword(bytes, 4 + 4 * n, static_cast<DWORD>(bytes.size()));
        bytes.insert(bytes.end(), lists[n].begin(), lists[n].end());
    }
    return bytes;
}
HGLOBAL BlockOf(const Bytes& bytes) {
    HGLOBAL h = ::GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(::GlobalLock(h), bytes.data(), bytes.size());
    ::GlobalUnlock(h);
    return h;
}
Bytes ListAt(const ITEMIDLIST* pidl) { return BytesAt(pidl, PIDL::GetSizeTotal(pidl)); }
UINT LockCount(HGLOBAL h) { return ::GlobalFlags(h) & GMEM_LOCKCOUNT; }

const Bytes kFolder = TextList({L"the folder", L"in it"}), kOne = TextList({L"one"}),
            kTwo = ListBytes({{1}}), kThree = TextList({L"three"});

TEST(IdList, WithoutAnythingIsEmpty) {
    ID_List list;
    EXPECT_EQ(0, list.IsReady());
    EXPECT_EQ(0u, list.GetCount());
    EXPECT_EQ(nullptr, list.GetFolderPidl());
    EXPECT_EQ(nullptr, list.GetFirstPidl());
    EXPECT_EQ(nullptr, list.GetNextPidl());
    ID_List ofNullObject(static_cast<IDataObject*>(nullptr)),
        ofNullBlock(static_cast<void*>(nullptr));
    EXPECT_EQ(0, ofNullObject.IsReady());
    EXPECT_EQ(0, ofNullBlock.IsReady());
    EXPECT_EQ(nullptr, ofNullBlock.GetFirstPidl());
}

TEST(IdList, BlockIsReadInItsOrder) {
    HGLOBAL h = BlockOf(ArrayBytes({kFolder, kOne, kTwo, kThree}));
    {
        ID_List list(h);
        EXPECT_EQ(1u, LockCount(h));
        EXPECT_EQ(1, list.IsReady());
        EXPECT_EQ(3u, list.GetCount());
        EXPECT_EQ(kFolder, ListAt(list.GetFolderPidl()));
        for (int nTurn = 0; nTurn < 2; ++nTurn) { // the first is the beginning again
            EXPECT_EQ(kOne, ListAt(list.GetFirstPidl()));
            EXPECT_EQ(kTwo, ListAt(list.GetNextPidl()));
            EXPECT_EQ(kFolder, ListAt(list.GetFolderPidl()));
            EXPECT_EQ(kThree, ListAt(list.GetNextPidl()));
            EXPECT_EQ(nullptr, list.GetNextPidl());
            EXPECT_EQ(nullptr, list.GetNextPidl());
        }
        EXPECT_EQ(kOne, ListAt(list.GetFirstPidl()));
    }
    EXPECT_EQ(0u, LockCount(h));
    EXPECT_EQ(nullptr, ::GlobalFree(h)); // the caller's own
}

TEST(IdList, ArrayWithoutItems) {
    HGLOBAL h = BlockOf(ArrayBytes({kFolder}));
    {
        ID_List list(h);
        EXPECT_EQ(1, list.IsReady());
        EXPECT_EQ(0u, list.GetCount());
        EXPECT_EQ(kFolder, ListAt(list.GetFolderPidl()));
        EXPECT_EQ(nullptr, list.GetFirstPidl());
        EXPECT_EQ(nullptr, list.GetNextPidl());
    }
    ::GlobalFree(h);
}

TEST(IdList, InitTakesTheNewOneAndGivesTheOldBack) {
    HGLOBAL hFirst = BlockOf(ArrayBytes({kFolder, kOne}));
    HGLOBAL hSecond = BlockOf(ArrayBytes({kFolder, kTwo, kThree}));
    {
        ID_List list(hFirst);
        list.GetFirstPidl();
        list.Init(nullptr, hSecond);
        EXPECT_EQ(0u, LockCount(hFirst));
        EXPECT_EQ(1u, LockCount(hSecond));
        EXPECT_EQ(2u, list.GetCount());
        EXPECT_EQ(kTwo, ListAt(list.GetFirstPidl()));
        list.Init(nullptr, nullptr);
        EXPECT_EQ(0, list.IsReady());
        EXPECT_EQ(0u, list.GetCount());
    }
    EXPECT_EQ(0u, LockCount(hSecond));
    ::GlobalFree(hFirst);
    ::GlobalFree(hSecond);
}

/// A block whose memory ends at a page that may not be read. There is one at a time.
class GuardedBlock {
  public:
    explicit GuardedBlock(const Bytes& bytes)
        : memory(bytes), size(__imp_GlobalSize, &Size), lock(__imp_GlobalLock, &Lock),
          unlock(__imp_GlobalUnlock, &Unlock) {
        pData = memory.Get();
        cb = bytes.size();
        nLocks = 0;
    }
    ~GuardedBlock() { pData = nullptr; }
    static void* Handle() { return reinterpret_cast<void*>(0x7E55AA); }
    static inline int nLocks = 0;

  private:
    static SIZE_T WINAPI Size(HGLOBAL) { return cb; }
    static LPVOID WINAPI Lock(HGLOBAL) {
        ++nLocks;
        return pData;
    }
    static BOOL WINAPI Unlock(HGLOBAL) { return --nLocks > 0; }
    static inline void* pData = nullptr;
    static inline std::size_t cb = 0;
    GuardedBytes memory;
    ReplaceImport size, lock, unlock;
};

/// What the array holds, said another way: the number of items it has room for, and the bytes of
/// the list at an offset, none if it is not whole.
std::size_t CountIn(const Bytes& bytes) {
    if (bytes.size() < 8) return 0;
    DWORD nCount = 0;
    std::memcpy(&nCount, bytes.data(), 4);
    return std::min<std::size_t>(nCount, (bytes.size() - 8) / 4);
}
Bytes ListIn(const Bytes& bytes, std::size_t nIndex) {
    if (8 + 4 * nIndex > bytes.size()) return {};
    DWORD nOffset = 0;
    std::memcpy(&nOffset, &bytes[4 + 4 * nIndex], 4);
    for (std::size_t n = nOffset; n + 2 <= bytes.size();) {
        std::size_t cb = bytes[n] | bytes[n + 1] << 8;
        if (cb == 0) return Bytes(bytes.begin() + nOffset, bytes.begin() + std::ptrdiff_t(n) + 2);
        n += cb;
    }
    return {};
}
void ExpectAsModel(const Bytes& bytes) {
    GuardedBlock block(bytes);
    {
        ID_List list(GuardedBlock::Handle());
        ASSERT_EQ(CountIn(bytes), list.GetCount());
        ASSERT_EQ(ListIn(bytes, 0), ListAt(list.GetFolderPidl()));
        for (std::size_t n = 1; n <= CountIn(bytes); ++n) {
            ASSERT_EQ(ListIn(bytes, n), ListAt(n == 1 ? list.GetFirstPidl() : list.GetNextPidl()))
                << n;
        }
        if (!CountIn(bytes)) {
            ASSERT_EQ(nullptr, list.GetFirstPidl());
        }
        ASSERT_EQ(nullptr, list.GetNextPidl());
    }
    ASSERT_EQ(0, GuardedBlock::nLocks);
}

TEST(IdListHostile, EveryShorterBlock) {
    Bytes bytes = ArrayBytes({kFolder, kOne, kTwo, kThree});
    for (; !bytes.empty(); bytes.pop_back()) {
        ExpectAsModel(bytes);
        ASSERT_FALSE(HasFatalFailure()) << bytes.size();
    }
}

TEST(IdListHostile, CountsAndOffsets) {
    for (DWORD dw :
         {0u, 1u, 3u, 4u, 5u, 19u, 20u, 21u, 0x7Fu, 0x80u, 0xFFFFu, 0x3FFFFFFFu, 0x40000000u,
          0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFCu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        for (std::size_t nAt = 0; nAt < 20; nAt += 4) {
            Bytes bytes = ArrayBytes({kFolder, kOne, kTwo, kThree});
            PutDword(bytes, nAt, dw);
            ExpectAsModel(bytes);
            ASSERT_FALSE(HasFatalFailure()) << nAt << " " << dw;
        }
    }
    Bytes bytes = ArrayBytes({kFolder, kOne});
    for (DWORD nOffset = 0; nOffset < bytes.size() + 4; ++nOffset) {
        Bytes changed = bytes;
        PutDword(changed, 8, nOffset);
        ExpectAsModel(changed);
        ASSERT_FALSE(HasFatalFailure()) << nOffset;
    }
}

TEST(IdListHostile, ItemThatIsNotWholeIsPassedOver) {
    Bytes bytes = ArrayBytes({kFolder, kOne, kTwo, kThree});
    PutDword(bytes, 12, 0xFFFFFFFF);
    GuardedBlock block(bytes);
    ID_List list(GuardedBlock::Handle());
    EXPECT_EQ(kOne, ListAt(list.GetFirstPidl()));
    EXPECT_EQ(nullptr, list.GetNextPidl());
    EXPECT_EQ(kThree, ListAt(list.GetNextPidl()));
}

TEST(IdListRandom, BytesAreReadWithinTheBlock) {
    std::mt19937 random(905);
    for (int nRound = 0; nRound < 3000; ++nRound) {
        std::vector<Bytes> lists(1 + random() % 6);
        for (auto& list : lists) {
            Items items(random() % 4);
            for (auto& item : items) item = Bytes(random() % 12, static_cast<BYTE>(random() % 4));
            list = ListBytes(items);
        }
        Bytes bytes = ArrayBytes(lists);
        for (int n = nRound % 6; n > 0; --n) {
            bytes[random() % bytes.size()] = static_cast<BYTE>(random() % 4 ? random() % 40 : 0xFF);
        }
        bytes.resize(bytes.size() - (random() % 3 ? 0 : random() % bytes.size()));
        if (bytes.empty()) continue;
        ExpectAsModel(bytes);
        ASSERT_FALSE(HasFatalFailure()) << nRound;
    }
}

LPVOID WINAPI RefuseLock(HGLOBAL) { return nullptr; }

TEST(IdListHostile, BlockThatCannotBeLocked) {
    HGLOBAL h = BlockOf(ArrayBytes({kFolder, kOne}));
    {
        ReplaceImport replaced(__imp_GlobalLock, &RefuseLock);
        ID_List list(h);
        EXPECT_EQ(1, list.IsReady());
        EXPECT_EQ(0u, list.GetCount());
        EXPECT_EQ(nullptr, list.GetFolderPidl());
        EXPECT_EQ(nullptr, list.GetFirstPidl());
    }
    ::GlobalFree(h);
}

/// Offers one format, as a block that somebody else keeps.
struct CountedDataObject : IDataObject {
    LONG nReferences = 1; // the test's
    HRESULT hrAnswer = S_OK;
    HGLOBAL hBlock = nullptr;
    IUnknown* pOfBlock = nullptr;
    FORMATETC asked{};
    STGMEDIUM mediumBefore{};
    DWORD nGivenMedium = TYMED_HGLOBAL;
    int nAsked = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** ppOut) override {
        *ppOut = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --nReferences; }
    HRESULT STDMETHODCALLTYPE GetData(FORMATETC* pFormat, STGMEDIUM* pMedium) override {
        ++nAsked;
        asked = *pFormat;
        mediumBefore = *pMedium;
        if (hrAnswer < 0) return hrAnswer;
        pMedium->tymed = nGivenMedium;
        pMedium->hGlobal = hBlock;
        pMedium->pUnkForRelease = pOfBlock;
        if (pOfBlock) pOfBlock->AddRef();
        return hrAnswer;
    }
    HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
};
/// Keeps a block, and knows how often it was given back.
struct BlockKeeper : IUnknown {
    LONG nReferences = 1; // the test's
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --nReferences; }
};

class DataObj : public testing::Test {
  protected:
    DataObj() {
        object.hBlock = BlockOf(ArrayBytes({kFolder, kOne}));
        object.pOfBlock = &keeper;
    }
    ~DataObj() override { ::GlobalFree(object.hBlock); }
    CountedDataObject object;
    BlockKeeper keeper;
};

TEST_F(DataObj, AsksForABlockOfTheFormat) {
    {
        iDataObj data(&object);
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(&object, static_cast<IDataObject*>(data));
        void* h = nullptr;
        EXPECT_EQ(1, data.GetData(CF_HDROP, &h));
        EXPECT_EQ(object.hBlock, h);
        EXPECT_EQ(S_OK, data.GetLastResult());
        EXPECT_EQ(CF_HDROP, object.asked.cfFormat);
        EXPECT_EQ(nullptr, object.asked.ptd);
        EXPECT_EQ(DWORD(DVASPECT_CONTENT), object.asked.dwAspect);
        EXPECT_EQ(-1, object.asked.lindex);
        EXPECT_EQ(DWORD(TYMED_HGLOBAL), object.asked.tymed);
        EXPECT_EQ(0u, object.mediumBefore.tymed);
        EXPECT_EQ(nullptr, object.mediumBefore.pUnkForRelease);
        EXPECT_EQ(2, keeper.nReferences);
        data.ReleaseMedium();
        EXPECT_EQ(1, keeper.nReferences);
        data.ReleaseMedium();
        EXPECT_EQ(1, keeper.nReferences);
        EXPECT_EQ(1, data.GetData(0xC0FF, &h)); // the request is good for another one
        EXPECT_EQ(0xC0FF, object.asked.cfFormat);
        EXPECT_EQ(0u, object.mediumBefore.tymed);
        data.ReleaseMedium();
    }
    EXPECT_EQ(1, object.nReferences);
    EXPECT_EQ(1, keeper.nReferences);
}

TEST_F(DataObj, FailureGivesANullBlock) {
    iDataObj data(&object);
    object.hrAnswer = DV_E_FORMATETC;
    void* h = &object;
    EXPECT_EQ(0, data.GetData(CF_HDROP, &h));
    EXPECT_EQ(nullptr, h);
    EXPECT_EQ(DV_E_FORMATETC, data.GetLastResult());
    data.ReleaseMedium();
    EXPECT_EQ(1, keeper.nReferences);
    object.hrAnswer = S_FALSE; // is no failure
    EXPECT_EQ(1, data.GetData(CF_HDROP, &h));
    EXPECT_EQ(object.hBlock, h);
    EXPECT_EQ(S_FALSE, data.GetLastResult());
    data.ReleaseMedium();
}

TEST_F(DataObj, AnotherMediumIsGivenBackAndNoBlock) {
    object.nGivenMedium = TYMED_ISTREAM;
    CountedDataObject stream; // counts its references as any stream does
    ::GlobalFree(object.hBlock);
    object.hBlock = &stream;
    {
        iDataObj data(&object);
        void* h = &object;
        stream.AddRef(); // of the medium
        EXPECT_EQ(0, data.GetData(CF_HDROP, &h));
        EXPECT_EQ(nullptr, h);
        EXPECT_EQ(DV_E_TYMED, data.GetLastResult());
        EXPECT_EQ(1, stream.nReferences);
        EXPECT_EQ(1, keeper.nReferences);
        data.ReleaseMedium(); // nothing twice
        EXPECT_EQ(1, stream.nReferences);
        stream.AddRef();
        ID_List list(&object);
        EXPECT_EQ(1, list.IsReady());
        EXPECT_EQ(0u, list.GetCount());
        EXPECT_EQ(nullptr, list.GetFolderPidl());
    }
    EXPECT_EQ(1, stream.nReferences);
    EXPECT_EQ(1, object.nReferences);
    object.hBlock = nullptr;
}

TEST_F(DataObj, WithoutAnObject) {
    iDataObj none, ofNull(nullptr);
    void* h = &object;
    EXPECT_EQ(0, none.GetData(CF_HDROP, &h));
    EXPECT_EQ(nullptr, h);
    h = &object;
    EXPECT_EQ(0, ofNull.GetData(CF_HDROP, &h));
    EXPECT_EQ(nullptr, h);
    none.ReleaseMedium();
    EXPECT_EQ(0, none.IsReady());
}

TEST_F(DataObj, CopyIsTheSameWordForWord) {
    {
        iDataObj data(&object), copy;
        void* h = nullptr;
        EXPECT_EQ(1, data.GetData(CF_HDROP, &h));
        copy = data;
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(2, keeper.nReferences);
        EXPECT_EQ(&object, static_cast<IDataObject*>(copy));
        copy.ReleaseMedium(); // one of the two
        EXPECT_EQ(1, keeper.nReferences);
        copy.Abandon();
    }
    EXPECT_EQ(1, object.nReferences);
}

TEST_F(DataObj, ListsOfAnObjectAreItsBlock) {
    {
        ID_List list(&object);
        EXPECT_NE(0u, ID_List::cfIDLIST);
        EXPECT_EQ(ID_List::cfIDLIST, ::RegisterClipboardFormatW(L"Shell IDList Array"));
        EXPECT_EQ(ID_List::cfIDLIST, object.asked.cfFormat);
        EXPECT_EQ(2, object.nReferences);
        EXPECT_EQ(2, keeper.nReferences);
        EXPECT_EQ(1u, LockCount(object.hBlock));
        EXPECT_EQ(1u, list.GetCount());
        EXPECT_EQ(kFolder, ListAt(list.GetFolderPidl()));
        EXPECT_EQ(kOne, ListAt(list.GetFirstPidl()));
    }
    EXPECT_EQ(1, object.nReferences);
    EXPECT_EQ(1, keeper.nReferences);
    EXPECT_EQ(0u, LockCount(object.hBlock));
    EXPECT_EQ(1, object.nAsked);
}

TEST_F(DataObj, ObjectGoesBeforeTheBlock) {
    HGLOBAL hOther = BlockOf(ArrayBytes({kFolder, kTwo, kTwo}));
    {
        ID_List list;
        list.Init(&object, hOther);
        EXPECT_EQ(1u, list.GetCount());
        EXPECT_EQ(0u, LockCount(hOther));
        list.Init(nullptr, hOther);
        EXPECT_EQ(2u, list.GetCount());
        EXPECT_EQ(1, object.nReferences);
        EXPECT_EQ(1, keeper.nReferences);
    }
    ::GlobalFree(hOther);
}

TEST_F(DataObj, ObjectWithoutListsIsReadyAndEmpty) {
    object.hrAnswer = DV_E_FORMATETC;
    {
        ID_List list(&object);
        EXPECT_EQ(1, list.IsReady());
        EXPECT_EQ(0u, list.GetCount());
        EXPECT_EQ(nullptr, list.GetFolderPidl());
        EXPECT_EQ(nullptr, list.GetFirstPidl());
        EXPECT_EQ(nullptr, list.GetNextPidl());
    }
    EXPECT_EQ(1, object.nReferences);
    EXPECT_EQ(1, keeper.nReferences);
}

/// The shell's own object for some files of a folder, and their names.
class ShellDataObject : public testing::Test {
  protected:
    ShellDataObject() {
        ::OleInitialize(nullptr);
        for (const wchar_t* psz : {L"one.txt", L"\u4E8C.txt"}) temp.MakeFile(psz, "x");
        ITEMIDLIST* pidlFolder = GetPidlOf(temp.Get().c_str());
        IShellFolder *pDesktop = nullptr, *pFolder = nullptr;
        ::SHGetDesktopFolder(&pDesktop);
        pDesktop->BindToObject(pidlFolder, nullptr, IID_IShellFolder,
                               reinterpret_cast<void**>(&pFolder));
        ITEMIDLIST *pidlOne = GetPidlOf(temp.File(L"one.txt").c_str()),
                   *pidlTwo = GetPidlOf(temp.File(L"\u4E8C.txt").c_str());
        const ITEMIDLIST* items[] = {PIDL::GetLast(pidlOne), PIDL::GetLast(pidlTwo)};
        pFolder->GetUIObjectOf(nullptr, 2, items, IID_IDataObject, nullptr,
                               reinterpret_cast<void**>(&pData));
        for (auto* pidl : {pidlFolder, pidlOne, pidlTwo}) PIDL::Free(pidl);
        pFolder->Release();
        pDesktop->Release();
    }
    ~ShellDataObject() override {
        if (pData) pData->Release();
        ::OleUninitialize();
    }
    void ExpectFiles(ID_List& list) {
        ASSERT_EQ(2u, list.GetCount());
        std::vector<std::wstring> paths;
        for (const ITEMIDLIST* pidl = list.GetFirstPidl(); pidl; pidl = list.GetNextPidl()) {
            PIDL whole(list.GetFolderPidl());
            whole.AppendAll(pidl);
            wchar_t szPath[MAX_PATH] = L"";
            EXPECT_TRUE(::SHGetPathFromIDListW(whole, szPath));
            paths.push_back(szPath);
        }
        EXPECT_EQ((std::vector<std::wstring>{temp.File(L"one.txt"), temp.File(L"\u4E8C.txt")}),
                  paths);
    }
    TempFolder temp;
    IDataObject* pData = nullptr;
};

TEST_F(ShellDataObject, GivesTheFilesAndTheirFolder) {
    ASSERT_NE(nullptr, pData);
    ID_List list(pData);
    ExpectFiles(list);
}

TEST_F(ShellDataObject, GoesThroughTheClipboard) {
    ASSERT_NE(nullptr, pData);
    ASSERT_EQ(S_OK, ::OleSetClipboard(pData));
    ASSERT_EQ(S_OK, ::OleFlushClipboard());
    IDataObject* pThere = nullptr;
    ASSERT_EQ(S_OK, ::OleGetClipboard(&pThere));
    {
        ID_List list(pThere);
        ExpectFiles(list);
        iDataObj data(pThere);
        void* h = pData;
        EXPECT_EQ(0, data.GetData(CF_WAVE, &h));
        EXPECT_EQ(nullptr, h);
    }
    pThere->Release();
    ::OleSetClipboard(nullptr);
}
} // namespace
