#pragma once
#include "store/ini/ini_file.h"
#include <cstddef>

// What is sent to the maker's server and what its answers mean. It is asked over plain HTTP, so
// anybody on the way may have written them: every text is bounded, and only addresses of web pages
// are taken.

/// An update as the server describes it, in ini text: "version", "descr", "urlmoreinfo" and
/// "urldownload", in any case of letters; of several the last counts, others are ignored. Texts are
/// cut. An address that is cut or may not be opened (IsWebAddress) is empty.
class UpdateIni : public IniFile {
  public:
    static constexpr unsigned kFieldSize = 260; // characters with the terminator

    int CallBack(CallBackFlag nFlag, const wchar_t* pszSection, const wchar_t* pszName,
                 const wchar_t* pszValue) override;
    /// The address to open for who wants the update: the download's, else that of more information;
    /// empty if there is neither.
    const wchar_t* GetUrlToOpen() const { return *szUrlDownload ? szUrlDownload : szUrlMoreInfo; }

    wchar_t szVersion[kFieldSize] = {};
    wchar_t szDescription[kFieldSize] = {};
    wchar_t szUrlMoreInfo[kFieldSize] = {};
    wchar_t szUrlDownload[kFieldSize] = {};
};

/// Whether the text is an address that may be given to the shell: "http://" or "https://" and
/// something behind it, all printable ASCII without blanks and quotes of either kind, of fewer than
/// 260 characters.
bool IsWebAddress(const wchar_t* pszUrl);

enum class UpdateReply {
    kNone,       // null: nobody answered
    kNothingNew, // "OK" and nothing else
    kUpdate,     // ini text that begins with "[dl]"
    kError,      // anything else
};
/// What an answer is, in any case of letters.
UpdateReply ReadUpdateReply(const wchar_t* pszReply);
/// What an answer of the kind kError says behind the word "error" and blanks; empty if it does not
/// begin with that word. A place in the answer.
const wchar_t* GetReplyDetail(const wchar_t* pszReply);

/// The name of the maker's server, which the product is built with.
const wchar_t* GetUpdateServer();
/// Characters of the body of the question, with the terminator.
constexpr std::size_t kRequestSize = 256;
/// Writes the body: who asks, as the values of a form, percent-encoded as UTF-8 where it takes
/// that. What does not fit is cut, but not within an escape.
void MakeUpdateRequest(wchar_t (&szBody)[kRequestSize]);
