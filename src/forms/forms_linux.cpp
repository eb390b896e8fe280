#include <dlfcn.h>

#include "common/failure.h"
#include "forms/forms_module.h"

namespace tav {
namespace {

constexpr char kModule[] = "libtav_forms_qt.so";

Toolkit* toolkit = nullptr;

[[noreturn]] void Refuse(TextView why) {
    throw Failure(u"Окна показать нельзя: " + Text(why));
}

}  // namespace

// The plain name is looked up beside whatever holds this code and in the lib folder next to it: see RUNPATH
// in the build. The module is never unloaded, for its windows' code may be needed until the process ends.
Toolkit& CurrentToolkit() {
    if (toolkit != nullptr) return *toolkit;
    void* module = ::dlopen(kModule, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) Refuse(u"модуль не загружается: " + FromUtf8(::dlerror()));
    auto* make = reinterpret_cast<MakeToolkit*>(::dlsym(module, kMakeToolkit));
    if (make == nullptr) Refuse(u"модуль не того вида: " + FromUtf8(::dlerror()));
    Text why;
    toolkit = make(why);
    if (toolkit == nullptr) Refuse(why);
    return *toolkit;
}

bool ToolkitLoaded() {
    return toolkit != nullptr;
}

}  // namespace tav
