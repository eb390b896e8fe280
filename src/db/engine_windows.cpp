#include "common/failure.h"
#include "db/ado_engine_windows.h"
#include "platform/win32_windows.h"

namespace tav {
namespace {

// Empty for the native engine. TAV_ENGINE=native has that also where there is a provider: for trials.
Text Provider() {
    return win32::Variable(L"TAV_ENGINE") == u"native" ? Text() : AdoProvider();
}

}  // namespace

// A machine without a provider has nobody to share the file with either: the native engine opens it alone.
std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    const Text provider = Provider();
    try {
        return provider.empty() ? OpenNativeEngine(request) : OpenAdoEngine(request, provider);
    } catch (const Failure& failure) {
        throw failure.In(EngineInUse());
    }
}

Text EngineInUse() {
    const Text provider = Provider();
    return provider.empty() ? Text(u"native") : provider;
}

}  // namespace tav
