#include "e2e/support/test_desktop.h"
#include "support/program_folder.h"

#include <stdexcept>

namespace {
constexpr DWORD kStartMs = 30000; // the first program of an environment waits for its services

constexpr const wchar_t* kModeNames[] = {L"real", L"plain", L"workerw", L"inside"};

std::string Narrow(const std::wstring& str) {
    std::string strOut;
    for (wchar_t ch : str) strOut += ch < 128 ? static_cast<char>(ch) : '?';
    return strOut;
}

HWND ToWindow(const std::wstring& strHex) {
    return reinterpret_cast<HWND>(std::stoull(strHex, nullptr, 16));
}
} // namespace

TestDesktop::TestDesktop(DesktopMode modeWanted, Announce announce) : mode(modeWanted) {
    strMapping = L"TessalyTestDesktop." + std::to_wstring(::GetCurrentProcessId()) + L"." +
                 std::to_wstring(reinterpret_cast<ULONG_PTR>(this));
    hMapping = ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kReplyBytes,
                                    strMapping.c_str());
    if (hMapping) pReply = ::MapViewOfFile(hMapping, FILE_MAP_READ, 0, 0, kReplyBytes);
    if (!pReply) throw std::runtime_error("no memory for the desktop's replies");
    Start(announce);
}

TestDesktop::~TestDesktop() {
    process.Kill();
    if (pReply) ::UnmapViewOfFile(pReply);
    if (hMapping) ::CloseHandle(hMapping);
}

void TestDesktop::Start(Announce announce) {
    std::wstring strArguments = kModeNames[static_cast<int>(mode)];
    if (announce == Announce::No) strArguments += L" /SILENT";
    process.Start(ProgramFolder() + L"test_desktop.exe", strArguments);
    bool bUp = WaitUntil(
        [&] {
            hwndCommands = FindCommandWindow();
            return hwndCommands || !process.IsRunning();
        },
        kStartMs);
    if (!bUp || !hwndCommands) throw std::runtime_error("the test desktop did not come up");
    std::map<std::wstring, std::wstring> state = State();
    hwndProgman = ToWindow(state[L"progman"]);
    hwndView = ToWindow(state[L"view"]);
    hwndList = ToWindow(state[L"list"]);
}

HWND TestDesktop::FindCommandWindow() const {
    HWND hwnd = nullptr;
    while ((hwnd = ::FindWindowExW(HWND_MESSAGE, hwnd, kCommandWindowClass, nullptr))) {
        DWORD dwOwner = 0;
        ::GetWindowThreadProcessId(hwnd, &dwOwner);
        if (dwOwner == process.Id()) return hwnd;
    }
    return nullptr;
}

DWORD TestDesktop::End() {
    Call({L"end"});
    std::optional<DWORD> exitCode = process.WaitForEnd();
    if (!exitCode) throw std::runtime_error("the test desktop did not end");
    process.Kill();
    return *exitCode;
}

void TestDesktop::Crash() {
    // Its end comes before its reply.
    try {
        Call({L"crash"});
    } catch (const std::runtime_error&) {
    }
    if (!process.WaitForEnd()) throw std::runtime_error("the test desktop did not crash");
    process.Kill();
}

void TestDesktop::Kill() { process.Kill(); }

std::vector<Row> TestDesktop::Call(const Row& command, DWORD nMs) {
    std::wstring strText = strMapping + L"\n" + JoinRow(command);
    COPYDATASTRUCT data{kCommandTag, static_cast<DWORD>(strText.size() * sizeof(wchar_t)),
                        strText.data()};
    DWORD_PTR nResult = 0;
    std::string strWhat = "test desktop, " + Narrow(command.at(0)) + ": ";
    ::SetLastError(ERROR_SUCCESS);
    if (!::SendMessageTimeoutW(hwndCommands, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data),
                               SMTO_NORMAL, nMs, &nResult)) {
        throw std::runtime_error(strWhat + "no answer, error " + std::to_string(::GetLastError()));
    }
    if (nResult != kAnswered) {
        throw std::runtime_error(strWhat + "not taken, result " + std::to_string(nResult));
    }
    std::vector<Row> rows = SplitRows(ReadReply());
    if (rows.empty() || rows[0][0] != L"ok") {
        std::wstring strWhy = rows.empty() || rows[0].size() < 2 ? L"refused" : rows[0][1];
        throw std::runtime_error(strWhat + Narrow(strWhy));
    }
    rows.erase(rows.begin());
    return rows;
}

