// The class that a host application calls. It holds no state of its own: what it sets is the component's
// (settings/session.h).
//
// Every operation returns normally, whatever happened; a failure is shown under the operation's own title.
#pragma once

#include <cstdint>

#include "common/text.h"

namespace tav {

class OpenClass {
 public:
    // Builds the report of one statement, by its key in the database, and opens it with the shell.
    void view_v_id(std::int16_t id);

    // A complete unattended import from the import folder of the settings. The current taxpayer stays who it
    // is.
    void import(TextView inn, TextView kpp);
};

}  // namespace tav
