#pragma once
#include "support/temp_folder.h"

#include <windows.h>
#include <winspool.h>
#include <string>

/// A printer of the platform, and the default one, for the length of a test: its pages are
/// PostScript, in a file. There is no other printer on the test platform.
class TestPrinter {
  public:
    TestPrinter() {
        std::wstring strDescription = folder.MakeFile(L"test.ppd", kDescription);
        wchar_t szDriver[] = L"wineps.drv"; // the platform's driver for PostScript
        wchar_t szSystem[] = L"Windows x64", szRaw[] = L"RAW", szProcessor[] = L"WinPrint";
        DRIVER_INFO_3W driver{};
        driver.cVersion = 3;
        driver.pName = szDriverName;
        driver.pEnvironment = szSystem;
        driver.pDriverPath = szDriver;
        driver.pConfigFile = szDriver;
        driver.pDataFile = strDescription.data();
        driver.pDefaultDataType = szRaw;
        constexpr DWORD kFromItsFolder = 0x10; // APD_COPY_FROM_DIRECTORY
        ::AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver),
                              APD_COPY_ALL_FILES | kFromItsFolder);
        std::wstring strPort = folder.File(kOutput);
        PRINTER_INFO_2W printer{};
        printer.pPrinterName = szName;
        printer.pPortName = strPort.data();
        printer.pDriverName = szDriverName;
        printer.pPrintProcessor = szProcessor;
        printer.pDatatype = szRaw;
        hPrinter = ::AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
        if (!hPrinter || !::SetDefaultPrinterW(szName)) return;
        hdcKept = ::CreateICW(L"WINSPOOL", szName, nullptr, nullptr);
    }
    ~TestPrinter() {
        if (hdcKept) ::DeleteDC(hdcKept);
        if (hPrinter) {
            ::DeletePrinter(hPrinter);
            ::ClosePrinter(hPrinter);
        }
        ::DeletePrinterDriverExW(nullptr, nullptr, szDriverName, 0, 0);
    }
    TestPrinter(const TestPrinter&) = delete;
    TestPrinter& operator=(const TestPrinter&) = delete;

    bool IsReady() const { return hdcKept != nullptr; }
    const wchar_t* GetName() const { return szName; }
    void ForgetPrinted() { ::DeleteFileW(folder.File(kOutput).c_str()); }
    /// What was printed last; empty if nothing was.
    std::string Printed() const { return folder.ReadFile(kOutput); }

  private:
    static constexpr const wchar_t* kOutput = L"printed.ps";
    // A page of 595 by 842 points, of which the printer reaches 559 by 770, with 300 dots per inch.
    static constexpr const char* kDescription =
        "*PPD-Adobe: \"4.3\"\n"
        "*FormatVersion: \"4.3\"\n"
        "*FileVersion: \"1.0\"\n"
        "*LanguageVersion: English\n"
        "*LanguageEncoding: ISOLatin1\n"
        "*PCFileName: \"TEST.PPD\"\n"
        "*Manufacturer: \"Test\"\n"
        "*Product: \"(Test)\"\n"
        "*PSVersion: \"(3010) 0\"\n"
        "*ModelName: \"Test Printer\"\n"
        "*ShortNickName: \"Test Printer\"\n"
        "*NickName: \"Test Printer\"\n"
        "*LanguageLevel: \"3\"\n"
        "*ColorDevice: True\n"
        "*DefaultColorSpace: RGB\n"
        "*TTRasterizer: Type42\n"
        "*DefaultResolution: 300dpi\n"
        "*OpenUI *PageSize/Page Size: PickOne\n"
        "*OrderDependency: 10 AnySetup *PageSize\n"
        "*DefaultPageSize: A4\n"
        "*PageSize A4/A4: \"<</PageSize[595 842]>>setpagedevice\"\n"
        "*CloseUI: *PageSize\n"
        "*DefaultImageableArea: A4\n"
        "*ImageableArea A4/A4: \"18 36 577 806\"\n"
        "*DefaultPaperDimension: A4\n"
        "*PaperDimension A4/A4: \"595 842\"\n"
        "*DefaultFont: Courier\n"
        "*Font Courier: Standard \"(002.004S)\" Standard ROM\n";

    TempFolder folder;
    wchar_t szName[32] = L"Tessaly Test Printer";
    wchar_t szDriverName[32] = L"Tessaly Test PostScript";
    HANDLE hPrinter = nullptr;
    HDC hdcKept = nullptr; // keeps the driver loaded, which takes long to come up
};
