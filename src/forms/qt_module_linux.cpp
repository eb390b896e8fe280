#include <dlfcn.h>

#include "forms/qt_module.h"

namespace tav {

// The plain name is looked up beside whatever holds this code and in the lib folder next to it: see RUNPATH
// in the build. The module is never unloaded, for its windows' code may be needed until the process ends.
void* QtModuleFunction(const char* name, Text& why) {
    static void* module = nullptr;
    if (module == nullptr) module = ::dlopen("libtav_forms_qt.so", RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        why = u"модуль не загружается: " + FromUtf8(::dlerror());
        return nullptr;
    }
    void* function = ::dlsym(module, name);
    if (function == nullptr) why = u"модуль не того вида: " + FromUtf8(::dlerror());
    return function;
}

}  // namespace tav
