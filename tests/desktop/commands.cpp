#include "desktop/commands.h"
#include "desktop/dragging.h"

#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>
#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace {
DWORD nHangMs;                   // set by `hang`: for that long, once the reply is out
constexpr UINT kMsgEnd = WM_APP; // an orderly end
constexpr int kCrashExitCode = 3;
constexpr int kRowHeight = 75, kColumnWidth = 75; // of what `fill` lays out

struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

using Reply = std::vector<Row>;

std::wstring Number(long long n) { return std::to_wstring(n); }

std::wstring Hex(const void* p) {
    wchar_t sz[20];
    swprintf(sz, 20, L"%llX", reinterpret_cast<unsigned long long>(p));
    return sz;
}

/// One command being carried out.
class Command {
  public:
    Command(Desktop& desktopServed, Row rowGiven)
        : desktop(desktopServed), row(std::move(rowGiven)), hwndList(desktopServed.view->List()) {}
    Reply Run(HWND hwndCommands);

  private:
    const std::wstring& Text(size_t n) const {
        if (n >= row.size()) throw Failure("an argument is missing");
        return row[n];
    }
    int Int(size_t n) const { return std::stoi(Text(n)); }
    int Item(size_t n) const {
        int nItem = Int(n);
        if (nItem < 0 || nItem >= Count()) throw Failure("there is no such item");
        return nItem;
    }
    int Count() const { return ListView_GetItemCount(hwndList); }
    void NeedPlain() const {
        if (desktop.strMode == L"real") throw Failure("only a plain desktop can do that");
    }
    std::wstring NameOf(int nItem) const;
    int FindByName(const std::wstring& strName) const;
    void Insert(const std::wstring& strName, int nAt);
    void SetText(int nItem, const std::wstring& strName);
    void MoveTo(int nItem, int x, int y);

    Reply State() const;
    Reply Items() const;
    Reply Screen() const;
    void Add();
    void Fill();
    void Order();
    Reply AutoArrange();
    void Notify();
    std::wstring DesktopPath(size_t n) const;
    void CreateDesktopFile();
    void DeleteDesktopFile();
    void RenameDesktopFile();

    Desktop& desktop;
    Row row;
    HWND hwndList;
};

std::wstring Command::NameOf(int nItem) const {
    wchar_t sz[1024] = L"";
    ListView_GetItemText(hwndList, nItem, 0, sz, 1024);
    return sz;
}

int Command::FindByName(const std::wstring& strName) const {
    for (int n = 0; n < Count(); ++n) {
        if (NameOf(n) == strName) return n;
    }
    throw Failure("there is no item of that name");
}

void Command::Insert(const std::wstring& strName, int nAt) {
    static LPARAM nNextId = 1; // what `order` knows an item by
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
    item.iItem = nAt;
    item.pszText = const_cast<wchar_t*>(strName.c_str());
    item.lParam = nNextId++;
    if (ListView_InsertItem(hwndList, &item) != nAt) throw Failure("the item was not inserted");
}

void Command::SetText(int nItem, const std::wstring& strName) {
    ListView_SetItemText(hwndList, nItem, 0, const_cast<wchar_t*>(strName.c_str()));
}

void Command::MoveTo(int nItem, int x, int y) {
    ListView_SetItemPosition32(hwndList, nItem, x, y);
    POINT pt{};
    ListView_GetItemPosition(hwndList, nItem, &pt);
    if (pt.x != x || pt.y != y) throw Failure("the item went somewhere else");
}

BOOL CALLBACK CollectProp(HWND, LPWSTR pszName, HANDLE, ULONG_PTR nOut) {
    std::wstring& strOut = *reinterpret_cast<std::wstring*>(nOut);
    if (!strOut.empty()) strOut += L' ';
    strOut +=
        IS_INTRESOURCE(pszName) ? L"#" + Number(reinterpret_cast<ULONG_PTR>(pszName)) : pszName;
    return TRUE;
}

std::wstring PropsOf(HWND hwnd) {
    std::wstring strOut;
    ::EnumPropsExW(hwnd, CollectProp, reinterpret_cast<LPARAM>(&strOut));
    return strOut;
}

