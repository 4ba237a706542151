// The check for updates that the running monitor has done: by a process of its own, so that neither
// the monitor nor the shell has anything to do with the network.

#include "e2e/engine_test_support.h"
#include "support/http_server.h"
#include "support/platform_proxy.h"

#include <tlhelp32.h>
#include <cwchar>

namespace {
constexpr wchar_t kSetupKey[] = L"Software\\Orvanta\\Tessaly\\Setup";
constexpr DWORD kLongAgo = 2000;

/// The values of that key, which goes with the object.
class SetupKey {
  public:
    SetupKey() {
        ::RegDeleteKeyW(HKEY_CURRENT_USER, kSetupKey);
        ::RegCreateKeyExW(HKEY_CURRENT_USER, kSetupKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                          &hkey, nullptr);
    }
    ~SetupKey() {
        ::RegCloseKey(hkey);
        ::RegDeleteKeyW(HKEY_CURRENT_USER, kSetupKey);
    }
    SetupKey(const SetupKey&) = delete;
    SetupKey& operator=(const SetupKey&) = delete;

    void Put(const wchar_t* pszName, DWORD dw) const {
        ::RegSetValueExW(hkey, pszName, 0, REG_DWORD, reinterpret_cast<BYTE*>(&dw), sizeof(dw));
    }
    DWORD Get(const wchar_t* pszName) const {
        DWORD dw = 0, cb = sizeof(dw);
        ::RegQueryValueExW(hkey, pszName, nullptr, nullptr, reinterpret_cast<BYTE*>(&dw), &cb);
        return dw;
    }
    bool Has(const wchar_t* pszName) const {
        return !::RegQueryValueExW(hkey, pszName, nullptr, nullptr, nullptr, nullptr);
    }

  private:
    HKEY hkey = nullptr;
};

bool HasMapped(DWORD dwProcess, const wchar_t* pszModule) {
    HANDLE h = ::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, dwProcess);
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    bool bFound = false;
    for (BOOL b = ::Module32FirstW(h, &entry); b; b = ::Module32NextW(h, &entry))
        bFound |= !_wcsicmp(entry.szModule, pszModule);
    ::CloseHandle(h);
    return bFound;
}

class MonitorUpdateCheck : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        if (!server.IsRunning()) GTEST_SKIP() << "no Python with aiohttp here for the server";
        proxy.emplace(server.Port());
    }
    void ExpectNoNetwork() const {
        for (DWORD dwProcess : {monitor.ProcessId(), desktop->ProcessId()}) {
            EXPECT_TRUE(HasMapped(dwProcess, L"TSDLL64.dll")); // they can be looked at
            EXPECT_FALSE(HasMapped(dwProcess, L"wininet.dll"));
        }
    }
    SetupKey setup;
    HttpServer server;
    std::optional<PlatformProxy> proxy;
};

TEST_F(MonitorUpdateCheck, DueCheckIsDoneByAnotherProcess) {
    setup.Put(L"DayCount", 3);
    setup.Put(L"NextUpdate", kLongAgo);
    server.Say({"text/4F4B"});
    StartPlain(3);
    StartMonitor();
    EXPECT_TRUE(WaitUntil([&] { return setup.Get(L"NextUpdate") > kLongAgo; }));
    auto requests = server.TakeRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ("POST", requests[0].strMethod);
    EXPECT_NE(0u, setup.Get(L"LastUpdate"));
    EXPECT_FALSE(setup.Has(L"RemindFreq"));
    EXPECT_FALSE(setup.Has(L"AutoCheck"));
    ExpectNoNetwork();
    EXPECT_TRUE(StillCaptures());
}

TEST_F(MonitorUpdateCheck, SlowServerHoldsNobodyUp) {
    setup.Put(L"DayCount", 3);
    setup.Put(L"NextUpdate", kLongAgo);
    server.Say({"silent"});
    StartPlain(3);
    StartMonitor();
    std::vector<HttpRequest> requests;
    EXPECT_TRUE(WaitUntil([&] { return !(requests = server.TakeRequests()).empty(); }));
    EXPECT_EQ(kLongAgo, setup.Get(L"NextUpdate")); // it still waits
    EXPECT_TRUE(StillCaptures());
    ExpectNoNetwork();
    EXPECT_TRUE(monitor.Exit()); // and keeps nobody from going
    server.HangUp();
    EXPECT_TRUE(WaitUntil([&] { return setup.Get(L"NextUpdate") > kLongAgo; }));
    EXPECT_EQ(0u, setup.Get(L"LastUpdate"));
}

TEST_F(MonitorUpdateCheck, IsNotAskedForOnTheFirstDay) {
    setup.Put(L"NextUpdate", kLongAgo);
    StartPlain(3);
    StartMonitor();
    EXPECT_EQ(kLongAgo, setup.Get(L"NextUpdate"));
    EXPECT_TRUE(server.TakeRequests().empty());
    ExpectNoNetwork();
}
} // namespace
