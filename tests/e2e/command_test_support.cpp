#include "e2e/command_test_support.h"

#include <winternl.h>
#include <cstdio>
#include <stdexcept>

namespace {
SYSTEMTIME DateOf(const std::wstring& strName) {
    uint64_t nTime = TimeOfName(strName);
    FILETIME time{static_cast<DWORD>(nTime), static_cast<DWORD>(nTime >> 32)};
    SYSTEMTIME st{};
    ::FileTimeToSystemTime(&time, &st);
    return st;
}

std::string DateText(const SYSTEMTIME& st) {
    char sz[64];
    snprintf(sz, sizeof(sz), "%04u-%02u-%02uT%02u:%02u:%02u", st.wYear, st.wMonth, st.wDay,
             st.wHour, st.wMinute, st.wSecond);
    return sz;
}

template <class Fn>
Fn* NativeFunction(const char* pszName) {
    return reinterpret_cast<Fn*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), pszName)));
}
} // namespace

CommandEnd CommandTest::Expect(CommandCode code, const std::wstring& strArguments,
                               const std::wstring& strCurrent) {
    CommandEnd end = RunCommand(strArguments, Redirected::Both, strCurrent);
    EXPECT_EQ(DWORD{code}, end.dwCode) << ToUtf8(strArguments) << "\n" << end.All();
    EXPECT_EQ(L"", end.strBox) << ToUtf8(strArguments);
    EXPECT_NE("", end.All()) << ToUtf8(strArguments);
    switch (code) {
    case kCodeDone: EXPECT_EQ("", end.strErr) << ToUtf8(strArguments); break;
    case kCodeNoSuchSnapshot:
    case kCodeDamaged:
    case kCodeNoShell:
    case kCodeNoFile:
    case kCodeBusy:
    case kCodeAutoArranged: EXPECT_EQ("", end.strOut) << ToUtf8(strArguments); break;
    default: break; // something may have been done besides
    }
    return end;
}

std::wstring CommandTest::Plant(uint64_t nSecondsAgo, int nIcons, int nVariant) {
    return Plant(nSecondsAgo, MadeIcons(nIcons, nVariant));
}

std::wstring CommandTest::Plant(uint64_t nSecondsAgo, const std::vector<StoredIcon>& icons) {
    std::wstring strName = NameBeforeNow(nSecondsAgo);
    store.Plant(strName, MakeSnapshotBytes(icons));
    return strName;
}

std::wstring CommandTest::PlantDamaged(uint64_t nSecondsAgo, int nIcons) {
    std::wstring strName = NameBeforeNow(nSecondsAgo);
    std::vector<BYTE> bytes = MakeSnapshotBytes(MadeIcons(nIcons));
    bytes.back() ^= 1;
    store.Plant(strName, bytes);
    return strName;
}

void CommandTest::Mark(const std::wstring& strName) {
    auto* p = reinterpret_cast<const BYTE*>(strName.c_str());
    store.Plant(L"", std::vector<BYTE>(p, p + (strName.size() + 1) * sizeof(wchar_t)), REG_SZ);
}

std::set<std::wstring> CommandTest::Names() {
    std::set<std::wstring> names;
    for (const StoredSnapshot& value : store.Values()) names.insert(value.strName);
    return names;
}

void CommandTest::Begin(bool bWithMonitor, int nIcons) {
    StartPlain(nIcons);
    if (!bWithMonitor) return;
    StartMonitor();
    store.Clear();
}

testing::AssertionResult CommandTest::LeftNothing() {
    if (desktop && !desktop->IsRunning()) return testing::AssertionFailure() << "the shell ended";
    if (desktop && desktop->HasGuest())
        return testing::AssertionFailure() << "the shell has a guest";
    if (::FindWindowW(kMonitorClass, nullptr))
        return testing::AssertionFailure() << "a monitor has its window";
    ProductLibrary library;
    if (library.Words().hhook) return testing::AssertionFailure() << "a hook is left";
    HANDLE hMark = ::OpenEventW(SYNCHRONIZE, FALSE, L"Local\\Orvanta_App_Tessaly");
    if (!hMark) return testing::AssertionSuccess();
    ::CloseHandle(hMark);
    return testing::AssertionFailure() << "the mark is left";
}

