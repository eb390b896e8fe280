#include "type_library_windows.h"

#include "platform/floating_point_windows.h"
#include "platform/win32_windows.h"

namespace tav {

HRESULT TypeInfoOf(const GUID& id, ITypeInfo** info) try {
    const win32::OwnFloatingPoint own;
    ITypeLib* library = nullptr;
    const HRESULT loaded = ::LoadTypeLibEx(win32::ModulePath().c_str(), REGKIND_NONE, &library);
    if (FAILED(loaded)) return loaded;
    const HRESULT found = library->GetTypeInfoOfGuid(id, info);
    library->Release();
    return found;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

}  // namespace tav
