// Late binding: the operations of OpenClass by a table of names, so that scripts can call them whether or not
// a type library is registered.
//
// Names are the same in every letter case; arguments may be given by place, by name or, when they are
// optional, left out (a missing one, or an error of the value DISP_E_PARAMNOTFOUND). They are converted as
// Automation converts, by the caller's locale.
#pragma once

#include <oaidl.h>

namespace tav {

struct OpenClassInterface;

namespace dispatch {

// The numbers of a method and, after it, of its parameters. An unknown
// name gets DISPID_UNKNOWN, and the result is DISP_E_UNKNOWNNAME.
HRESULT IdsOfNames(LPOLESTR* names, UINT count, DISPID* ids);

// Calls a method. DISP_E_MEMBERNOTFOUND: no such method, or it is used as a property; DISP_E_BADPARAMCOUNT:
// too many or too few arguments, or one given twice; DISP_E_PARAMNOTFOUND: a parameter's number that there is
// not; DISP_E_PARAMNOTOPTIONAL: a required argument left out between others; DISP_E_TYPEMISMATCH and
// DISP_E_OVERFLOW: an argument that does not convert. The last four tell in `wrong_argument` (may be null)
// its place in `arguments`.
HRESULT Invoke(OpenClassInterface& object, DISPID method, LCID locale, WORD flags,
               const DISPPARAMS* arguments, UINT* wrong_argument);

}  // namespace dispatch
}  // namespace tav
