#pragma once

// What the benchmark of the start and its bare program know each other by.

constexpr const wchar_t* kBareTrayClass = L"TessalyBenchTray";
/// Gets a value when the icon is there.
constexpr const wchar_t* kBareTrayPath = L"Software\\TessalyBench\\Tray";
