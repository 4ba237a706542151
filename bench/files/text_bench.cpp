// CSFile::ReadText of 8 MiB of UTF-8 beside one read and one conversion of the same file.

#include "../measure.h"
#include "files/stream/core_file.h"
#include "files/text/cs_file.h"
#include "runtime/base/dll_buf.h"

#include <cstdlib>
#include <string>

namespace {
constexpr std::size_t kSize = 8 << 20;

std::string MakeText(const char* pszLineEnd) {
    std::string str = "\xEF\xBB\xBF";
    while (str.size() < kSize) {
        str += "The quick brown f\xC3\xB6x jumps over 0123456789 lazy dogs, for 20 \xE2\x82\xAC";
        str += pszLineEnd;
    }
    return str;
}

/// What a caller would do without the library, who knows that it is UTF-8.
unsigned ReadPlainly(const wchar_t* pszPath) {
    CoreFile file(pszPath, 0);
    const DWORD cb = file.GetSize(nullptr);
    void* pBytes = std::malloc(cb);
    auto* pszText = static_cast<wchar_t*>(std::malloc(cb * sizeof(wchar_t)));
    int cch = 0;
    if (pBytes && pszText && file.ReadBin(pBytes, cb, nullptr)) {
        cch = ::MultiByteToWideChar(CP_UTF8, 0, static_cast<const char*>(pBytes),
                                    static_cast<int>(cb), pszText, static_cast<int>(cb));
    }
    std::free(pszText);
    std::free(pBytes);
    return static_cast<unsigned>(cch);
}

unsigned ReadText(const wchar_t* pszPath) {
    unsigned cch = 0;
    wchar_t* pszText = CSFile::ReadText(pszPath, &cch, nullptr, L'?');
    FreeDllBuf(pszText);
    return cch;
}

bool Measure(const std::wstring& strPath, const char* pszLineEnd, const char* pszWhat) {
    std::string str = MakeText(pszLineEnd);
    bool bOk =
        CoreFile::WriteFile(strPath.c_str(), str.data(), static_cast<unsigned>(str.size())) != 0;
    auto ours = [&] { return Seconds([&] { bOk &= ReadText(strPath.c_str()) != 0; }); };
    auto plain = [&] { return Seconds([&] { bOk &= ReadPlainly(strPath.c_str()) != 0; }); };
    Comparison c = CompareTimed(41, ours, plain);
    ::DeleteFileW(strPath.c_str());
    if (!bOk) std::puts("a file could not be read");
    return Report(pszWhat, c, 1.3, true) && bOk;
}
} // namespace

int main() {
    wchar_t szTemp[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szTemp);
    std::wstring strPath = szTemp + (L"text_bench" + std::to_wstring(::GetCurrentProcessId()));
    bool bFast = Measure(strPath, "\r\n", "CSFile::ReadText / read and conversion, 8 MiB of UTF-8");
    bFast &= Measure(strPath, "\n", "the same, to be given carriage returns");
    return bFast ? 0 : 1;
}
