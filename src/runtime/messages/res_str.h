#pragma once
#include "runtime/base/export.h"
#include "runtime/base/heap_array.h"
#include "runtime/text/str_format.h"
#include <windows.h>

// A resource id is a signed number. Negative: the library's string table, with the magnitude as the
// id. Positive: the module of the current AppInstance if there is one, otherwise the library. An
// instance handle that is given goes before this rule, and a negative id is then its magnitude. 0
// is no text. What is loaded or formatted is cut to kMessageSize characters, with the terminator.

/// 1 if an argument that is a text or a resource id is an id: the value of an int from -65536 to
/// 65535, extended to 64 bits with its sign or with zeros. Everything else is a pointer.
TESSALY_API int IsResourceIdArg(const void* pArg);
/// The id of an argument for which IsResourceIdArg gives 1.
TESSALY_API int GetResourceIdArg(const void* pArg);

/// A text of the string table, as a copy of its own.
class TESSALY_API ResStr {
  public:
    /// Loads at once; see Load.
    explicit ResStr(int nId, HINSTANCE hinst = nullptr, int nUnused = 0);
    ~ResStr();
    ResStr(const ResStr&) = delete; // owns the text
    ResStr& operator=(const ResStr&) = delete;

    /// Replaces what is held, also by nothing if there is no such string. Returns the text, or the
    /// empty text; good until the next Load. The last argument has no meaning.
    const wchar_t* Load(int nId, HINSTANCE hinst = nullptr, int nUnused = 0);
    /// The text, or the empty text; never null.
    operator const wchar_t*() const { return text.IsReady() ? text.Get() : L""; }
    /// 1 if the text is empty or was not found.
    int IsEmpty() const { return !text.IsReady(); }

  protected:
    /// Formats the text, if there is one, with itself as the format. An empty result leaves it
    /// unformatted.
    void Format(va_list args);

  private:
    void Replace(const wchar_t* pszNew);

    HeapArray<wchar_t> text; // no block, or a text that is not empty
};

/// A text of the string table that is a format.
class TESSALY_API ResStrFmt : public ResStr {
  public:
    /// Loads the text, as ResStr does, and formats it with the arguments (ResStr::Format).
    explicit ResStrFmt(int nId, ...);
    ResStrFmt(int nId, HINSTANCE hinst, ArgList args);
};

/// Where a positive resource id without a module is looked for.
enum class DefaultModule {
    kLibrary,    // the library
    kApplication // the module of the current AppInstance, or the library if there is none
};

/// A resource by its module and its number, as LoadImageW and its relatives take them.
struct ResourceRef {
    HINSTANCE hinst; // the module
    LPCWSTR pszName; // MAKEINTRESOURCEW of the id
};

/// The resource that a signed id means: a negative one is the library's, whatever module is named,
/// and its number the absolute value; a positive one is hinst's or, for null, the default module's.
/// The low 16 bits are the number.
ResourceRef ResolveResourceId(int nId, HINSTANCE hinst, DefaultModule defaultModule);

/// Puts the magnitude in the place of the id, and the module that the rule at the head of this file
/// names in the place of a null one. Id 0 changes nothing.
void ConvertResourceId(int& nId, HINSTANCE& hinst);

/// StrAppendTextFmt (runtime/text/str_format.h) with a string of the string table as the format. Id
/// 0 clears the text; where there is no such string nothing is appended.
TESSALY_API void StrAppendTextFmt(wchar_t* pszText, unsigned cch, int nFormatId, ...);
