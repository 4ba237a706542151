#include "app/instance/single_instance.h"
#include "runtime/threads/synch.h"
#include "runtime/text/text_format.h"
#include "runtime/system/win_version.h"

int SingleInstanceXP::IsFirstInstance(int bGlobal, const wchar_t* pszName) {
    if (!Win2K()) return 1; // its names have no name spaces
    wchar_t szMark[kMaxObjectName];
    FormatText(szMark, L"%s\\Orvanta_App_%s", bGlobal ? L"Global" : L"Local",
               pszName ? pszName : L"");
    hMark.Reset(); // asked again, the own mark must not count
    ::SetLastError(ERROR_SUCCESS);
    hMark.Reset(::CreateEventW(nullptr, FALSE, FALSE, szMark));
    if (::GetLastError() == ERROR_ALREADY_EXISTS) hMark.Reset();
    return hMark.Get() != nullptr;
}
