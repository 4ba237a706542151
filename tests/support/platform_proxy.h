#pragma once
#include <windows.h>
#include <optional>
#include <string>

/// The proxy that programs of this user ask for web pages, as the platform's settings have it, for
/// the length of a block: the loopback address and that port. The settings come back at the end.
class PlatformProxy {
  public:
    explicit PlatformProxy(WORD nPort) {
        // Programs that are started from here on inherit the environment, which goes before.
        for (const wchar_t* psz : {L"http_proxy", L"HTTP_PROXY", L"all_proxy", L"ALL_PROXY"})
            ::SetEnvironmentVariableW(psz, nullptr);
        ::RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &hkey,
                          nullptr);
        DWORD cb = sizeof(dwEnabled);
        bWasEnabled = !::RegQueryValueExW(hkey, kEnable, nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(&dwEnabled), &cb);
        wchar_t sz[256] = L"";
        cb = sizeof(sz) - sizeof(wchar_t);
        if (!::RegQueryValueExW(hkey, kServer, nullptr, nullptr, reinterpret_cast<BYTE*>(sz), &cb))
            serverBefore = sz;
        SetPort(nPort);
        SetEnabled(1);
    }
    ~PlatformProxy() {
        if (bWasEnabled)
            SetEnabled(dwEnabled);
        else
            ::RegDeleteValueW(hkey, kEnable);
        if (serverBefore)
            SetServer(*serverBefore);
        else
            ::RegDeleteValueW(hkey, kServer);
        ::RegCloseKey(hkey);
    }
    PlatformProxy(const PlatformProxy&) = delete;
    PlatformProxy& operator=(const PlatformProxy&) = delete;

    void SetPort(WORD nPort) { SetServer(L"127.0.0.1:" + std::to_wstring(nPort)); }

  private:
    static constexpr const wchar_t* kKey =
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
    static constexpr const wchar_t* kEnable = L"ProxyEnable";
    static constexpr const wchar_t* kServer = L"ProxyServer";

    void SetEnabled(DWORD dw) const {
        ::RegSetValueExW(hkey, kEnable, 0, REG_DWORD, reinterpret_cast<BYTE*>(&dw), sizeof(dw));
    }
    void SetServer(const std::wstring& str) const {
        ::RegSetValueExW(hkey, kServer, 0, REG_SZ, reinterpret_cast<const BYTE*>(str.c_str()),
                         static_cast<DWORD>((str.size() + 1) * sizeof(wchar_t)));
    }

    HKEY hkey = nullptr;
    DWORD dwEnabled = 0;
    bool bWasEnabled = false;
    std::optional<std::wstring> serverBefore;
};
