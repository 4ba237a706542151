#include "host/commands/import_reader.h"
#include "host/commands/export_text.h"
#include "icons/snapshots/snapshot_time.h"
#include "runtime/base/digest.h"
#include "runtime/text/str_chars.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <limits>

namespace {
using View = std::wstring_view;

constexpr const wchar_t* kBadName = L"its name is no time stamp";
constexpr const wchar_t* kBadKey = L"a line is unknown or stands twice";
constexpr const wchar_t* kMissingKey = L"a line is missing";
constexpr const wchar_t* kBadIcon = L"an icon cannot be read";
constexpr const wchar_t* kBadCount = L"its number of icons is wrong";
constexpr const wchar_t* kBadTime = L"its time is not that of its name";
constexpr const wchar_t* kBadDate = L"its time is no date, or in the future";
constexpr const wchar_t* kBadDigest = L"its digest does not hold";

/// A part that lies within the text. (The type's own function throws for one that does not, and
/// brings what that needs along.)
View Part(View str, std::size_t nAt, std::size_t cch) { return {str.data() + nAt, cch}; }
View PartFrom(View str, std::size_t nAt) { return Part(str, nAt, str.size() - nAt); }

View Trim(View str) {
    while (!str.empty() && IsBlankOrTab(str.front())) str.remove_prefix(1);
    while (!str.empty() && IsBlankOrTab(str.back())) str.remove_suffix(1);
    return str;
}

wchar_t ToUpperAscii(wchar_t ch) {
    return ch >= L'a' && ch <= L'z' ? static_cast<wchar_t>(ch - L'a' + L'A') : ch;
}

bool IsSameNoCase(View a, View b) {
    return std::ranges::equal(a, b, {}, ToUpperAscii, ToUpperAscii);
}

/// The name in a line "[name]". A line that begins like one and is cut has a name, too: what
/// follows belongs to it and to nothing else.
bool ReadSectionName(View line, View& name) {
    if (line.empty() || line.front() != L'[') return false;
    line.remove_prefix(1);
    name = !line.empty() && line.back() == L']' ? Part(line, 0, line.size() - 1) : View();
    return true;
}

/// The whole text as a decimal number of at most nMax.
bool ReadNumber(View str, unsigned __int64 nMax, unsigned __int64& nRead) {
    if (str.empty()) return false;
    unsigned __int64 n = 0;
    for (wchar_t ch : str) {
        if (!IsAsciiDigit(ch)) return false;
        n = n * 10 + static_cast<unsigned>(ch - L'0');
        if (n > nMax) return false;
    }
    nRead = n;
    return true;
}

bool ReadUnsigned(View str, unsigned& nRead) {
    unsigned __int64 n = 0;
    if (!ReadNumber(str, std::numeric_limits<unsigned>::max(), n)) return false;
    nRead = static_cast<unsigned>(n);
    return true;
}

bool ReadSigned(View str, LONG& lRead) {
    bool bMinus = !str.empty() && str.front() == L'-';
    if (bMinus) str.remove_prefix(1);
    constexpr unsigned __int64 nMax = std::numeric_limits<LONG>::max();
    unsigned __int64 n = 0;
    if (!ReadNumber(str, bMinus ? nMax + 1 : nMax, n)) return false;
    lRead = static_cast<LONG>(bMinus ? -static_cast<__int64>(n) : static_cast<__int64>(n));
    return true;
}

/// The value of a hexadecimal digit; -1 for any other character.
int ReadHexDigit(wchar_t ch) {
    if (IsAsciiDigit(ch)) return ch - L'0';
    wchar_t chUpper = ToUpperAscii(ch);
    return chUpper >= L'A' && chUpper <= L'F' ? chUpper - L'A' + 10 : -1;
}

/// Pairs of hexadecimal digits, as many as there are bytes.
template <std::size_t cb>
bool ReadHex(View str, unsigned char (&bytes)[cb]) {
    if (str.size() != 2 * cb) return false;
    for (std::size_t i = 0; i < cb; ++i) {
        int nHigh = ReadHexDigit(str[2 * i]), nLow = ReadHexDigit(str[2 * i + 1]);
        if (nHigh < 0 || nLow < 0) return false;
        bytes[i] = static_cast<unsigned char>(nHigh << 4 | nLow);
    }
    return true;
}

/// A number of 16 hexadecimal digits.
bool ReadHexNumber(View str, unsigned __int64& qwRead) {
    unsigned char bytes[sizeof(qwRead)];
    if (!ReadHex(str, bytes)) return false;
    qwRead = 0;
    for (unsigned char b : bytes) qwRead = qwRead << 8 | b;
    return true;
}

/// Cuts the first word off, which blanks divide from the rest.
View TakeWord(View& str) {
    auto isBlank = [](wchar_t ch) { return IsBlankOrTab(ch); };
    const auto* pEnd = std::ranges::find_if(str, isBlank);
    auto cch = static_cast<std::size_t>(pEnd - str.begin());
    View word = Part(str, 0, cch);
    str = Trim(PartFrom(str, cch));
    return word;
}

/// For people: what could steer a console is left out.
template <std::size_t cch>
void CopyPrintable(wchar_t (&szOut)[cch], View str) {
    std::size_t n = std::min(str.size(), cch - 1);
    std::transform(str.begin(), str.begin() + n, szOut,
                   [](wchar_t ch) { return ch >= L' ' && ch < 0x7F ? ch : L'?'; });
    szOut[n] = 0;
}
} // namespace

/// What a section has told besides its icons.
struct ImportReader::Keys {
    View time, icons, digest; // without a place in the text: not told
};

