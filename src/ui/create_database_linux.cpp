#include "platform/files.h"
#include "settings/settings.h"
#include "ui/create_database.h"

namespace tav {

bool OffersDatabase() {
    return !FileExists(getbase());
}

}  // namespace tav
