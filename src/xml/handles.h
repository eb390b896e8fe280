// Owners of the library's handles. Inside this room only.
#pragma once

#include <libxml/globals.h>

#include <memory>

namespace tav {

template <auto Function>
struct FreeBy {
    template <class Handle>
    void operator()(Handle* handle) const {
        Function(handle);
    }
};

// A handle let go by the library's own function: Owned<xmlDoc, xmlFreeDoc>.
template <class Handle, auto Function>
using Owned = std::unique_ptr<Handle, FreeBy<Function>>;

// Texts are let go through a pointer the library keeps, so a function pointer cannot name it.
struct FreeChars {
    void operator()(xmlChar* chars) const { xmlFree(chars); }
};
using OwnedChars = std::unique_ptr<xmlChar, FreeChars>;

}  // namespace tav
