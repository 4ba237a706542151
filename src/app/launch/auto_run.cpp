#include "app/launch/auto_run.h"
#include "app/identity/product_info.h"
#include "app/launch/run_file.h"
#include "runtime/text/str_format.h"
#include "store/registry/reg_key.h"

#include <cwchar>

namespace {
constexpr const wchar_t* kUserKey = L"HKCU\\Software\\Microsoft\\Windows\\CurrentVersion";
constexpr const wchar_t* kMachineKey = L"HKLM\\Software\\Microsoft\\Windows\\CurrentVersion";
constexpr int kAutoRunKeySize = 64;
constexpr int kLineSize = 260; // a longer value is not compared (RegKey::OpTest)

/// The value's text. False if it does not fit.
bool MakeLine(wchar_t (&szLine)[kLineSize], const wchar_t* pszArguments) {
    int cch = FormatText(szLine, L"%s ", kRunDll32);
    return MakeDllLine(szLine + cch, kLineSize - cch, pszArguments);
}

RegKey::Op ChooseOp(int bWrite, int bOn) {
    if (!bWrite) return RegKey::OpTest;
    return bOn ? RegKey::OpSet : RegKey::OpDelete;
}
} // namespace

int GetSetAutoRunDll32(int bWrite, int* pnOn, int bOn, int bCurrentUser, const wchar_t* pszName,
                       const wchar_t* pszArguments) {
    wchar_t szKey[kAutoRunKeySize], szLine[kLineSize];
    FormatText(szKey, L"%s\\Run", bCurrentUser ? kUserKey : kMachineKey);
    RegKey key;
    if (!key.Open(szKey, bWrite) || !MakeLine(szLine, pszArguments)) return 0;
    RegKey::Op op = ChooseOp(bWrite, bOn);
    int nResult = key.ProcessEntry(op, pszName, szLine);
    if (op == RegKey::OpDelete) nResult = !key.FindValue(pszName); // it answers 1 in any case
    if (op != RegKey::OpTest && !nResult) return 0;
    if (pnOn) *pnOn = op == RegKey::OpDelete ? 0 : nResult;
    return 1;
}

int AutoRunDll32(int* pnOn, int bOn, int bCurrentUser, const wchar_t* pszName,
                 const wchar_t* pszArguments) {
    return GetSetAutoRunDll32(1, pnOn, bOn, bCurrentUser, pszName, pszArguments);
}

void CALLBACK StartMonitor(HWND, HINSTANCE, const char*, int) {
    RunSatelliteFile(nullptr, GetMyProductInfo().GetAutoUpdateFile(), L"/QUIET", nullptr);
}
