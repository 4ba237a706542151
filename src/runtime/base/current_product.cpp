#include "runtime/base/current_product.h"

namespace {
constinit HINSTANCE hinstLibrary = nullptr;
constinit CurrentProduct currentProduct = {
    [] { return hinstLibrary; },
    []() -> const wchar_t* { return L""; },
    []() -> unsigned short { return 0; },
    []() -> const wchar_t* { return L""; },
    []() -> const wchar_t* { return L""; },
};
} // namespace

HINSTANCE GetLibraryInstance() { return hinstLibrary; }

void SetLibraryInstance(HINSTANCE hinst) { hinstLibrary = hinst; }

const CurrentProduct& GetCurrentProduct() { return currentProduct; }

void SetCurrentProduct(const CurrentProduct& product) { currentProduct = product; }
