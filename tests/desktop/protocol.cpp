#include "desktop/protocol.h"

namespace {
struct Escape {
    wchar_t ch;
    wchar_t chLetter;
};
constexpr Escape kEscapes[] = {{L'\\', L'\\'}, {L'\t', L't'}, {L'\n', L'n'}, {L'\r', L'r'}};

std::wstring EscapeField(const std::wstring& strField) {
    std::wstring strOut;
    for (wchar_t ch : strField) {
        const Escape* pFound = nullptr;
        for (const Escape& escape : kEscapes) {
            if (escape.ch == ch) pFound = &escape;
        }
        if (pFound) strOut += L'\\';
        strOut += pFound ? pFound->chLetter : ch;
    }
    return strOut;
}

std::wstring UnescapeField(const std::wstring& strField) {
    std::wstring strOut;
    for (size_t n = 0; n < strField.size(); ++n) {
        wchar_t ch = strField[n];
        if (ch == L'\\' && n + 1 < strField.size()) {
            wchar_t chLetter = strField[++n];
            for (const Escape& escape : kEscapes) {
                if (escape.chLetter == chLetter) ch = escape.ch;
            }
        }
        strOut += ch;
    }
    return strOut;
}

std::vector<std::wstring> Split(const std::wstring& str, wchar_t chAt) {
    std::vector<std::wstring> parts;
    size_t nBegin = 0;
    for (;;) {
        size_t nEnd = str.find(chAt, nBegin);
        parts.push_back(str.substr(nBegin, nEnd - nBegin));
        if (nEnd == std::wstring::npos) return parts;
        nBegin = nEnd + 1;
    }
}
} // namespace

std::wstring JoinRow(const Row& row) {
    std::wstring strOut;
    for (size_t n = 0; n < row.size(); ++n) {
        if (n) strOut += L'\t';
        strOut += EscapeField(row[n]);
    }
    return strOut;
}

Row SplitRow(const std::wstring& strLine) {
    Row row;
    for (const std::wstring& strField : Split(strLine, L'\t'))
        row.push_back(UnescapeField(strField));
    return row;
}

std::wstring JoinRows(const std::vector<Row>& rows) {
    std::wstring strOut;
    for (size_t n = 0; n < rows.size(); ++n) {
        if (n) strOut += L'\n';
        strOut += JoinRow(rows[n]);
    }
    return strOut;
}

std::vector<Row> SplitRows(const std::wstring& str) {
    std::vector<Row> rows;
    if (str.empty()) return rows;
    for (const std::wstring& strLine : Split(str, L'\n')) rows.push_back(SplitRow(strLine));
    return rows;
}
