#include "ui/create_database.h"

namespace tav {

bool OffersDatabase() {
    return false;
}

}  // namespace tav
