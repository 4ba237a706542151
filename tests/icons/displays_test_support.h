#pragma once
#include "icons/snapshot_test_support.h"
#include "store/reg_tree.h"
#include "support/replace_import.h"
#include "support/runtime_lookup.h"

#include <windows.h>
#include <string>
#include <vector>

extern "C" FARPROC __imp_EnumDisplayMonitors, __imp_GetMonitorInfoW;

// Displays of another machine, and the product's own key for what it knows of them, planted and
// looked at with the platform's calls.

struct FakeDisplay {
    RECT rc;
    bool bPrimary = false;
    UINT nDpi = 96;
    bool bGone = false; // it is listed, and is no more when it is asked
};

/// Takes the place of the platform's displays while it lives. One at a time; no other look-up of
/// functions may be in force, but through windows.
class FakeDisplays {
  public:
    explicit FakeDisplays(std::vector<FakeDisplay> first = {{{0, 0, 1920, 1080}, true}})
        : enumMonitors(__imp_EnumDisplayMonitors, &Enum), getInfo(__imp_GetMonitorInfoW, &Info) {
        displays = std::move(first);
        windows.Set("GetDpiForMonitor", &Dpi);
        nAsked = 0;
        hrDpi = S_OK;
    }
    FakeDisplays(const FakeDisplays&) = delete;
    FakeDisplays& operator=(const FakeDisplays&) = delete;

    static inline std::vector<FakeDisplay> displays;
    static inline int nAsked = 0; // how many times the displays were listed
    static inline HRESULT hrDpi = S_OK;
    ReplaceFunctions windows;

  private:
    static HMONITOR HandleOf(std::size_t n) { return reinterpret_cast<HMONITOR>(n + 1); }
    static std::size_t At(HMONITOR h) { return reinterpret_cast<std::size_t>(h) - 1; }
    static BOOL WINAPI Enum(HDC, const RECT*, MONITORENUMPROC pfn, LPARAM lParam) {
        ++nAsked;
        for (std::size_t n = 0; n < displays.size(); ++n) {
            RECT rc = displays[n].rc;
            if (!pfn(HandleOf(n), nullptr, &rc, lParam)) return FALSE;
        }
        return TRUE;
    }
    static BOOL WINAPI Info(HMONITOR h, MONITORINFO* pInfo) {
        const FakeDisplay& display = displays[At(h)];
        if (pInfo->cbSize != sizeof(MONITORINFO) || display.bGone) return FALSE;
        pInfo->rcMonitor = pInfo->rcWork = display.rc;
        pInfo->dwFlags = display.bPrimary ? MONITORINFOF_PRIMARY : 0;
        return TRUE;
    }
    static HRESULT WINAPI Dpi(HMONITOR h, int nType, UINT* pnX, UINT* pnY) {
        if (FAILED(hrDpi)) return hrDpi;
        EXPECT_EQ(0, nType);
        *pnX = displays[At(h)].nDpi;
        *pnY = 1;
        return S_OK;
    }

    ReplaceImport enumMonitors, getInfo;
};

constexpr const wchar_t* kDisplaysKey = L"Software\\Orvanta\\Tessaly\\Displays"; // below HKCU

/// The product's key of the displays; missing at first.
class DisplaysKey : public RegTree {
  public:
    DisplaysKey() : RegTree(HKEY_CURRENT_USER, kDisplaysKey) {}
    void TurnOn(DWORD dwValue = 1) const { PutNumber(L"RestoreOnChange", REG_DWORD, dwValue); }
    template <class Number>
    void PutNumber(const std::wstring& strName, DWORD dwType, Number n,
                   const std::wstring& strBelow = L"") const {
        const auto* p = reinterpret_cast<const unsigned char*>(&n);
        Put(strName, dwType, RegBytes(p, p + sizeof(n)), strBelow);
    }
    /// A set-up as the store writes it.
    void Plant(const std::wstring& strText, const Layout& layout,
               unsigned __int64 qwUsed = 0x01DB000000000000) const {
        std::wstring strName = NameOfText(strText);
        PutStr(L"Displays", strText, strName);
        Put(L"Layout", REG_BINARY, MakeSnapshotValue(layout), strName);
        PutNumber(L"Used", REG_QWORD, qwUsed, strName);
    }
    /// The MD5 of the text, by the library's own digest, whose tests are elsewhere.
    static std::wstring NameOfText(const std::wstring& strText) {
        unsigned char digest[kMd5Size];
        CalcMD5(digest, strText.data(), strText.size() * sizeof(wchar_t));
        std::wstring strName;
        for (unsigned char b : digest) {
            strName += L"0123456789ABCDEF"[b >> 4];
            strName += L"0123456789ABCDEF"[b & 15];
        }
        return strName;
    }
    /// The stored layout; empty if there is none.
    RegBytes LayoutOf(const std::wstring& strText) const {
        return ValueOf(strText, L"Layout").bytes;
    }
    RegContent ValueOf(const std::wstring& strText, const std::wstring& strName) const {
        RegDump dump = Dump();
        return dump.subkeys[NameOfText(strText)].values[strName];
    }
};
