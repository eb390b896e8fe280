// The class that a host application calls. It holds no state of
// its own: what it sets is the component's (settings/session.h).
//
// Every operation returns normally, whatever happened; a failure is shown under the operation's own title, in
// a box where there is a screen, else on standard error. Windows stay open when an operation has returned,
// and act through their events: the host's event loop serves them, or the toolkit's (forms/forms.h).
#pragma once

#include <cstdint>

#include "common/date.h"
#include "common/text.h"

namespace tav {

class OpenClass {
 public:
    // The date of a host that names none: no limit.
    static const Date kNoDateLimit;  // 01.01.2099

    // Makes it the current taxpayer and shows the main window.
    void start(TextView inn, TextView kpp, Date vdm = kNoDateLimit);

    // Builds the report of one statement, by its key in the database, and opens it with the shell.
    void view_v_id(std::int16_t id);

    // A complete unattended import from the import folder of
    // the settings. The current taxpayer stays who it is.
    void import(TextView inn, TextView kpp);

    // Sums up the statements, or the acts, of the taxpayer, who becomes the current one, and shows the dialog
    // that narrows the summary; or says that there is nothing to sum up.
    void view_v(TextView inn, TextView kpp);
    void view_a(TextView inn, TextView kpp);
};

}  // namespace tav
