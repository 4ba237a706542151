// The platform's file operation object is a stub here: it can be made, and each of its methods says
// that it is not implemented. So what is asked of one is written down by an object of the test;
// what the real one does is on the list of checks on Windows. The way without such an object, by
// the shell's older function, runs for real.
#include "files/disk/uni_path.h"
#include "files/operations/file_operation.h"
#include "files/operations/operations_support.h"
#include "files/path_tables.h"
#include "files/text/cs_file.h"
#include "support/runtime_lookup.h"
#include "support/test_window.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <array>
#include <string>
#include <thread>

extern "C" FARPROC __imp_CoCreateInstance, __imp_CoInitializeEx, __imp_CoUninitialize;

namespace {
// Written out, so that a wrong number in our own declarations is seen.
constexpr GUID kClass = {0x3AD05575, 0x8857, 0x4850, {0x92, 0x77, 0x11, 0xB8, 0x5B, 0xDB, 0x8E, 9}};
constexpr GUID kOperation = {
    0x947AAB5F, 0x0A5C, 0x4C13, {0xB4, 0xD6, 0x4B, 0xF7, 0x83, 0x6F, 0xC9, 0xF8}};
constexpr GUID kItem = {
    0x43826D1E, 0xE718, 0x42EE, {0xBC, 0x55, 0xA1, 0xE2, 0x61, 0xC3, 0x7B, 0xFE}};
constexpr HRESULT kRefused = static_cast<HRESULT>(0x80004567);

std::vector<std::wstring> calls; // in their order
std::wstring strFailing;         // the call that fails
HRESULT hrFailing = kRefused;    // and how
int nAlive;                      // references not given back
int nNotInitialized;             // so many times the platform says that COM is not there
bool bNoObject;                  // the platform has no such object

HRESULT Note(const std::wstring& strCall, const std::wstring& strArguments = L"") {
    calls.push_back(strArguments.empty() ? strCall : strCall + L" " + strArguments);
    return strCall == strFailing ? hrFailing : S_OK;
}

/// A COM object with a method table that is filled by the numbers that the documentation gives.
struct Object {
    void* const* pTable;
    ULONG nRefs;
    std::wstring strText;
};
ULONG STDMETHODCALLTYPE AddRef(Object* pThis) {
    ++nAlive;
    return ++pThis->nRefs;
}
ULONG STDMETHODCALLTYPE Release(Object* pThis) {
    --nAlive;
    ULONG nLeft = --pThis->nRefs;
    if (nLeft) return nLeft;
    if (pThis->strText.empty()) Note(L"Release");
    delete pThis;
    return 0;
}
HRESULT STDMETHODCALLTYPE QueryInterface(Object*, REFIID, void** pp) {
    *pp = nullptr;
    return E_NOINTERFACE;
}
std::wstring Text(const wchar_t* psz) { return psz ? psz : L"(null)"; }
std::wstring Text(Object* pItem) { return pItem ? pItem->strText : L"(null)"; }

HRESULT STDMETHODCALLTYPE SetFlags(Object*, DWORD nFlags) {
    wchar_t sz[16];
    std::swprintf(sz, 16, L"%08lX", nFlags);
    return Note(L"SetOperationFlags", sz);
}
HWND hwndOwner;
HRESULT STDMETHODCALLTYPE SetOwner(Object*, HWND hwnd) {
    return Note(L"SetOwnerWindow", hwnd == hwndOwner ? L"owner" : L"other");
}
HRESULT STDMETHODCALLTYPE Rename(Object*, Object* pItem, LPCWSTR pszName, void* pSink) {
    return Note(L"RenameItem", Text(pItem) + L" " + Text(pszName) + (pSink ? L" sink" : L""));
}
HRESULT STDMETHODCALLTYPE Move(Object*, Object* pItem, Object* pTo, LPCWSTR pszName, void* pSink) {
    return Note(L"MoveItem",
                Text(pItem) + L" " + Text(pTo) + L" " + Text(pszName) + (pSink ? L" sink" : L""));
}
HRESULT STDMETHODCALLTYPE CopyTo(Object*, Object* pItem, Object* pTo, LPCWSTR pszName,
                                 void* pSink) {
    return Note(L"CopyItem",
                Text(pItem) + L" " + Text(pTo) + L" " + Text(pszName) + (pSink ? L" sink" : L""));
}
HRESULT STDMETHODCALLTYPE Remove(Object*, Object* pItem, void* pSink) {
    return Note(L"DeleteItem", Text(pItem) + (pSink ? L" sink" : L""));
}
HRESULT STDMETHODCALLTYPE Perform(Object*) { return Note(L"PerformOperations"); }
HRESULT STDMETHODCALLTYPE Other(Object*) { return Note(L"another method"); }

template <class Fn>
void* Slot(Fn* pfn) {
    return reinterpret_cast<void*>(pfn);
}
void* const* OperationTable() {
    static const auto table = [] {
        std::array<void*, 23> slots;
        slots.fill(Slot(&Other));
        slots[0] = Slot(&QueryInterface);
        slots[1] = Slot(&AddRef);
        slots[2] = Slot(&Release);
        slots[5] = Slot(&SetFlags);
        slots[9] = Slot(&SetOwner);
        slots[12] = Slot(&Rename);
        slots[14] = Slot(&Move);
        slots[16] = Slot(&CopyTo);
        slots[18] = Slot(&Remove);
        slots[21] = Slot(&Perform);
        return slots;
    }();
    return table.data();
}
void* const* ItemTable() {
    static void* const table[] = {Slot(&QueryInterface), Slot(&AddRef), Slot(&Release)};
    return table;
}
void* Make(void* const* pTable, const std::wstring& strText) {
    ++nAlive;
    return new Object{pTable, 1, strText};
}

HRESULT WINAPI Create(REFCLSID clsid, IUnknown* pOuter, DWORD nContext, REFIID iid, void** pp) {
    *pp = nullptr;
    bool bRight = clsid == kClass && !pOuter && nContext == 23 && iid == kOperation;
    calls.push_back(bRight ? L"Create" : L"Create another");
    if (nNotInitialized > 0) {
        --nNotInitialized;
        return CO_E_NOTINITIALIZED;
    }
    if (bNoObject) return REGDB_E_CLASSNOTREG;
    *pp = Make(OperationTable(), L"");
    return S_OK;
}
HRESULT hrInitialized;
HRESULT WINAPI Initialize(void* pReserved, DWORD nHow) {
    calls.push_back(L"CoInitializeEx " + std::to_wstring(nHow) + (pReserved ? L"?" : L""));
    return hrInitialized;
}
void WINAPI Uninitialize() { calls.push_back(L"CoUninitialize"); }
HRESULT WINAPI MakeItem(PCWSTR pszPath, IBindCtx*, REFIID iid, void** pp) {
    *pp = nullptr;
    HRESULT hr = Note(L"Item " + Text(pszPath), iid == kItem ? L"" : L"of another kind");
    if (SUCCEEDED(hr)) *pp = Make(ItemTable(), pszPath);
    return hr;
}

class Recorded : public testing::Test {
  protected:
    Recorded() {
        calls.clear();
        strFailing.clear();
        hrFailing = kRefused;
        nAlive = nNotInitialized = 0;
        hrInitialized = S_OK;
        bNoObject = false;
        functions.Set("SHCreateItemFromParsingName", &MakeItem);
    }
    ~Recorded() override { EXPECT_EQ(0, nAlive); }
    int Run(unsigned nOp, const wchar_t* pszName = L"name", HWND hwnd = nullptr) const {
        calls.clear();
        return CSFile::IFileOp(hwnd, nOp, &source, &target, pszName);
    }
    ReplaceFunctions functions;
    ReplaceImport create{__imp_CoCreateInstance, &Create};
    ReplaceImport initialize{__imp_CoInitializeEx, &Initialize};
    ReplaceImport uninitialize{__imp_CoUninitialize, &Uninitialize};
    UniPath source{L"C:\\source"}, target{L"C:\\target"};
};
using FileOperationObject = Recorded;
using FileOperationCalls = Recorded;

using Calls = std::vector<std::wstring>;

// MyFileOperation

TEST_F(FileOperationObject, IsMadeAndReleased) {
    {
        MyFileOperation operation;
        EXPECT_NE(nullptr, operation.Get());
        EXPECT_EQ(Calls({L"Create"}), calls);
    }
    EXPECT_EQ(Calls({L"Create", L"Release"}), calls);
}

TEST_F(FileOperationObject, ComIsBegunOnlyIfItIsNotThere) {
    nNotInitialized = 1;
    {
        MyFileOperation operation;
        EXPECT_NE(nullptr, operation.Get());
        EXPECT_EQ(1, operation.Recreate());
    }
    EXPECT_EQ(Calls({L"Create", L"CoInitializeEx 6", L"Create", L"Release", L"Create", L"Release",
                     L"CoUninitialize"}),
              calls);
}

TEST_F(FileOperationObject, IsNotMadeWithoutCom) {
    nNotInitialized = 2;
    {
        MyFileOperation operation;
        EXPECT_EQ(nullptr, operation.Get());
    }
    EXPECT_EQ(Calls({L"Create", L"CoInitializeEx 6", L"Create", L"CoUninitialize"}), calls);
}

TEST_F(FileOperationObject, ComThatCouldNotBeBegunIsNotEnded) {
    nNotInitialized = 1;
    hrInitialized = RPC_E_CHANGED_MODE;
    { MyFileOperation operation; }
    EXPECT_EQ(0, std::count(calls.begin(), calls.end(), L"CoUninitialize"));
}

TEST_F(FileOperationObject, OfAnotherPlatformIsNone) {
    bNoObject = true;
    MyFileOperation operation;
    EXPECT_EQ(nullptr, operation.Get());
    EXPECT_EQ(0, operation.Recreate());
    bNoObject = false;
    EXPECT_EQ(1, operation.Recreate());
    EXPECT_NE(nullptr, operation.Get());
    bNoObject = true;
    EXPECT_EQ(0, operation.Recreate()) << "the one before is gone";
    EXPECT_EQ(nullptr, operation.Get());
}

TEST(FileOperationOfThePlatform, BeginsAndEndsComForItsThread) {
    std::thread([] {
        void* p = nullptr;
        auto create = [&] {
            return ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                      &p);
        };
        EXPECT_EQ(CO_E_NOTINITIALIZED, create());
        {
            MyFileOperation operation;
            if (operation.Get()) {
                EXPECT_EQ(S_OK, create());
                static_cast<IUnknown*>(p)->Release();
            }
        }
        EXPECT_EQ(CO_E_NOTINITIALIZED, create());
    }).join();
}

