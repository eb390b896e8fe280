// The tool-tips of one form: a window that appears when the pointer rests on a control.
#pragma once

#include "common/text.h"
#include "platform/win32_windows.h"

namespace tav {

// The window of the tips, of a form's window and gone with it.
HWND MakeToolTips(HWND form);

// A tip of a whole control.
void AddToolTip(HWND tips, HWND control, TextView text);

// Tips of the parts of a control, asked for when one is to be shown: the control gets TTN_GETDISPINFO.
void AddPartTips(HWND tips, HWND control);
// The part that the pointer is in; the tip of another goes.
void SetTipPart(HWND tips, HWND control, const RECT& part);
// What comes to the control, of which the tips want to know what the mouse does. They could listen
// themselves, but then every message of a list that is filled would pass through them.
void TellTips(HWND tips, HWND control, UINT message, WPARAM wparam, LPARAM lparam);

}  // namespace tav
