#include "db/engine.h"
#include "db/native_engine.h"

namespace tav {

std::unique_ptr<Engine> OpenEngine(const OpenRequest& request) {
    return OpenNativeEngine(request);
}

Text EngineInUse() {
    return u"native";
}

}  // namespace tav
