#pragma once
#include <windows.h>
#include <initializer_list>
#include <string>
#include <vector>

/// What happened to a ProbeDlg; may outlive it.
struct DlgRecord {
    std::vector<std::string> log;
    std::vector<UINT> wndMessages; // all that reached OnWndMessage,
    std::vector<UINT> dlgMessages; // and OnDlgMessage
    int nDeletes = 0;

    int Count(const std::string& strLine) const {
        int n = 0;
        for (const auto& str : log) n += str == strLine;
        return n;
    }
    /// The lines that begin with one of the words, joined by "; ".
    std::string Only(std::initializer_list<const char*> words) const {
        std::string strAll;
        for (const auto& str : log) {
            for (const char* psz : words) {
                std::string strWord = psz;
                if (str.substr(0, str.find(' ')) != strWord) continue;
                strAll += (strAll.empty() ? "" : "; ") + str;
                break;
            }
        }
        return strAll;
    }
    static int CountIn(const std::vector<UINT>& messages, UINT uMsg) {
        int n = 0;
        for (UINT u : messages) n += u == uMsg;
        return n;
    }
    int CountDlg(UINT uMsg) const { return CountIn(dlgMessages, uMsg); }
    int CountWnd(UINT uMsg) const { return CountIn(wndMessages, uMsg); }
};

inline std::string Line(const char* pszWord) { return pszWord; }
template <class First, class... Rest>
std::string Line(const char* pszWord, First first, Rest... rest) {
    std::string str = pszWord;
    str += " " + std::to_string(first);
    ((str += " " + std::to_string(rest)), ...);
    return str;
}
