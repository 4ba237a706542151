// What the functions on the text of paths cost, in nanoseconds per call. No limits: told for
// whoever changes them.

#include "../measure.h"
#include "files/path_env.h"
#include "files/path_join.h"
#include "files/path_name.h"
#include "files/path_quote.h"
#include "files/path_shape.h"
#include "files/path_split.h"

#include <windows.h>
#include <cwchar>

namespace {
constexpr const wchar_t* kPath = L"C:\\Program Files\\Some Folder\\Another one\\a file.with.ext";
constexpr const wchar_t* kFolder = L"c:/program files/some folder";
constexpr int kCalls = 2000, kTurns = 51;

volatile int nSink; // keeps the calls

template <class Fn>
void Tell(const char* pszWhat, Fn fn) {
    std::vector<double> times;
    for (int n = 0; n < kTurns; ++n) {
        times.push_back(Seconds([&] {
            for (int i = 0; i < kCalls; ++i) nSink = static_cast<int>(fn());
        }));
    }
    std::sort(times.begin(), times.end());
    std::printf("%-28s %8.0f ns\n", pszWhat, times[kTurns / 2] / kCalls * 1e9);
}
} // namespace

int main() {
    wchar_t szPath[MAX_PATH], szName[MAX_PATH], szExt[MAX_PATH];
    auto fresh = [&] { return std::wcscpy(szPath, kPath); };
    std::printf("Per call, on a path of %u characters:\n",
                static_cast<unsigned>(std::wcslen(kPath)));
    Tell("(copying the path)", [&] { return fresh() != nullptr; });
    Tell("LocateFileName", [] { return LocateFileName(kPath) != nullptr; });
    Tell("LocateFileExt", [] { return LocateFileExt(kPath) != nullptr; });
    Tell("IsFullPathName", [] { return IsFullPathName(kPath); });
    Tell("IsSubFolderOf", [] { return IsSubFolderOf(kPath, kFolder, 0); });
    Tell("IsSamePath", [] { return IsSamePath(kPath, kPath); });
    Tell("IsValidFolderName", [] { return IsValidFolderName(kPath); });
    Tell("ParsePath", [&] { return ParsePath(szPath, szName, szExt, kPath); });
    Tell("GetRootPath", [&] { return GetRootPath(szPath, kPath); });
    Tell("GetParentFolder", [&] {
        GetParentFolder(szPath, kPath);
        return *szPath;
    });
    Tell("MakePath", [&] { return MakePath(szPath, kFolder, L"a file", L"ext", 0); });
    Tell("MakePathEx", [&] { return MakePathEx(szPath, MAX_PATH, kFolder, L"a file", L"ext"); });
    Tell("MakeFullPathName", [&] {
        std::wcscpy(szPath, L"Another one/a file");
        MakeFullPathName(szPath, L"C:\\Program Files");
        return *szPath;
    });
    Tell("FixFileName", [&] { return FixFileName(szName, kPath); });
    Tell("EncodeFileName", [&] { return EncodeFileName(szName, kPath); });
    Tell("AddQuotesIfSpace", [&] {
        AddQuotesIfSpace(fresh());
        return *szPath;
    });
    Tell("ExpandEnvStrings",
         [&] { return ExpandEnvStrings(L"%SystemRoot%\\system32\\x.dll", szPath, MAX_PATH); });
    return 0;
}
