#include "store/reg_tree.h"
#include "shell/namespace/shell_notify.h"
#include "store/registry/reg_register.h"
#include "support/replace_import.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>
#include <optional>
#include <utility>
#include <vector>

extern "C" FARPROC __imp_SHChangeNotify;

namespace {
constexpr const wchar_t* kClsid = L"{7E55A117-0000-4000-8000-0123456789AB}";
constexpr const wchar_t* kDll = L"C:\\App\\ext.dll";
constexpr const wchar_t* kName = L"Tessaly test";
const std::wstring kCurrentVersion = L"Software\\Microsoft\\Windows\\CurrentVersion";
const std::wstring kApproved = kCurrentVersion + L"\\Shell Extensions\\Approved";
const std::wstring kHelpers = kCurrentVersion + L"\\Explorer\\Browser Helper Objects";

/// Counts what the shell is told about associations.
class AssociationEar {
  public:
    AssociationEar() {
        notify.Register(window.Get(), SHCNE_ASSOCCHANGED | SHCNE_RENAMEFOLDER, kMsg,
                        static_cast<const ITEMIDLIST*>(nullptr), 1);
    }
    /// How often since the last call: all that was told before an event of our own came back.
    int Count() {
        nMarks = 0;
        ::SHChangeNotify(SHCNE_RENAMEFOLDER, SHCNF_IDLIST, nullptr, nullptr);
        bHears = PumpUntil([&] { return nMarks > 0; }) ? 1 : 0;
        return std::exchange(nChanges, 0);
    }
    bool Hears() {
        Count();
        return bHears;
    }

  private:
    static constexpr UINT kMsg = WM_APP + 4;

    int nChanges = 0;
    int nMarks = 0;
    int bHears = 0;
    TestWindow window{[this](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != kMsg) return std::nullopt;
        ITEMIDLIST** ppidl = nullptr;
        long nEvent = 0;
        if (void* hLock = ShellNotify::OnMsgStart(wParam, lParam, &ppidl, &nEvent)) {
            ++(nEvent == SHCNE_ASSOCCHANGED ? nChanges : nMarks);
            ShellNotify::OnMsgEnd(hLock);
        }
        return 0;
    }};
    ShellNotify notify;
};

RegDump ClassDump(const std::wstring& strName = kName, const std::wstring& strDll = kDll) {
    RegDump dump;
    dump.values[L""] = StrContent(strName);
    dump.subkeys[L"InProcServer32"].values = {{L"", StrContent(strDll)},
                                              {L"ThreadingModel", StrContent(L"Apartment")}};
    return dump;
}

/// Keeps the parts of the registry that the lists write to, and compares them whole.
class RegRegister : public testing::Test {
  protected:
    RegTree cls{HKEY_CLASSES_ROOT, std::wstring(L"CLSID\\") + kClsid};
    RegTree type1{HKEY_CLASSES_ROOT, L"TessalyTestType1"};
    RegTree type2{HKEY_CLASSES_ROOT, L"TessalyTestType2"};
    const wchar_t* types[3] = {L"TessalyTestType1", L"TessalyTestType2", nullptr};

