#include "common/failure.h"
#include "db/ado_engine_windows.h"

namespace tav {

// A machine without a provider has nobody to share the file with either: the native engine opens it alone.
std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    const Text provider = AdoProvider();
    try {
        return provider.empty() ? OpenNativeEngine(request) : OpenAdoEngine(request, provider);
    } catch (const Failure& failure) {
        throw failure.In(EngineInUse());
    }
}

Text EngineInUse() {
    const Text provider = AdoProvider();
    return provider.empty() ? Text(u"native") : provider;
}

}  // namespace tav
