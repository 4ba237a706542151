#pragma once
#include "runtime/base/export.h"
#include <windows.h>
#include <atomic>

class AppInstance;
class ProgressEx;

/// Who a product is: its numbers, names, version texts, help file, icon, and where its settings
/// live. Each product derives its own class and supplies what is pure here; this library's own is
/// MyProductInfo below. Texts are borrowed from the object and never null unless said.
class TESSALY_API ProductInfo {
  public:
    static constexpr int kRootKeySize = 256; // characters of a root key, with the terminator

    ProductInfo(const ProductInfo&) = delete; // owns the pushed root
    ProductInfo& operator=(const ProductInfo&) = delete;

    /// The number by which the maker's programs know each other.
    virtual unsigned short GetID() = 0;
    virtual const wchar_t* GetStoreID() = 0;  ///< The name by which a shop knows it, in lower case.
    virtual const wchar_t* GetName() = 0;     ///< The name, without edition and version.
    virtual const wchar_t* GetNickName() = 0; ///< The short name, for titles.
    virtual const wchar_t* GetDisplayName() = 0; ///< The name that users read.
    /// 1 if the name is a registered trade mark.
    virtual int IsNameRegTM() = 0;
    /// The version as "major.minor".
    virtual const wchar_t* GetVersionStr() = 0;
    /// The same behind "Version"; with bRich in the mark-up of rich texts.
    virtual const wchar_t* GetVersionStrLong(int bRich) = 0;
    /// The version with the revision. The text lies in a buffer of the process; bRich may be
    /// anything.
    virtual const wchar_t* GetVersionStrRev(int bRich) = 0;
    /// Major version in the high byte, minor in the next, the revision in the low 16 bits.
    virtual unsigned GetVersionNum() = 0;
    /// Four parts of 16 bits: major, minor, build, revision.
    virtual unsigned long long GetVersionQWORD() = 0;
    virtual const wchar_t* GetLanguage() = 0;     ///< The language of its texts, such as "en".
    virtual const wchar_t* GetRevisionStr() = 0;  ///< The revision as text.
    virtual unsigned GetRevisionNum() = 0;        ///< The revision, of 16 bits.
    virtual const wchar_t* GetEditionShort() = 0; ///< The edition in a word, such as "x64".
    virtual const wchar_t* GetEdition() = 0;      ///< The edition as users read it.
    virtual const wchar_t* GetForOS() = 0;        ///< The systems that it is for, as users read it.
    virtual const wchar_t* GetCopyrightYear() = 0; ///< The first year of the notice.
    virtual const wchar_t* GetHelpFile() = 0;      ///< The name of the help file.
    /// The name of the program that checks for updates.
    virtual const wchar_t* GetAutoUpdateFile() = 0;
    /// A resource id: an int in 32 bits, negative for an icon of the library.
    virtual unsigned GetIconID() = 0;
    virtual HINSTANCE GetIconInstance() = 0; ///< The module that GetIconID's icon lies in.
    /// For whom this edition was made. The default is the empty text: for nobody.
    virtual const wchar_t* GetOEMStr();
    /// The title of message boxes. The default is the nickname.
    virtual const wchar_t* GetMsgTitle();
    /// Nickname, edition and version into a buffer of that many characters, cut to fit. Nothing for
    /// a buffer of 0 characters or fewer.
    virtual void MakeTitleLong(wchar_t* pszBuffer, int cchBuffer);

    /// The registry path below which the settings live: the pushed root, else that of the current
    /// AppInstance, else the product's own, which is made from its names if it is empty.
    const wchar_t* GetAppRootKey();
    /// Sets the root for the current AppInstance if that has a root, otherwise the product's own;
    /// cut to kRootKeySize - 1 characters. Null is the empty text.
    void SetAppRootKey(const wchar_t* pszRoot);
    /// Sets the pushed root, which goes before all others. Null, the empty text and a lack of
    /// memory clear it, as PopAppRootKey does.
    // QUIRK: there is no stack: a second push drops the first, and one pop then leaves none.
    // Test: ProductInfoTest.TwoPushesAndOnePopLeaveNoPushedRoot
    void PushAppRootKey(const wchar_t* pszRoot);
    void PopAppRootKey(); ///< Clears the pushed root; nothing if there is none.

    /// The module of the current AppInstance, or the library.
    HINSTANCE GetAppInstance();
    /// The component of the current AppInstance if it has one, or the nickname.
    const wchar_t* GetComponent();
    /// Resolves a signed resource id: without a module, a negative one gets the library, a positive
    /// one GetAppInstance; then a negative id becomes its magnitude. Id 0 changes nothing.
    void ConvertResourceId(int& nId, HINSTANCE& hinst);
    /// 1 if the text from its first digit on is this product's version; 0 also for null.
    int IsSameVersion(const wchar_t* pszVersion);
    /// 1 if the language is "en".
    int IsLangEN();
    /// The sign that goes with the name: a letter for a registered trade mark, or "[TM]".
    const wchar_t* GetRegTM();

