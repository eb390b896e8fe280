#include "common/failure.h"
#include "forms/forms_module.h"
#include "forms/qt_module.h"

namespace tav {
namespace {

Toolkit* toolkit = nullptr;

}  // namespace

Toolkit& CurrentToolkit() {
    if (toolkit != nullptr) return *toolkit;
    Text why;
    auto* make = reinterpret_cast<MakeToolkit*>(QtModuleFunction(kMakeToolkit, why));
    if (make != nullptr) toolkit = make(why);
    if (toolkit == nullptr) throw Failure(u"Окна показать нельзя: " + why);
    return *toolkit;
}

bool ToolkitLoaded() {
    return toolkit != nullptr;
}

}  // namespace tav