void CommandBoth::TearDown() {
    if (desktop && GetParam()) {
        EXPECT_TRUE(StillCaptures());
    } else if (desktop) {
        EXPECT_TRUE(LeftNothing());
    }
    CommandTest::TearDown();
}

std::string WithOrWithout(const testing::TestParamInfo<bool>& row) {
    return row.param ? "Running" : "Absent";
}

std::vector<StoredIcon> MadeIcons(int nIcons, int nVariant) {
    constexpr uint64_t kStep = 0x9E3779B97F4A7C15; // the keys differ in all their digits
    std::vector<StoredIcon> icons;
    for (int n = 0; n < nIcons; ++n) {
        auto nIndex = static_cast<uint32_t>(n);
        icons.push_back({nIndex, 10 * n + nVariant, 20 * n, 9, kStep * (nIndex + 1)});
    }
    return icons;
}

std::vector<std::string> Lines(const std::string& strText) {
    std::vector<std::string> lines;
    size_t nAt = 0;
    for (size_t nEnd; (nEnd = strText.find("\r\n", nAt)) != std::string::npos; nAt = nEnd + 2)
        lines.push_back(strText.substr(nAt, nEnd - nAt));
    EXPECT_EQ(strText.size(), nAt) << "the last line has no end: " << strText.substr(nAt);
    for (const std::string& str : lines)
        EXPECT_EQ(std::string::npos, str.find_first_of("\r\n")) << "half an end of line: " << str;
    return lines;
}

std::wstring LocalText(const std::wstring& strName) {
    SYSTEMTIME utc = DateOf(strName), local{};
    ::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local);
    std::string str = DateText(local);
    return std::wstring(str.begin(), str.end());
}

std::string UtcText(const std::wstring& strName) { return DateText(DateOf(strName)) + "Z"; }

// A key that is a link to nowhere is listed, and can be neither opened nor made by its name.
RefusedKey::RefusedKey() {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, SnapshotReader::kPath);
    HKEY hkey = nullptr;
    constexpr wchar_t kNowhere[] = L"\\Registry\\User\\NoSuchUser\\Nowhere";
    if (::RegCreateKeyExW(HKEY_CURRENT_USER, SnapshotReader::kPath, 0, nullptr,
                          REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS | KEY_CREATE_LINK, nullptr, &hkey,
                          nullptr)) {
        throw std::runtime_error("no link could be made in the registry");
    }
    ::RegSetValueExW(hkey, L"SymbolicLinkValue", 0, REG_LINK,
                     reinterpret_cast<const BYTE*>(kNowhere), sizeof(kNowhere) - sizeof(wchar_t));
    ::RegCloseKey(hkey);
}

RefusedKey::~RefusedKey() {
    using DeleteKey = LONG WINAPI(HANDLE);
    HKEY hkey = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, SnapshotReader::kPath, REG_OPTION_OPEN_LINK,
                        KEY_ALL_ACCESS, &hkey)) {
        return;
    }
    NativeFunction<DeleteKey>("NtDeleteKey")(hkey);
    ::RegCloseKey(hkey);
}

SuspendedProcess::SuspendedProcess(DWORD dwProcess)
    : hProcess(::OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, dwProcess)) {
    NativeFunction<LONG WINAPI(HANDLE)>("NtSuspendProcess")(hProcess);
}

SuspendedProcess::~SuspendedProcess() {
    NativeFunction<LONG WINAPI(HANDLE)>("NtResumeProcess")(hProcess);
    ::CloseHandle(hProcess);
}

