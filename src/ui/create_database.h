// A database that is missing.
#pragma once

namespace tav {

// Whether the windows offer to create it. On Windows it belongs to the host's program, which creates it.
bool OffersDatabase();

}  // namespace tav
