#pragma once
#include "progress/progress_ex.h"
#include "runtime/text/text_format.h"

#include <cstdarg>
#include <cwchar>
#include <string>
#include <vector>

/// A bar that writes down what the arithmetic tells it to show.
class TestBar : public ProgressEx {
  public:
    void SetText(int line, const wchar_t* pszFormat, char* args) override {
        wchar_t sz[256];
        FormatTextV(sz, std::size(sz), pszFormat, args);
        texts.push_back(std::to_wstring(line) + L": " + sz);
    }
    void DoStepIt() override { log.push_back("step"); }
    void DoSetPos(int nNewPos) override { log.push_back("pos " + std::to_string(nNewPos)); }
    void DoSetRange(int nNewLow, int nNewHigh) override {
        log.push_back("range " + std::to_string(nNewLow) + " " + std::to_string(nNewHigh));
    }
    int ProcessAllMessages() override {
        log.push_back("messages");
        return 1;
    }

    std::vector<std::string> log;
    std::vector<std::wstring> texts;

    using ProgressEx::bCanceled;
    using ProgressEx::dwDivisor;
    using ProgressEx::dwLastTick;
    using ProgressEx::dwSteps;
    using ProgressEx::nHigh;
    using ProgressEx::nLow;
    using ProgressEx::nPaused;
    using ProgressEx::nPos;
    using ProgressEx::nSubStep;
    using ProgressEx::qwTotalMs;
};

using BarLog = std::vector<std::string>;
