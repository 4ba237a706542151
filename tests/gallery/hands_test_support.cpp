#include "gallery/hands_test_support.h"
#include "e2e/support/unix_shell.h"
#include "support/input.h"
#include "support/wait_until.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>

namespace {
constexpr DWORD kAnswerMs = 5000;
constexpr int kIntoTitle = 12; // pixels below a window's top
constexpr const wchar_t* kPixelFile = L"C:\\pixels";

void PrepareKeysFor(HWND hwnd) {
    HWND hwndRoot = ::GetAncestor(hwnd, GA_ROOT);
    if (!WaitUntil([&] { return ::GetForegroundWindow() == hwndRoot; }))
        throw std::runtime_error("the window for the keys is not in front");
    POINT pt{};
    RECT rc = RectOf(hwnd);
    ::GetCursorPos(&pt);
    if (!::PtInRect(&rc, pt)) mouse::MoveTo({(rc.left + rc.right) / 2, rc.top + kIntoTitle});
}

// The platform's own input, where the display has no xdotool.

void SendKeyWith(WORD wKey, WORD wModifier) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = wModifier;
    if (wModifier) ::SendInput(1, &input, sizeof(input));
    SendKey(wKey);
    input.ki.dwFlags = KEYEVENTF_KEYUP;
    if (wModifier) ::SendInput(1, &input, sizeof(input));
}

void SendNamedKey(const std::wstring& strName) {
    static const std::map<std::wstring, WORD> codes{
        {L"Tab", VK_TAB},       {L"Return", VK_RETURN},  {L"Escape", VK_ESCAPE},
        {L"space", VK_SPACE},   {L"Up", VK_UP},          {L"Down", VK_DOWN},
        {L"Left", VK_LEFT},     {L"Right", VK_RIGHT},    {L"Home", VK_HOME},
        {L"End", VK_END},       {L"F1", VK_F1},          {L"F4", VK_F4},
        {L"Delete", VK_DELETE}, {L"BackSpace", VK_BACK}, {L"alt", VK_MENU},
        {L"ctrl", VK_CONTROL},  {L"shift", VK_SHIFT}};
    size_t nPlus = strName.find(L'+');
    WORD wModifier = nPlus == std::wstring::npos ? 0 : codes.at(strName.substr(0, nPlus));
    std::wstring strKey = wModifier ? strName.substr(nPlus + 1) : strName;
    auto it = codes.find(strKey);
    SendKeyWith(it != codes.end() ? it->second : LOBYTE(::VkKeyScanW(strKey[0])), wModifier);
}

void SendText(const std::wstring& strText) {
    for (wchar_t ch : strText) {
        INPUT inputs[2]{};
        for (INPUT& input : inputs) {
            input.type = INPUT_KEYBOARD;
            input.ki.wScan = ch;
            input.ki.dwFlags = KEYEVENTF_UNICODE;
        }
        inputs[1].ki.dwFlags |= KEYEVENTF_KEYUP;
        ::SendInput(2, inputs, sizeof(INPUT));
    }
}
} // namespace

// 1 is no window but the pointer's root (X.h): the focus is with whatever lies below the pointer.

void PressKeys(HWND hwnd, const std::vector<std::wstring>& keys) {
    PrepareKeysFor(hwnd);
    if (!UsesXdotool()) {
        for (const std::wstring& strKey : keys) SendNamedKey(strKey);
        return;
    }
    std::wstring strLine = L"xdotool windowfocus 1 key --delay 20";
    for (const std::wstring& strKey : keys) strLine += L" " + strKey;
    RunUnixShell(strLine);
}

void TypeText(HWND hwnd, const std::wstring& strText) {
    PrepareKeysFor(hwnd);
    if (!UsesXdotool()) return SendText(strText);
    RunUnixShell(L"xdotool windowfocus 1 type --delay 20 '" + strText + L"'");
}