// IFileOp

struct OperationCase {
    const char* pszName;
    unsigned nOp;
    Calls queued; // between the object and its flags
};
class EachOperation : public Recorded, public testing::WithParamInterface<OperationCase> {
  protected:
    static Calls Expected(const Calls& tail, const Calls& head = {L"Create"}) {
        Calls expected = head;
        const Calls& queued = GetParam().queued;
        expected.insert(expected.end(), queued.begin(), queued.end());
        expected.insert(expected.end(), tail.begin(), tail.end());
        return expected;
    }
    static std::wstring Method() {
        const std::wstring& str = GetParam().queued.back();
        return str.substr(0, str.find(L' '));
    }
};
TEST_P(EachOperation, IsQueuedAndPerformed) {
    EXPECT_EQ(1, Run(GetParam().nOp));
    EXPECT_EQ(Expected({L"SetOperationFlags 04000414", L"PerformOperations", L"Release"}), calls);
    EXPECT_EQ(S_OK, CSFile::GetLastHRESULT());
}
TEST_P(EachOperation, HasItsOwner) {
    TestWindow window;
    hwndOwner = window.Get();
    EXPECT_EQ(1, Run(GetParam().nOp, L"name", window.Get()));
    EXPECT_EQ(Expected({L"SetOperationFlags 04000414", L"PerformOperations", L"Release"},
                       {L"Create", L"SetOwnerWindow owner"}),
              calls);
}
TEST_P(EachOperation, ThatIsRefusedIsNotPerformed) {
    strFailing = Method();
    EXPECT_EQ(0, Run(GetParam().nOp));
    EXPECT_EQ(Expected({L"Release"}), calls);
    EXPECT_EQ(kRefused, CSFile::GetLastHRESULT());
}
TEST_P(EachOperation, GoesOnAfterAnyResultThatIsNotNegative) {
    strFailing = Method();
    hrFailing = S_FALSE;
    EXPECT_EQ(1, Run(GetParam().nOp));
    EXPECT_EQ(Expected({L"SetOperationFlags 04000414", L"PerformOperations", L"Release"}), calls);
    strFailing = L"PerformOperations";
    EXPECT_EQ(1, Run(GetParam().nOp));
}
TEST_P(EachOperation, MayFailWhenPerformed) {
    strFailing = L"PerformOperations";
    EXPECT_EQ(0, Run(GetParam().nOp));
    EXPECT_EQ(Expected({L"SetOperationFlags 04000414", L"PerformOperations", L"Release"}), calls);
}
TEST_P(EachOperation, NeedsItsItems) {
    strFailing = L"Item C:\\source";
    EXPECT_EQ(0, Run(GetParam().nOp));
    EXPECT_EQ(Calls({L"Create", L"Item C:\\source", L"Release"}), calls);
    EXPECT_EQ(kRefused, CSFile::GetLastHRESULT());
    bool bHasTarget = GetParam().nOp <= kFileOpCopy;
    strFailing = L"Item C:\\target";
    EXPECT_EQ(bHasTarget ? 0 : 1, Run(GetParam().nOp));
    if (bHasTarget) {
        EXPECT_EQ(Calls({L"Create", L"Item C:\\source", L"Item C:\\target", L"Release"}), calls);
    }
}
TEST_P(EachOperation, NeedsItsPaths) {
    UniPath empty;
    EXPECT_EQ(0, CSFile::IFileOp(nullptr, GetParam().nOp, nullptr, &target, L"name"));
    EXPECT_EQ(0, CSFile::IFileOp(nullptr, GetParam().nOp, &empty, &target, L"name"));
    int nWithoutTarget = GetParam().nOp <= kFileOpCopy ? 0 : 1;
    EXPECT_EQ(nWithoutTarget, CSFile::IFileOp(nullptr, GetParam().nOp, &source, nullptr, L"name"));
    EXPECT_EQ(nWithoutTarget, CSFile::IFileOp(nullptr, GetParam().nOp, &source, &empty, L"name"));
}
struct OtherKind : UniPath {
    explicit OtherKind(const wchar_t* psz) : UniPath(psz) { nKind = 1; }
};
TEST_P(EachOperation, OfAnotherKindIsNotImplemented) {
    OtherKind other(L"C:\\source");
    EXPECT_EQ(0, CSFile::IFileOp(nullptr, GetParam().nOp, &other, &target, L"name"));
    EXPECT_EQ(E_NOTIMPL, CSFile::GetLastHRESULT());
    EXPECT_EQ(0, std::count(calls.begin(), calls.end(), L"PerformOperations"));
}
TEST_P(EachOperation, NeedsThePlatformsItems) {
    functions.Hide("SHCreateItemFromParsingName");
    EXPECT_EQ(0, Run(GetParam().nOp));
    EXPECT_EQ(E_NOTIMPL, CSFile::GetLastHRESULT());
    EXPECT_EQ(0, std::count(calls.begin(), calls.end(), L"PerformOperations"));
}
INSTANTIATE_TEST_SUITE_P(
    Operations, EachOperation,
    testing::Values(OperationCase{"Move",
                                  1,
                                  {L"Item C:\\source", L"Item C:\\target",
                                   L"MoveItem C:\\source C:\\target name"}},
                    OperationCase{"Copy",
                                  2,
                                  {L"Item C:\\source", L"Item C:\\target",
                                   L"CopyItem C:\\source C:\\target name"}},
                    OperationCase{"Delete", 3, {L"Item C:\\source", L"DeleteItem C:\\source"}},
                    OperationCase{
                        "Rename", 4, {L"Item C:\\source", L"RenameItem C:\\source name"}}),
    kRowName);

