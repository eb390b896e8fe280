// The forms of this module: which exist, which are shown, and their keys in a foreign message loop.
#pragma once

#include "platform/win32_windows.h"

namespace tav {

class FormWindowWin;

// Forms whose windows are made and not yet gone; the module stays loaded while any exist. To be asked by any thread.
int OpenForms();

// The class of their windows.
inline constexpr wchar_t kFormClass[] = L"TAV_OperationImport";
// Whether that thread has windows of forms; to be asked by any thread.
bool HasForms(DWORD thread);
// The captions of those on the screen, or of those that are not; asks nothing of that thread, which may be busy.
std::vector<Text> FormCaptions(DWORD thread, bool on_screen);

void FormMade(FormWindowWin* form);
void FormGone(FormWindowWin* form);
// The form with this window, or null.
FormWindowWin* FormOf(HWND window);
// The form that is the thread's active window, or null.
FormWindowWin* ActiveForm();

// A form's window appears on the screen or leaves it; both may be said again.
void FormShown(FormWindowWin* form);
void FormHidden(FormWindowWin* form);
// The message loop, until no form is shown.
void RunUntilNoFormIsShown();

}  // namespace tav
