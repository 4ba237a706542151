#include "support/http_server.h"
#include "support/wait_until.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {
constexpr const wchar_t* kPython = L"Z:\\usr\\bin\\python3";
constexpr DWORD kStartMs = 30000;

/// The path of the system below the test platform: what lies there is named by Unix programs.
std::wstring UnixPath(const std::wstring& strPath) {
    using UnixName = char*(CDECL*)(LPCWSTR);
    auto pfn = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (!pfn) return strPath;
    char* psz = pfn(strPath.c_str());
    if (!psz) return strPath;
    std::string str = psz;
    ::HeapFree(::GetProcessHeap(), 0, psz);
    return {str.begin(), str.end()};
}

bool StartUnixProgram(std::wstring strLine) {
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    // Its handles are not closed: for a Unix program the platform writes numbers there that may by
    // now be the handles of something else.
    PROCESS_INFORMATION pi{};
    return ::CreateProcessW(kPython, strLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &si, &pi) != 0;
}

void WriteAtOnce(const std::wstring& strPath, const std::string& strText) {
    std::ofstream(std::filesystem::path(strPath + L".new"), std::ios::binary) << strText;
    // The server may have the old one open just now.
    WaitUntil([&] {
        return ::MoveFileExW((strPath + L".new").c_str(), strPath.c_str(),
                             MOVEFILE_REPLACE_EXISTING) != 0;
    });
}

std::wstring RequestName(int n) {
    wchar_t sz[32];
    ::wsprintfW(sz, L"requests\\%06d", n);
    return sz;
}

std::string LowerCase(std::string str) {
    for (char& ch : str) ch = static_cast<char>(ch >= 'A' && ch <= 'Z' ? ch + ('a' - 'A') : ch);
    return str;
}

HttpRequest ParseRequest(const std::string& strText) {
    HttpRequest request;
    std::size_t nBody = strText.find("\r\n\r\n");
    request.strBody = strText.substr(nBody + 4);
    std::istringstream in(strText.substr(0, nBody));
    in >> request.strMethod >> request.strTarget;
    std::string strLine;
    std::getline(in, strLine); // the version
    while (std::getline(in, strLine)) {
        if (strLine.ends_with('\r')) strLine.pop_back();
        std::size_t nColon = strLine.find(": ");
        request.headers[LowerCase(strLine.substr(0, nColon))] = strLine.substr(nColon + 2);
    }
    return request;
}
} // namespace

HttpServer::HttpServer() {
    Say({"status/500/"});
    if (!StartUnixProgram(L"python3 \"" TESSALY_HTTP_SERVER L"\" \"" + UnixPath(folder.Get()) +
                          L"\"")) {
        return;
    }
    WaitUntil(
        [&] {
            std::istringstream ports(folder.ReadFile(L"ports"));
            ports >> nPort >> nRefusedPort >> nFullPort;
            return nFullPort != 0;
        },
        kStartMs);
}

HttpServer::~HttpServer() {
    // It ends when that file is gone.
    ::DeleteFileW(folder.File(L"ports").c_str());
    if (nPort) WaitUntil([&] { return !folder.ReadFile(L"ended").empty(); });
}

void HttpServer::Say(const std::vector<std::string>& lines) {
    std::string strText = std::to_string(++nScript) + "\n";
    for (const std::string& strLine : lines) strText += strLine + "\n";
    WriteAtOnce(folder.File(L"script"), strText);
}

void HttpServer::HangUp() {
    const std::wstring strFile = folder.MakeFile(L"hang-up", "1");
    WaitUntil([&] { return ::GetFileAttributesW(strFile.c_str()) == INVALID_FILE_ATTRIBUTES; });
}

std::vector<HttpRequest> HttpServer::TakeRequests() {
    std::vector<HttpRequest> requests;
    for (;; ++nTaken) {
        std::string strText = folder.ReadFile(RequestName(nTaken + 1));
        if (strText.empty()) return requests;
        requests.push_back(ParseRequest(strText));
    }
}

std::string HexOf(const std::string& strBytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string str;
    for (char ch : strBytes) {
        auto b = static_cast<unsigned char>(ch);
        str += kDigits[b >> 4];
        str += kDigits[b & 15];
    }
    return str;
}

std::string Answer(const std::string& strKind, const std::string& strBytes) {
    return strKind + "/" + HexOf(strBytes);
}