TEST_F(FileOperationCalls, NoNewNameKeepsTheOldOne) {
    EXPECT_EQ(1, Run(kFileOpMove, nullptr));
    EXPECT_EQ(L"MoveItem C:\\source C:\\target (null)", calls[3]);
    EXPECT_EQ(1, Run(kFileOpCopy, nullptr));
    EXPECT_EQ(L"CopyItem C:\\source C:\\target (null)", calls[3]);
    EXPECT_EQ(1, Run(kFileOpDelete, nullptr));
}

TEST_F(FileOperationCalls, AnyOtherOperationIsNone) {
    for (unsigned nOp : {0u, 5u, 6u, 0x80000001u, ~0u}) {
        EXPECT_EQ(0, Run(nOp)) << nOp;
        EXPECT_EQ(0, std::count(calls.begin(), calls.end(), L"PerformOperations"));
    }
}

// On a platform without the object

class OlderShell : public testing::Test {
  protected:
    static HRESULT WINAPI NoClass(REFCLSID, IUnknown*, DWORD, REFIID, void** pp) {
        *pp = nullptr;
        return REGDB_E_CLASSNOTREG;
    }
    OlderShell() {
        folder.MakeFile(L"a.txt", "text");
        std::filesystem::create_directories(folder.File(L"to"));
    }
    int Run(unsigned nOp, const wchar_t* pszName, const wchar_t* pszSource = L"a.txt",
            const wchar_t* pszTarget = L"to") const {
        ReplaceImport create(__imp_CoCreateInstance, &NoClass);
        UniPath source(folder.File(pszSource).c_str()), target(folder.File(pszTarget).c_str());
        return CSFile::IFileOp(nullptr, nOp, &source, &target, pszName);
    }
    bool Has(const wchar_t* pszName) const { return IsThere(folder.File(pszName)); }
    TempFolder folder;
};

