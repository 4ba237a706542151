#include "e2e/support/displays.h"
#include "support/wait_until.h"

#include <stdexcept>

// The test platform keeps its displays in the registry: an adapter is a value of the key kVideo
// with the path of its own key, below which another tree says which monitor is on it; the monitor's
// key holds its place. A program reads all that again when kVideo has been written to since.

namespace {
constexpr const wchar_t* kVideo = L"HARDWARE\\DEVICEMAP\\VIDEO";
constexpr const wchar_t* kMachine = L"\\Registry\\Machine\\";
constexpr const wchar_t* kProfile = L"SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current\\";
constexpr const wchar_t* kMonitors = L"SYSTEM\\CurrentControlSet\\Enum\\DISPLAY\\Default_Monitor\\";
constexpr const wchar_t* kPlaces = L"\\Properties\\{233a9ef3-afc4-4abd-b564-c32f21f1535b}\\";
constexpr const wchar_t* kOurVideo = L"{7E55A117-0000-4000-8000-00000000000";

/// A key of the machine's.
class MachineKey {
  public:
    MachineKey(const std::wstring& strPath, bool bMake, DWORD dwOptions = 0) {
        LSTATUS nError =
            bMake ? ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, strPath.c_str(), 0, nullptr, dwOptions,
                                      KEY_ALL_ACCESS, nullptr, &hkey, nullptr)
                  : ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, strPath.c_str(), 0, KEY_ALL_ACCESS, &hkey);
        if (nError)
            throw std::runtime_error("the displays' keys are not as expected: " +
                                     std::string(strPath.begin(), strPath.end()));
    }
    ~MachineKey() { ::RegCloseKey(hkey); }
    MachineKey(const MachineKey&) = delete;
    MachineKey& operator=(const MachineKey&) = delete;

    void Set(const wchar_t* pszName, DWORD dwType, const void* p, size_t cb) const {
        if (::RegSetValueExW(hkey, pszName, 0, dwType, static_cast<const BYTE*>(p),
                             static_cast<DWORD>(cb))) {
            throw std::runtime_error("the displays' keys can't be written");
        }
    }
    void Set(const wchar_t* pszName, const std::wstring& str) const {
        Set(pszName, REG_SZ, str.c_str(), (str.size() + 1) * sizeof(wchar_t));
    }
    std::wstring Text(const wchar_t* pszName) const {
        wchar_t sz[400] = L"";
        DWORD cb = sizeof(sz);
        if (::RegGetValueW(hkey, nullptr, pszName, RRF_RT_REG_SZ, nullptr, sz, &cb)) return {};
        return sz;
    }
    DWORD Type() const {
        DWORD dwType = REG_NONE;
        ::RegQueryValueExW(hkey, nullptr, nullptr, &dwType, nullptr, nullptr);
        return dwType;
    }
    HKEY Get() const { return hkey; }

  private:
    HKEY hkey = nullptr;
};

/// The options are those that the copy's key is made with: below a volatile one, only such may be.
void CopyTree(const std::wstring& strFrom, const std::wstring& strTo, DWORD dwOptions = 0) {
    MachineKey from(strFrom, false), to(strTo, true, dwOptions);
    if (::RegCopyTreeW(from.Get(), nullptr, to.Get()))
        throw std::runtime_error("the displays' keys can't be copied");
}

void PlugInOne(int nNumber, const RECT& rc) {
    std::wstring strNumber = std::to_wstring(nNumber), strMonitor = L"0000&000" + strNumber;
    // The monitor: as the first one is, at another place.
    CopyTree(std::wstring(kMonitors) + L"0000&0000", kMonitors + strMonitor);
    for (const wchar_t* pszPlace : {L"0003", L"0004"}) { // all of it, and its work area
        MachineKey place(kMonitors + strMonitor + kPlaces + pszPlace, false);
        place.Set(nullptr, place.Type(), &rc, sizeof(rc));
    }
    // The adapter that it is on, which is not the primary one.
    MachineKey video(kVideo, false);
    std::wstring strFirst = video.Text(L"\\Device\\Video0").substr(wcslen(kMachine));
    std::wstring strOurs =
        L"System\\CurrentControlSet\\Control\\Video\\" + (kOurVideo + strNumber) + L"}\\0000";
    CopyTree(strFirst, strOurs, REG_OPTION_VOLATILE);                       // what it is
    CopyTree(kProfile + strFirst, kProfile + strOurs, REG_OPTION_VOLATILE); // and is set to
    MachineKey profile(kProfile + strOurs, false);
    DWORD dwState = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
    profile.Set(L"StateFlags", REG_DWORD, &dwState, sizeof(dwState));
    profile.Set(L"MonitorID0", L"DISPLAY\\Default_Monitor\\" + strMonitor);
    video.Set((L"\\Device\\Video" + strNumber).c_str(), kMachine + strOurs);
}

