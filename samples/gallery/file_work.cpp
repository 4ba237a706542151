#include "file_work.h"
#include "resource_ids.h"

#include <commctrl.h>
#include <shlobj.h>
#include <algorithm>

namespace {
constexpr SizeRule kRules[] = {
    {IDC_WORK_GROUP, 0, 0, 1, 1},  {IDC_WORK_FROM, 0, 0, 1, 0},   {IDC_WORK_BROWSE, 1, 0, 0, 0},
    {IDC_WORK_INTO, 0, 0, 1, 0},   {IDC_WORK_COPY, 1, 0, 0, 0},   {IDC_WORK_LIST, 0, 0, 1, 1},
    {IDC_WORK_THREE, 1, 0, 0, 0},  {IDC_WORK_WIPE, 1, 0, 0, 0},   {IDC_WORK_VERIFY, 1, 0, 0, 0},
    {IDC_WORK_DELETE, 1, 0, 0, 0}, {IDC_WORK_RESULT, 0, 1, 1, 0}, {IDC_WORK_BAR, 1, 1, 0, 0},
};

// A list is texts one behind the other, each with its terminator, and one more behind the last.
std::wstring MakeList(const std::vector<std::wstring>& texts) {
    std::wstring strList;
    for (const std::wstring& str : texts) strList += str + L'\0';
    return strList;
}

std::wstring MakePathList(const std::wstring& strTarget, const wchar_t* pszSource,
                          const std::wstring& strNames) {
    // Once for the size, once for the list.
    std::wstring strList(
        CSFile::MakeCopyList(strTarget.c_str(), pszSource, strNames.c_str(), nullptr), L'\0');
    CSFile::MakeCopyList(strTarget.c_str(), pszSource, strNames.c_str(), strList.data());
    return strList;
}

// The shell's dialog comes up with the folder that stands in the edit.
int CALLBACK OnBrowse(HWND hwnd, UINT uMsg, LPARAM, LPARAM lpFolder) {
    if (uMsg == BFFM_INITIALIZED) ::SendMessageW(hwnd, BFFM_SETSELECTIONW, TRUE, lpFolder);
    return 0;
}
} // namespace

void FileWork::OnInitDialog() {
    fromEdit.Init(&page, IDC_WORK_FROM, nullptr, kDropFolder);
    intoEdit.Init(&page, IDC_WORK_INTO, nullptr, kDropFolder);
}

void FileWork::UpdateControls() {
    wchar_t szFolder[MAX_PATH];
    ::GetTempPathW(MAX_PATH, szFolder);
    fromEdit.SetText(szFolder);
    intoEdit.SetText(szFolder);
    ShowFiles();
}

void FileWork::OnCommand(unsigned short nId, unsigned short nCode) {
    if (nId == IDC_WORK_FROM && nCode == EN_CHANGE) ShowFiles();
}

void FileWork::OnButtonClicked(unsigned short nId) {
    switch (nId) {
    case IDC_WORK_BROWSE: Browse(); break;
    case IDC_WORK_COPY: Copy(kListGoOn, L"Copied"); break;
    case IDC_WORK_VERIFY: Copy(kListGoOn | kCopyVerifyOnly, L"Equal"); break;
    case IDC_WORK_DELETE: Delete(); break;
    case IDC_WORK_WIPE: Wipe(); break;
    }
}

void FileWork::Browse() {
    std::wstring strFolder = TextOf(IDC_WORK_FROM);
    BROWSEINFOW info{};
    info.hwndOwner = page;
    info.lpszTitle = L"Whose files?";
    info.ulFlags = BIF_RETURNONLYFSDIRS;
    info.lpfn = &OnBrowse;
    info.lParam = reinterpret_cast<LPARAM>(strFolder.c_str());
    LPITEMIDLIST pidl = ::SHBrowseForFolderW(&info);
    if (!pidl) return; // cancelled
    wchar_t szFolder[MAX_PATH];
    if (::SHGetPathFromIDListW(pidl, szFolder)) fromEdit.SetText(szFolder);
    ::ILFree(pidl);
    ShowFiles();
}

// A file that cannot be copied does not keep the others from it; nor does one that differs.
void FileWork::Copy(unsigned long nFlags, const wchar_t* pszDone) {
    const std::vector<std::wstring> chosen = ChosenNames();
    std::wstring strList =
        MakePathList(TextOf(IDC_WORK_INTO), TextOf(IDC_WORK_FROM).c_str(), MakeList(chosen));
    ShowResult(CSFile::CopyByList(strList.c_str(), nFlags), chosen.size(), pszDone);
}

