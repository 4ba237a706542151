#include "app/shell_start_recorder.h"
#include "runtime/threads/co_init.h"
#include "shell/folders/fake_link.h"
#include "shell/folders/link_reader.h"
#include "shell/folders/shell_link.h"
#include "shell/namespace/pidl.h"
#include "support/temp_folder.h"

#include <shlobj.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {
using Calls = std::vector<std::wstring>;

TEST(ShellLink, IsMadeInProcess) {
    FakeLink fake;
    {
        iShellLink link;
        EXPECT_EQ(1, link.IsReady());
        EXPECT_EQ((Calls{L"Create link"}), fake.calls);
        EXPECT_EQ(1, fake.nAlive);
    }
    EXPECT_EQ(0, fake.nAlive);
}

TEST(ShellLink, RefusedByThePlatformIsEmptyAndTellsWhy) {
    FakeLink fake;
    fake.results[L"Create"] = REGDB_E_CLASSNOTREG;
    iShellLink link;
    EXPECT_EQ(0, link.IsReady());
    EXPECT_EQ(REGDB_E_CLASSNOTREG, link.GetLastResult());
    wchar_t sz[MAX_PATH] = L"";
    ITEMIDLIST* pidl = nullptr;
    WORD nKey = 0;
    int n = 0;
    EXPECT_EQ(0, link.GetPath(sz, nullptr, 0));
    EXPECT_EQ(0, link.GetIDList(pidl));
    EXPECT_EQ(0, link.GetArgs(sz, 5));
    EXPECT_EQ(0, link.GetDescr(sz, 5));
    EXPECT_EQ(0, link.GetDir(sz));
    EXPECT_EQ(0, link.GetHotKey(nKey));
    EXPECT_EQ(0, link.GetShow(n));
    EXPECT_EQ(0, link.GetIcon(sz, n));
    EXPECT_EQ(0, link.SetPath(L"x"));
    EXPECT_EQ(0, link.SetIDList(nullptr));
    EXPECT_EQ(0, link.SetRelativePath(L"x", nullptr));
    EXPECT_EQ(0, link.SetArgs(L"x"));
    EXPECT_EQ(0, link.SetDescr(L"x"));
    EXPECT_EQ(0, link.SetDir(L"x"));
    EXPECT_EQ(0, link.SetHotKey(1));
    EXPECT_EQ(0, link.SetShow(1));
    EXPECT_EQ(0, link.SetIcon(L"x", 1));
    EXPECT_EQ(0, link.Resolve(nullptr, 0));
    EXPECT_EQ(0, link.Load(L"x"));
    EXPECT_EQ(0, link.Save(L"x"));
    EXPECT_EQ(0, link.Execute(nullptr));
    iPersistFile file;
    iPersistStream stream;
    EXPECT_EQ(0, link.GetPersistFile(file));
    EXPECT_EQ(0, link.GetPersistStream(stream));
}

