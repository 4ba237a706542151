#include "e2e/engine_test_support.h"

#include <commctrl.h>
#include <cstring>
#include <stdexcept>

namespace {
constexpr DWORD kAnswerMs = 40000; // for a process that may be busy with a thousand icons
constexpr size_t kCapturedChars = 259;

/// The platform takes its time for each digest, and tests ask for the same names again and again.
uint64_t RememberedKey(const std::wstring& strName) {
    static std::map<std::wstring, uint64_t> keys;
    auto [it, bNew] = keys.try_emplace(strName, 0);
    if (bNew) it->second = KeyOfName(strName);
    return it->second;
}
} // namespace

ProductLibrary::ProductLibrary() {
    hmod = ::LoadLibraryW((ProductFolder() + L"\\TSDLL64.dll").c_str());
    if (!hmod) throw std::runtime_error("the library could not be mapped");
    auto* pBase = reinterpret_cast<BYTE*>(hmod);
    auto* pHeaders = reinterpret_cast<IMAGE_NT_HEADERS*>(
        pBase + reinterpret_cast<IMAGE_DOS_HEADER*>(pBase)->e_lfanew);
    IMAGE_SECTION_HEADER* pSection = IMAGE_FIRST_SECTION(pHeaders);
    for (int n = 0; n < pHeaders->FileHeader.NumberOfSections; ++n, ++pSection) {
        if (!strncmp(reinterpret_cast<char*>(pSection->Name), ".SDATA", sizeof(pSection->Name))) {
            pWords = reinterpret_cast<SharedWords*>(pBase + pSection->VirtualAddress);
        }
    }
    if (!pWords) throw std::runtime_error("the library shares nothing");
}

void ProductLibrary::Restore(const std::wstring& strName) const {
    using Function = void(unsigned long long);
    FARPROC pfn = ::GetProcAddress(hmod, "_Z15RestoreSnapshoty");
    if (!pfn) throw std::runtime_error("the library restores nothing");
    reinterpret_cast<Function*>(reinterpret_cast<void*>(pfn))(TimeOfName(strName));
}

void EngineTest::TearDown() {
    monitor.Kill();
    desktop.reset();
    store.Clear();
}

void EngineTest::StartPlain(int nIcons) {
    StartDesktop(DesktopMode::Plain);
    desktop->Fill(nIcons);
}

void EngineTest::StartMonitor() {
    monitor.StartOn(*desktop);
    ASSERT_TRUE(Capture());
}

void EngineTest::FlushShell() {
    // Posted messages are taken in their order, and the colour shows when this one was. What is
    // sent overtakes what was posted.
    static COLORREF cr = 1;
    ++cr;
    ::PostMessageW(desktop->List(), LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(cr));
    bool bDone = WaitUntil(
        [&] {
            DWORD_PTR nNow = 0;
            ::SendMessageTimeoutW(desktop->List(), LVM_GETTEXTCOLOR, 0, 0, SMTO_NORMAL, kAnswerMs,
                                  &nNow);
            return nNow == cr;
        },
        kAnswerMs);
    if (!bDone) throw std::runtime_error("the shell does not get through its messages");
}

bool EngineTest::Capture() {
    // The session's unlocking: the one event that leads to a capture at once.
    DWORD_PTR nResult = 0;
    if (!::SendMessageTimeoutW(monitor.Window(), WM_WTSSESSION_CHANGE, WTS_SESSION_UNLOCK, 0,
                               SMTO_NORMAL, kAnswerMs, &nResult)) {
        return false;
    }
    FlushShell();
    return true;
}

void EngineTest::MoveSomething() {
    ++nMoves;
    desktop->Move(0, {300 + nMoves, 200 + 3 * nMoves});
}

testing::AssertionResult EngineTest::StillCaptures() {
    if (!desktop->IsRunning()) return testing::AssertionFailure() << "the shell has ended";
    if (!monitor.IsRunning()) return testing::AssertionFailure() << "the monitor has ended";
    std::vector<StoredSnapshot> before = store.Values();
    MoveSomething();
    if (!Capture()) return testing::AssertionFailure() << "the monitor does not answer";
    std::vector<StoredIcon> expected = ExpectedIcons();
    for (const StoredSnapshot& value : store.Values()) {
        bool bOld = false;
        for (const StoredSnapshot& old : before) bOld = bOld || old.strName == value.strName;
        if (!bOld && value.DigestHolds() && value.Icons() == expected)
            return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "the changed desktop was not stored";
}

std::vector<StoredIcon> EngineTest::ExpectedIcons() {
    std::vector<StoredIcon> icons;
    for (const DesktopItem& item : desktop->Items()) {
        icons.push_back(Record(static_cast<unsigned>(item.nIndex), item.pt, item.strName));
    }
    return icons;
}

std::map<std::wstring, POINT> EngineTest::Places() {
    std::map<std::wstring, POINT> places;
    for (const DesktopItem& item : desktop->Items()) places[item.strName] = item.pt;
    return places;
}

std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> AllValues(const SnapshotReader& store) {
    std::map<std::wstring, std::pair<DWORD, std::vector<BYTE>>> values;
    for (const StoredSnapshot& value : store.Values()) {
        values[value.strName] = {value.dwType, value.bytes};
    }
    if (auto mark = store.Named(L"")) values[L""] = {mark->dwType, mark->bytes};
    return values;
}

std::wstring AsCaptured(const std::wstring& strName) { return strName.substr(0, kCapturedChars); }

StoredIcon Record(unsigned nIndex, POINT pt, const std::wstring& strName) {
    std::wstring str = AsCaptured(strName);
    return {nIndex, pt.x, pt.y, static_cast<uint32_t>(str.size()), RememberedKey(str)};
}

std::vector<StoredIcon> SomeIcons(int nIcons, int nVariant) {
    std::vector<StoredIcon> icons;
    for (int n = 0; n < nIcons; ++n) {
        icons.push_back(Record(static_cast<unsigned>(n), {10 * n + nVariant, 20 * n},
                               L"planted " + std::to_wstring(n)));
    }
    return icons;
}

uint64_t Now() {
    FILETIME time{};
    ::GetSystemTimeAsFileTime(&time);
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::wstring NameBeforeNow(uint64_t nSeconds) {
    // Counted from one moment of the program's: names a second apart are of different seconds.
    static const uint64_t nNow = Now();
    wchar_t sz[17];
    swprintf(sz, 17, L"%016llX", static_cast<unsigned long long>(nNow - nSeconds * 10'000'000));
    return sz;
}

uint64_t TimeOfName(const std::wstring& strName) { return std::stoull(strName, nullptr, 16); }

std::string ModeName(const testing::TestParamInfo<DesktopMode>& row) {
    constexpr const char* kNames[] = {"Real", "Plain", "WorkerW", "WorkerWInside"};
    return kNames[static_cast<int>(row.param)];
}