    static RegDump Approved() { return RegTree::DumpOf(HKEY_LOCAL_MACHINE, kApproved); }
    static RegDump Helpers() { return RegTree::DumpOf(HKEY_LOCAL_MACHINE, kHelpers); }
    /// The names of all classes.
    static std::vector<std::wstring> Classes() {
        std::vector<std::wstring> names;
        HKEY hkey = nullptr;
        ::RegOpenKeyExW(HKEY_CLASSES_ROOT, L"CLSID", 0, KEY_READ, &hkey);
        wchar_t szName[300];
        for (DWORD n = 0, cch = 300;
             !::RegEnumKeyExW(hkey, n, szName, &cch, nullptr, nullptr, nullptr, nullptr);
             ++n, cch = 300)
            names.push_back(szName);
        ::RegCloseKey(hkey);
        return names;
    }
    static RegDump ValuesOfClasses() {
        RegDump dump = RegTree::DumpOf(HKEY_CLASSES_ROOT, L"CLSID");
        dump.subkeys.clear();
        return dump;
    }
    void TearDown() override {
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kApproved.c_str(), 0, KEY_ALL_ACCESS, &hkey))
            return;
        ::RegDeleteValueW(hkey, kClsid);
        ::RegCloseKey(hkey);
    }
    static int Com(RegKey::Op op, int bNotify = 0) {
        return RegisterComServer(op, kName, kDll, kClsid, bNotify);
    }
    static int Obj(RegKey::Op op) { return RegisterShellExtObject(op, kName, kDll, kClsid); }
    int Ext(RegKey::Op op, int bNotify = 0) {
        return RegisterShellExt(op, kName, kDll, kClsid, types, L"DropHandlers", bNotify);
    }
    static RegDump TypeDump(const std::wstring& strKind = L"DropHandlers") {
        RegDump dump;
        dump.subkeys[L"shellex"].subkeys[strKind].subkeys[kName].values[L""] = StrContent(kClsid);
        return dump;
    }
};

using RegisterCom = RegRegister;
using RegisterShell = RegRegister;

