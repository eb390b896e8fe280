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

class AdoDouble {
 public:
    AdoDouble();

    // "CursorLocation=3", "Open text|user|password|options",
    // "Execute text", "Close", in the order of the calls.
    static std::vector<Text>& Calls();

 private:
    const win32::ComUse com_;
    const MachineValue ado_;
    const MachineValue jet_;
    ClassDouble class_;
};

}  // namespace tav::test