/// The file of the module that the window's procedure lies in, without its folder.
std::wstring ProcedureModule(HWND hwnd) {
    void* p = reinterpret_cast<void*>(::GetWindowLongPtrW(hwnd, GWLP_WNDPROC));
    HMODULE hmod = nullptr;
    DWORD dwFlags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!::GetModuleHandleExW(dwFlags, static_cast<wchar_t*>(p), &hmod)) return L"?";
    wchar_t sz[MAX_PATH] = L"";
    ::GetModuleFileNameW(hmod, sz, MAX_PATH);
    const wchar_t* psz = wcsrchr(sz, L'\\');
    return psz ? psz + 1 : sz;
}

Reply Command::State() const {
    Reply reply;
    HWND hwndView = desktop.view->View();
    wchar_t szLibrary[MAX_PATH] = L"";
    HMODULE hmod = ::GetModuleHandleW(L"TSDLL64.dll");
    if (hmod) ::GetModuleFileNameW(hmod, szLibrary, MAX_PATH);
    reply.push_back({L"mode", desktop.strMode});
    reply.push_back({L"progman", Hex(desktop.hwndProgman)});
    reply.push_back({L"host", Hex(desktop.hwndHost)});
    reply.push_back({L"view", Hex(hwndView)});
    reply.push_back({L"list", Hex(hwndList)});
    reply.push_back({L"view.own", HasOwnProcedure(hwndView) ? L"1" : L"0"});
    reply.push_back({L"list.own", HasOwnProcedure(hwndList) ? L"1" : L"0"});
    reply.push_back({L"view.module", ProcedureModule(hwndView)});
    reply.push_back({L"list.module", ProcedureModule(hwndList)});
    reply.push_back({L"view.props", PropsOf(hwndView)});
    reply.push_back({L"list.props", PropsOf(hwndList)});
    reply.push_back({L"library", szLibrary});
    return reply;
}

Reply Command::Items() const {
    Reply reply;
    for (int n = 0, nCount = Count(); n < nCount; ++n) {
        POINT pt{};
        ListView_GetItemPosition(hwndList, n, &pt);
        reply.push_back({Number(n), Number(pt.x), Number(pt.y), NameOf(n)});
    }
    return reply;
}

