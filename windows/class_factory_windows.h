// The factory that COM asks for objects of the class OpenClass.
#pragma once

#include <unknwn.h>

namespace tav {

// The factory, of which there is one; it lives as long as the
// library, and a host's references keep the library busy.
IClassFactory& ClassFactory();

}  // namespace tav
