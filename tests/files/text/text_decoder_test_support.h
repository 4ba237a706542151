#pragma once
#include <string>

/// What RunTextFiles gives where there is no Python.
inline const std::string kNoTextFiles = "none";

/// Runs text_files.py, which lies beside this header, on a folder: "make" or "check", as it says
/// itself. What it found wrong; empty if nothing.
std::string RunTextFiles(const std::wstring& strDo, const std::wstring& strFolder);
