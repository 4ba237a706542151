#pragma once
#include "runtime/base/export.h"
#include <windows.h>

/// Asks a web server, port 80, for an object ("updates/index.php") and waits for the answer: with
/// GET, or if pszPost is not null with POST and that text, in the system code page, as the body of
/// a form. The proxy is the one that the platform is set to. Whatever the status of the answer,
/// redirections excepted, its body is what counts.
///
/// Reads at most cbMax bytes. With EF BB BF in front they are UTF-8, with FF FE UTF-16, both
/// without that mark, otherwise in the system code page. What follows a zero character is lost.
/// Returns a text on the library's heap, which the caller frees: StrRealloc(psz, nullptr)
/// (runtime/text/str_copy.h). Null if nothing was read: no connection, no WinINet, an empty answer,
/// or out of memory.
///
/// It shows nothing, and comes back at most 2 seconds after nSeconds (more than a day counts as a
/// day), whatever the server or the network does: what was read until then is the answer. The
/// platform's part of the work is done on a thread of its own, which is normally gone when this
/// comes back; one that hangs in the platform goes when that lets it. The calling thread handles no
/// messages meanwhile.
///
/// Cookies are the platform's matter: it sends those that it has for the server, and may keep what
/// the server sends. Of the answer no copy stays in its cache.
[[nodiscard]] TESSALY_API wchar_t* SendHttp(const wchar_t* pszServer, const wchar_t* pszObject,
                                            unsigned cbMax, const wchar_t* pszPost,
                                            unsigned nSeconds);
