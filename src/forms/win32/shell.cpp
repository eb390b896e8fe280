#include "forms/shell.h"

#include "common/concat.h"
#include "forms/win32/form_window.h"
#include "platform/automation_windows.h"
#include "platform/files.h"
#include "platform/win32_windows.h"

namespace tav {

// The shell's extensions are COM objects.
void OpenDocument(TextView path, FormWindow* owner) {
    if (!FileExists(path)) throw Failure(RunTimeError::FileNotFound, path);
    const win32::ComUse com;
    const std::wstring full = win32::FullPath(path);  // the shell looks below the folder "0" for any other
    const HINSTANCE result =
        ::ShellExecuteW(WindowOf(owner), L"open", full.c_str(), L"0", L"0", SW_SHOWNORMAL);
    const auto code = reinterpret_cast<INT_PTR>(result);
    if (code > 32) return;
    throw Failure(RunTimeError::PathFileAccess, Concat(path, u" (ShellExecute ", Digits(code), u")"));
}

}  // namespace tav