void FileWork::Delete() {
    const std::vector<std::wstring> chosen = ChosenNames();
    if (!Ask(L"Delete %u file(s)?", chosen.size())) return;
    std::wstring strList = MakePathList(TextOf(IDC_WORK_FROM), nullptr, MakeList(chosen));
    int bDone = CSFile::DeleteByList(strList.c_str(), kListGoOn | kListNotify);
    ShowFiles();
    ShowResult(bDone, chosen.size(), L"Deleted");
}

// What is wiped cannot be brought back: its bytes and its name are overwritten before it goes.
void FileWork::Wipe() {
    const std::vector<std::wstring> chosen = ChosenNames();
    if (!Ask(L"Wipe %u file(s)? Nobody can bring them back.", chosen.size())) return;
    WipeMethod method = page.IsDlgButtonChecked(IDC_WORK_THREE) ? wipeThreePasses : wipeZeros;
    nPasses = GetWipePasses(method);
    page.SendDlgItemMsg(IDC_WORK_BAR, PBM_SETPOS, 0, 0);
    int bDone = 1;
    for (const std::wstring& strName : chosen) {
        wchar_t szPath[MAX_PATH];
        MakePath(szPath, TextOf(IDC_WORK_FROM).c_str(), strName.c_str(), nullptr, 0);
        cbFile = FileSize(szPath);
        bDone &= CSFile::WipeDelete(szPath, method, 1, &OnWiped, this);
    }
    ShowFiles();
    ShowResult(bDone, chosen.size(), L"Wiped");
}

// After each piece. 0 would leave the file as it is by then.
int FileWork::OnWiped(void* pWork, int nPass, unsigned __int64 cbWritten) {
    auto* pThis = static_cast<FileWork*>(pWork);
    unsigned __int64 nPercent =
        (nPass * pThis->cbFile + cbWritten) * 100 / (pThis->nPasses * pThis->cbFile);
    pThis->page.SendDlgItemMsg(IDC_WORK_BAR, PBM_SETPOS, nPercent, 0);
    return 1;
}

// Each with its version, if it has one.
void FileWork::ShowFiles() {
    std::wstring strFolder = TextOf(IDC_WORK_FROM);
    wchar_t szPath[MAX_PATH];
    names.clear();
    WIN32_FIND_DATAW data;
    HANDLE hFind = INVALID_HANDLE_VALUE;
    if (MakePath(szPath, strFolder.c_str(), L"*", nullptr, 0))
        hFind = ::FindFirstFileW(szPath, &data);
    if (hFind != INVALID_HANDLE_VALUE) {
        do {
            if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                names.emplace_back(data.cFileName);
        } while (::FindNextFileW(hFind, &data));
        ::FindClose(hFind);
    }
    std::sort(names.begin(), names.end());
    page.SendDlgItemMsg(IDC_WORK_LIST, LB_RESETCONTENT, 0, 0);
    for (const std::wstring& strName : names) {
        wchar_t szRow[2 * MAX_PATH] = L"", szVersion[32];
        StrAppendTextFmt(szRow, 2 * MAX_PATH, L"%s", strName.c_str());
        MakePath(szPath, strFolder.c_str(), strName.c_str(), nullptr, 0);
        if (unsigned __int64 nVersion = GetFileVersion(szPath, nullptr)) {
            GetFileVersionStr(szVersion, 32, nVersion);
            StrAppendTextFmt(szRow, 2 * MAX_PATH, L", %s", szVersion);
        }
        page.SendDlgItemMsg(IDC_WORK_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(szRow));
    }
}

void FileWork::ShowResult(int bDone, size_t nCount, const wchar_t* pszDone) {
    wchar_t szResult[64] = L"";
    StrAppendTextFmt(szResult, 64, L"%s: %u", pszDone, static_cast<unsigned>(nCount));
    page.SetDlgItemTextW(IDC_WORK_RESULT, bDone ? szResult : L"Not all of them");
}

std::wstring FileWork::TextOf(int nId) const {
    std::wstring str(static_cast<size_t>(page.GetDlgItemTextLength(nId)), L'\0');
    page.GetDlgItemTextW(nId, str.data(), static_cast<int>(str.size() + 1));
    return str;
}

std::vector<std::wstring> FileWork::ChosenNames() const {
    std::vector<std::wstring> chosen;
    for (size_t i = 0; i < names.size(); ++i) {
        if (page.SendDlgItemMsg(IDC_WORK_LIST, LB_GETSEL, i, 0) > 0) chosen.push_back(names[i]);
    }
    return chosen;
}

int FileWork::Ask(const wchar_t* pszQuestion, size_t nCount) const {
    return nCount && MsgFmt(page, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2, pszQuestion,
                            static_cast<unsigned>(nCount)) == IDYES;
}

void FileWork::OnResize(int dw, int dh) { FollowSize(page, kRules, dw, dh); }
