#include "runtime/messages/res_str.h"
#include "runtime/base/current_product.h"

#include <cstdint>
#include <utility>

namespace {
constexpr std::uintptr_t kLastPositiveId = 0xFFFF;
constexpr std::uintptr_t kFirstNegativeId = 0xFFFFFFFFFFFF0000; // -65536 extended with its sign
constexpr std::uintptr_t kFirstNegativeId32 = 0xFFFF0000;       // and extended with zeros
constexpr std::uintptr_t kLastNegativeId32 = 0xFFFFFFFF;
} // namespace

int IsResourceIdArg(const void* pArg) {
    // The whole value is looked at: of the pointers of this process some have bits 16 to 31 all
    // clear or all set.
    auto n = reinterpret_cast<std::uintptr_t>(pArg);
    return n <= kLastPositiveId || n >= kFirstNegativeId ||
           (n >= kFirstNegativeId32 && n <= kLastNegativeId32);
}

int GetResourceIdArg(const void* pArg) {
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(pArg)); // the low 32 bits
}

ResStr::ResStr(int nId, HINSTANCE hinst, int /*nUnused*/) { Load(nId, hinst); }

ResStr::~ResStr() = default;

const wchar_t* ResStr::Load(int nId, HINSTANCE hinst, int /*nUnused*/) {
    text = {};
    if (nId == 0) return L"";
    ConvertResourceId(nId, hinst);
    wchar_t szLoaded[kMessageSize] = {};
    ::LoadStringW(hinst, static_cast<UINT>(nId), szLoaded, kMessageSize);
    Replace(szLoaded);
    return *this;
}

/// Keeps a copy of pszNew unless that is empty or memory is short.
void ResStr::Replace(const wchar_t* pszNew) {
    if (!*pszNew) return;
    HeapArray<wchar_t> copy = CopyToHeap(pszNew);
    if (copy.IsReady()) text = std::move(copy);
}

void ResStr::Format(va_list args) {
    if (IsEmpty()) return;
    wchar_t szFormatted[kMessageSize] = {};
    FormatTextV(szFormatted, kMessageSize, text.Get(), args);
    Replace(szFormatted);
}

ResStrFmt::ResStrFmt(int nId, ...) : ResStr(nId) {
    va_list args;
    va_start(args, nId);
    Format(args);
    va_end(args);
}

ResStrFmt::ResStrFmt(int nId, HINSTANCE hinst, ArgList args) : ResStr(nId, hinst) {
    Format(args.v);
}

ResourceRef ResolveResourceId(int nId, HINSTANCE hinst, DefaultModule defaultModule) {
    // The product's own rule keeps the module that is named, and asks the application otherwise.
    if (nId < 0) hinst = nullptr;
    if (nId >= 0 && !hinst && defaultModule == DefaultModule::kLibrary)
        hinst = GetLibraryInstance();
    ConvertResourceId(nId, hinst);
    return {hinst, MAKEINTRESOURCEW(static_cast<WORD>(nId))};
}

void ConvertResourceId(int& nId, HINSTANCE& hinst) {
    if (nId == 0) return;
    if (!hinst) hinst = nId < 0 ? GetLibraryInstance() : GetCurrentProduct().pfnGetModule();
    // Unsigned, because the least int has no magnitude; no resource has that id anyway.
    if (nId < 0) nId = static_cast<int>(0u - static_cast<unsigned>(nId));
}

void StrAppendTextFmt(wchar_t* pszText, unsigned cch, int nFormatId, ...) {
    ResStr format(nFormatId);
    va_list args;
    va_start(args, nFormatId);
    StrAppendTextFmtV(pszText, cch, nFormatId ? static_cast<const wchar_t*>(format) : nullptr,
                      args);
    va_end(args);
}