POINT MiddleOf(HWND hwnd) {
    RECT rc = RectOf(hwnd);
    return {(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2};
}

void ClickOn(HWND hwnd) {
    if (!::IsWindowVisible(hwnd)) throw std::runtime_error("nothing to click on");
    mouse::Click(MiddleOf(hwnd));
}

void DoubleClickTitleOf(HWND hwnd) {
    RECT rc = RectOf(hwnd);
    POINT pt{(rc.left + rc.right) / 2, rc.top + kIntoTitle};
    if (UsesXdotool()) {
        RunUnixShell(L"xdotool mousemove " + std::to_wstring(pt.x) + L" " + std::to_wstring(pt.y) +
                     L" sleep 0.05 click --repeat 2 --delay 60 1");
    } else {
        mouse::Click(pt);
        mouse::Click(pt);
    }
}

RECT RectOf(HWND hwnd) {
    RECT rc{};
    ::GetWindowRect(hwnd, &rc);
    return rc;
}

// GetWindowText gives nothing of a control in another process.
std::wstring TextOf(HWND hwnd) {
    wchar_t sz[1024] = {};
    DWORD_PTR nResult = 0;
    ::SendMessageTimeoutW(hwnd, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(sz), SMTO_NORMAL,
                          kAnswerMs, &nResult);
    return sz;
}

std::wstring ClassOf(HWND hwnd) {
    wchar_t sz[64] = {};
    ::GetClassNameW(hwnd, sz, 64);
    return sz;
}

bool IsChecked(HWND hwndButton) {
    return ::SendMessageW(hwndButton, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

std::vector<COLORREF> PixelsOf(const RECT& rc) {
    std::vector<COLORREF> pixels;
    if (!UsesXdotool()) {
        HDC hdc = ::GetDC(nullptr);
        for (int y = rc.top; y < rc.bottom; ++y) {
            for (int x = rc.left; x < rc.right; ++x) pixels.push_back(::GetPixel(hdc, x, y));
        }
        ::ReleaseDC(nullptr, hdc);
        return pixels;
    }
    RunUnixShell(L"import -window root -crop " + std::to_wstring(WidthOf(rc)) + L"x" +
                 std::to_wstring(HeightOf(rc)) + L"+" + std::to_wstring(rc.left) + L"+" +
                 std::to_wstring(rc.top) + L" +repage -depth 8 rgb:- > $WINEPREFIX/drive_c/pixels");
    if (FILE* pFile = _wfopen(kPixelFile, L"rb")) {
        unsigned char rgb[3];
        while (fread(rgb, 1, 3, pFile) == 3) pixels.push_back(RGB(rgb[0], rgb[1], rgb[2]));
        fclose(pFile);
    }
    ::DeleteFileW(kPixelFile);
    if (pixels.size() != static_cast<size_t>(WidthOf(rc)) * HeightOf(rc))
        throw std::runtime_error("the screen can't be read");
    return pixels;
}

COLORREF ColourAt(POINT pt) { return PixelsOf({pt.x, pt.y, pt.x + 1, pt.y + 1})[0]; }

HCURSOR CursorNow() {
    CURSORINFO info{};
    info.cbSize = sizeof(info);
    ::GetCursorInfo(&info);
    return info.hCursor;
}

void TakePicture(const std::wstring& strName, const std::vector<HWND>& windows) {
    const wchar_t* pszFolder = _wgetenv(L"TESSALY_SCREENSHOTS");
    if (!pszFolder) return;
    RECT rc{};
    for (HWND hwnd : windows) {
        RECT rcWindow = RectOf(hwnd), rcBefore = rc;
        ::UnionRect(&rc, &rcBefore, &rcWindow);
        ::SendMessageW(hwnd, WM_NULL, 0, 0); // has painted what it had to
    }
    ::Sleep(100); // the display draws on its own
    std::wstring strFile = std::wstring(pszFolder) + L"/gallery-" + strName + L".png";
    RunUnixShell(L"import -window root -crop " + std::to_wstring(WidthOf(rc)) + L"x" +
                 std::to_wstring(HeightOf(rc)) + L"+" + std::to_wstring(rc.left) + L"+" +
                 std::to_wstring(rc.top) + L" +repage '" + strFile + L"'");
    printf("   picture: %ls\n", strFile.c_str());
}
