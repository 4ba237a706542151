#pragma once
#include "runtime/base/export.h"
#include <windows.h>

// The company message: one registered message by which the modules, windows and dialogs of all of
// the maker's products talk to each other. wParam is one of these codes, lParam the value that the
// code asks for. The monitor and its agent in the shell have codes of their own, 371 to 376.

/// Close this product's modules; the value is the product id.
constexpr WPARAM kCompanyCodeClose = 1;
/// Activate yourself; the value is a number. The answer kActivateDone means that it is done.
constexpr WPARAM kCompanyCodeActivate = 3;
/// The second broadcast when modules are shut down; the value is the product id.
constexpr WPARAM kCompanyCodeShutDown = 16;
/// A dialog passes a help look-up up its parent chain; the value is a pointer in the process.
constexpr WPARAM kCompanyCodeHelp = 100;
/// Are you the dialog of this number? The answer is 1 if it is.
constexpr WPARAM kCompanyCodeIsDialog = 121;

constexpr LRESULT kActivateDone = 0x8374B3; ///< The answer to kCompanyCodeActivate.

/// The id of the registered message, the same in every process of the session; 0 if the platform
/// registers no more. Registered on first use.
TESSALY_API UINT GetMyCompanyMsgId();

/// Sends the message and gives the window's answer; 0 for a null window.
TESSALY_API LRESULT SendMyCompanyMsg(HWND hwnd, WPARAM nCode, LPARAM lValue);
/// Posts the message. 1; 0 if it was not posted, as for a null window.
TESSALY_API int PostMyCompanyMsg(HWND hwnd, WPARAM nCode, LPARAM lValue);
