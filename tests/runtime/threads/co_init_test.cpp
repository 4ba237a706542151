#include "runtime/threads/co_init.h"

#include <gtest/gtest.h>
#include <windows.h>
#include <objbase.h>
#include <shlguid.h>
#include <shobjidl.h>
#include <thread>

namespace {
HRESULT CreateLink() {
    void* p = nullptr;
    HRESULT hr =
        ::CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &p);
    if (p) static_cast<IUnknown*>(p)->Release();
    return hr;
}

template <class Fn>
void OnNewThread(Fn fn) { // a thread whose COM nobody else has started
    std::thread(fn).join();
}

TEST(CoInit, GivesComForTheBlock) {
    OnNewThread([] {
        EXPECT_EQ(CO_E_NOTINITIALIZED, CreateLink());
        {
            CoInit co;
            EXPECT_EQ(S_OK, CreateLink());
        }
        EXPECT_EQ(CO_E_NOTINITIALIZED, CreateLink());
    });
}

TEST(CoInitEx, EndsWithTheLastObject) {
    OnNewThread([] {
        {
            CoInitEx first;
            {
                CoInitEx second;
                EXPECT_EQ(S_OK, CreateLink());
            }
            EXPECT_EQ(S_OK, CreateLink());
        }
        EXPECT_EQ(CO_E_NOTINITIALIZED, CreateLink());
        CoInitEx again;
        EXPECT_EQ(S_OK, CreateLink());
    });
}
} // namespace
