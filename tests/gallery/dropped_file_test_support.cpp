// A dropped file in another process, made as its own.

#include "gallery/hands_test_support.h"
#include "support/wait_until.h"

#include <shlobj.h>
#include <stdexcept>

namespace {
/// What the code below gets and gives back, in the other process.
struct Allocation {
    decltype(&::GlobalAlloc) pfn; // the platform's libraries lie at the same place everywhere
    UINT_PTR nFlags;
    SIZE_T cb;
    HGLOBAL hResult;
};

// A thread's procedure: p->hResult = p->pfn(p->nFlags, p->cb).
constexpr unsigned char kAllocate[] = {
    0x53,                   // push rbx
    0x48, 0x83, 0xEC, 0x20, // sub rsp, 0x20
    0x48, 0x89, 0xCB,       // mov rbx, rcx
    0x48, 0x8B, 0x4B, 0x08, // mov rcx, [rbx + 8]
    0x48, 0x8B, 0x53, 0x10, // mov rdx, [rbx + 0x10]
    0xFF, 0x13,             // call [rbx]
    0x48, 0x89, 0x43, 0x18, // mov [rbx + 0x18], rax
    0x48, 0x83, 0xC4, 0x20, // add rsp, 0x20
    0x5B,                   // pop rbx
    0xC3,                   // ret
};

class OtherProcess {
  public:
    explicit OtherProcess(HWND hwnd) {
        DWORD dwId = 0;
        ::GetWindowThreadProcessId(hwnd, &dwId);
        hProcess = ::OpenProcess(PROCESS_ALL_ACCESS, FALSE, dwId);
        if (!hProcess) throw std::runtime_error("the process can't be opened");
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess() { ::CloseHandle(hProcess); }

    void Write(void* pThere, const void* p, SIZE_T cb) {
        if (!::WriteProcessMemory(hProcess, pThere, p, cb, nullptr))
            throw std::runtime_error("the process can't be written to");
    }

    /// A fixed block of its heap: the handle is the address.
    HGLOBAL Allocate(SIZE_T cb) {
        constexpr SIZE_T kPage = 0x1000;
        auto* pPage = static_cast<unsigned char*>(::VirtualAllocEx(
            hProcess, nullptr, kPage, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
        if (!pPage) throw std::runtime_error("no memory in the process");
        auto* pArguments = reinterpret_cast<Allocation*>(pPage + kPage / 2);
        Allocation allocation{&::GlobalAlloc, GMEM_FIXED | GMEM_ZEROINIT, cb, nullptr};
        Write(pPage, kAllocate, sizeof(kAllocate));
        Write(pArguments, &allocation, sizeof(allocation));
        HANDLE hThread = ::CreateRemoteThread(hProcess, nullptr, 0,
                                              reinterpret_cast<LPTHREAD_START_ROUTINE>(pPage),
                                              pArguments, 0, nullptr);
        ::WaitForSingleObject(hThread, kTestDeadlineMs);
        ::CloseHandle(hThread);
        ::ReadProcessMemory(hProcess, pArguments, &allocation, sizeof(allocation), nullptr);
        ::VirtualFreeEx(hProcess, pPage, 0, MEM_RELEASE);
        if (!allocation.hResult) throw std::runtime_error("no block in the process");
        return allocation.hResult;
    }

  private:
    HANDLE hProcess = nullptr;
};
} // namespace

void DropFileOn(HWND hwnd, const std::wstring& strPath) {
    DROPFILES drop{};
    drop.pFiles = sizeof(drop);
    drop.fWide = TRUE;
    const SIZE_T cbPath = (strPath.size() + 1) * sizeof(wchar_t);
    OtherProcess process(hwnd);
    // One more terminator ends the list of paths: the block is of zeros.
    HGLOBAL hDrop = process.Allocate(sizeof(drop) + cbPath + sizeof(wchar_t));
    auto* pDrop = static_cast<unsigned char*>(hDrop);
    process.Write(pDrop, &drop, sizeof(drop));
    process.Write(pDrop + sizeof(drop), strPath.c_str(), cbPath);
    ::PostMessageW(hwnd, WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
}