    // The company message (wnd/core/company_msg.h).

    /// Posts to all top-level windows; does not wait for other threads. 1, or 0 if the platform
    /// refused.
    int BroadcastMyMessage(WPARAM nCode, LPARAM lValue);
    /// PostMyCompanyMsg to one window, with its result.
    int PostMyMessage(HWND hwnd, WPARAM nCode, LPARAM lValue);
    /// SendMyCompanyMsg to one window. The window's answer.
    LRESULT SendMyMessage(HWND hwnd, WPARAM nCode, LPARAM lValue);
    /// Tells all modules of this product to close and gives them that many seconds, each of which
    /// is a step of pProgress (null: none). hwnd is not used.
    void ShutDownMyModules(HWND hwnd, ProgressEx* pProgress, unsigned nSeconds);

    /// The newest AppInstance alive, null if there is none. Read without a lock.
    static std::atomic<AppInstance*> pCurrentApp;
    /// How a progress is advanced by a step. The progress dialogs, which this file may not include,
    /// put their function here; null means that there is no progress to advance.
    using StepProgressFunc = int(ProgressEx*);
    static StepProgressFunc* pfnStepProgress; // borrowed; null: there is no progress to advance

  protected:
    constexpr ProductInfo() noexcept = default;
    ~ProductInfo() = default; // trivial: the library's end pops the pushed root

  private:
    wchar_t szRootKey[kRootKeySize] = {};
    wchar_t* pszPushedRoot = nullptr; // owned; null: none
    int nPushedRootLength = 0;
};

/// One of several components of a product that share the library: while it lives, and no newer one
/// does, its module, component name and registry root go before those of the library. Made by host
/// applications, usually on their stack.
class TESSALY_API AppInstance {
  public:
    /// The component's name is borrowed and must outlive the object; null for none, and then there
    /// is no root either.
    AppInstance(HINSTANCE hinstApp, const wchar_t* pszComponentName);
    AppInstance(const AppInstance&) = delete; // the list knows its address
    AppInstance& operator=(const AppInstance&) = delete;
    /// Also drops MyProductInfo's pushed root.
    virtual ~AppInstance();

    /// Copies the root. Null, the empty text and a lack of memory leave none.
    void SetAppRootKey(const wchar_t* pszRoot);
    /// The component's root; null if there is no root or it is empty.
    const wchar_t* GetAppRootKey();
    HINSTANCE GetInstance() const { return hinst; } ///< The component's module.
    /// The component's name; null if there is none.
    const wchar_t* GetComponent() const { return pszComponent; }

    /// The life of the list's lock, for the library's start and end alone.
    static void StartLock();
    static void StopLock();

  private:
    HINSTANCE hinst;
    const wchar_t* pszComponent;   // borrowed
    wchar_t* pszRootKey = nullptr; // owned; null: none
    int nRootKeyLength = 0;
};

/// This product, Tessaly.
class TESSALY_API MyProductInfo : public ProductInfo {
  public:
    constexpr MyProductInfo() noexcept = default;

    unsigned short GetID() override;
    const wchar_t* GetStoreID() override;
    const wchar_t* GetName() override;
    const wchar_t* GetNickName() override;
    const wchar_t* GetDisplayName() override;
    int IsNameRegTM() override;
    const wchar_t* GetVersionStr() override;
    const wchar_t* GetVersionStrLong(int bRich) override;
    const wchar_t* GetVersionStrRev(int bRich) override;
    unsigned GetVersionNum() override;
    unsigned long long GetVersionQWORD() override;
    const wchar_t* GetLanguage() override;
    const wchar_t* GetRevisionStr() override;
    unsigned GetRevisionNum() override;
    const wchar_t* GetEditionShort() override;
    const wchar_t* GetEdition() override;
    const wchar_t* GetForOS() override;
    const wchar_t* GetCopyrightYear() override;
    const wchar_t* GetHelpFile() override;
    const wchar_t* GetAutoUpdateFile() override;
    unsigned GetIconID() override;
    HINSTANCE GetIconInstance() override;
};

/// The one object of the process, from before the library's start to its end.
TESSALY_API MyProductInfo& GetMyProductInfo();

/// Tells the rooms below who the product is (runtime/base/current_product.h). For the library's
/// start alone.
void SetMyProductAsCurrent();
