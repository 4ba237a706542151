// A whole silent check: TSEXE64.exe /CHECK4UPDATES from its start to its end, with a server on the
// loopback address that answers at once. The way there is that of a proxy that the platform is set
// to. `bench_silent_check`, from the build folder of the programs.

#include "../measure.h"
#include "e2e/support/child_process.h"

#include <winsock2.h>
#include <windows.h>
#include <cctype>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

namespace {
constexpr int kChecks = 21;
constexpr const wchar_t* kInternet = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet "
                                     L"Settings";
constexpr const wchar_t* kSetup = L"Software\\Orvanta\\Tessaly\\Setup";
constexpr char kReply[] = "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 2\r\n"
                          "Connection: close\r\n\r\nOK";

/// A value of the user's, and what was there before at the end.
class UserValue {
  public:
    UserValue(const wchar_t* pszKeyPath, const wchar_t* pszValueName, DWORD dwType,
              const void* pBytes, DWORD cbBytes)
        : pszKey(pszKeyPath), pszName(pszValueName) {
        DWORD cb = sizeof(abBefore);
        bBefore = ::RegGetValueW(HKEY_CURRENT_USER, pszKey, pszName, RRF_RT_ANY, &dwTypeBefore,
                                 abBefore, &cb) == ERROR_SUCCESS;
        cbBefore = cb;
        ::RegSetKeyValueW(HKEY_CURRENT_USER, pszKey, pszName, dwType, pBytes, cbBytes);
    }
    ~UserValue() {
        if (bBefore)
            ::RegSetKeyValueW(HKEY_CURRENT_USER, pszKey, pszName, dwTypeBefore, abBefore, cbBefore);
        else
            ::RegDeleteKeyValueW(HKEY_CURRENT_USER, pszKey, pszName);
    }
    UserValue(const UserValue&) = delete;
    UserValue& operator=(const UserValue&) = delete;

  private:
    const wchar_t *pszKey, *pszName;
    bool bBefore = false;
    DWORD dwTypeBefore = REG_NONE, cbBefore = 0;
    BYTE abBefore[1024] = {};
};

/// Answers each request the same, on a thread of its own.
class Server {
  public:
    Server() {
        WSADATA data;
        ::WSAStartup(MAKEWORD(2, 2), &data);
        hListener = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        int cb = sizeof(address);
        if (::bind(hListener, reinterpret_cast<sockaddr*>(&address), cb) ||
            ::listen(hListener, 5) ||
            ::getsockname(hListener, reinterpret_cast<sockaddr*>(&address), &cb))
            throw std::runtime_error("no port can be had");
        nPort = ::ntohs(address.sin_port);
        thread = std::thread([this] { Loop(); });
    }
    ~Server() {
        ::closesocket(hListener);
        thread.join();
        ::WSACleanup();
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    int nPort = 0;
    int nRequests = 0;      // these two are good while nobody asks
    std::string strRequest; // the last one, as it came

  private:
    void Loop() {
        for (SOCKET h; (h = ::accept(hListener, nullptr, nullptr)) != INVALID_SOCKET;) {
            strRequest = Receive(h);
            ++nRequests;
            ::send(h, kReply, sizeof(kReply) - 1, 0);
            ::shutdown(h, SD_SEND);
            char ch;
            while (::recv(h, &ch, 1, 0) > 0) {
            }
            ::closesocket(h);
        }
    }
    static std::string Receive(SOCKET h) {
        std::string str;
        char ab[2048];
        for (int cb; !IsWhole(str) && (cb = ::recv(h, ab, sizeof(ab), 0)) > 0;) str.append(ab, cb);
        return str;
    }
    static bool IsWhole(const std::string& str) {
        const std::size_t nBody = str.find("\r\n\r\n");
        if (nBody == std::string::npos) return false;
        std::string strHead = str.substr(0, nBody);
        for (char& ch : strHead) ch = static_cast<char>(std::tolower(ch));
        const std::size_t nLength = strHead.find("content-length: ");
        const std::size_t cbBody =
            nLength == std::string::npos ? 0 : std::stoul(strHead.substr(nLength + 16));
        return str.size() >= nBody + 4 + cbBody;
    }
    SOCKET hListener = INVALID_SOCKET;
    std::thread thread;
};

DWORD NextUpdate() {
    DWORD dwNext = 0, cb = sizeof(dwNext);
    ::RegGetValueW(HKEY_CURRENT_USER, kSetup, L"NextUpdate", RRF_RT_REG_DWORD, nullptr, &dwNext,
                   &cb);
    return dwNext;
}

double SecondsOfCheck() {
    ChildProcess program;
    double dSeconds = Seconds([&] {
        program.Start(ProductFolder() + L"\\TSEXE64.exe", L"/CHECK4UPDATES");
        if (!program.WaitForEnd()) throw std::runtime_error("the check does not end");
    });
    if (!NextUpdate()) throw std::runtime_error("the check scheduled nothing");
    return dSeconds;
}
} // namespace

int main() {
    try {
        Server server;
        // What the environment says of proxies would go before the platform's settings.
        for (const wchar_t* psz : {L"http_proxy", L"HTTP_PROXY", L"all_proxy", L"ALL_PROXY"})
            ::SetEnvironmentVariableW(psz, nullptr);
        const std::wstring strProxy = L"http=127.0.0.1:" + std::to_wstring(server.nPort);
        const DWORD dwOn = 1, dwNone = 0;
        UserValue enable(kInternet, L"ProxyEnable", REG_DWORD, &dwOn, sizeof(dwOn));
        UserValue proxy(kInternet, L"ProxyServer", REG_SZ, strProxy.c_str(),
                        static_cast<DWORD>((strProxy.size() + 1) * sizeof(wchar_t)));
        UserValue next(kSetup, L"NextUpdate", REG_DWORD, &dwNone, sizeof(dwNone));
        std::vector<double> times;
        SecondsOfCheck(); // does not count
        for (int n = 0; n < kChecks; ++n) times.push_back(SecondsOfCheck());
        std::sort(times.begin(), times.end());
        if (server.nRequests != kChecks + 1) throw std::runtime_error("the server was not asked");
        std::printf("a silent check, from start to end: %.0f ms (%.0f to %.0f)\n",
                    times[kChecks / 2] * 1e3, times.front() * 1e3, times.back() * 1e3);
        std::printf("it sends %u bytes (%u of them the form) and reads %u\n",
                    static_cast<unsigned>(server.strRequest.size()),
                    static_cast<unsigned>(server.strRequest.size() -
                                          server.strRequest.find("\r\n\r\n") - 4),
                    static_cast<unsigned>(sizeof(kReply) - 1));
        return 0;
    } catch (const std::exception& failure) {
        std::printf("bench_silent_check: %s\n", failure.what());
        return 1;
    }
}