/// Where on the screen the mouse takes hold of the item: its icon's middle.
Reply Command::Screen() const {
    RECT rc{};
    ListView_GetItemRect(hwndList, Item(1), &rc, LVIR_ICON);
    POINT pt{(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
    ::ClientToScreen(hwndList, &pt);
    return {{Number(pt.x), Number(pt.y)}};
}

void Command::Add() {
    NeedPlain();
    int nAt = Count();
    Insert(Text(1), nAt);
    if (row.size() > 3) MoveTo(nAt, Int(2), Int(3));
}

/// `fill` COUNT: items "Icon 0001" and on, in columns; what does not fit the screen lies below it.
void Command::Fill() {
    NeedPlain();
    int nCount = Int(1);
    RECT rc{};
    ::GetClientRect(hwndList, &rc);
    int nColumns = std::max(1L, rc.right / kColumnWidth);
    ::SendMessageW(hwndList, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(hwndList);
    for (int n = 0; n < nCount; ++n) {
        wchar_t sz[32];
        swprintf(sz, 32, L"Icon %04d", n + 1);
        Insert(sz, n);
    }
    for (int n = 0; n < nCount; ++n) {
        ListView_SetItemPosition32(hwndList, n, 21 + n % nColumns * kColumnWidth,
                                   4 + n / nColumns * kRowHeight);
    }
    ::SendMessageW(hwndList, WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(hwndList, nullptr, TRUE);
}

int CALLBACK CompareRanks(LPARAM n1, LPARAM n2, LPARAM nRanks) {
    const auto& ranks = *reinterpret_cast<std::map<LPARAM, int>*>(nRanks);
    return ranks.at(n1) - ranks.at(n2);
}

/// `order` OLD...: item OLD comes first, and so on. The icons keep their places on the screen.
void Command::Order() {
    size_t nCount = static_cast<size_t>(Count());
    if (row.size() != nCount + 1) throw Failure("the order must name every item");
    std::map<LPARAM, int> ranks;
    std::vector<POINT> points(nCount);
    for (size_t n = 0; n < nCount; ++n) {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        item.iItem = Item(n + 1);
        ListView_GetItem(hwndList, &item);
        ListView_GetItemPosition(hwndList, item.iItem, &points[n]);
        ranks[item.lParam] = static_cast<int>(n);
    }
    if (ranks.size() != nCount) throw Failure("the order names an item twice");
    ListView_SortItems(hwndList, CompareRanks, reinterpret_cast<LPARAM>(&ranks));
    for (size_t n = 0; n < nCount; ++n) {
        ListView_SetItemPosition32(hwndList, static_cast<int>(n), points[n].x, points[n].y);
    }
}

Reply Command::AutoArrange() {
    LONG_PTR nStyle = ::GetWindowLongPtrW(hwndList, GWL_STYLE);
    if (row.size() > 1) {
        nStyle &= ~LONG_PTR{LVS_AUTOARRANGE};
        if (Text(1) == L"on") nStyle |= LVS_AUTOARRANGE;
        ::SetWindowLongPtrW(hwndList, GWL_STYLE, nStyle);
    }
    return {{nStyle & LVS_AUTOARRANGE ? L"on" : L"off"}};
}

/// `notify` NAME|NUMBER [list|foreign] [ITEM]: the view hears of it as if the list view told it.
void Command::Notify() {
    static const std::map<std::wstring, UINT> names{{L"setdispinfo", LVN_SETDISPINFOW},
                                                    {L"begindrag", LVN_BEGINDRAG},
                                                    {L"beginrdrag", LVN_BEGINRDRAG}};
    auto found = names.find(Text(1));
    UINT nCode = found != names.end() ? found->second : static_cast<UINT>(std::stoll(Text(1)));
    bool bForeign = row.size() > 2 && Text(2) == L"foreign";
    SendMadeUpNotify(desktop.view->View(), bForeign ? desktop.hwndProgman : hwndList, nCode,
                     row.size() > 3 ? Int(3) : 0);
}

std::wstring Command::DesktopPath(size_t n) const {
    wchar_t sz[MAX_PATH] = L"";
    if (::SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, 0, sz) != S_OK) {
        throw Failure("the profile has no desktop folder");
    }
    return std::wstring(sz) + L"\\" + Text(n);
}

// The test platform's view does not watch its folder, and is told of a change only from within its
// own process: therefore these are the shell's commands and not the tests' own file operations.

void Command::CreateDesktopFile() {
    std::wstring strPath = DesktopPath(1);
    HANDLE h = ::CreateFileW(strPath.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        throw Failure("the file could not be created, error " + std::to_string(::GetLastError()));
    }
    ::CloseHandle(h);
    ::SHChangeNotify(SHCNE_CREATE, SHCNF_PATHW | SHCNF_FLUSH, strPath.c_str(), nullptr);
}

void Command::DeleteDesktopFile() {
    std::wstring strPath = DesktopPath(1);
    if (!::DeleteFileW(strPath.c_str())) throw Failure("the file could not be deleted");
    ::SHChangeNotify(SHCNE_DELETE, SHCNF_PATHW | SHCNF_FLUSH, strPath.c_str(), nullptr);
}

void Command::RenameDesktopFile() {
    std::wstring strFrom = DesktopPath(1), strTo = DesktopPath(2);
    if (!::MoveFileW(strFrom.c_str(), strTo.c_str()))
        throw Failure("the file could not be renamed");
    ::SHChangeNotify(SHCNE_RENAMEITEM, SHCNF_PATHW | SHCNF_FLUSH, strFrom.c_str(), strTo.c_str());
}

Reply Command::Run(HWND hwndCommands) {
    const std::wstring& strName = Text(0);
    if (strName == L"state") return State();
    if (strName == L"items") return Items();
    if (strName == L"screen") return Screen();
    if (strName == L"count") return {{Number(Count())}};
    if (strName == L"auto-arrange") return AutoArrange();

    const std::map<std::wstring, void (Command::*)()> actions{
        {L"add", &Command::Add},
        {L"fill", &Command::Fill},
        {L"order", &Command::Order},
        {L"notify", &Command::Notify},
        {L"create-file", &Command::CreateDesktopFile},
        {L"delete-file", &Command::DeleteDesktopFile},
        {L"rename-file", &Command::RenameDesktopFile}};
    if (auto found = actions.find(strName); found != actions.end()) {
        (this->*found->second)();
    } else if (strName == L"move") {
        MoveTo(Item(1), Int(2), Int(3));
    } else if (strName == L"move-name") {
        MoveTo(FindByName(Text(1)), Int(2), Int(3));
    } else if (strName == L"remove") {
        NeedPlain();
        ListView_DeleteItem(hwndList, Item(1));
    } else if (strName == L"rename") {
        NeedPlain();
        SetText(Item(1), Text(2));
    } else if (strName == L"clear") {
        NeedPlain();
        ListView_DeleteAllItems(hwndList);
    } else if (strName == L"hang") {
        nHangMs = static_cast<DWORD>(Int(1));
    } else if (strName == L"end") {
        ::PostMessageW(hwndCommands, kMsgEnd, 0, 0);
    } else if (strName == L"crash") {
        ::TerminateProcess(::GetCurrentProcess(), kCrashExitCode);
    } else {
        throw Failure("there is no such command");
    }
    return {};
}

Reply Answer(Desktop& desktop, HWND hwndCommands, const std::wstring& strLine) {
    try {
        Reply reply = Command(desktop, SplitRow(strLine)).Run(hwndCommands);
        reply.insert(reply.begin(), Row{L"ok"});
        return reply;
    } catch (const std::exception& failure) {
        std::string strWhat = failure.what();
        return {{L"error", std::wstring(strWhat.begin(), strWhat.end())}};
    }
}

bool WriteReply(const std::wstring& strMapping, const std::wstring& strText) {
    DWORD cb = static_cast<DWORD>(strText.size() * sizeof(wchar_t));
    if (cb > kReplyBytes - sizeof(DWORD)) return false;
    HANDLE hMapping = ::OpenFileMappingW(FILE_MAP_WRITE, FALSE, strMapping.c_str());
    if (!hMapping) return false;
    void* p = ::MapViewOfFile(hMapping, FILE_MAP_WRITE, 0, 0, kReplyBytes);
    if (p) {
        DWORD cch = static_cast<DWORD>(strText.size());
        memcpy(p, &cch, sizeof(cch));
        memcpy(static_cast<BYTE*>(p) + sizeof(cch), strText.data(), cb);
        ::UnmapViewOfFile(p);
    }
    ::CloseHandle(hMapping);
    return p != nullptr;
}

LRESULT OnCommand(Desktop& desktop, HWND hwnd, const COPYDATASTRUCT& data) {
    if (data.dwData != kCommandTag || !data.lpData) return kNotUnderstood;
    std::wstring str(static_cast<const wchar_t*>(data.lpData), data.cbData / sizeof(wchar_t));
    size_t nBreak = str.find(L'\n');
    if (nBreak == std::wstring::npos) return kNotUnderstood;
    std::wstring strReply = JoinRows(Answer(desktop, hwnd, str.substr(nBreak + 1)));
    if (!WriteReply(str.substr(0, nBreak), strReply)) {
        fprintf(stderr, "test_desktop: reply of %zu characters to \"%ls\" not written, error %lu\n",
                strReply.size(), str.c_str(), ::GetLastError());
        return kNotWritten;
    }
    if (nHangMs) {
        ::ReplyMessage(kAnswered);
        ::Sleep(nHangMs); // the thread answers nobody meanwhile: that is the point
        nHangMs = 0;
    }
    return kAnswered;
}

LRESULT CALLBACK CommandProc(HWND hwnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    auto* pDesktop = reinterpret_cast<Desktop*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    switch (uMsg) {
    case WM_COPYDATA:
        if (!pDesktop || !lParam) return 0;
        return OnCommand(*pDesktop, hwnd, *reinterpret_cast<const COPYDATASTRUCT*>(lParam));
    case kMsgEnd: ::PostQuitMessage(0); return 0;
    }
    return ::DefWindowProcW(hwnd, uMsg, wParam, lParam);
}
} // namespace

HWND CreateCommandWindow(Desktop& desktop) {
    WNDCLASSW wc{};
    wc.lpfnWndProc = CommandProc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = kCommandWindowClass;
    ::RegisterClassW(&wc);
    HWND hwnd = ::CreateWindowExW(0, kCommandWindowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                  wc.hInstance, nullptr);
    if (hwnd) ::SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&desktop));
    return hwnd;
}