/// Every forwarder: the call it makes, and how it tells of the result.
struct Forwarder {
    const char* pszName;
    int (*fn)(iShellLink& link);
    const wchar_t* pszCall; // all of it
};
class ForwarderTest : public testing::TestWithParam<Forwarder> {};
wchar_t szOut[MAX_PATH];
WIN32_FIND_DATAW dataOut;
TEST_P(ForwarderTest, CallsAndKeepsTheResult) {
    const std::wstring strCall = GetParam().pszCall;
    const std::wstring strKey = strCall.substr(0, strCall.find(L' '));
    const struct {
        HRESULT hr;
        int nResult;
    } rows[] = {{S_OK, 1}, {S_FALSE, 1}, {E_FAIL, 0}, {E_ACCESSDENIED, 0}};
    for (const auto& row : rows) {
        FakeLink fake;
        iShellLink link;
        fake.results[strKey] = row.hr;
        EXPECT_EQ(row.nResult, GetParam().fn(link));
        EXPECT_EQ(row.hr, link.GetLastResult());
        EXPECT_EQ((Calls{L"Create link", strCall}), fake.calls);
    }
}
int nShowOut, nIndexOut;
WORD nKeyOut;
INSTANTIATE_TEST_SUITE_P(
    All, ForwarderTest,
    testing::Values(
        Forwarder{"GetPath",
                  [](iShellLink& link) { return link.GetPath(szOut, &dataOut, SLGP_UNCPRIORITY); },
                  L"GetPath 260 2"},
        Forwarder{"GetIDList",
                  [](iShellLink& link) {
                      ITEMIDLIST* pidl = nullptr;
                      return link.GetIDList(pidl);
                  },
                  L"GetIDList"},
        Forwarder{"GetArgs", [](iShellLink& link) { return link.GetArgs(szOut, 17); },
                  L"GetArguments 17"},
        Forwarder{"GetDescr", [](iShellLink& link) { return link.GetDescr(szOut, 18); },
                  L"GetDescription 18"},
        Forwarder{"GetDir", [](iShellLink& link) { return link.GetDir(szOut); },
                  L"GetWorkingDirectory 260"},
        Forwarder{"GetHotKey", [](iShellLink& link) { return link.GetHotKey(nKeyOut); },
                  L"GetHotkey"},
        Forwarder{"GetShow", [](iShellLink& link) { return link.GetShow(nShowOut); },
                  L"GetShowCmd"},
        Forwarder{"GetIcon", [](iShellLink& link) { return link.GetIcon(szOut, nIndexOut); },
                  L"GetIconLocation 260"},
        Forwarder{"SetPath", [](iShellLink& link) { return link.SetPath(L"C:\\x"); },
                  L"SetPath C:\\x"},
        Forwarder{"SetIDListOfNull", [](iShellLink& link) { return link.SetIDList(nullptr); },
                  L"SetIDList 0"},
        Forwarder{"SetRelativePath",
                  [](iShellLink& link) {
                      return link.SetRelativePath(L"C:\\x.lnk",
                                                  reinterpret_cast<const ITEMIDLIST*>(&link));
                  },
                  L"SetRelativePath C:\\x.lnk 0"},
        Forwarder{"SetArgs", [](iShellLink& link) { return link.SetArgs(L"a b"); },
                  L"SetArguments a b"},
        Forwarder{"SetDescr", [](iShellLink& link) { return link.SetDescr(L"d"); },
                  L"SetDescription d"},
        Forwarder{"SetDir", [](iShellLink& link) { return link.SetDir(L"C:\\d"); },
                  L"SetWorkingDirectory C:\\d"},
        Forwarder{"SetHotKey", [](iShellLink& link) { return link.SetHotKey(0xFFFF); },
                  L"SetHotkey 65535"},
        Forwarder{"SetShow", [](iShellLink& link) { return link.SetShow(7); }, L"SetShowCmd 7"},
        Forwarder{"SetIcon", [](iShellLink& link) { return link.SetIcon(L"i.dll", -5); },
                  L"SetIconLocation i.dll -5"},
        Forwarder{"Resolve",
                  [](iShellLink& link) { return link.Resolve(reinterpret_cast<HWND>(9), 121); },
                  L"Resolve 9 121"}),
    [](const auto& row) { return std::string(row.param.pszName); });

TEST(ShellLink, OutputsAreTheInterfaces) {
    FakeLink fake;
    iShellLink link;
    EXPECT_EQ(1, link.GetPath(szOut, &dataOut, 0));
    EXPECT_STREQ(L"C:\\target", szOut);
    EXPECT_EQ(99u, dataOut.nFileSizeLow);
    EXPECT_EQ(1, link.GetArgs(szOut, 4));
    EXPECT_STREQ(L"arg", szOut);
    EXPECT_EQ(1, link.GetDescr(szOut, 4));
    EXPECT_STREQ(L"des", szOut);
    EXPECT_EQ(1, link.GetDir(szOut));
    EXPECT_STREQ(L"C:\\dir", szOut);
    EXPECT_EQ(1, link.GetHotKey(nKeyOut));
    EXPECT_EQ(0x641, nKeyOut);
    EXPECT_EQ(1, link.GetShow(nShowOut));
    EXPECT_EQ(SW_SHOWMAXIMIZED, nShowOut);
    EXPECT_EQ(1, link.GetIcon(szOut, nIndexOut));
    EXPECT_STREQ(L"icon.dll", szOut);
    EXPECT_EQ(-7, nIndexOut);
}

