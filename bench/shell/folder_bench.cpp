// What the wrappers add to a walk over a folder of 5,000 files: each item fetched, named, asked for
// its attributes and freed, through iShellFolder and iEnumIDList and by bare COM calls, in turn.

#include "../measure.h"
#include "runtime/threads/co_init.h"
#include "shell/folders/shell_folder.h"
#include "shell/namespace/pidl.h"

#include <shlobj.h>
#include <shlwapi.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {
constexpr int kFiles = 5000, kTurns = 15;
constexpr double kLimit = 1.05;
constexpr DWORD kAsked = SFGAO_FOLDER | SFGAO_FILESYSTEM | SFGAO_LINK;

/// A folder of empty files, gone in the end.
class ManyFiles {
  public:
    ManyFiles() {
        path = std::filesystem::temp_directory_path() /
               (L"tessaly_bench_" + std::to_wstring(::GetCurrentProcessId()));
        std::filesystem::create_directories(path);
        for (int n = 0; n < kFiles; ++n)
            std::ofstream(path / (L"File number " + std::to_wstring(n) + L".txt"));
    }
    ~ManyFiles() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
};

struct Sums {
    std::size_t nItems = 0, nChars = 0;
    unsigned long long nAttributes = 0;
    bool operator==(const Sums&) const = default;
};

Sums WalkWrapped(iShellFolder& folder) {
    Sums sums;
    iEnumIDList walk(folder, nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS);
    while (ITEMIDLIST* pidl = walk.Next()) {
        wchar_t szName[MAX_PATH];
        folder.GetDisplayNameOf(pidl, SHGDN_INFOLDER, szName, MAX_PATH);
        ++sums.nItems;
        sums.nChars += wcslen(szName);
        sums.nAttributes += folder.GetAttributesOf(pidl, kAsked);
        PIDL::Free(pidl);
    }
    return sums;
}

Sums WalkBare(IShellFolder* pFolder) {
    Sums sums;
    IEnumIDList* pWalk = nullptr;
    if (FAILED(pFolder->EnumObjects(nullptr, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS, &pWalk)))
        return sums;
    ITEMIDLIST* pidl = nullptr;
    while (pWalk->Next(1, &pidl, nullptr) == S_OK) {
        wchar_t szName[MAX_PATH];
        STRRET ret;
        pFolder->GetDisplayNameOf(pidl, SHGDN_INFOLDER, &ret);
        ::StrRetToBufW(&ret, pidl, szName, MAX_PATH);
        const ITEMIDLIST* pidlAsked = pidl;
        SFGAOF nAttributes = kAsked;
        pFolder->GetAttributesOf(1, &pidlAsked, &nAttributes);
        ++sums.nItems;
        sums.nChars += wcslen(szName);
        sums.nAttributes += nAttributes;
        ::CoTaskMemFree(pidl);
    }
    pWalk->Release();
    return sums;
}
} // namespace

int main() {
    CoInit com;
    ManyFiles files;
    PIDL list;
    iShellFolder folder(files.path.c_str(), list);
    if (!folder.IsReady()) return 1;
    Sums wrapped, bare;
    Comparison c = Compare(
        kTurns, [&] { wrapped = WalkWrapped(folder); }, [&] { bare = WalkBare(folder); });
    if (wrapped != bare || wrapped.nItems != kFiles) {
        std::printf("the walks differ: %zu and %zu items\n", wrapped.nItems, bare.nItems);
        return 1;
    }
    return Report("a walk over 5,000 files through the wrappers / bare COM", c, kLimit, true) ? 0
                                                                                              : 1;
}
