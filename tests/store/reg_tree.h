#pragma once
#include "support/registry.h"

/// All that a key holds: its values and its subkeys by name.
struct RegDump {
    std::map<std::wstring, RegContent> values;
    std::map<std::wstring, RegDump> subkeys;
    bool operator==(const RegDump&) const = default;
};

inline RegContent StrContent(const std::wstring& strText) { return {REG_SZ, BytesOf(strText)}; }

/// One line per key and value, for the message of a test that fails.
inline void PrintDump(const RegDump& dump, const std::wstring& strPath, std::ostream& out) {
    out << "\n[" << testing::PrintToString(strPath) << "]";
    for (const auto& [strName, content] : dump.values) {
        out << "\n  " << testing::PrintToString(strName) << " type " << content.dwType << ": "
            << testing::PrintToString(content.bytes);
    }
    for (const auto& [strName, subkey] : dump.subkeys)
        PrintDump(subkey, strPath + L"\\" + strName, out);
}
inline void PrintTo(const RegDump& dump, std::ostream* pOut) { PrintDump(dump, L"", *pOut); }

/// A key below any root, deleted before and after a test with all below it. It need not exist.
class RegTree {
  public:
    RegTree(HKEY hkeyBase, const std::wstring& strBelow) : hkeyRoot(hkeyBase), strPath(strBelow) {
        Delete();
    }
    RegTree(const RegTree&) = delete;
    RegTree& operator=(const RegTree&) = delete;
    ~RegTree() { Delete(); }

    void Delete() const { DeleteRegTree(hkeyRoot, strPath); }
    bool Exists() const { return Exists(hkeyRoot, strPath); }
    static bool Exists(HKEY hkeyRoot, const std::wstring& strPath) {
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(hkeyRoot, strPath.c_str(), 0, KEY_READ, &hkey)) return false;
        ::RegCloseKey(hkey);
        return true;
    }
    /// Makes the key and the one below it.
    void Create(const std::wstring& strBelow = L"") const {
        HKEY hkey = nullptr;
        ::RegCreateKeyExW(hkeyRoot, PathOf(strBelow).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, nullptr);
        ::RegCloseKey(hkey);
    }
    void Put(const std::wstring& strName, DWORD dwType, const RegBytes& bytes,
             const std::wstring& strBelow = L"") const {
        HKEY hkey = nullptr;
        ::RegCreateKeyExW(hkeyRoot, PathOf(strBelow).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, nullptr);
        SetRegBytes(hkey, strName, dwType, bytes);
        ::RegCloseKey(hkey);
    }
    void PutStr(const std::wstring& strName, const std::wstring& strText,
                const std::wstring& strBelow = L"") const {
        Put(strName, REG_SZ, BytesOf(strText), strBelow);
    }
    bool PlantDeadLink(const std::wstring& strBelow) const {
        return ::PlantDeadLink(hkeyRoot, PathOf(strBelow));
    }
    RegDump Dump(const std::wstring& strBelow = L"") const {
        return DumpOf(hkeyRoot, PathOf(strBelow));
    }
    static RegDump DumpOf(HKEY hkeyRoot, const std::wstring& strPath) {
        RegDump dump;
        HKEY hkey = nullptr;
        if (::RegOpenKeyExW(hkeyRoot, strPath.c_str(), 0, KEY_READ, &hkey)) return dump;
        ReadValues(hkey, dump);
        wchar_t szName[300];
        for (DWORD n = 0, cch = 300;
             ::RegEnumKeyExW(hkey, n, szName, &cch, nullptr, nullptr, nullptr, nullptr) == 0;
             ++n, cch = 300) {
            dump.subkeys[szName] = DumpOf(hkey, szName);
        }
        ::RegCloseKey(hkey);
        return dump;
    }

  private:
    std::wstring PathOf(const std::wstring& strBelow) const {
        return strBelow.empty() ? strPath : strPath + L"\\" + strBelow;
    }
    static void ReadValues(HKEY hkey, RegDump& dump) {
        std::vector<wchar_t> name(16384);
        for (DWORD n = 0;; ++n) {
            DWORD cchName = 16384, cb = 0;
            RegContent content;
            if (::RegEnumValueW(hkey, n, name.data(), &cchName, nullptr, &content.dwType, nullptr,
                                &cb)) {
                return;
            }
            content.bytes.resize(cb + 1);
            ::RegQueryValueExW(hkey, name.data(), nullptr, nullptr, content.bytes.data(), &cb);
            content.bytes.resize(cb);
            dump.values[name.data()] = content;
        }
    }

    HKEY hkeyRoot;
    std::wstring strPath;
};
