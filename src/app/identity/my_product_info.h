#pragma once
#include "app/identity/product_info.h"

/// This product.
class TESSALY_API MyProductInfo : public ProductInfo {
  public:
    constexpr MyProductInfo() noexcept = default;

    unsigned short GetID() override;
    const wchar_t* GetStoreID() override;
    const wchar_t* GetName() override;
    const wchar_t* GetNickName() override;
    const wchar_t* GetDisplayName() override;
    int IsNameRegTM() override;
    const wchar_t* GetVersionStr() override;
    const wchar_t* GetVersionStrLong(int bRich) override;
    const wchar_t* GetVersionStrRev(int bRich) override;
    unsigned GetVersionNum() override;
    unsigned long long GetVersionQWORD() override;
    const wchar_t* GetLanguage() override;
    const wchar_t* GetRevisionStr() override;
    unsigned GetRevisionNum() override;
    const wchar_t* GetEditionShort() override;
    const wchar_t* GetEdition() override;
    const wchar_t* GetForOS() override;
    const wchar_t* GetCopyrightYear() override;
    const wchar_t* GetHelpFile() override;
    const wchar_t* GetAutoUpdateFile() override;
    unsigned GetIconID() override;
    HINSTANCE GetIconInstance() override;
};

/// The one object of the process, from before the library's start to its end.
TESSALY_API MyProductInfo& GetMyProductInfo();

/// Tells the rooms below who the product is (runtime/base/current_product.h). For the library's
/// start alone.
void SetMyProductAsCurrent();
