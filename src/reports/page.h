// The frame around every report, and how a finished report becomes a file: HTML in Windows-1251, named
// ".doc", which the user's word processor shows as a landscape page.
#pragma once

#include <functional>

#include "common/text.h"

namespace tav {

// A report's text: the frame, `heading` (rows) in the borderless table, `rows` in the ruled one. The ruled
// table stays open: WriteReport closes it. The body, the div and the html element are never closed.
Text Page(TextView heading, TextView rows);

// The full path of a report file in the export folder. When a file of that name is there already, the name
// gets the seconds of the present time: "vipis.doc" becomes "vipis07.doc".
Text ReportPath(TextView folder, TextView name);

// Creates the missing folders and writes the page, its closing tag and a line break, whole. It reaches the disk
// when the system sees fit.
void WriteReport(TextView path, TextView page);

// Runs a report function: opens nothing itself, catches everything. `body` returns the path of the report it
// wrote; before it writes a file it sets `file` to its path. "Permission denied" gives the file-in-use
// message with `file` (the database, until the body names another), any other failure its description under
// `title`; the result is empty then. So it is for a report that is asked for while another one is made, which
// lets windows live on. The body owns what it uses (common/aside.h).
Text GuardedReport(TextView title, TextView database, const std::function<Text(Text& file)>& body);

}  // namespace tav
