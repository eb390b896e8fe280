#include "common/failure.h"
#include "platform/forms.h"

namespace tav {

Toolkit& CurrentToolkit() {
    throw Failure(u"Окна показать нельзя: в этой сборке их нет");
}

bool ToolkitLoaded() {
    return false;
}

}  // namespace tav