ImportReader::ImportReader(std::wstring_view textWhole)
    : text(textWhole), records(kMaxCapturedIcons) {}

/// The next line that means something, and where the one behind it begins; false at the end.
bool ImportReader::PeekLine(View& line, std::size_t& nNext) const {
    for (std::size_t nAt = nPos; nAt < text.size(); nAt = nNext) {
        const wchar_t* pStart = text.data() + nAt;
        const wchar_t* pEnd = std::find(pStart, text.data() + text.size(), L'\n');
        line = View(pStart, static_cast<std::size_t>(pEnd - pStart));
        nNext = nAt + line.size() + 1;
        if (!line.empty() && line.back() == L'\r') line.remove_suffix(1);
        line = Trim(line);
        if (!line.empty() && line.front() != L';') return true;
    }
    return false;
}

/// The next line of this section, as key and value; false at its end. A line without a sign has all
/// of it as its key.
bool ImportReader::ReadEntry(View& key, View& value) {
    View line, name;
    std::size_t nNext = 0;
    if (!PeekLine(line, nNext) || ReadSectionName(line, name)) return false;
    nPos = nNext;
    std::size_t nSign = std::min(line.find(L'='), line.size());
    key = Trim(Part(line, 0, nSign));
    value = nSign < line.size() ? Trim(PartFrom(line, nSign + 1)) : View();
    return true;
}

ImportReader::Head ImportReader::ReadHead() {
    View line, name, key, value;
    std::size_t nNext = 0;
    if (!PeekLine(line, nNext) || !ReadSectionName(line, name) || !IsSameNoCase(name, L"Tessaly"))
        return Head::NotOurs;
    nPos = nNext;
    if (!ReadEntry(key, value) || !IsSameNoCase(key, L"Format") || value.empty() ||
        !std::ranges::all_of(value, IsAsciiDigit)) {
        return Head::NotOurs;
    }
    unsigned nFormat = 0; // a number that is too long is another one, too
    static_cast<void>(ReadUnsigned(value, nFormat));
    if (nFormat != kExportFormat) return Head::OtherVersion;
    return ReadEntry(key, value) ? Head::NotOurs : Head::Ours;
}

bool ImportReader::ReadSection(ImportSection& section) {
    View line, name;
    std::size_t nNext = 0;
    if (!PeekLine(line, nNext)) return false;
    section = {};
    section.nAt = nPos;
    nPos = nNext; // behind the head, an earlier section has ended at "[" alone
    static_cast<void>(ReadSectionName(line, name));
    CopyPrintable(section.szName, name.empty() ? line : name);
    section.pszFault = ReadBody(name, section.qwTime);
    if (section.pszFault) section.qwTime = 0;
    return true;
}

/// Reads the section to its end, whatever is wrong with it. What is, or null.
const wchar_t* ImportReader::ReadBody(View name, unsigned __int64& qwTime) {
    Keys keys;
    const wchar_t* pszFault = ReadKeys(keys);
    if (!ReadHexNumber(name, qwTime)) return kBadName;
    return pszFault ? pszFault : Check(keys, qwTime);
}

const wchar_t* ImportReader::ReadKeys(Keys& keys) {
    struct {
        const wchar_t* pszKey;
        View& value;
    } const kKeys[] = {{L"Time", keys.time}, {L"Icons", keys.icons}, {L"Digest", keys.digest}};
    nRecords = 0;
    const wchar_t* pszFault = nullptr;
    View key, value;
    while (ReadEntry(key, value)) {
        if (pszFault) continue;
        if (IsSameNoCase(key, L"Icon")) {
            pszFault = TakeIcon(value);
            continue;
        }
        const auto* known = std::ranges::find_if(
            kKeys, [key](const auto& row) { return IsSameNoCase(key, row.pszKey); });
        if (known == std::end(kKeys) || known->value.data())
            pszFault = kBadKey;
        else
            known->value = value.data() ? value : Part(text, 0, 0); // told, but empty
    }
    return pszFault;
}

const wchar_t* ImportReader::TakeIcon(View value) {
    if (nRecords == kMaxCapturedIcons) return kBadCount;
    IconRecord& record = records[nRecords];
    View index = TakeWord(value), x = TakeWord(value), y = TakeWord(value);
    View length = TakeWord(value), nameKey = TakeWord(value);
    if (!value.empty() || !ReadUnsigned(index, record.nIndex) || !ReadSigned(x, record.pt.x) ||
        !ReadSigned(y, record.pt.y) || !ReadUnsigned(length, record.cchName) ||
        !ReadHexNumber(nameKey, record.qwNameKey)) {
        return kBadIcon;
    }
    ++nRecords;
    return nullptr;
}

const wchar_t* ImportReader::Check(const Keys& keys, unsigned __int64 qwTime) const {
    if (!keys.time.data() || !keys.icons.data() || !keys.digest.data()) return kMissingKey;
    if (!IsImportableTime(qwTime)) return kBadDate;
    wchar_t szTime[32];
    if (!FormatExportTime(szTime, qwTime) || keys.time != szTime) return kBadTime;
    unsigned nIcons = 0;
    if (!ReadUnsigned(keys.icons, nIcons) || !nIcons || nIcons != nRecords) return kBadCount;
    unsigned char told[kMd5Size], digest[kMd5Size];
    CalcMD5(digest, records.Get(), nRecords * sizeof(IconRecord));
    if (!ReadHex(keys.digest, told) || std::memcmp(told, digest, kMd5Size) != 0) return kBadDigest;
    return nullptr;
}
