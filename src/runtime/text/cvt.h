#pragma once
#include "runtime/base/export.h"

/// Text between the platform's 16-bit and 8-bit forms (system code page), through one owned buffer
/// that is allocated on first use. There are two ways to use it around a foreign call:
///
///     CVT cvt;                                CVT cvt;
///     SomethingA(cvt.T_A(szText));            SomethingW(cvt.A_T());
///     cvt.A_T(szText); // what it made of it  cvt.T_A(szNarrow); // the same in 8 bits
///
/// What does not fit is cut; every text is terminated. Out of memory gives null pointers and empty
/// texts.
class TESSALY_API CVT {
  public:
    /// cchWanted is the size in characters of the texts that pass through, terminator included.
    explicit CVT(unsigned cchWanted = 260);
    CVT(const CVT&) = delete; // owns the buffer
    CVT& operator=(const CVT&) = delete;
    ~CVT();

    unsigned GetSize() const { return cch; }
    /// The text in 8 bits, in the buffer, which a narrow function may then change: it has room for
    /// GetSize() characters and the terminator. A null text counts as empty.
    char* T_A(const wchar_t* pszText);
    /// The buffer as a place for 16-bit text, of GetSize() characters and the terminator.
    wchar_t* A_T();
    /// The 16-bit text in the buffer, in 8 bits, into pszOut of GetSize() bytes.
    void T_A(char* pszOut) const;
    /// The 8-bit text in the buffer, in 16 bits, into pszOut of GetSize() characters.
    void A_T(wchar_t* pszOut) const;
    /// Text is 16-bit already.
    static const wchar_t* T_W(const wchar_t* pszText) { return pszText; }

  private:
    int Allocate();

    void* pBuffer = nullptr;
    unsigned cch;
};
