// Reading 1 MiB of ini text in memory beside a plain pass over its lines with wcschr.

#include "../measure.h"
#include "store/ini/ini_file.h"

#include <cwchar>
#include <string>

namespace {
constexpr std::size_t kSize = (1 << 20) / sizeof(wchar_t);

/// Sections of ten variables, a comment and a blank line.
std::wstring MakeText() {
    std::wstring str;
    for (unsigned n = 0; str.size() < kSize; ++n) {
        if (n % 10 == 0) {
            str += L"\r\n; what follows is number " + std::to_wstring(n) + L"\r\n[Section" +
                   std::to_wstring(n / 10) + L"]\r\n";
        }
        str += L"Name" + std::to_wstring(n) + L"=C:\\Program Files\\Some Folder\\file" +
               std::to_wstring(n * 7919) + L".ext\r\n";
    }
    str.resize(str.rfind(L'\n', kSize - 1) + 1);
    return str;
}

class Counter : public IniFile {
  public:
    unsigned nVariables = 0;
    int CallBack(CallBackFlag nFlag, const wchar_t*, const wchar_t*, const wchar_t*) override {
        nVariables += nFlag == cbVar;
        return 1;
    }
};
} // namespace

int main() {
    std::wstring strText = MakeText();
    volatile unsigned nLines = 0;
    unsigned nVariables = 0;
    auto plain = [&] {
        unsigned n = 0;
        for (const wchar_t* psz = strText.c_str(); (psz = std::wcschr(psz, L'\n')); ++psz) ++n;
        nLines = n;
    };
    auto ini = [&] {
        Counter counter;
        if (!counter.ReadAll(strText.data(), static_cast<unsigned>(strText.size()))) return;
        nVariables = counter.nVariables;
    };
    Comparison c = Compare(201, plain, ini);
    if (nVariables * 10 < nLines * 7) {
        std::puts("the text was not read");
        return 2;
    }
    return Report("wcschr over the lines / IniFile::ReadAll, 1 MiB", c, 0.5, false) ? 0 : 1;
}
