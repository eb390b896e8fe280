// ADODB.Connection and ADODB.Recordset as a provider's component would offer them, over the native engine,
// and a record of what is asked of them. While one lives, new ADODB.Connection objects of this process are
// its own, and the machine seems to have the provider Microsoft.Jet.OLEDB.4.0.
#pragma once

#include <string>
#include <vector>

#include "platform/automation_windows.h"
#include "support/com_double_windows.h"
#include "support/machine_value_windows.h"

namespace tav::test {

// How strict the provider is, beyond what the native engine asks for. It always refuses a transaction inside another, the
// end of one that has not begun, and a close in the middle of one.
struct ProviderHabits {
    bool month_first = false;    // reads "01.02.2011" as the second of January, and "1,5" as fifteen
    bool circular = false;       // refuses a column whose name an alias of its select has
    bool whole_doubles = false;  // gives whole numbers as doubles
    bool with_pictures = false;  // every table ends with an OLE column
    bool fixed_locks = false;    // lacks the property that raises the limit of locks
    bool stuck = false;          // cannot undo a transaction
    bool full = false;           // cannot commit one
    Text refusal = {};           // what it says instead of opening a file
    Text refusal_state = {};     // the number of that
};

class AdoDouble {
 public:
    explicit AdoDouble(const ProviderHabits& habits = {});

    // "CursorLocation=3", "Open text|user|password|options", "Execute text", "BeginTrans", "Close", in
    // the order of the calls, without the question how the provider reads texts.
    static std::vector<Text>& Calls();

 private:
    const win32::ComUse com_;
    const MachineValue ado_;
    const MachineValue jet_;
    ClassDouble class_;
};

}  // namespace tav::test