TEST(ShellLink, LoadAndSaveGoThroughATemporaryFileInterface) {
    FakeLink fake;
    {
        iShellLink link;
        EXPECT_EQ(1, link.Load(L"C:\\a.lnk"));
        EXPECT_EQ(1, link.Save(L"C:\\b.lnk"));
        EXPECT_EQ((Calls{L"Create link", L"QueryFile", L"Load C:\\a.lnk 32", L"QueryFile",
                         L"Save C:\\b.lnk 1"}),
                  fake.calls);
        fake.results[L"Load"] = STG_E_FILENOTFOUND;
        fake.results[L"Save"] = E_FAIL;
        EXPECT_EQ(0, link.Load(L"C:\\a.lnk"));
        EXPECT_EQ(0, link.Save(L"C:\\b.lnk"));
        fake.results.clear();
        fake.results[L"QueryFile"] = E_NOINTERFACE;
        fake.calls.clear();
        EXPECT_EQ(0, link.Load(L"C:\\a.lnk"));
        EXPECT_EQ(0, link.Save(L"C:\\b.lnk"));
        EXPECT_EQ((Calls{L"QueryFile", L"QueryFile"}), fake.calls);
    }
    EXPECT_EQ(0, fake.nAlive);
}

TEST(ShellLink, PersistInterfacesAreQueriedAfresh) {
    FakeLink fake;
    {
        iShellLink first, second;
        iPersistFile file;
        EXPECT_EQ(1, first.GetPersistFile(file));
        EXPECT_EQ(1, second.GetPersistFile(file));
        EXPECT_EQ(1, file.Load(L"x", 0));
        iPersistStream stream;
        EXPECT_EQ(0, first.GetPersistStream(stream)); // the fake has none
        EXPECT_EQ(0, stream.IsReady());
        fake.results[L"QueryFile"] = E_NOINTERFACE;
        EXPECT_EQ(0, first.GetPersistFile(file));
        EXPECT_EQ(0, file.IsReady()); // what it held is released
    }
    EXPECT_EQ(0, fake.nAlive);
}

// Execute

TEST(ShellLinkExecute, HandsOverWhatTheLinkHolds) {
    CoInit com;
    FakeLink fake;
    PIDL list;
    ASSERT_EQ(1, list.Attach(CSIDL_DRIVES));
    fake.pidl = list;
    ShellStartRecorder recorder;
    unsigned nItems = 0;
    recorder.fnDuring = [&](SHELLEXECUTEINFOW& info) {
        nItems = PIDL::GetCount(static_cast<ITEMIDLIST*>(info.lpIDList));
    };
    iShellLink link;
    EXPECT_EQ(1, link.Execute(reinterpret_cast<HWND>(3)));
    ShellCall call = recorder.TakeOne();
    EXPECT_EQ(112u, call.cb);
    EXPECT_EQ(static_cast<ULONG>(SEE_MASK_IDLIST), call.nMask);
    EXPECT_EQ(reinterpret_cast<HWND>(3), call.hwnd);
    EXPECT_EQ(MaybeText(), call.verb);
    EXPECT_EQ(MaybeText(L"C:\\target"), call.file);
    EXPECT_EQ(MaybeText(L"arguments"), call.parameters);
    EXPECT_EQ(MaybeText(L"C:\\dir"), call.directory);
    EXPECT_EQ(SW_SHOWMAXIMIZED, call.nShow);
    EXPECT_NE(nullptr, call.pidl);
    EXPECT_EQ(1u, nItems);
}

