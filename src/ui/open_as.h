// What the windows open of a report: the file itself, or its copy on paper (reports/paper.h).
#pragma once

namespace tav {

// The setting OpenAs, "doc" or "pdf", decides. Without it the copy is opened where the program that the desktop
// has for ".doc" would spoil the report's page, or where there is none.
bool OpensPaper();

}  // namespace tav
