// The text log: what a series of operations would do, as text instead of in the registry.

#include "store/registry/reg_key.h"

#include "runtime/text/text_format.h"

#include <cwchar>

constinit int RegKey::bLogMode = 0;
constinit wchar_t* RegKey::pszLog = nullptr;
constinit unsigned RegKey::nLogSizeChars = 0;
constinit long RegKey::lError = 0;
constinit const wchar_t* RegKey::pszFmtPrefix = L"%s%s";

namespace {
constexpr std::size_t kLineSize = 255; // with the terminator; longer lines are cut, ends and all
} // namespace

void RegKey::StartLog(wchar_t* pszBuffer) {
    bLogMode = 1;
    pszLog = pszBuffer;
    nLogSizeChars = 0;
}

unsigned RegKey::EndLog() {
    bLogMode = 0;
    if (!nLogSizeChars) return 0;
    if (pszLog) *pszLog = 0;
    return nLogSizeChars + 1;
}

/// Appends one line. Always 1, which is what a logged operation gives.
int RegKey::Log(const wchar_t* pszFormat, ...) {
    wchar_t szLine[kLineSize];
    va_list args;
    va_start(args, pszFormat);
    auto cch = static_cast<unsigned>(FormatTextV(szLine, kLineSize, pszFormat, args));
    va_end(args);
    if (pszLog) {
        std::wmemcpy(pszLog, szLine, cch);
        pszLog += cch;
    }
    nLogSizeChars += cch;
    return 1;
}