TEST(ShellLinkExecute, EmptyTextsAndNoListAreNull) {
    FakeLink fake;
    fake.strTarget = fake.strArgs = fake.strDir = L"";
    ShellStartRecorder recorder;
    iShellLink link;
    EXPECT_EQ(1, link.Execute(nullptr));
    ShellCall call = recorder.TakeOne();
    EXPECT_EQ(0u, call.nMask);
    EXPECT_EQ(MaybeText(), call.file);
    EXPECT_EQ(MaybeText(), call.parameters);
    EXPECT_EQ(MaybeText(), call.directory);
    EXPECT_EQ(nullptr, call.pidl);
}

TEST(ShellLinkExecute, FailuresOfTheLinkLeaveEmptyTexts) {
    FakeLink fake;
    for (const wchar_t* psz : {L"GetPath", L"GetArguments", L"GetWorkingDirectory", L"GetIDList"})
        fake.results[psz] = E_FAIL;
    ShellStartRecorder recorder;
    iShellLink link;
    EXPECT_EQ(1, link.Execute(nullptr));
    ShellCall call = recorder.TakeOne();
    EXPECT_EQ(MaybeText(), call.file);
    EXPECT_EQ(MaybeText(), call.parameters);
    EXPECT_EQ(MaybeText(), call.directory);
    EXPECT_EQ(nullptr, call.pidl);
    EXPECT_EQ(0u, call.nMask);
}

TEST(ShellLinkExecute, LongestArgumentsComeWhole) {
    FakeLink fake;
    ShellStartRecorder recorder;
    // 4,096 bytes hold 2,047 characters and their terminator.
    for (std::size_t cch : {2046u, 2047u, 2048u, 5000u}) {
        fake.strArgs = std::wstring(cch, L'a');
        iShellLink link;
        EXPECT_EQ(1, link.Execute(nullptr));
        EXPECT_EQ(std::min<std::size_t>(cch, 2047), recorder.TakeOne().parameters.str.size());
    }
}

TEST(ShellLinkExecute, RefusalOfTheShellIsTold) {
    FakeLink fake;
    ShellStartRecorder recorder;
    recorder.bSucceed = FALSE;
    recorder.dwError = ERROR_CANCELLED;
    iShellLink link;
    EXPECT_EQ(0, link.Execute(nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_CANCELLED), ::GetLastError());
}

// The platform's links

class RealLink : public testing::Test {
  protected:
    CoInit com;
    TempFolder temp;
};

void Fill(iShellLink& link, const std::wstring& strTarget) {
    EXPECT_EQ(1, link.SetPath(strTarget.c_str()));
    EXPECT_EQ(1, link.SetArgs(L"/one \"two three\" \u0416"));
    EXPECT_EQ(1, link.SetDescr(L"A text of \u65E5\u672C"));
    EXPECT_EQ(1, link.SetDir(L"C:\\windows"));
    EXPECT_EQ(1, link.SetHotKey(MAKEWORD('K', HOTKEYF_CONTROL | HOTKEYF_ALT)));
    EXPECT_EQ(1, link.SetShow(SW_SHOWMAXIMIZED));
    EXPECT_EQ(1, link.SetIcon(L"C:\\windows\\icons.dll", -12));
}

