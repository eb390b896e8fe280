#include "ui/open_as.h"

namespace tav {

// The word processor that the reports are made for shows them as they are meant.
bool OpensPaper() {
    return false;
}

}  // namespace tav
