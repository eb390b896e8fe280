#include "common/failure.h"
#include "db/ado_engine_windows.h"
#include "db/engine.h"
#include "db/native_engine.h"
#include "platform/win32_windows.h"

namespace tav {
namespace {

constexpr TextView kNative = u"native";

}  // namespace

// A machine without a provider has nobody to share the file with either: the native engine opens it alone.
std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    const Text engine = EngineInUse();
    try {
        return engine == kNative ? OpenNativeEngine(request) : OpenAdoEngine(request, engine);
    } catch (const Failure& failure) {
        throw failure.In(engine);
    }
}

// TAV_ENGINE=native has the native one also where there is a provider: for trials.
Text EngineInUse() {
    const Text provider = win32::Variable(L"TAV_ENGINE") == kNative ? Text() : AdoProvider();
    return provider.empty() ? Text(kNative) : provider;
}

}  // namespace tav
