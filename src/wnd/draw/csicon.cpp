#include "wnd/draw/csicon.h"
#include "runtime/base/ownership.h"
#include "runtime/messages/res_str.h"
#include "runtime/system/system_facts.h"
#include "wnd/draw/bitmaps.h"

#include <objbase.h>
#include <wincodec.h>
#include <climits>

namespace {
constexpr SIZE kPlainSmall{16, 16}, kPlainLarge{32, 32};

SIZE GetIconSize(int isSmall, int systemSize) {
    if (!systemSize) return isSmall ? kPlainSmall : kPlainLarge;
    return {::GetSystemMetrics(isSmall ? SM_CXSMICON : SM_CXICON),
            ::GetSystemMetrics(isSmall ? SM_CYSMICON : SM_CYICON)};
}

// An icon as a bitmap with alpha, by the platform's imaging component

constexpr unsigned kBytesPerPixel = 4;

// By value (wincodec.h): the library that defines their names is none of those linked.
constexpr GUID kFactoryClass = {
    0xcacaf262, 0x9370, 0x4615, {0xa1, 0x3b, 0x9f, 0x55, 0x39, 0xda, 0x4c, 0x0a}};
constexpr GUID kFactoryInterface = {
    0xec5ec8a9, 0xc395, 0x4314, {0x9c, 0x77, 0x54, 0xd7, 0xa9, 0x35, 0xff, 0x70}};
constexpr GUID kPremultipliedBgra = {
    0x6fddc324, 0x4e03, 0x4bfe, {0xb1, 0x85, 0x3d, 0x77, 0x76, 0x8d, 0xc9, 0x10}};

IWICImagingFactory* CreateFactory(HRESULT* phr) {
    void* pFactory = nullptr;
    *phr = ::CoCreateInstance(kFactoryClass, nullptr, CLSCTX_INPROC_SERVER, kFactoryInterface,
                              &pFactory);
    return SUCCEEDED(*phr) ? static_cast<IWICImagingFactory*>(pFactory) : nullptr;
}

/// The icon's pixels, converted as they are asked for. Null on failure.
IWICFormatConverter* CreateConverter(IWICImagingFactory* pFactory, HICON hicon) {
    OwnedInterface<IWICBitmap> source;
    if (FAILED(pFactory->CreateBitmapFromHICON(hicon, source.Put()))) return nullptr;
    OwnedInterface<IWICFormatConverter> converter;
    if (FAILED(pFactory->CreateFormatConverter(converter.Put()))) return nullptr;
    // The converter holds a reference of its own to its source.
    HRESULT hr =
        converter.Get()->Initialize(source.Get(), kPremultipliedBgra, WICBitmapDitherTypeNone,
                                    nullptr, 0.0, WICBitmapPaletteTypeCustom);
    return SUCCEEDED(hr) ? converter.Release() : nullptr;
}

/// The pixels as a section of 32 bits each; null on failure.
HBITMAP CopyToSection(IWICBitmapSource* pSource) {
    UINT cx = 0, cy = 0;
    if (FAILED(pSource->GetSize(&cx, &cy)) || !cx || !cy) return nullptr;
    if (static_cast<unsigned long long>(cx) * cy > INT_MAX / kBytesPerPixel) return nullptr;

    SIZE sizeTopDown{static_cast<LONG>(cx), -static_cast<LONG>(cy)};
    void* pBits = nullptr;
    OwnedBitmap bitmap;
    if (FAILED(MakeBitmap32(nullptr, &sizeTopDown, &pBits, bitmap.Put())) || !pBits) return nullptr;
    UINT cbRow = cx * kBytesPerPixel;
    HRESULT hr = pSource->CopyPixels(nullptr, cbRow, cbRow * cy, static_cast<BYTE*>(pBits));
    return SUCCEEDED(hr) ? bitmap.Release() : nullptr;
}

HBITMAP MakeWith(IWICImagingFactory* pFactory, HICON hicon) {
    OwnedInterface<IWICFormatConverter> converter(CreateConverter(pFactory, hicon));
    return converter ? CopyToSection(converter.Get()) : nullptr;
}
} // namespace

void CSIcon::Load(int iconId, int isSmall, int systemSize) {
    ResourceRef ref = ResolveResourceId(iconId, nullptr, DefaultModule::kApplication);
    SIZE size = GetIconSize(isSmall, systemSize);
    HANDLE hLoaded = ::LoadImageW(ref.hinst, ref.pszName, IMAGE_ICON, size.cx, size.cy, 0);
    hIcon.Reset(static_cast<HICON>(hLoaded));
    width = size.cx;
    height = size.cy;
}

int CSIcon::GetSize(int& cx, int& cy) const {
    cx = width;
    cy = height;
    return IsReady();
}

HBITMAP CSIcon::IconToMenuBitmap(HICON hicon) {
    if (!hicon || !WinVista()) return nullptr;
    bool bLeaveCom = false;
    ScopeExit leaveCom([&] { // behind the factory, which is destroyed first
        if (bLeaveCom) ::CoUninitialize();
    });
    HRESULT hr = S_OK;
    OwnedInterface<IWICImagingFactory> factory(CreateFactory(&hr));
    if (hr == CO_E_NOTINITIALIZED) {
        bLeaveCom =
            SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
        factory.Reset(CreateFactory(&hr));
    }
    return factory ? MakeWith(factory.Get(), hicon) : nullptr;
}

long CSIcon::Create32BitHBITMAP(HDC hdc, const SIZE* psize, void** ppBits, HBITMAP* phResult) {
    return MakeBitmap32(hdc, psize, ppBits, phResult);
}

void CSIcon::InitBitmapInfo(BITMAPINFO* pInfo, unsigned long cbInfo, long cx, long cy,
                            unsigned short nBitCount) {
    FillBitmapInfo(pInfo, cbInfo, cx, cy, nBitCount);
}