TEST_F(RegisterCom, SetTestAndDelete) {
    auto classes = Classes();
    EXPECT_EQ(0, Com(RegKey::OpTest));
    EXPECT_EQ(1, Com(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    EXPECT_EQ(1, Com(RegKey::OpTest));
    EXPECT_EQ(1, Com(RegKey::OpTestNoCase));
    EXPECT_EQ(classes.size() + 1, Classes().size());
    EXPECT_EQ(1, Com(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    EXPECT_EQ(1, Com(RegKey::OpDelete));
    EXPECT_FALSE(cls.Exists());
    EXPECT_EQ(classes, Classes());
    EXPECT_EQ(1, Com(RegKey::OpDelete));
    EXPECT_EQ(classes, Classes());
}

TEST_F(RegisterCom, TestComparesEveryEntry) {
    Com(RegKey::OpSet);
    EXPECT_EQ(0, RegisterComServer(RegKey::OpTest, L"other", kDll, kClsid, 0));
    EXPECT_EQ(0, RegisterComServer(RegKey::OpTest, kName, L"D:\\ext.dll", kClsid, 0));
    EXPECT_EQ(0, RegisterComServer(RegKey::OpTest, kName, L"c:\\app\\EXT.DLL", kClsid, 0));
    EXPECT_EQ(1, RegisterComServer(RegKey::OpTestNoCase, kName, L"c:\\app\\EXT.DLL", kClsid, 0));
    cls.PutStr(L"ThreadingModel", L"Both", L"InProcServer32");
    EXPECT_EQ(0, Com(RegKey::OpTest));
    RegDump expected = ClassDump();
    expected.subkeys[L"InProcServer32"].values[L"ThreadingModel"] = StrContent(L"Both");
    EXPECT_EQ(expected, cls.Dump());
    cls.Delete();
    cls.PutStr(L"", kName);
    EXPECT_EQ(0, Com(RegKey::OpTest)); // no server
    EXPECT_TRUE(cls.Dump().subkeys.empty());
}

TEST_F(RegisterCom, SetStartsFromAnEmptyKey) {
    cls.PutStr(L"stale", L"text");
    cls.PutStr(L"", L"text", L"TypeLib\\deep");
    cls.PutStr(L"stale", L"text", L"InProcServer32");
    EXPECT_EQ(1, RegisterComServer(RegKey::OpSet, L"new", L"new.dll", kClsid, 0));
    EXPECT_EQ(ClassDump(L"new", L"new.dll"), cls.Dump());
}

TEST_F(RegisterCom, EmptyTextsAreNotWritten) {
    EXPECT_EQ(1, RegisterComServer(RegKey::OpSet, L"", nullptr, kClsid, 0));
    RegDump expected;
    expected.subkeys[L"InProcServer32"].values[L"ThreadingModel"] = StrContent(L"Apartment");
    EXPECT_EQ(expected, cls.Dump());
    EXPECT_EQ(1, RegisterComServer(RegKey::OpTest, nullptr, L"", kClsid, 0));
}

TEST_F(RegisterCom, WithoutAClassNothingIsDone) {
    auto classes = Classes();
    RegDump values = ValuesOfClasses();
    for (int nOp : {0, 1, 2, 5, 6}) {
        auto op = static_cast<RegKey::Op>(nOp);
        for (const wchar_t* psz : {static_cast<const wchar_t*>(nullptr), L""}) {
            EXPECT_EQ(0, RegisterComServer(op, kName, kDll, psz, 0));
            EXPECT_EQ(0, RegisterShellExtObject(op, kName, kDll, psz));
            EXPECT_EQ(0, RegisterBHO(op, kName, kDll, psz, 0));
        }
    }
    EXPECT_EQ(classes, Classes());
    EXPECT_EQ(values, ValuesOfClasses());
}

TEST_F(RegisterCom, StepThatFailsEndsTheListAndLeavesWhatWasDone) {
    ASSERT_TRUE(cls.PlantDeadLink(L"InProcServer32"));
    RegDump approved = Approved();
    EXPECT_EQ(0, Com(RegKey::OpSet));
    EXPECT_EQ(0, Obj(RegKey::OpSet));
    EXPECT_EQ(0, Ext(RegKey::OpSet));
    EXPECT_EQ(0, RegisterBHO(RegKey::OpSet, kName, kDll, kClsid, 0));
    EXPECT_EQ(StrContent(kName), cls.Dump().values[L""]);
    EXPECT_EQ(approved, Approved());
    EXPECT_FALSE(type1.Exists());
    EXPECT_FALSE(RegTree::Exists(HKEY_LOCAL_MACHINE, kHelpers + L"\\" + kClsid));
    EXPECT_EQ(0, Com(RegKey::OpTest));
}

TEST_F(RegisterCom, OtherOperationsWriteNothing) {
    auto classes = Classes();
    EXPECT_EQ(0, Com(RegKey::OpGet));
    EXPECT_EQ(0, Com(RegKey::OpTestAbsent));
    EXPECT_EQ(classes, Classes());
}

TEST_F(RegisterCom, SetAlwaysOpensNothingForWriting) {
    auto classes = Classes();
    RegDump approved = Approved(), helpers = Helpers();
    EXPECT_EQ(0, Com(RegKey::OpSetAlways));
    EXPECT_EQ(0, Obj(RegKey::OpSetAlways));
    EXPECT_EQ(0, Ext(RegKey::OpSetAlways));
    EXPECT_EQ(0, RegisterBHO(RegKey::OpSetAlways, kName, kDll, kClsid, 0));
    EXPECT_TRUE(cls.Dump().values.empty());
    EXPECT_EQ(approved, Approved());
    EXPECT_EQ(helpers, Helpers());
    EXPECT_FALSE(type1.Exists());
}

TEST_F(RegisterCom, SetAlwaysEmptiesTheClass) {
    EXPECT_EQ(1, Obj(RegKey::OpSet));
    RegDump approved = Approved();
    EXPECT_EQ(0, Obj(RegKey::OpSetAlways));
    EXPECT_EQ(RegDump(), cls.Dump()); // replaced, and then not open for writing
    EXPECT_EQ(approved, Approved());
}

TEST_F(RegisterShell, ObjectIsSetTestedAndDeleted) {
    auto classes = Classes();
    RegDump approved = Approved();
    EXPECT_EQ(0, Obj(RegKey::OpTest));
    EXPECT_EQ(1, Obj(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    RegDump expected = approved;
    expected.values[kClsid] = StrContent(kName);
    EXPECT_EQ(expected, Approved());
    EXPECT_EQ(1, Obj(RegKey::OpTest));
    EXPECT_EQ(1, Com(RegKey::OpTest));
    EXPECT_EQ(1, Obj(RegKey::OpDelete));
    EXPECT_EQ(approved, Approved());
    EXPECT_EQ(classes, Classes());
}

TEST_F(RegisterShell, TestMissesTheApproval) {
    Com(RegKey::OpSet);
    RegDump approved = Approved();
    EXPECT_EQ(0, Obj(RegKey::OpTest));
    EXPECT_EQ(approved, Approved());
    EXPECT_EQ(1, Obj(RegKey::OpSet));
    EXPECT_EQ(1, Obj(RegKey::OpTest));
}

TEST_F(RegisterShell, HandlersOfEveryTypeAreSetTestedAndDeleted) {
    auto classes = Classes();
    RegDump approved = Approved();
    EXPECT_EQ(0, Ext(RegKey::OpTest));
    EXPECT_FALSE(type1.Exists());
    EXPECT_EQ(1, Ext(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    EXPECT_EQ(TypeDump(), type1.Dump());
    EXPECT_EQ(TypeDump(), type2.Dump());
    EXPECT_EQ(1, Ext(RegKey::OpTest));
    EXPECT_EQ(1, Obj(RegKey::OpTest));
    EXPECT_EQ(1, Ext(RegKey::OpDelete));
    RegDump left;
    left.subkeys[L"shellex"].subkeys[L"DropHandlers"];
    EXPECT_EQ(left, type1.Dump());
    EXPECT_EQ(left, type2.Dump());
    EXPECT_EQ(approved, Approved());
    EXPECT_EQ(classes, Classes());
    EXPECT_EQ(0, Ext(RegKey::OpTest));
}

TEST_F(RegisterShell, DeletionMakesTheListsOfTheTypes) {
    EXPECT_EQ(1, Ext(RegKey::OpDelete));
    RegDump left;
    left.subkeys[L"shellex"].subkeys[L"DropHandlers"];
    EXPECT_EQ(left, type1.Dump());
}

TEST_F(RegisterShell, SetReplacesAHandlerAndLeavesItsNeighbours) {
    type1.PutStr(L"stale", L"text", std::wstring(L"shellex\\DropHandlers\\") + kName);
    type1.PutStr(L"", L"{other}", L"shellex\\DropHandlers\\Other");
    type1.PutStr(L"", L"text");
    EXPECT_EQ(1, Ext(RegKey::OpSet));
    RegDump expected = TypeDump();
    expected.values[L""] = StrContent(L"text");
    expected.subkeys[L"shellex"].subkeys[L"DropHandlers"].subkeys[L"Other"].values[L""] =
        StrContent(L"{other}");
    EXPECT_EQ(expected, type1.Dump());
    EXPECT_EQ(1, Ext(RegKey::OpDelete));
    expected.subkeys[L"shellex"].subkeys[L"DropHandlers"].subkeys.erase(kName);
    EXPECT_EQ(expected, type1.Dump());
}

TEST_F(RegisterShell, TestFindsTheTypeThatIsNotRegistered) {
    EXPECT_EQ(1, Ext(RegKey::OpSet));
    type2.PutStr(L"", L"{other}", std::wstring(L"shellex\\DropHandlers\\") + kName);
    EXPECT_EQ(0, Ext(RegKey::OpTest));
    type2.Delete();
    EXPECT_EQ(0, Ext(RegKey::OpTest));
    EXPECT_FALSE(type2.Exists());
}

TEST_F(RegisterShell, FailureHalfWayLeavesWhatWasDone) {
    std::wstring strTooLong(128, L't'); // for a component of a path
    types[1] = strTooLong.c_str();
    auto classes = Classes();
    EXPECT_EQ(0, Ext(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    EXPECT_EQ(TypeDump(), type1.Dump());
    EXPECT_EQ(1u, Approved().values.count(kClsid));
    EXPECT_EQ(0, Ext(RegKey::OpDelete)); // at the same place; what comes before is gone
    EXPECT_EQ(classes, Classes());
    EXPECT_FALSE(type1.Dump().subkeys[L"shellex"].subkeys[L"DropHandlers"].subkeys.count(kName));
    EXPECT_EQ(0u, Approved().values.count(kClsid));
}

TEST_F(RegisterShell, TypesEndWithNullOrEmptyText) {
    types[1] = L"";
    EXPECT_EQ(1, Ext(RegKey::OpSet));
    EXPECT_TRUE(type1.Exists());
    EXPECT_FALSE(type2.Exists());
    const wchar_t* none[] = {nullptr};
    EXPECT_EQ(1, RegisterShellExt(RegKey::OpTest, kName, kDll, kClsid, none, L"DropHandlers", 0));
    EXPECT_EQ(1,
              RegisterShellExt(RegKey::OpTest, kName, kDll, kClsid, nullptr, L"DropHandlers", 0));
}

TEST_F(RegisterShell, WithoutANameOrKindNothingIsDone) {
    auto classes = Classes();
    for (const wchar_t* psz : {static_cast<const wchar_t*>(nullptr), L""}) {
        EXPECT_EQ(0, RegisterShellExt(RegKey::OpSet, psz, kDll, kClsid, types, L"DropHandlers", 0));
        EXPECT_EQ(0, RegisterShellExt(RegKey::OpSet, kName, kDll, kClsid, types, psz, 0));
        EXPECT_EQ(0, SetupCtxMenuRegistry(RegKey::OpSet, psz, kDll, kClsid, types, 0));
    }
    EXPECT_EQ(classes, Classes());
    EXPECT_FALSE(type1.Exists());
}

TEST_F(RegisterShell, ContextMenusAreAKindOfHandlers) {
    EXPECT_EQ(1, SetupCtxMenuRegistry(RegKey::OpSet, kName, kDll, kClsid, types, 0));
    EXPECT_EQ(TypeDump(L"ContextMenuHandlers"), type1.Dump());
    EXPECT_EQ(TypeDump(L"ContextMenuHandlers"), type2.Dump());
    EXPECT_EQ(1, SetupCtxMenuRegistry(RegKey::OpTest, kName, kDll, kClsid, types, 0));
    EXPECT_EQ(0, Ext(RegKey::OpTest));
    EXPECT_EQ(1, SetupCtxMenuRegistry(RegKey::OpDelete, kName, kDll, kClsid, types, 0));
    EXPECT_FALSE(cls.Exists());
}

TEST_F(RegisterShell, ShellIsToldOnlyWhenAsked) {
    AssociationEar ear;
    if (!ear.Hears()) GTEST_SKIP() << "this platform does not tell a window of associations";
    struct Row {
        const char* pszName;
        RegKey::Op op;
        int nCom, nExt, nHelper;
    };
    const Row kRows[] = {
        {"set", RegKey::OpSet, 1, 1, 1},
        {"test", RegKey::OpTest, 1, 0, 0},
        {"delete", RegKey::OpDelete, 1, 1, 1},
        {"test in vain", RegKey::OpTest, 0, 0, 0},
    };
    RegTree helpers(HKEY_LOCAL_MACHINE, kHelpers + L"\\" + kClsid);
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.pszName);
        for (int bNotify : {1, 0}) {
            Com(row.op, bNotify);
            EXPECT_EQ(bNotify * row.nCom, ear.Count());
            Ext(row.op, bNotify);
            EXPECT_EQ(bNotify * row.nExt, ear.Count());
            SetupCtxMenuRegistry(row.op, kName, kDll, kClsid, types, bNotify);
            EXPECT_EQ(bNotify * row.nExt, ear.Count());
            RegisterBHO(row.op, kName, kDll, kClsid, bNotify);
            EXPECT_EQ(bNotify * row.nHelper, ear.Count());
            Obj(row.op);
            EXPECT_EQ(0, ear.Count());
        }
    }
}

std::vector<std::pair<LONG, UINT>> told; // events and flags
void WINAPI NoteTold(LONG nEvent, UINT nFlags, LPCVOID p1, LPCVOID p2) {
    told.push_back({nEvent, nFlags});
    EXPECT_EQ(nullptr, p1);
    EXPECT_EQ(nullptr, p2);
}

TEST_F(RegisterShell, ShellIsToldAtOnceButOfComServers) {
    ReplaceImport replaced(__imp_SHChangeNotify, &NoteTold);
    RegTree helper(HKEY_LOCAL_MACHINE, kHelpers + L"\\" + kClsid);
    for (RegKey::Op op : {RegKey::OpSet, RegKey::OpDelete}) {
        told.clear();
        Com(op, 1);
        Ext(op, 1);
        RegisterBHO(op, kName, kDll, kClsid, 1);
        EXPECT_EQ((std::vector<std::pair<LONG, UINT>>{
                      {0x8000000, 0}, {0x8000000, 0x1000}, {0x8000000, 0x1000}}),
                  told);
    }
}

TEST_F(RegisterShell, LogHoldsTheLinesAndTheKeysStay) {
    auto classes = Classes();
    RegDump approved = Approved();
    wchar_t szLog[1000];
    RegKey::StartLog(szLog);
    EXPECT_EQ(0, Ext(RegKey::OpSet)); // the class cannot be opened below the pretend key
    RegKey::EndLog();
    EXPECT_STREQ(L"[HKCLS\\CLSID]\r\n", szLog);
    RegKey::StartLog(szLog);
    EXPECT_EQ(1, Ext(RegKey::OpDelete));
    RegKey::EndLog();
    EXPECT_STREQ(L"[HKCLS\\CLSID]\r\n"
                 L"[HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved]"
                 L"\r\n{7E55A117-0000-4000-8000-0123456789AB}=@\r\n"
                 L"[HKEY_CLASSES_ROOT\\TessalyTestType1\\shellex\\DropHandlers]\r\n"
                 L"[HKEY_CLASSES_ROOT\\TessalyTestType2\\shellex\\DropHandlers]\r\n",
                 szLog);
    EXPECT_EQ(classes, Classes());
    EXPECT_EQ(approved, Approved());
    EXPECT_FALSE(type1.Exists());
}

class RegisterBrowserHelper : public RegRegister {
  protected:
    RegTree helper{HKEY_LOCAL_MACHINE, kHelpers + L"\\" + kClsid};

    static int Helper(RegKey::Op op) { return RegisterBHO(op, kName, kDll, kClsid, 0); }
};

TEST_F(RegisterBrowserHelper, SetTestAndDelete) {
    auto classes = Classes();
    RegDump before = Helpers();
    EXPECT_EQ(0, Helper(RegKey::OpTest));
    EXPECT_EQ(before, Helpers());
    EXPECT_EQ(1, Helper(RegKey::OpSet));
    EXPECT_EQ(ClassDump(), cls.Dump());
    RegDump expected = before;
    expected.subkeys[kClsid];
    EXPECT_EQ(expected, Helpers());
    EXPECT_EQ(1, Helper(RegKey::OpTest));
    EXPECT_EQ(1, Helper(RegKey::OpDelete));
    EXPECT_EQ(before, Helpers());
    EXPECT_EQ(classes, Classes());
    EXPECT_EQ(0, Helper(RegKey::OpTest));
}

TEST_F(RegisterBrowserHelper, TestDoesNotLookForTheEntryInTheList) {
    EXPECT_EQ(1, Helper(RegKey::OpSet));
    helper.Delete();
    EXPECT_EQ(1, Helper(RegKey::OpTest));
    EXPECT_FALSE(helper.Exists());
}

TEST_F(RegisterBrowserHelper, SetReplacesTheEntry) {
    helper.PutStr(L"stale", L"text", L"deep");
    EXPECT_EQ(1, Helper(RegKey::OpSet));
    EXPECT_EQ(RegDump(), helper.Dump());
    EXPECT_TRUE(helper.Exists());
}

class RegisterDriver : public testing::Test {
  protected:
    const std::wstring strBoot = L"SYSTEM\\CurrentControlSet\\Control\\SafeBoot";
    std::vector<std::wstring> planted;

    void TearDown() override {
        for (const auto& strName : planted) {
            DeleteRegTree(HKEY_LOCAL_MACHINE, strBoot + L"\\Minimal\\" + strName);
            DeleteRegTree(HKEY_LOCAL_MACHINE, strBoot + L"\\Network\\" + strName);
        }
    }
    RegDump Dump() const { return RegTree::DumpOf(HKEY_LOCAL_MACHINE, strBoot); }
    /// Runs the list for a driver of that name, which is cleaned up after the test.
    int Run(RegKey::Op op, const std::wstring& strName) {
        planted.push_back(strName);
        planted.push_back((strName + L".sys").substr(0, 64));
        return RegisterDriverForSafeMode(op, strName.c_str());
    }
    static void Add(RegDump& dump, const std::wstring& strName) {
        RegDump driver;
        driver.values[L""] = StrContent(L"Driver");
        for (const wchar_t* pszMode : {L"Minimal", L"Network"})
            dump.subkeys[pszMode].subkeys[strName] = driver;
    }
};

TEST_F(RegisterDriver, SetTestAndDelete) {
    RegDump before = Dump();
    EXPECT_EQ(0, Run(RegKey::OpTest, L"TessalyTestDriver"));
    EXPECT_EQ(before, Dump());
    EXPECT_EQ(1, Run(RegKey::OpSet, L"TessalyTestDriver"));
    RegDump expected = before;
    Add(expected, L"TessalyTestDriver");
    Add(expected, L"TessalyTestDriver.sys");
    EXPECT_EQ(expected, Dump());
    EXPECT_EQ(1, Run(RegKey::OpTest, L"TessalyTestDriver"));
    EXPECT_EQ(1, Run(RegKey::OpDelete, L"TessalyTestDriver"));
    for (const wchar_t* pszMode : {L"Minimal", L"Network"}) before.subkeys[pszMode];
    EXPECT_EQ(before, Dump());
    EXPECT_EQ(0, Run(RegKey::OpTest, L"TessalyTestDriver"));
    EXPECT_EQ(1, Run(RegKey::OpDelete, L"TessalyTestDriver"));
    EXPECT_EQ(before, Dump());
}

TEST_F(RegisterDriver, SetReplacesAndDeleteTakesAll) {
    RegTree stale(HKEY_LOCAL_MACHINE, strBoot + L"\\Network\\TessalyTestDriver.sys");
    stale.PutStr(L"stale", L"text", L"deep");
    EXPECT_EQ(1, Run(RegKey::OpSet, L"TessalyTestDriver"));
    RegDump driver;
    driver.values[L""] = StrContent(L"Driver");
    EXPECT_EQ(driver, stale.Dump());
    stale.PutStr(L"stale", L"text", L"deep");
    EXPECT_EQ(1, Run(RegKey::OpDelete, L"TessalyTestDriver"));
    EXPECT_FALSE(stale.Exists());
}

TEST_F(RegisterDriver, TestFindsEveryMissingPart) {
    for (const wchar_t* psz : {L"Minimal\\TessalyTestDriver", L"Minimal\\TessalyTestDriver.sys",
                               L"Network\\TessalyTestDriver", L"Network\\TessalyTestDriver.sys"}) {
        EXPECT_EQ(1, Run(RegKey::OpSet, L"TessalyTestDriver"));
        DeleteRegTree(HKEY_LOCAL_MACHINE, strBoot + L"\\" + psz);
        EXPECT_EQ(0, Run(RegKey::OpTest, L"TessalyTestDriver"));
        RegTree other(HKEY_LOCAL_MACHINE, strBoot + L"\\" + psz);
        other.PutStr(L"", L"Service");
        EXPECT_EQ(0, Run(RegKey::OpTest, L"TessalyTestDriver"));
    }
}

TEST_F(RegisterDriver, FileNameIsCutAt64Characters) {
    for (unsigned n : {60u, 61u, 64u, 65u}) {
        Run(RegKey::OpDelete, L"x"); // so that both modes are there
        RegDump before = Dump(), expected = before;
        std::wstring strName(n, L'd');
        EXPECT_EQ(1, Run(RegKey::OpSet, strName));
        Add(expected, strName);
        Add(expected, (strName + L".sys").substr(0, 64));
        EXPECT_EQ(expected, Dump());
        EXPECT_EQ(1, Run(RegKey::OpDelete, strName));
        EXPECT_EQ(before, Dump());
    }
}

TEST_F(RegisterDriver, FailureEndsTheList) {
    EXPECT_EQ(0, Run(RegKey::OpSet, std::wstring(300, L'd')));
    EXPECT_EQ(0, RegisterDriverForSafeMode(RegKey::OpSet, L""));
    EXPECT_EQ(0, RegisterDriverForSafeMode(RegKey::OpSet, nullptr));
    EXPECT_EQ(0, RegisterDriverForSafeMode(RegKey::OpDelete, L""));
    RegDump dump = Dump();
    EXPECT_FALSE(dump.subkeys[L"Minimal"].subkeys.count(std::wstring(64, L'd')));
    EXPECT_FALSE(dump.subkeys[L"Minimal"].values.count(L""));
}

TEST_F(RegisterDriver, SetAlwaysEmptiesTheFirstKey) {
    Run(RegKey::OpSet, L"TessalyTestDriver");
    RegDump expected = Dump();
    expected.subkeys[L"Minimal"].subkeys[L"TessalyTestDriver"].values.clear();
    EXPECT_EQ(0, Run(RegKey::OpSetAlways, L"TessalyTestDriver"));
    EXPECT_EQ(expected, Dump());
}

TEST_F(RegisterDriver, FailureHalfWayLeavesWhatWasDone) {
    Run(RegKey::OpDelete, L"TessalyTestDriver"); // so that both modes are there
    RegTree network(HKEY_LOCAL_MACHINE, strBoot + L"\\Network\\TessalyTestDriver");
    RegDump expected = Dump();
    RegDump driver;
    driver.values[L""] = StrContent(L"Driver");
    expected.subkeys[L"Minimal"].subkeys[L"TessalyTestDriver"] = driver;
    expected.subkeys[L"Minimal"].subkeys[L"TessalyTestDriver.sys"] = driver;
    expected.subkeys[L"Network"].subkeys[L"TessalyTestDriver"];
    ASSERT_TRUE(network.PlantDeadLink(L""));
    EXPECT_EQ(0, Run(RegKey::OpSet, L"TessalyTestDriver"));
    EXPECT_EQ(expected, Dump());
    EXPECT_EQ(0, Run(RegKey::OpDelete, L"TessalyTestDriver"));
    expected.subkeys[L"Minimal"].subkeys.erase(L"TessalyTestDriver");
    expected.subkeys[L"Minimal"].subkeys.erase(L"TessalyTestDriver.sys");
    EXPECT_EQ(expected, Dump());
}

TEST_F(RegisterDriver, LogHoldsTheSection) {
    RegDump before = Dump();
    wchar_t szLog[500];
    RegKey::StartLog(szLog);
    EXPECT_EQ(0, RegisterDriverForSafeMode(RegKey::OpSet, L"TessalyTestDriver"));
    RegKey::EndLog();
    EXPECT_STREQ(L"[HKLM\\SYSTEM\\CurrentControlSet\\Control\\SafeBoot\\Minimal]\r\n", szLog);
    EXPECT_EQ(before, Dump());
}
} // namespace
