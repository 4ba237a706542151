#pragma once
#include "store/registry/reg_key.h"
#include "support/registry.h"

/// Takes the registry's "Run" key, of the user or of the machine, away for the length of a block.
class RunKeyAway {
  public:
    explicit RunKeyAway(int bCurrentUser)
        : hkeyRoot(bCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE),
          parent(bCurrentUser ? L"HKCU" : L"HKLM", kParent, 1) {
        parent.RenameSubkey(L"Run", kAside);
    }
    ~RunKeyAway() {
        DeleteRegTree(hkeyRoot, std::wstring(kParent) + L"\\Run");
        parent.RenameSubkey(kAside, L"Run");
    }
    RunKeyAway(const RunKeyAway&) = delete;
    RunKeyAway& operator=(const RunKeyAway&) = delete;

    bool IsThere() { return RegKey(parent, L"Run", 0).GetHandle() != nullptr; }
    /// From now on it can be neither opened nor made.
    bool Block() const { return PlantDeadLink(hkeyRoot, std::wstring(kParent) + L"\\Run"); }

  private:
    static constexpr const wchar_t* kParent = L"Software\\Microsoft\\Windows\\CurrentVersion";
    static constexpr const wchar_t* kAside = L"Run aside";

    HKEY hkeyRoot;
    RegKey parent;
};
