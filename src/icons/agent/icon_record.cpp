#include "icons/agent/icon_record.h"
#include "runtime/base/digest.h"

#include <cstring>
#include <cwchar>

unsigned __int64 MakeNameKey(const wchar_t* psz, unsigned int cch) {
    if (!psz) {
        cch = 0;
    } else if (cch == 0) {
        cch = static_cast<unsigned int>(std::wcslen(psz));
    }
    unsigned char digest[kMd5Size];
    CalcMD5(digest, psz, cch * sizeof(wchar_t));
    unsigned __int64 qwKey;
    std::memcpy(&qwKey, digest, sizeof(qwKey));
    return qwKey;
}