void ExpectFilled(iShellLink& link, const std::wstring& strTarget) {
    wchar_t sz[MAX_PATH];
    WIN32_FIND_DATAW data{};
    WORD nKey = 0;
    int n = 0;
    EXPECT_EQ(1, link.GetPath(sz, &data, 0));
    EXPECT_EQ(0, ::lstrcmpiW(strTarget.c_str(), sz));
    EXPECT_EQ(1, link.GetArgs(sz, MAX_PATH));
    EXPECT_STREQ(L"/one \"two three\" \u0416", sz);
    EXPECT_EQ(1, link.GetDescr(sz, MAX_PATH));
    EXPECT_STREQ(L"A text of \u65E5\u672C", sz);
    EXPECT_EQ(1, link.GetDir(sz));
    EXPECT_STREQ(L"C:\\windows", sz);
    EXPECT_EQ(1, link.GetHotKey(nKey));
    EXPECT_EQ(MAKEWORD('K', HOTKEYF_CONTROL | HOTKEYF_ALT), nKey);
    EXPECT_EQ(1, link.GetShow(n));
    int nBare = 0; // not every platform gives back what it stored
    static_cast<IShellLinkW*>(link)->GetShowCmd(&nBare);
    EXPECT_EQ(nBare, n);
    EXPECT_EQ(1, link.GetIcon(sz, n));
    EXPECT_STREQ(L"C:\\windows\\icons.dll", sz);
    EXPECT_EQ(-12, n);
}

TEST_F(RealLink, ComesBackFromAFile) {
    const std::wstring strTarget = temp.MakeFile(L"target.txt", "x"), strLink = temp.File(L"l.lnk");
    iShellLink made;
    Fill(made, strTarget);
    ASSERT_EQ(1, made.Save(strLink.c_str()));
    iShellLink read;
    ASSERT_EQ(1, read.Load(strLink.c_str()));
    ExpectFilled(read, strTarget);
    ITEMIDLIST* pidl = nullptr;
    EXPECT_EQ(1, read.GetIDList(pidl));
    ITEMIDLIST* pidlExpected = GetPidlOf(strTarget.c_str());
    EXPECT_EQ(0, PIDL::CompareAbs(pidlExpected, pidl));
    PIDL::Free(pidl);
    PIDL::Free(pidlExpected);
}