std::wstring TestDesktop::ReadReply() const {
    DWORD cch = 0;
    memcpy(&cch, pReply, sizeof(cch));
    if (cch > (kReplyBytes - sizeof(cch)) / sizeof(wchar_t)) return {};
    const BYTE* pText = static_cast<const BYTE*>(pReply) + sizeof(cch);
    std::wstring str(cch, L'\0');
    memcpy(str.data(), pText, cch * sizeof(wchar_t));
    return str;
}

int TestDesktop::Count() { return std::stoi(Call({L"count"}).at(0).at(0)); }

std::vector<DesktopItem> TestDesktop::Items() {
    std::vector<DesktopItem> items;
    for (const Row& row : Call({L"items"})) {
        items.push_back(
            {std::stoi(row.at(0)), {std::stoi(row.at(1)), std::stoi(row.at(2))}, row.at(3)});
    }
    return items;
}

DesktopItem TestDesktop::ItemNamed(const std::wstring& strName) {
    for (const DesktopItem& item : Items()) {
        if (item.strName == strName) return item;
    }
    throw std::runtime_error("test desktop: no item named " + Narrow(strName));
}

POINT TestDesktop::OnScreen(int nIndex) {
    Row row = Call({L"screen", std::to_wstring(nIndex)}).at(0);
    return {std::stoi(row.at(0)), std::stoi(row.at(1))};
}

void TestDesktop::Move(int nIndex, POINT pt) {
    Call({L"move", std::to_wstring(nIndex), std::to_wstring(pt.x), std::to_wstring(pt.y)});
}

void TestDesktop::MoveNamed(const std::wstring& strName, POINT pt) {
    Call({L"move-name", strName, std::to_wstring(pt.x), std::to_wstring(pt.y)});
}

bool TestDesktop::IsAutoArranged() { return Call({L"auto-arrange"}).at(0).at(0) == L"on"; }

void TestDesktop::SetAutoArrange(bool bOn) { Call({L"auto-arrange", bOn ? L"on" : L"off"}); }

void TestDesktop::Reorder(const std::vector<int>& nOrder) {
    Row command{L"order"};
    for (int n : nOrder) command.push_back(std::to_wstring(n));
    Call(command);
}

void TestDesktop::Add(const std::wstring& strName) { Call({L"add", strName}); }

void TestDesktop::Add(const std::wstring& strName, POINT pt) {
    Call({L"add", strName, std::to_wstring(pt.x), std::to_wstring(pt.y)});
}

void TestDesktop::Fill(int nCount) { Call({L"fill", std::to_wstring(nCount)}); }

void TestDesktop::Remove(int nIndex) { Call({L"remove", std::to_wstring(nIndex)}); }

void TestDesktop::Rename(int nIndex, const std::wstring& strName) {
    Call({L"rename", std::to_wstring(nIndex), strName});
}

void TestDesktop::Clear() { Call({L"clear"}); }

void TestDesktop::CreateDesktopFile(const std::wstring& strName) {
    Call({L"create-file", strName});
}

void TestDesktop::DeleteDesktopFile(const std::wstring& strName) {
    Call({L"delete-file", strName});
}

void TestDesktop::RenameDesktopFile(const std::wstring& strFrom, const std::wstring& strTo) {
    Call({L"rename-file", strFrom, strTo});
}

void TestDesktop::Notify(UINT nCode, bool bForeign) {
    Call({L"notify", std::to_wstring(nCode), bForeign ? L"foreign" : L"list"});
}

void TestDesktop::Hang(DWORD nMs) { Call({L"hang", std::to_wstring(nMs)}); }

std::map<std::wstring, std::wstring> TestDesktop::State() {
    std::map<std::wstring, std::wstring> state;
    for (const Row& row : Call({L"state"})) state[row.at(0)] = row.at(1);
    return state;
}

bool TestDesktop::HasGuest() {
    std::map<std::wstring, std::wstring> state = State();
    return state[L"view.own"] != L"1" || state[L"list.own"] != L"1" ||
           ::GetPropW(hwndView, L"CSWND") || ::GetPropW(hwndList, L"CSWND");
}

bool TestDesktop::IsFullyAttached() {
    std::map<std::wstring, std::wstring> state = State();
    return state[L"view.own"] == L"0" && state[L"list.own"] == L"0" &&
           ::GetPropW(hwndView, L"CSWND") && ::GetPropW(hwndList, L"CSWND");
}

bool TestDesktop::HasLibrary() { return !State()[L"library"].empty(); }
