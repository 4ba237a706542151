// Properties that other programs put on a window of ours.
#include "support/program_folder.h"
#include "support/start_process.h"
#include "wnd/core/cswnd.h"
#include "wnd/wnd_probe.h"

#include <gtest/gtest.h>
#include <cstring>
#include <new>

namespace {
constexpr UINT kMsg = WM_APP + 3;

/// Has another program set the property "CSWND"; whether it could.
bool SetFromOutside(HWND hwnd, const void* pValue) {
    auto textOf = [](const void* p) {
        return std::to_wstring(reinterpret_cast<unsigned long long>(p));
    };
    return RunToEnd(L"\"" + ProgramFolder() + L"property_probe.exe\" " + textOf(hwnd) + L" CSWND " +
                    textOf(pValue)) &&
           ::GetPropW(hwnd, L"CSWND") == pValue;
}

/// What a hostile program may find to write there.
class Hostile {
  public:
    explicit Hostile(HWND hwnd) {
        pUnmapped = ::VirtualAlloc(nullptr, 0x10000, MEM_RESERVE, PAGE_NOACCESS);
        // Wherever an object might have its handle, here stands the window's.
        for (HWND& h : handles) h = hwnd;
        auto* pGone = new (bytes) ProbeWnd(record);
        pGone->Attach(hwnd);
        pGone->~ProbeWnd();
        HWND hLeft = nullptr; // and the one that is gone names the window still
        std::memcpy(&hLeft, bytes + OffsetOfHandle(), sizeof(hLeft));
        bNamesStill = hLeft == hwnd;
    }
    ~Hostile() { ::VirtualFree(pUnmapped, 0, MEM_RELEASE); }
    Hostile(const Hostile&) = delete;
    Hostile& operator=(const Hostile&) = delete;

    const void* Null() { return nullptr; }
    const void* One() { return reinterpret_cast<const void*>(1); }
    const void* Unmapped() { return pUnmapped; }
    const void* NoObject() { return handles; }
    const void* GoneObject() { return static_cast<CSWnd*>(reinterpret_cast<ProbeWnd*>(bytes)); }
    bool NamesStill() const { return bNamesStill; }

  private:
    static std::size_t OffsetOfHandle() {
        ProbeRecord unused;
        ProbeWnd wnd(unused);
        return static_cast<std::size_t>(reinterpret_cast<char*>(&wnd.hWnd) -
                                        reinterpret_cast<char*>(&wnd));
    }

    void* pUnmapped;
    HWND handles[256];
    ProbeRecord record;
    alignas(ProbeWnd) unsigned char bytes[sizeof(ProbeWnd)];
    bool bNamesStill = false;
};

struct HostileCase {
    const char* pszName;
    const void* (Hostile::*pfnValue)();
};
class CSWndForeignProperty : public testing::TestWithParam<HostileCase> {};

TEST_P(CSWndForeignProperty, IsNotBelieved) {
    ProbeClass cls;
    ProbeRecord record, recordParent;
    ProbeWnd parent(recordParent), wnd(record);
    ASSERT_EQ(1, parent.Make());
    ASSERT_EQ(1, wnd.Make(parent));
    HWND hwnd = wnd;
    Hostile hostile(hwnd);
    EXPECT_TRUE(hostile.NamesStill());
    if (!SetFromOutside(hwnd, (hostile.*GetParam().pfnValue)()))
        GTEST_SKIP() << "the platform lets no other process mark a window";

    EXPECT_EQ(nullptr, CSWnd::FromHandle(hwnd));
    size_t nBefore = record.messages.size();
    EXPECT_EQ(0, ::SendMessageW(hwnd, kMsg, 0, 0)) << "a window without a valid object";
    EXPECT_EQ(0, ::SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0)) << "has not even the default";
    EXPECT_EQ(nBefore, record.messages.size());
    ::SendMessageW(parent, WM_SETTINGCHANGE, 5, 0);
    EXPECT_EQ(record.log.end(), std::find(record.log.begin(), record.log.end(), "setting 5 0"));

    // Once the object's own name is back, so is the object.
    ::SetPropW(hwnd, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(hwnd));
    ::SendMessageW(hwnd, kMsg, 0, 0);
    EXPECT_EQ(1, record.Count(kMsg));
    parent.Destroy();
    EXPECT_EQ(1, record.nPostNcDestroys);
}
INSTANTIATE_TEST_SUITE_P(Value, CSWndForeignProperty,
                         testing::Values(HostileCase{"Null", &Hostile::Null},
                                         HostileCase{"One", &Hostile::One},
                                         HostileCase{"Unmapped", &Hostile::Unmapped},
                                         HostileCase{"NoObject", &Hostile::NoObject},
                                         HostileCase{"GoneObject", &Hostile::GoneObject}),
                         [](const auto& row) { return std::string(row.param.pszName); });

TEST(CSWndProperty, OfAnAttachedObjectIsBelieved) {
    PlainWnd plain;
    ProbeRecord record;
    ProbeWnd wnd(record);
    wnd.Attach(plain);
    ::SetPropW(plain, L"CSWND", static_cast<CSWnd*>(&wnd));
    EXPECT_EQ(&wnd, CSWnd::FromHandle(plain)) << "it lives and names the window";
    wnd.Detach();
    EXPECT_EQ(nullptr, CSWnd::FromHandle(plain));
    ::RemovePropW(plain, L"CSWND");
}
} // namespace
