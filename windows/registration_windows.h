// What the registry holds of the component, written and removed by a table (registration.table).
#pragma once

#include <windows.h>

namespace tav {

// For all users of the machine, or the present one alone.
enum class Whose { Machine, User };

// Writes all rows; at the first failure takes back what there is and returns it.
HRESULT Register(Whose whose);

// Removes them all, whoever wrote them; succeeds when none exist. The type library and the programmatic
// identifier belong to both widths of the component and stay while the other one is registered.
HRESULT Unregister(Whose whose);

}  // namespace tav
