// What the path functions cost: nanoseconds per call, and beside it a plain copy of the same path,
// taken in turn in the same run. No limits: this tells where time goes.

#include "../measure.h"
#include "files/path/path_command.h"
#include "files/path/path_join.h"
#include "files/path/path_name.h"
#include "files/path/path_shape.h"
#include "files/path/path_split.h"

#include <windows.h>
#include <cwchar>
#include <string>

namespace {
constexpr int kCalls = 20000, kTurns = 21;
constexpr wchar_t kShort[] = L"C:\\Users\\me\\Desktop\\Notes.txt";
constexpr wchar_t kFolder[] = L"c:/users/ME/Desktop/";

std::wstring LongPath() {
    std::wstring str = L"C:";
    while (str.size() < 240) str += L"\\a folder";
    return str + L"\\a file.text";
}

struct Work {
    const wchar_t* pszWhat;
    void (*call)(wchar_t* pszOut,
                 const wchar_t* pszPath); // pszOut holds the path when it is called
    bool bChanges;                        // so that it wants its copy each time
};

volatile INT_PTR nSink; // keeps the calls

void Keep(const void* p) { nSink = nSink + reinterpret_cast<INT_PTR>(p); }
void Keep(int n) { nSink = nSink + n; }

constexpr Work kWorks[] = {
    {L"LocateFileName", [](wchar_t*, const wchar_t* psz) { Keep(LocateFileName(psz)); }, false},
    {L"LocateFileExt", [](wchar_t*, const wchar_t* psz) { Keep(LocateFileExt(psz)); }, false},
    {L"IsFullPathName", [](wchar_t*, const wchar_t* psz) { Keep(IsFullPathName(psz)); }, false},
    {L"IsValidFolderName", [](wchar_t*, const wchar_t* psz) { Keep(IsValidFolderName(psz)); },
     false},
    {L"IsSubFolderOf, other case",
     [](wchar_t*, const wchar_t* psz) { Keep(IsSubFolderOf(psz, kFolder, 0)); }, false},
    {L"IsSamePath, same case", [](wchar_t* out, const wchar_t* psz) { Keep(IsSamePath(out, psz)); },
     false},
    {L"DirFromPath", [](wchar_t* out, const wchar_t* psz) { DirFromPath(out, psz); }, false},
    {L"ParsePath",
     [](wchar_t* out, const wchar_t* psz) {
         wchar_t szName[MAX_PATH], szExt[MAX_PATH];
         Keep(ParsePath(out, szName, szExt, psz));
     },
     false},
    {L"GetRootPath", [](wchar_t* out, const wchar_t* psz) { Keep(GetRootPath(out, psz)); }, false},
    {L"StripFileNameAndBackslash",
     [](wchar_t* out, const wchar_t*) { StripFileNameAndBackslash(out); }, true},
    {L"RemoveWhiteSpacesAndQuotes",
     [](wchar_t* out, const wchar_t* psz) { RemoveWhiteSpacesAndQuotes(out, psz); }, false},
    {L"FixFileName", [](wchar_t* out, const wchar_t* psz) { Keep(FixFileName(out, psz)); }, false},
    {L"EncodeFileName", [](wchar_t* out, const wchar_t* psz) { Keep(EncodeFileName(out, psz)); },
     false},
    {L"ExpandEnvStrings",
     [](wchar_t* out, const wchar_t* psz) { Keep(ExpandEnvStrings(psz, out, MAX_PATH)); }, false},
    {L"MakePath, folder and short name",
     [](wchar_t* out, const wchar_t* psz) { Keep(MakePath(out, psz, L"name", L"txt", 0)); }, false},
    {L"MakePath in place",
     [](wchar_t* out, const wchar_t*) { Keep(MakePath(out, out, L"name", L"txt", 0)); }, true},
};

void Run(const Work& work, const char* pszLength, const wchar_t* pszPath) {
    wchar_t szOut[MAX_PATH], szCopy[MAX_PATH];
    std::wcscpy(szOut, pszPath);
    auto ours = [&] {
        for (int i = 0; i < kCalls; ++i) {
            if (work.bChanges) std::wcscpy(szOut, pszPath);
            work.call(szOut, pszPath);
        }
    };
    auto floor = [&] {
        for (int i = 0; i < kCalls; ++i) Keep(std::wcscpy(szCopy, pszPath));
    };
    Comparison c = Compare(kTurns, ours, floor);
    double dNs = c.dFirst / kCalls * 1e9, dFloorNs = c.dSecond / kCalls * 1e9;
    std::printf("%-34ls %-5s %8.1f ns, %5.2f x a copy (%5.1f ns) spread %2.0f%%%s\n", work.pszWhat,
                pszLength, dNs, c.Ratio(), dFloorNs, c.dSpread * 100,
                work.bChanges ? ", with its copy" : "");
}
} // namespace

int main() {
    std::wstring strLong = LongPath();
    for (const Work& work : kWorks) {
        Run(work, "short", kShort);
        Run(work, "long", strLong.c_str());
    }
    return 0;
}
