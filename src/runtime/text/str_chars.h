#pragma once
#include "runtime/base/export.h"

// Sets of characters. They are ASCII only, whatever the user's language: of the characters above
// 127 none belongs to any set but IsPrintableChar's. Each test gives 1 or 0.

/// Blank, tab, CR, LF.
TESSALY_API int IsWhiteChar(wchar_t ch);
/// A to Z, a to z.
TESSALY_API int IsAlphaChar(wchar_t ch);
/// A to Z.
TESSALY_API int IsCapitalChar(wchar_t ch);
/// 0 to 9.
TESSALY_API int IsNumChar(wchar_t ch);
/// A to Z, a to z, 0 to 9.
TESSALY_API int IsAlphaNumChar(wchar_t ch);
/// 0 to 9, A to F, a to f.
TESSALY_API int IsHexChar(wchar_t ch);
/// Control characters: below 32, and 127.
TESSALY_API int IsCodeChar(wchar_t ch);
/// What may be shown or stands in a text file: 32 and above except 127, and tab, LF, form feed, CR
/// and 26 (the end mark of old text files).
TESSALY_API int IsPrintableChar(wchar_t ch);
/// The same for a character of 8 bits; 128 to 255 are printable.
TESSALY_API int IsPrintableChar(char ch);
/// ! " ' ( ) * + , - . / : ; = ? [ \ ] ^ ` { | } ~
TESSALY_API int IsPunctuationChar(wchar_t ch);
/// Blank and every ASCII sign that is neither letter nor digit, except the double quote.
TESSALY_API int IsMiscChar(wchar_t ch);

/// Replaces by "." each of the first n characters that is not printable. A terminator among them
/// is replaced too: n is the text's length or less.
TESSALY_API void MakeStrPrintable(wchar_t* pszText, unsigned n);
