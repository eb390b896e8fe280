// The engine of an ADO provider, by late binding: ADODB.Connection as a script would use it. It shares the
// file with the host properly.
#pragma once

#include "db/engine.h"

namespace tav {

// The name of the first provider that the machine has for this process: Jet 4.0, else ACE 16.0 or 12.0;
// empty when there is none. Every 64-bit Windows has a Jet that is for 32-bit processes alone.
Text AdoProvider();

// Opens the connection with that provider's name in the place of the connection string's own.
std::unique_ptr<Engine> OpenAdoEngine(const OpenRequest& request, TextView provider);

}  // namespace tav
