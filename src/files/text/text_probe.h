#pragma once
#include "files/text/text_encoding.h"
#include <windows.h>
#include <cstddef>

class CoreFile;
class UniPath;

// What the members of CSFile share: those that read and write texts, and of the paths all.

/// The object's text; null without one, and for no object.
const wchar_t* PathOf(const UniPath* pPath);

constexpr BYTE kUtf8Mark[] = {0xEF, 0xBB, 0xBF};
constexpr wchar_t kUtf16Mark = 0xFEFF;
constexpr wchar_t kUtf16MarkReversed = 0xFFFE; // as the other byte order leaves it

/// Whether the bytes begin with UTF-8's mark.
bool StartsWithUtf8Mark(const BYTE* pBytes, std::size_t cb);

/// What the start of a file tells about its text.
struct TextProbe {
    CSFileTextFmt fmt;
    DWORD cch; // characters that suffice, with the terminator; kTextSizeUnknown as well
};

/// Recognises the text of a file of cbFile bytes, which may be kTextSizeUnknown, by its first
/// cbBlock bytes: all of them, or kTextProbeSize. cbBlock is not 0.
TextProbe ProbeText(const BYTE* pBlock, DWORD cbBlock, DWORD cbFile);

/// Reads until there are cb bytes or the stream ends: those of a pipe come in pieces. *pcbDone gets
/// their number. False if a read failed.
[[nodiscard]] bool ReadUpTo(CoreFile& file, void* pBuffer, unsigned __int64 cb,
                            unsigned __int64* pcbDone);
