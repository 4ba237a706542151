// Whole keys in files of the platform's own format.

#include "store/registry/reg_key.h"

int RegKey::SaveKey(HKEY hkeySaved, const wchar_t* pszFile, SECURITY_ATTRIBUTES* pSecurity) {
    if (!pszFile || !*pszFile) {
        lError = ERROR_INVALID_PARAMETER;
        return 0;
    }
    DWORD dwAttributes = ::GetFileAttributesW(pszFile);
    if (dwAttributes == INVALID_FILE_ATTRIBUTES) {
        dwAttributes = FILE_ATTRIBUTE_ARCHIVE;
    } else {
        // The platform writes over no file, and deletes none that is read-only.
        ::SetFileAttributesW(pszFile, FILE_ATTRIBUTE_NORMAL);
        ::DeleteFileW(pszFile);
    }
    lError = ::RegSaveKeyW(hkeySaved, pszFile, pSecurity);
    ::SetFileAttributesW(pszFile, dwAttributes);
    return lError == ERROR_SUCCESS;
}

int RegKey::LoadKey(HKEY hkeyParent, const wchar_t* pszSubkey, const wchar_t* pszFile) {
    return ::RegLoadKeyW(hkeyParent, pszSubkey, pszFile) == ERROR_SUCCESS;
}

int RegKey::UnLoadKey(HKEY hkeyParent, const wchar_t* pszSubkey) {
    return ::RegUnLoadKeyW(hkeyParent, pszSubkey) == ERROR_SUCCESS;
}
