#pragma once
#include "gallery_page.h"

#include <string>
#include <vector>

/// The lower half of the page "Files": copies, compares, deletes and wipes the files of a folder
/// that are chosen in a list.
class FileWork {
  public:
    /// The page must outlive this.
    explicit FileWork(GalleryPage& pageOfWork) : page(pageOfWork) {}
    FileWork(const FileWork&) = delete; // its controls belong to one page
    FileWork& operator=(const FileWork&) = delete;

    // What the page does calls the one of the same name here.
    void OnInitDialog();
    void UpdateControls();
    void OnCommand(unsigned short nId, unsigned short nCode);
    void OnButtonClicked(unsigned short nId);
    void OnResize(int dw, int dh);

  private:
    void Browse();
    void Copy(unsigned long nFlags, const wchar_t* pszDone);
    void Delete();
    void Wipe();
    static int OnWiped(void* pWork, int nPass, unsigned __int64 cbWritten);

    void ShowFiles();
    void ShowResult(int bDone, size_t nCount, const wchar_t* pszDone);
    std::wstring TextOf(int nId) const;
    std::vector<std::wstring> ChosenNames() const;
    int Ask(const wchar_t* pszQuestion, size_t nCount) const;

    GalleryPage& page;
    CSEdit fromEdit, intoEdit;
    std::vector<std::wstring> names; // of the files in the list
    // While a file is wiped
    unsigned __int64 cbFile = 0;
    int nPasses = 0;
};
