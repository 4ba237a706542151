// Item id lists beside bare memory of the same sizes, and what the comparison of absolute lists
// costs. `bench_pidl`.

#include "../measure.h"
#include "shell/namespace/pidl.h"

#include <windows.h>
#include <objbase.h>
#include <cstring>
#include <string>

namespace {
constexpr int kTurns = 1001; // short ones: most fall between what the machine does besides

/// A list of nCount items of cbItem bytes each.
std::vector<BYTE> MakeList(unsigned nCount, unsigned cbItem) {
    std::vector<BYTE> bytes;
    for (unsigned n = 0; n < nCount; ++n) {
        bytes.push_back(static_cast<BYTE>(cbItem));
        bytes.push_back(static_cast<BYTE>(cbItem >> 8));
        for (unsigned i = 2; i < cbItem; ++i) bytes.push_back(static_cast<BYTE>(n * 31 + i));
    }
    bytes.insert(bytes.end(), 2, 0);
    return bytes;
}

/// Six levels of one item each, appended from the empty list on, as a walk does; bare: the same
/// blocks of the same allocator, and the bytes copied. 1 if it keeps to its limit.
int MeasureAppend(const char* pszWhat, unsigned cbItem, int nRounds) {
    constexpr unsigned kLevels = 6;
    std::vector<BYTE> item = MakeList(1, cbItem);
    const auto* pidlItem = reinterpret_cast<const ITEMIDLIST*>(item.data());
    IMalloc* pMalloc = GetShellMalloc();
    bool bSame = true;
    std::vector<BYTE> expected = MakeList(0, 0);
    for (unsigned n = 0; n < kLevels; ++n) {
        expected.insert(expected.begin(), item.begin(), item.end() - 2);
    }
    auto ours = [&] {
        for (int i = 0; i < nRounds; ++i) {
            PIDL list;
            list.Reset();
            for (unsigned n = 0; n < kLevels; ++n) list.AppendOne(pidlItem);
            const ITEMIDLIST* pidl = list;
            bSame &= std::memcmp(pidl, expected.data(), expected.size()) == 0;
        }
    };
    auto bare = [&] {
        for (int i = 0; i < nRounds; ++i) {
            auto* p = static_cast<BYTE*>(pMalloc->Alloc(2));
            p[0] = p[1] = 0;
            for (unsigned n = 0; n < kLevels; ++n) {
                const std::size_t cb = std::size_t{n} * cbItem;
                p = static_cast<BYTE*>(pMalloc->Realloc(p, cb + cbItem + 2));
                std::memcpy(p + cb, item.data(), cbItem);
                p[cb + cbItem] = p[cb + cbItem + 1] = 0;
            }
            bSame &= std::memcmp(p, expected.data(), expected.size()) == 0;
            pMalloc->Free(p);
        }
    };
    Comparison c = Compare(kTurns, ours, bare);
    if (!bSame) {
        std::puts("a list is not what it should be");
        return 0;
    }
    return Report(pszWhat, c, 1.1, true);
}

/// Telling two stored lists apart by their bytes, as who looks for one in many does: the size of
/// one, and a comparison of that many bytes; bare: the same with a walk of its own. 1 if it keeps
/// to its limit.
int MeasureCompare() {
    constexpr int kRounds = 4000;
    std::vector<BYTE> a = MakeList(6, 90), b = a;
    PIDL listA(reinterpret_cast<const ITEMIDLIST*>(a.data()));
    PIDL listB(reinterpret_cast<const ITEMIDLIST*>(b.data()));
    const auto* volatile pA = reinterpret_cast<const BYTE*>(static_cast<ITEMIDLIST*>(listA));
    const auto* volatile pB = reinterpret_cast<const BYTE*>(static_cast<ITEMIDLIST*>(listB));
    unsigned nSame = 0;
    auto ours = [&] {
        for (int i = 0; i < kRounds; ++i) {
            const unsigned cb = listA.GetSizeTotal();
            const ITEMIDLIST *pidlA = listA, *pidlB = listB;
            nSame += cb == listB.GetSizeTotal() && std::memcmp(pidlA, pidlB, cb) == 0;
        }
    };
    auto size = [](const BYTE* p) {
        std::size_t cb = 0;
        for (;;) {
            unsigned short cbItem;
            std::memcpy(&cbItem, p + cb, 2);
            if (!cbItem) return cb + 2;
            cb += cbItem;
        }
    };
    auto bare = [&] {
        for (int i = 0; i < kRounds; ++i) {
            const BYTE *p = pA, *q = pB;
            const std::size_t cb = size(p);
            nSame -= cb == size(q) && std::memcmp(p, q, cb) == 0;
        }
    };
    Comparison c = Compare(kTurns, ours, bare);
    if (nSame) {
        std::puts("the lists differ");
        return 0;
    }
    return Report("size and bytes of two lists of 6 items, 4,000 x / bare", c, 1.1, true);
}

/// CompareAbs of two lists of six levels that differ in nothing but the last, or not at all.
/// Reported, as nearly all of it is the platform's.
int ReportCompareAbs() {
    constexpr int kRounds = 5, kWalkTurns = 101;
    wchar_t szTemp[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szTemp);
    std::wstring strRoot = std::wstring(szTemp).substr(0, 3) + L"pidl_bench" +
                           std::to_wstring(::GetCurrentProcessId());
    // The computer, the drive, and four more.
    std::wstring strFolder = strRoot;
    ::CreateDirectoryW(strFolder.c_str(), nullptr);
    for (const wchar_t* psz : {L"\\a", L"\\b"}) {
        strFolder += psz;
        ::CreateDirectoryW(strFolder.c_str(), nullptr);
    }
    std::wstring strOne = strFolder + L"\\one", strTwo = strFolder + L"\\two";
    ::CreateDirectoryW(strOne.c_str(), nullptr);
    ::CreateDirectoryW(strTwo.c_str(), nullptr);
    PIDL one, same, two;
    one.Attach(GetPidlOf(strOne.c_str()));
    same.Attach(GetPidlOf(strOne.c_str()));
    two.Attach(GetPidlOf(strTwo.c_str()));
    bool bOk = one.GetCount() == 6 && two.GetCount() == 6;
    auto equal = [&] {
        for (int i = 0; i < kRounds; ++i) bOk &= one.CompareAbs(same) == 0;
    };
    auto differing = [&] {
        for (int i = 0; i < kRounds; ++i) bOk &= one.CompareAbs(two) == -1;
    };
    Comparison c = Compare(kWalkTurns, equal, differing);
    for (const auto& str : {strOne, strTwo, strRoot + L"\\a\\b", strRoot + L"\\a", strRoot}) {
        ::RemoveDirectoryW(str.c_str());
    }
    if (!bOk) {
        std::puts("the absolute lists compare wrongly");
        return 0;
    }
    std::printf("CompareAbs of lists of 6 levels: %.3f ms for equal ones, %.3f ms for such that "
                "differ in the last\n",
                c.dFirst * 1e3 / kRounds, c.dSecond * 1e3 / kRounds);
    return 1;
}
} // namespace

int main() {
    if (FAILED(::CoInitialize(nullptr))) return 2;
    int bOk = MeasureAppend("6 x PIDL::AppendOne of 90 bytes, 300 x / bare memory", 90, 300);
    bOk &= MeasureAppend("6 x PIDL::AppendOne of 9,000 bytes, 40 x / bare memory", 9000, 40);
    bOk &= MeasureCompare();
    bOk &= ReportCompareAbs();
    ::CoUninitialize();
    return bOk ? 0 : 1;
}
