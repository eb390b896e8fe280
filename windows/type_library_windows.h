// The type library that the component carries in itself, for programs that ask an object what it can do.
// Nothing in the component depends on it.
#pragma once

#include <oaidl.h>

namespace tav {

// The description of an interface or a class of it.
HRESULT TypeInfoOf(const GUID& id, ITypeInfo** info);

}  // namespace tav
