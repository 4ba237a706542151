#pragma once
#include "app/identity/product_info.h"
#include "support/registry.h"

#include <windows.h>
#include <cstring>
#include <string>

/// The product's settings are in a key of the test's for the length of a block, which is empty at
/// first; the four values of the update check are read and planted by the platform's own calls.
class UpdateStore {
  public:
    static constexpr DWORD kMissing = 0xDEADDEAD; // no value, or not of four bytes

    explicit UpdateStore(const std::wstring& strName = L"Tessaly update test")
        : root(L"Software\\" + strName), setup(L"Software\\" + strName + L"\\Setup") {
        GetMyProductInfo().PushAppRootKey(root.Path().c_str());
    }
    ~UpdateStore() { GetMyProductInfo().PopAppRootKey(); }
    UpdateStore(const UpdateStore&) = delete;
    UpdateStore& operator=(const UpdateStore&) = delete;

    void Put(const std::wstring& strName, DWORD dwValue) { setup.PutDword(strName, dwValue); }
    void Plant(DWORD dwLast, DWORD dwNext, DWORD dwFrequency, DWORD dwAuto) {
        Put(L"LastUpdate", dwLast);
        Put(L"NextUpdate", dwNext);
        Put(L"RemindFreq", dwFrequency);
        Put(L"AutoCheck", dwAuto);
    }
    DWORD Get(const std::wstring& strName) const {
        RegContent content = setup.Value(strName);
        DWORD dwValue = kMissing;
        if (content.dwType == REG_DWORD && content.bytes.size() == sizeof(dwValue))
            std::memcpy(&dwValue, content.bytes.data(), sizeof(dwValue));
        return dwValue;
    }
    DWORD Last() const { return Get(L"LastUpdate"); }
    DWORD Next() const { return Get(L"NextUpdate"); }
    DWORD Frequency() const { return Get(L"RemindFreq"); }
    DWORD Auto() const { return Get(L"AutoCheck"); }
    auto Values() const { return setup.Values(); }
    TestKey& Setup() { return setup; }

  private:
    TestKey root, setup;
};