std::set<std::wstring> SessionMutexes() {
    struct Entry {
        UNICODE_STRING name, type;
    };
    using Open = LONG WINAPI(HANDLE*, ACCESS_MASK, OBJECT_ATTRIBUTES*);
    using Query = LONG WINAPI(HANDLE, void*, ULONG, BOOLEAN, BOOLEAN, ULONG*, ULONG*);
    constexpr ACCESS_MASK kDirectoryQuery = 1; // DIRECTORY_QUERY, of the driver kit
    DWORD dwSession = 0;
    ::ProcessIdToSessionId(::GetCurrentProcessId(), &dwSession);
    std::wstring strPath = L"\\Sessions\\" + std::to_wstring(dwSession) + L"\\BaseNamedObjects";
    UNICODE_STRING path{static_cast<USHORT>(strPath.size() * sizeof(wchar_t)),
                        static_cast<USHORT>(strPath.size() * sizeof(wchar_t)), strPath.data()};
    OBJECT_ATTRIBUTES attributes{};
    attributes.Length = sizeof(attributes);
    attributes.ObjectName = &path;
    HANDLE h = nullptr;
    if (NativeFunction<Open>("NtOpenDirectoryObject")(&h, kDirectoryQuery, &attributes) < 0)
        throw std::runtime_error("the session's objects cannot be listed");
    std::set<std::wstring> names;
    std::vector<BYTE> buffer(4096);
    ULONG nContext = 0, cb = 0;
    while (NativeFunction<Query>("NtQueryDirectoryObject")(h, buffer.data(),
                                                           static_cast<ULONG>(buffer.size()), TRUE,
                                                           FALSE, &nContext, &cb) == 0) {
        auto* pEntry = reinterpret_cast<const Entry*>(buffer.data());
        std::wstring strType(pEntry->type.Buffer, pEntry->type.Length / sizeof(wchar_t));
        if (strType == L"Mutant")
            names.insert({pEntry->name.Buffer, pEntry->name.Length / sizeof(wchar_t)});
    }
    ::CloseHandle(h);
    return names;
}

std::string SectionText(const std::wstring& strName, const std::vector<StoredIcon>& icons) {
    std::string str = "[" + ToUtf8(strName) + "]\r\nTime=" + UtcText(strName) +
                      "\r\nIcons=" + std::to_string(icons.size()) + "\r\nDigest=";
    char sz[128];
    for (BYTE b : PlatformMd5(icons.data(), icons.size() * sizeof(StoredIcon))) {
        snprintf(sz, sizeof(sz), "%02x", b);
        str += sz;
    }
    str += "\r\n";
    for (const StoredIcon& icon : icons) {
        snprintf(sz, sizeof(sz), "Icon=%u %d %d %u %016llX\r\n", icon.nIndex, icon.x, icon.y,
                 icon.nNameLength, static_cast<unsigned long long>(icon.nNameKey));
        str += sz;
    }
    return str;
}

std::string FileText(const std::vector<std::string>& sections) {
    std::string str = "; Icon layouts of Tessaly. Times are UTC.\r\n[Tessaly]\r\nFormat=1\r\n";
    for (const std::string& strSection : sections) str += "\r\n" + strSection;
    return str;
}

std::string Meaning(std::string strText) {
    if (strText.starts_with("\xEF\xBB\xBF")) strText.erase(0, 3);
    std::string strMeaning, strLine;
    for (char ch : strText + "\n") {
        if (ch == '\r') continue;
        if (ch != '\n') {
            strLine += ch;
            continue;
        }
        if (!strLine.empty() && strLine[0] != ';') strMeaning += strLine + "\n";
        strLine.clear();
    }
    return strMeaning;
}

std::string Replaced(std::string strText, const std::string& strOld, const std::string& strNew) {
    size_t nAt = strText.find(strOld);
    if (nAt == std::string::npos) throw std::runtime_error("no such text: " + strOld);
    return strText.replace(nAt, strOld.size(), strNew);
}