void TakeOthersAway() {
    MachineKey video(kVideo, false);
    for (int n = 1; n < 10; ++n) {
        std::wstring strNumber = std::to_wstring(n);
        ::RegDeleteValueW(video.Get(), (L"\\Device\\Video" + strNumber).c_str());
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE,
                         (std::wstring(kMonitors) + L"0000&000" + strNumber).c_str());
        std::wstring strOurs =
            L"System\\CurrentControlSet\\Control\\Video\\" + (kOurVideo + strNumber) + L"}";
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, strOurs.c_str());
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kProfile + strOurs).c_str());
    }
}

/// Everybody looks again.
void Touch() {
    static DWORD nTimes = 0;
    ++nTimes;
    MachineKey(kVideo, false).Set(L"Touched", REG_DWORD, &nTimes, sizeof(nTimes));
}

void TellEverybody() {
    DWORD_PTR nResult = 0;
    ::SendMessageTimeoutW(
        HWND_BROADCAST, WM_DISPLAYCHANGE, 32,
        MAKELPARAM(::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)),
        SMTO_ABORTIFHUNG, kTestDeadlineMs, &nResult);
}
} // namespace

Displays::Displays() : sizeBefore(Size()) {}

Displays::~Displays() {
    try {
        if (::GetSystemMetrics(SM_CMONITORS) > 1) Unplug();
        SIZE size = Size();
        if (size.cx == sizeBefore.cx && size.cy == sizeBefore.cy) return;
        SetSize(sizeBefore);
        WaitForTaskbar(); // what comes next places itself beside it
    } catch (const std::exception& failure) {
        fprintf(stderr, "displays: %s\n", failure.what());
    }
}

SIZE Displays::Size() const {
    return {::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
}

void Displays::SetSize(SIZE size) {
    if (::GetSystemMetrics(SM_CMONITORS) >
        1) { // the platform refuses to change what it did not make
        TakeOthersAway();
        Touch();
    }
    DEVMODEW mode{};
    mode.dmSize = sizeof(mode);
    mode.dmFields = DM_PELSWIDTH | DM_PELSHEIGHT;
    mode.dmPelsWidth = static_cast<DWORD>(size.cx);
    mode.dmPelsHeight = static_cast<DWORD>(size.cy);
    LONG nResult = ::ChangeDisplaySettingsExW(nullptr, &mode, nullptr, 0, nullptr);
    if (nResult != DISP_CHANGE_SUCCESSFUL)
        throw std::runtime_error("the display's size is refused, " + std::to_string(nResult));
    bool bDone = WaitUntil([&] { return Size().cx == size.cx && Size().cy == size.cy; });
    if (!bDone) throw std::runtime_error("the display did not take its size");
}

void Displays::PlugIn(const std::vector<RECT>& others) {
    ::GetSystemMetrics(SM_CMONITORS); // a program's first look would take them away again
    TakeOthersAway();
    int nNumber = 0;
    for (const RECT& rc : others) PlugInOne(++nNumber, rc);
    Touch();
    if (::GetSystemMetrics(SM_CMONITORS) != nNumber + 1)
        throw std::runtime_error("the displays were not taken up");
    TellEverybody();
}

void Displays::WaitForTaskbar() const {
    WaitUntil([&] {
        RECT rc{};
        ::GetWindowRect(::FindWindowW(L"Shell_TrayWnd", nullptr), &rc);
        SIZE size = Size();
        return rc.right == size.cx && rc.bottom == size.cy && rc.top < rc.bottom;
    });
}
