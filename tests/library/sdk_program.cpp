// What somebody writes who has the SDK and nothing else: check_sdk.py builds it outside of the
// tree, with the compiler's own settings, no macro defined, exceptions and type information on.
#include <tessaly.h>

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <limits>

namespace {

int nFailed = 0;

void Check(bool bHolds, const char* pszWhat) {
    if (bHolds) return;
    std::printf("failed: %s\n", pszWhat);
    ++nFailed;
}

// A class of the library with a virtual function of the program's own.
class Clicks : public CSWnd {
  public:
    int nClicks = 0;

  private:
    LRESULT OnWndMessage(UINT uMsg, WPARAM wParam, LPARAM lParam) override {
        if (uMsg == WM_LBUTTONUP) return ++nClicks;
        return CSWnd::OnWndMessage(uMsg, wParam, lParam);
    }
};

void CheckWindow() {
    const wchar_t* pszClass = L"SdkProgramClicks";
    Check(CSWnd::RegisterClassExWithWndExtra(pszClass, 0) != 0, "a class is registered");
    Clicks clicks;
    Check(clicks.Create(pszClass, L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr) == 1,
          "a window is created");
    clicks.SendMsg(WM_LBUTTONUP, 0, 0);
    Check(clicks.nClicks == 1, "the program's own handler is called");
    clicks.Destroy();
    Check(!clicks.IsReady() && CSWnd::UnregisterClassW(pszClass), "window and class go");
}

void CheckTextAndData() {
    wchar_t szText[32] = L"  sixteen bits ";
    TrimStr(szText);
    Check(!std::wcscmp(szText, L"sixteen bits"), "text is trimmed");
    unsigned char md5[16];
    CalcMD5(md5, "abc", 3); // by its plain name
    Check(md5[0] == 0x90 && md5[15] == 0x72, "a digest is right");
    int values[] = {1, 2};
    CSList list;
    for (int& nValue : values) list.AddTail(&nValue);
    Check(list.GetCount() == 2 && list.GetTail() == &values[1], "a list holds what was added");
}

void CheckRegistry() {
    RegKey key(L"HKCU\\Software\\SdkProgram", 1);
    Check(key.PutDword(L"Value", 0xFFFFFFFF, 0) != 0, "a value is written");
    Check(key.GetDword(L"Value", 1) == (std::numeric_limits<DWORD>::max)(), "and read again");
    key.Close();
    Check(key.Open(L"HKCU\\Software", 1) && key.DelSubKey(L"SdkProgram"), "its key goes");
}

} // namespace

int main() {
    CheckWindow();
    CheckTextAndData();
    CheckRegistry();
    if (!nFailed) std::puts("the program runs");
    return nFailed ? 1 : 0;
}
