#pragma once
#include "support/program_folder.h"

#include <windows.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

/// How launch_probe was started, as it wrote it down.
struct LaunchReport {
    DWORD dwProcess = 0;
    DWORD dwParent = 0;
    int nShow = -1; // -1: its starter said nothing
    std::wstring strFolder;
    std::wstring strProgram;
    std::wstring strLine; // the whole command line
};

inline std::wstring ProbePath() { return ProgramFolder() + L"launch_probe.exe"; }

/// The folder where probes leave their reports; empty at first and gone at the end.
class LaunchReports {
  public:
    LaunchReports() {
        wchar_t szTemp[MAX_PATH];
        ::GetTempPathW(MAX_PATH, szTemp);
        folder = std::filesystem::path(szTemp) / "tessaly_launch";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~LaunchReports() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    LaunchReports(const LaunchReports&) = delete;
    LaunchReports& operator=(const LaunchReports&) = delete;

    /// The next report, which is taken away; nothing if none comes. Messages of the test's windows
    /// go on.
    std::optional<LaunchReport> Take() {
        constexpr DWORD kDeadlineMs = 10000, kPollMs = 5;
        for (DWORD dwStart = ::GetTickCount();;) {
            if (auto found = Look()) return found;
            if (::GetTickCount() - dwStart > kDeadlineMs) return {};
            MSG msg;
            while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&msg);
            ::Sleep(kPollMs);
        }
    }
    int IsEmpty() const { return std::filesystem::is_empty(folder); }

  private:
    std::optional<LaunchReport> Look() {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() != ".txt") continue;
            auto report = Read(entry.path());
            if (report) std::filesystem::remove(entry.path());
            return report;
        }
        return {};
    }
    /// Nothing while its writer has not let go of it: the file bears its final name a moment
    /// before the renaming is over, and cannot be opened till then.
    static std::optional<LaunchReport> Read(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        if (!file) return {};
        std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::wstring str(reinterpret_cast<const wchar_t*>(bytes.data()),
                         bytes.size() / sizeof(wchar_t));
        std::wistringstream in(str);
        std::wstring strNumber;
        LaunchReport report;
        std::getline(in, strNumber);
        report.dwProcess = std::stoul(strNumber);
        std::getline(in, strNumber);
        report.dwParent = std::stoul(strNumber);
        std::getline(in, strNumber);
        report.nShow = std::stoi(strNumber);
        std::getline(in, report.strFolder);
        std::getline(in, report.strProgram);
        std::getline(in, report.strLine);
        return report;
    }
    std::filesystem::path folder;
};

/// A key below HKEY_CLASSES_ROOT with its unnamed value, for a test; what stood there before comes
/// back at the end. A null text makes no value.
class ClassKey {
  public:
    ClassKey(const std::wstring& strKey, const wchar_t* pszText) : strPath(strKey) {
        bExisted = Read(strBefore);
        Write(pszText);
    }
    ~ClassKey() {
        if (bExisted)
            Write(strBefore.c_str());
        else
            DeleteTree(strPath);
    }
    ClassKey(const ClassKey&) = delete;
    ClassKey& operator=(const ClassKey&) = delete;
    void Write(const wchar_t* pszText, DWORD dwType = REG_SZ) const {
        HKEY hkey = nullptr;
        ::RegCreateKeyExW(HKEY_CLASSES_ROOT, strPath.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, nullptr);
        if (pszText)
            ::RegSetValueExW(hkey, nullptr, 0, dwType, reinterpret_cast<const BYTE*>(pszText),
                             static_cast<DWORD>((wcslen(pszText) + 1) * sizeof(wchar_t)));
        else
            ::RegDeleteValueW(hkey, nullptr);
        ::RegCloseKey(hkey);
    }

  private:
    static void DeleteTree(const std::wstring& strTree) {
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, strTree.c_str(), 0, KEY_READ, &hkey)) return;
        wchar_t szName[256];
        while (!::RegEnumKeyW(hkey, 0, szName, 256)) DeleteTree(strTree + L"\\" + szName);
        ::RegCloseKey(hkey);
        ::RegDeleteKeyW(HKEY_CLASSES_ROOT, strTree.c_str());
    }
    bool Read(std::wstring& str) const {
        wchar_t sz[1024] = L"";
        DWORD cb = sizeof(sz);
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, strPath.c_str(), 0, KEY_READ, &hkey)) return false;
        bool bRead =
            !::RegQueryValueExW(hkey, nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(sz), &cb);
        ::RegCloseKey(hkey);
        str = sz;
        return bRead;
    }
    std::wstring strPath, strBefore;
    bool bExisted = false;
};
