// CoreFile::CopyFileW and CSFile::Copy of 64 MiB beside the platform's own copy.

#include "../measure.h"
#include "files/stream/core_file.h"
#include "files/text/cs_file.h"

#include <string>

namespace {
constexpr std::size_t kSize = 64 << 20;

std::wstring MakeFolder() {
    wchar_t szTemp[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szTemp);
    std::wstring str = szTemp + (L"copy_bench" + std::to_wstring(::GetCurrentProcessId()));
    ::CreateDirectoryW(str.c_str(), nullptr);
    return str + L"\\";
}
} // namespace

int main() {
    std::wstring strFolder = MakeFolder();
    std::wstring strSource = strFolder + L"source", strOurs = strFolder + L"ours",
                 strTheirs = strFolder + L"theirs";
    bool bOk = false;
    {
        std::vector<unsigned char> data(kSize);
        for (std::size_t i = 0; i < kSize; ++i) data[i] = static_cast<unsigned char>(i * 31 >> 3);
        bOk = CoreFile::WriteFile(strSource.c_str(), data.data(), static_cast<unsigned>(kSize));
    }
    // Each copy is made anew; deleting it is not measured.
    auto theirs = [&] {
        double d =
            Seconds([&] { bOk &= ::CopyFileW(strSource.c_str(), strTheirs.c_str(), FALSE) != 0; });
        ::DeleteFileW(strTheirs.c_str());
        return d;
    };
    auto ours = [&] {
        double d = Seconds(
            [&] { bOk &= CoreFile::CopyFileW(strSource.c_str(), strOurs.c_str(), 0) != 0; });
        bOk &= CoreFile::GetSize64(strOurs.c_str()) == kSize;
        ::DeleteFileW(strOurs.c_str());
        return d;
    };
    auto careful = [&] {
        double d =
            Seconds([&] { bOk &= CSFile::Copy(strOurs.c_str(), strSource.c_str(), 0) != 0; });
        bOk &= CoreFile::GetSize64(strOurs.c_str()) == kSize;
        ::DeleteFileW(strOurs.c_str());
        return d;
    };
    Comparison c = CompareTimed(21, theirs, ours);
    Comparison cCareful = CompareTimed(21, theirs, careful);
    ::DeleteFileW(strSource.c_str());
    ::RemoveDirectoryW(strFolder.c_str());
    if (!bOk) {
        std::puts("a copy failed");
        return 2;
    }
    bool bFast = Report("the platform's copy / CoreFile::CopyFileW, 64 MiB", c, 0.9, false);
    bFast &= Report("the platform's copy / CSFile::Copy, 64 MiB", cCareful, 0.9, false);
    return bFast ? 0 : 1;
}
