#pragma once
#include "shell/namespace/shell_notify.h"
#include "support/test_window.h"
#include "support/wait_until.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Hears what the shell is told about the files of one folder: "create NAME", "delete NAME",
/// "rename OLD NEW"; of folders "mkdir NAME", "rmdir NAME", "rename folder OLD NEW".
class ShellEar {
  public:
    explicit ShellEar(const std::wstring& strFolder) {
        notify.Register(window.Get(), kEvents, kMsg, strFolder.c_str(),
                        1); // the platform here tells only of recursive ones
    }
    /// Waits for that many events and gives all.
    const std::vector<std::wstring>& Hear(std::size_t nCount) {
        PumpUntil([&] { return heard.size() >= nCount; });
        return heard;
    }

  private:
    static constexpr UINT kMsg = WM_APP + 3;
    static constexpr long kEvents = SHCNE_CREATE | SHCNE_DELETE | SHCNE_RENAMEITEM | SHCNE_MKDIR |
                                    SHCNE_RMDIR | SHCNE_RENAMEFOLDER;

    static std::wstring NameOf(const ITEMIDLIST* pidl) {
        wchar_t szPath[MAX_PATH] = {};
        if (!pidl || !::SHGetPathFromIDListW(pidl, szPath)) return L"?";
        return std::filesystem::path(szPath).filename().wstring();
    }
    void Note(WPARAM wParam, LPARAM lParam) {
        ITEMIDLIST** ppidl = nullptr;
        long nEvent = 0;
        void* hLock = ShellNotify::OnMsgStart(wParam, lParam, &ppidl, &nEvent);
        if (!hLock) return;
        std::wstring str = NameOf(ppidl[0]);
        if (nEvent == SHCNE_CREATE) str = L"create " + str;
        if (nEvent == SHCNE_DELETE) str = L"delete " + str;
        if (nEvent == SHCNE_RENAMEITEM) str = L"rename " + str + L" " + NameOf(ppidl[1]);
        if (nEvent == SHCNE_MKDIR) str = L"mkdir " + str;
        if (nEvent == SHCNE_RMDIR) str = L"rmdir " + str;
        if (nEvent == SHCNE_RENAMEFOLDER) str = L"rename folder " + str + L" " + NameOf(ppidl[1]);
        ShellNotify::OnMsgEnd(hLock);
        heard.push_back(str);
    }

    std::vector<std::wstring> heard;
    TestWindow window{[this](UINT uMsg, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
        if (uMsg != kMsg) return std::nullopt;
        Note(wParam, lParam);
        return 0;
    }};
    ShellNotify notify;
};
