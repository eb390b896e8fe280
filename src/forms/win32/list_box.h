// The list box, a table, as MakeControl (controls.h) has it made.
//
// It is the system's list view, and answers what a plain list box is asked, too (LB_GETCOUNT, LB_GETTEXT,
// LB_GETCURSEL, LB_GETITEMRECT and the like): programs that drive the windows read each row's text in one piece.
#pragma once

#include "forms/win32/control.h"

namespace tav {

MadeControl MakeListBox(const ControlPlan& plan, std::size_t index, FormHost& host);

}  // namespace tav