TEST_F(OlderShell, Moves) {
    EXPECT_EQ(1, Run(kFileOpMove, L"b.txt"));
    EXPECT_EQ("text", folder.ReadFile(L"to\\b.txt"));
    EXPECT_FALSE(Has(L"a.txt"));
    folder.MakeFile(L"a.txt", "again");
    EXPECT_EQ(1, Run(kFileOpMove, nullptr));
    EXPECT_EQ("again", folder.ReadFile(L"to\\a.txt"));
}
TEST_F(OlderShell, Copies) {
    EXPECT_EQ(1, Run(kFileOpCopy, L"b.txt"));
    EXPECT_EQ(1, Run(kFileOpCopy, nullptr));
    EXPECT_EQ("text", folder.ReadFile(L"to\\b.txt"));
    EXPECT_EQ("text", folder.ReadFile(L"to\\a.txt"));
    EXPECT_TRUE(Has(L"a.txt"));
}
TEST_F(OlderShell, CopiesWholeFolders) {
    std::filesystem::create_directories(folder.File(L"sub\\deep"));
    folder.MakeFile(L"sub\\deep\\c.txt", "deep");
    EXPECT_EQ(1, Run(kFileOpCopy, nullptr, L"sub"));
    EXPECT_EQ("deep", folder.ReadFile(L"to\\sub\\deep\\c.txt"));
    EXPECT_EQ(1, Run(kFileOpDelete, nullptr, L"sub"));
    EXPECT_FALSE(Has(L"sub"));
}
TEST_F(OlderShell, Deletes) {
    EXPECT_EQ(1, Run(kFileOpDelete, nullptr));
    EXPECT_FALSE(Has(L"a.txt"));
}
TEST_F(OlderShell, Renames) {
    EXPECT_EQ(1, Run(kFileOpRename, L"b.txt"));
    EXPECT_EQ("text", folder.ReadFile(L"b.txt"));
    EXPECT_FALSE(Has(L"a.txt"));
}
TEST_F(OlderShell, ANewNameIsNoMaskAndNoPath) {
    for (const wchar_t* pszName : {L"*.bak", L"b?.txt", L"to\\b.txt", L"to/b.txt", L"b:c"}) {
        for (unsigned nOp : {kFileOpMove, kFileOpCopy, kFileOpRename}) {
            EXPECT_EQ(0, Run(nOp, pszName)) << nOp;
            EXPECT_LT(CSFile::GetLastHRESULT(), 0) << nOp;
        }
    }
    EXPECT_EQ("text", folder.ReadFile(L"a.txt"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.File(L"to")));
}
TEST_F(OlderShell, WhatIsMissingFails) {
    for (unsigned nOp : {kFileOpMove, kFileOpCopy, kFileOpDelete, kFileOpRename}) {
        EXPECT_EQ(0, Run(nOp, L"b.txt", L"missing.txt")) << nOp;
        EXPECT_LT(CSFile::GetLastHRESULT(), 0) << nOp;
    }
    EXPECT_EQ(0, Run(kFileOpMove, nullptr, L"a.txt", L"no folder"));
    EXPECT_EQ(0, Run(kFileOpCopy, nullptr, L"a.txt", L"no folder"));
    EXPECT_EQ("text", folder.ReadFile(L"a.txt"));
    for (unsigned nOp : {0u, 5u}) EXPECT_EQ(0, Run(nOp, L"b.txt"));
    EXPECT_EQ(0, Run(kFileOpRename, nullptr));
    EXPECT_EQ(0, Run(kFileOpRename, L""));
    EXPECT_EQ("text", folder.ReadFile(L"a.txt"));
}
} // namespace