TEST_F(RealLink, ComesBackFromAStream) {
    const std::wstring strTarget = temp.MakeFile(L"target.txt", "x");
    iShellLink made, read;
    Fill(made, strTarget);
    iPersistStream from(made), to(read);
    ASSERT_EQ(1, from.IsReady());
    IStream* pStream = nullptr;
    ASSERT_EQ(S_OK, ::CreateStreamOnHGlobal(nullptr, TRUE, &pStream));
    EXPECT_EQ(S_OK, static_cast<IPersistStream*>(from)->Save(pStream, TRUE));
    pStream->Seek({}, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(S_OK, static_cast<IPersistStream*>(to)->Load(pStream));
    pStream->Release();
    ExpectFilled(read, strTarget);
}

TEST_F(RealLink, EmptyOneHasNoTarget) {
    iShellLink link;
    wchar_t sz[MAX_PATH] = L"old";
    link.GetPath(sz, nullptr, 0);
    EXPECT_STREQ(L"", sz);
    ITEMIDLIST* pidl = reinterpret_cast<ITEMIDLIST*>(&link);
    EXPECT_EQ(1, link.GetIDList(pidl));
    EXPECT_EQ(nullptr, pidl);
}

TEST_F(RealLink, LoadOfWhatIsNoLinkFails) {
    iShellLink link;
    EXPECT_EQ(0, link.Load(temp.File(L"missing.lnk").c_str()));
    EXPECT_EQ(0, link.Load(temp.MakeFile(L"empty.lnk", "").c_str()));
    EXPECT_EQ(0, link.Load(temp.MakeFile(L"text.lnk", std::string(500, 'x')).c_str()));
    EXPECT_EQ(0, link.Save((temp.Get() + L"\\no folder\\l.lnk").c_str()));
}

TEST_F(RealLink, SizesOfTheOutputs) {
    iShellLink link;
    ASSERT_EQ(1, link.SetArgs(L"arguments"));
    ASSERT_EQ(1, link.SetDescr(L"description"));
    wchar_t sz[32];
    link.GetArgs(sz, 1);
    EXPECT_STREQ(L"", sz);
    link.GetArgs(sz, 4);
    EXPECT_STREQ(L"arg", sz);
    link.GetArgs(sz, 10);
    EXPECT_STREQ(L"arguments", sz);
    link.GetDescr(sz, 2);
    EXPECT_STREQ(L"d", sz);
}

// The files, as another program reads them

class LinkFile : public RealLink {
  protected:
    void SetUp() override {
        if (FindLinkReader().empty()) GTEST_SKIP() << "no Python, or the script is not here";
    }
};

std::string Utf8(const std::wstring& str) {
    std::string strOut(str.size() * 3 + 1, 0);
    strOut.resize(static_cast<std::size_t>(
        ::WideCharToMultiByte(CP_UTF8, 0, str.c_str(), static_cast<int>(str.size()), strOut.data(),
                              static_cast<int>(strOut.size()), nullptr, nullptr)));
    return strOut;
}

std::string Hex(const ITEMIDLIST* pidl) {
    std::string str;
    const auto* p = reinterpret_cast<const unsigned char*>(pidl);
    for (unsigned n = 0; n < PIDL::GetSizeTotal(pidl); ++n) {
        str += "0123456789abcdef"[p[n] >> 4];
        str += "0123456789abcdef"[p[n] & 15];
    }
    return str;
}

TEST_F(LinkFile, HoldsAllThatWasSet) {
    const std::wstring strTarget = temp.MakeFile(L"target.txt", "12345"),
                       strLink = temp.File(L"l.lnk");
    iShellLink link;
    Fill(link, strTarget);
    ASSERT_EQ(1, link.Save(strLink.c_str()));
    ITEMIDLIST* pidl = nullptr;
    ASSERT_EQ(1, link.GetIDList(pidl));
    auto values = ReadLinkFile(strLink);
    EXPECT_EQ("00021401-0000-0000-C000-000000000046", values["clsid"]);
    EXPECT_EQ(std::to_string(PIDL::GetCount(pidl)), values["items"]);
    EXPECT_EQ(Hex(pidl), values["list"]);
    EXPECT_EQ(Utf8(L"/one \"two three\" \u0416"), values["args"]);
    EXPECT_EQ(Utf8(L"A text of \u65E5\u672C"), values["description"]);
    EXPECT_EQ("C:\\windows", values["dir"]);
    EXPECT_EQ("C:\\windows\\icons.dll", values["icon"]);
    EXPECT_EQ("-12", values["index"]);
    EXPECT_EQ("3", values["show"]);
    EXPECT_EQ(std::to_string(MAKEWORD('K', HOTKEYF_CONTROL | HOTKEYF_ALT)), values["hotkey"]);
    EXPECT_EQ(Utf8(strTarget), values["path"]);
    EXPECT_EQ("1", values["whole"]);
    PIDL::Free(pidl);
}

TEST_F(LinkFile, OfAListAloneHoldsThatList) {
    PIDL drives;
    ASSERT_EQ(1, drives.Attach(CSIDL_DRIVES));
    iShellLink link;
    ASSERT_EQ(1, link.SetIDList(drives));
    const std::wstring strLink = temp.File(L"drives.lnk");
    ASSERT_EQ(1, link.Save(strLink.c_str()));
    auto values = ReadLinkFile(strLink);
    EXPECT_EQ("1", values["items"]);
    EXPECT_EQ(Hex(drives), values["list"]);
    EXPECT_EQ(0u, values.count("path"));
    EXPECT_EQ("1", values["whole"]);
}

TEST_F(LinkFile, EmptyOneIsWholeToo) {
    iShellLink link;
    const std::wstring strLink = temp.File(L"empty.lnk");
    ASSERT_EQ(1, link.Save(strLink.c_str()));
    auto values = ReadLinkFile(strLink);
    EXPECT_EQ("1", values["whole"]);
    for (const char* psz : {"items", "path", "args", "description", "dir", "icon"})
        EXPECT_EQ(0u, values.count(psz)) << psz;
}
} // namespace
