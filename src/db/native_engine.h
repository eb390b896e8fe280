// The engine of this project: the dialect's executor over the database file itself.
#pragma once

#include <memory>

#include "db/engine.h"

namespace tav {

// The file is shared while it is read, and this engine's alone while it is written. Any other provider than
// that of kConnectionOpening is "Provider cannot be found. ...".
std::unique_ptr<Engine> OpenNativeEngine(const OpenRequest& request);

}  // namespace tav
