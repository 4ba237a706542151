#include "runtime/threads/co_init.h"
#include "shell/folders/shell_folder.h"
#include "shell/folders/shell_objects.h"
#include "shell/namespace/pidl.h"
#include "support/replace_import.h"
#include "support/start_process.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>

extern "C" FARPROC __imp_SHGetDataFromIDListW;

namespace {
constexpr const wchar_t* kViewClass = L"SHELLDLL_DefView";

/// That class with room for as many bytes as the test says, of this program alone.
class ViewClass {
  public:
    explicit ViewClass(int cbExtra, const wchar_t* pszNewName = kViewClass) : pszName(pszNewName) {
        WNDCLASSW wc{};
        wc.lpfnWndProc = ::DefWindowProcW;
        wc.cbWndExtra = cbExtra;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.lpszClassName = pszName;
        ::RegisterClassW(&wc);
    }
    ~ViewClass() { ::UnregisterClassW(pszName, ::GetModuleHandleW(nullptr)); }

  private:
    const wchar_t* pszName;
};

/// A view that counts its references and does nothing else.
struct FakeView : IShellView {
    ULONG nReferences = 1;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** pp) override {
        *pp = this;
        ++nReferences;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++nReferences; }
    ULONG STDMETHODCALLTYPE Release() override { return --nReferences; }
    HRESULT STDMETHODCALLTYPE GetWindow(HWND*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UIActivate(UINT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Refresh() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateViewWindow(IShellView*, LPCFOLDERSETTINGS, IShellBrowser*,
                                               RECT*, HWND*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DestroyViewWindow() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCurrentInfo(LPFOLDERSETTINGS) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE AddPropertySheetPages(DWORD, LPFNSVADDPROPSHEETPAGE,
                                                    LPARAM) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE SaveViewState() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SelectItem(LPCITEMIDLIST, SVSIF) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetItemObject(UINT, REFIID, void**) override { return E_NOTIMPL; }
};

IShellView* const kGarbage = reinterpret_cast<IShellView*>(0x1234);

TEST(GetIShellView, GivesAReferenceToTheWindowsView) {
    ViewClass cls(sizeof(void*));
    TestWindow window(kViewClass);
    FakeView view;
    ::SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(static_cast<IShellView*>(&view)));
    IShellView* p = kGarbage;
    EXPECT_EQ(1, GetIShellView(window, &p));
    EXPECT_EQ(&view, p);
    EXPECT_EQ(2u, view.nReferences);
}

TEST(GetIShellView, WindowWithoutAViewYetGivesNothing) {
    ViewClass cls(sizeof(void*));
    TestWindow window(kViewClass);
    IShellView* p = kGarbage;
    EXPECT_EQ(0, GetIShellView(window, &p));
    EXPECT_EQ(nullptr, p);
}

TEST(GetIShellView, WindowWithoutExtraMemoryGivesNothing) {
    ViewClass cls(0);
    TestWindow window(kViewClass);
    IShellView* p = kGarbage;
    EXPECT_EQ(0, GetIShellView(window, &p));
    EXPECT_EQ(nullptr, p);
}

TEST(GetIShellView, WindowOfAnotherClassGivesNothing) {
    for (const wchar_t* psz : {L"SHELLDLL_DefView2", L"SHELLDLL_DefVie", L"SHELLDLL"}) {
        ViewClass cls(sizeof(void*), psz);
        TestWindow window(psz);
        FakeView view;
        ::SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(static_cast<IShellView*>(&view)));
        IShellView* p = kGarbage;
        EXPECT_EQ(0, GetIShellView(window, &p)) << testing::PrintToString(psz);
        EXPECT_EQ(nullptr, p);
        EXPECT_EQ(1u, view.nReferences);
    }
}

TEST(GetIShellView, NoWindowGivesNothing) {
    IShellView* p = kGarbage;
    EXPECT_EQ(0, GetIShellView(nullptr, &p));
    EXPECT_EQ(nullptr, p);
    ViewClass cls(sizeof(void*));
    TestWindow window(kViewClass);
    HWND hwnd = window;
    window.Destroy();
    p = kGarbage;
    EXPECT_EQ(0, GetIShellView(hwnd, &p));
    EXPECT_EQ(nullptr, p);
    EXPECT_EQ(0, GetIShellView(::GetDesktopWindow(), &p));
}

/// A process with a window of the view's class, the memory of which holds what only that process
/// could follow (view_probe.cpp).
class ViewProcess {
  public:
    ViewProcess() {
        wchar_t szPath[MAX_PATH];
        ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
        std::wstring strTitle = L"view probe " + std::to_wstring(::GetCurrentProcessId());
        std::wstring strLine =
            L"\"" + std::filesystem::path(szPath).replace_filename(L"view_probe.exe").wstring() +
            L"\" \"" + strTitle + L"\"";
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        EXPECT_TRUE(StartProcessSurely(nullptr, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                       nullptr, &si, &pi));
        EXPECT_TRUE(WaitUntil([&] {
            hwnd = ::FindWindowW(kViewClass, strTitle.c_str());
            return hwnd && ::GetPropW(hwnd, L"Ready");
        }));
    }
    ~ViewProcess() {
        ::PostMessageW(hwnd, WM_CLOSE, 0, 0);
        if (::WaitForSingleObject(pi.hProcess, kTestDeadlineMs) != WAIT_OBJECT_0)
            ::TerminateProcess(pi.hProcess, 1);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    HWND hwnd = nullptr;

  private:
    PROCESS_INFORMATION pi{};
};

TEST(GetIShellView, WindowOfAnotherProcessIsNotFollowed) {
    ViewProcess other;
    ASSERT_NE(nullptr, other.hwnd);
    for (int n = 0; n < 3; ++n) {
        IShellView* p = kGarbage;
        EXPECT_EQ(0, GetIShellView(other.hwnd, &p));
        EXPECT_EQ(nullptr, p);
    }
}

TEST(GetIShellView, RealViewGivesItsOwn) {
    CoInit com;
    TempFolder temp;
    PIDL list;
    iShellFolder folder(temp.Get().c_str(), list);
    TestWindow window;
    IShellView* pView = nullptr;
    ASSERT_EQ(1, folder.CreateShellViewObject(window, &pView));

    /// The little that a view asks of the window it is in.
    struct Browser : IShellBrowser {
        HWND hwndOwn = nullptr;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** pp) override {
            *pp = nullptr;
            if (iid != IID_IUnknown && iid != IID_IOleWindow && iid != IID_IShellBrowser)
                return E_NOINTERFACE;
            *pp = this;
            return S_OK;
        }
        ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
        HRESULT STDMETHODCALLTYPE GetWindow(HWND* p) override {
            *p = hwndOwn;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE InsertMenusSB(HMENU, LPOLEMENUGROUPWIDTHS) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE SetMenuSB(HMENU, HOLEMENU, HWND) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE RemoveMenusSB(HMENU) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SetStatusTextSB(LPCWSTR) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE EnableModelessSB(BOOL) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE TranslateAcceleratorSB(MSG*, WORD) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE BrowseObject(LPCITEMIDLIST, UINT) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetViewStateStream(DWORD, IStream**) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetControlWindow(UINT, HWND*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SendControlMsg(UINT, UINT, WPARAM, LPARAM, LRESULT*) override {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE QueryActiveShellView(IShellView**) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE OnViewWindowActive(IShellView*) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SetToolbarItems(LPTBBUTTONSB, UINT, UINT) override {
            return E_NOTIMPL;
        }
    } browser;
    browser.hwndOwn = window;
    FOLDERSETTINGS settings{FVM_ICON, 0};
    RECT rc{0, 0, 100, 100};
    HWND hwndView = nullptr;
    ASSERT_EQ(S_OK, pView->CreateViewWindow(nullptr, &settings, &browser, &rc, &hwndView));
    IShellView* pFound = nullptr;
    int bFound = GetIShellView(hwndView, &pFound);
    IShellView* pExpected = pView;
    if (bFound) pFound->Release();
    pView->DestroyViewWindow();
    pView->Release();
    if (!bFound) GTEST_SKIP() << "the platform's view keeps its object elsewhere";
    EXPECT_EQ(pExpected, pFound);
}

/// The question what a list holds, answered by the test.
struct DataQuestion {
    static HRESULT WINAPI Answer(IShellFolder* pFolder, LPCITEMIDLIST pidl, int nNewFormat,
                                 void* pData, int cbData) {
        bFolder = pFolder != nullptr;
        cItems = PIDL::GetCount(pidl);
        nFormat = nNewFormat;
        cb = cbData;
        if (FAILED(hr)) return hr;
        static_cast<SHDESCRIPTIONID*>(pData)->dwDescriptionId = SHDID_FS_FILE;
        return hr;
    }
    static inline int bFolder, nFormat, cb;
    static inline unsigned cItems;
    static inline HRESULT hr;
    ReplaceImport replaced{__imp_SHGetDataFromIDListW, &Answer};
};

TEST(GetFolderDescriptionId, AsksTheParentOfTheLastItem) {
    CoInit com;
    TempFolder temp;
    ITEMIDLIST* pidl = GetPidlOf(temp.Get().c_str());
    DataQuestion question;
    SHDESCRIPTIONID id{};
    question.hr = S_OK;
    EXPECT_EQ(1, GetFolderDescriptionId(&id, pidl));
    EXPECT_EQ(static_cast<DWORD>(SHDID_FS_FILE), id.dwDescriptionId);
    EXPECT_EQ(1, question.bFolder);
    EXPECT_EQ(1u, question.cItems);
    EXPECT_EQ(3, question.nFormat);
    EXPECT_EQ(20, question.cb);
    for (HRESULT hr : {S_FALSE, E_INVALIDARG}) {
        question.hr = hr;
        EXPECT_EQ(hr >= 0, GetFolderDescriptionId(&id, pidl));
    }
    PIDL::Free(pidl);
    question.nFormat = 0;
    EXPECT_EQ(0, GetFolderDescriptionId(&id, nullptr));
    EXPECT_EQ(0, question.nFormat);
}

TEST(GetFolderDescriptionId, OfThePlatform) {
    CoInit com;
    PIDL drives;
    ASSERT_EQ(1, drives.Attach(CSIDL_DRIVES));
    SHDESCRIPTIONID id{};
    if (!GetFolderDescriptionId(&id, drives)) GTEST_SKIP() << "the platform does not tell";
    EXPECT_NE(0u, id.dwDescriptionId);
}
} // namespace
