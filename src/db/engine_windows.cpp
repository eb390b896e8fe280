#include "common/concat.h"
#include "common/guard.h"
#include "db/ado_engine_windows.h"
#include "db/connection.h"
#include "db/engine.h"
#include "db/native_engine.h"
#include "platform/win32_windows.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr TextView kNative = u"native";

// TAV_ENGINE=native has the native one also where there is a provider: for trials.
Text FirstChoice() {
    const Text provider = win32::Variable(L"TAV_ENGINE") == kNative ? Text() : AdoProvider();
    return provider.empty() ? Text(kNative) : provider;
}

struct Opened {
    std::unique_ptr<Engine> engine;
    Text name;
};

// A machine without a provider has nobody to share the file with either: the native engine opens it alone. It
// does so, too, where the provider is no use for this file (a form it does not know, texts that it reads by
// other settings); but a file that somebody holds is for whoever shares it.
Opened Open(const OpenRequest& request) {
    const Text provider = FirstChoice();
    try {
        if (provider != kNative) return {OpenAdoEngine(request, provider), provider};
    } catch (const Failure& failure) {
        if (failure.error() == RunTimeError::FileInUse) throw failure.In(provider);
        try {
            const Text why = Concat(kNative, u" (", provider, u": ", failure.description(), u")");
            return {OpenNativeEngine(request), why};
        } catch (const Failure& native) {
            // Whatever number the provider has for it.
            const bool held = native.error() == RunTimeError::FileInUse;
            throw held ? Failure(RunTimeError::FileInUse, failure.description()).In(provider)
                       : failure.In(provider);
        }
    }
    try {
        return {OpenNativeEngine(request), provider};
    } catch (const Failure& failure) {
        throw failure.In(provider);
    }
}

}  // namespace

std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    return Open(request).engine;
}

Text EngineInUse() {
    Text name = FirstChoice();
    const Text connection_string = ConnectionString(getbase());
    GuardedBy([&] { name = Open({connection_string, 2, true}).name; }, [](const Failure&) {});
    return name;
}

}  // namespace tav
