#include "app/single_instance.h"

#include <gtest/gtest.h>
#include <string>

namespace {
std::wstring UniqueName() {
    static int n = 0;
    return L"Test" + std::to_wstring(::GetCurrentProcessId()) + L"_" + std::to_wstring(++n);
}

/// Another process that asks for the mark and keeps it while the object lives.
class OtherProcess {
  public:
    OtherProcess(int bGlobal, const std::wstring& strName) {
        SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
        HANDLE hChildIn = nullptr, hChildOut = nullptr;
        ::CreatePipe(&hChildIn, &hIn, &security, 0);
        ::CreatePipe(&hOut, &hChildOut, &security, 0);
        // Only the child may hold its ends: else its input never ends.
        ::SetHandleInformation(hIn, HANDLE_FLAG_INHERIT, 0);
        ::SetHandleInformation(hOut, HANDLE_FLAG_INHERIT, 0);
        wchar_t szPath[MAX_PATH];
        ::GetModuleFileNameW(nullptr, szPath, MAX_PATH);
        std::wstring strFolder = szPath;
        strFolder.resize(strFolder.rfind(L'\\') + 1);
        std::wstring strLine = L"\"" + strFolder + L"instance_probe.exe\" " +
                               std::to_wstring(bGlobal) + L" " + strName;
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        si.dwFlags = STARTF_USESTDHANDLES;
        si.hStdInput = hChildIn;
        si.hStdOutput = hChildOut;
        EXPECT_TRUE(::CreateProcessW(nullptr, strLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                     nullptr, &si, &pi));
        ::CloseHandle(hChildIn);
        ::CloseHandle(hChildOut);
        char ch = 0;
        DWORD cb = 0;
        if (::ReadFile(hOut, &ch, 1, &cb, nullptr) && cb) nAnswer = ch - '0';
    }
    ~OtherProcess() {
        ::CloseHandle(hIn);
        EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(pi.hProcess, 10000));
        ::CloseHandle(hOut);
        ::CloseHandle(pi.hThread);
        ::CloseHandle(pi.hProcess);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    int nAnswer = -1;

  private:
    HANDLE hIn = nullptr, hOut = nullptr;
    PROCESS_INFORMATION pi{};
};

TEST(SingleInstanceXP, SecondProcessOfTheNameIsNotTheFirst) {
    for (int bGlobal : {0, 1}) {
        std::wstring strName = UniqueName();
        {
            OtherProcess first(bGlobal, strName);
            EXPECT_EQ(1, first.nAnswer);
            OtherProcess second(bGlobal, strName);
            EXPECT_EQ(0, second.nAnswer);
            SingleInstanceXP here;
            EXPECT_EQ(0, here.IsFirstInstance(bGlobal, strName.c_str()));
            OtherProcess foreign(bGlobal, strName + L"x");
            EXPECT_EQ(1, foreign.nAnswer);
        }
        OtherProcess later(bGlobal, strName); // the mark went with its process
        EXPECT_EQ(1, later.nAnswer);
    }
}

TEST(SingleInstanceXP, GlobalAndLocalDoNotSeeEachOther) {
    std::wstring strName = UniqueName();
    OtherProcess local(0, strName);
    OtherProcess global(1, strName);
    EXPECT_EQ(1, local.nAnswer);
    EXPECT_EQ(1, global.nAnswer);
}

TEST(SingleInstanceXP, MarkHasTheProductsName) {
    std::wstring strName = UniqueName();
    SingleInstanceXP instance;
    ASSERT_EQ(1, instance.IsFirstInstance(1, strName.c_str()));
    HANDLE h = ::OpenEventW(SYNCHRONIZE, FALSE, (L"Global\\Orvanta_App_" + strName).c_str());
    EXPECT_NE(nullptr, h);
    EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), ::WaitForSingleObject(h, 0));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, AskedAgainTheFirstStaysTheFirst) {
    std::wstring strName = UniqueName();
    SingleInstanceXP instance;
    EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
    EXPECT_EQ(1, instance.IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkGoesWithTheObject) {
    std::wstring strName = UniqueName();
    { EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str())); }
    EXPECT_EQ(1, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
}

TEST(SingleInstanceXP, MarkThatCannotBeMadeGivesZero) {
    std::wstring strName = UniqueName();
    HANDLE h = ::CreateMutexW(nullptr, FALSE, (L"Local\\Orvanta_App_" + strName).c_str());
    EXPECT_EQ(0, SingleInstanceXP().IsFirstInstance(0, strName.c_str()));
    ::CloseHandle(h);
}

TEST(SingleInstanceXP, LongNamesAreCut) {
    std::wstring strLong(300, L'n');
    SingleInstanceXP instance, other;
    EXPECT_EQ(1, instance.IsFirstInstance(0, strLong.c_str()));
    EXPECT_EQ(0, other.IsFirstInstance(0, (strLong + L"x").c_str()));
    EXPECT_EQ(1, other.IsFirstInstance(0, nullptr));
}
} // namespace
