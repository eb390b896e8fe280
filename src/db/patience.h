// How long an open waits for a database that somebody else holds: at once refused, unless someone is there
// whose work would be lost.
#pragma once

#include <chrono>

#include "common/on_left.h"

namespace tav {

// While one lives, connections wait a few seconds for the others before they say so.
class DatabasePatience {
 public:
    DatabasePatience();
    ~DatabasePatience();
    DatabasePatience(const DatabasePatience&) = delete;
    DatabasePatience& operator=(const DatabasePatience&) = delete;

 private:
    static void End();

    const OnLeft left_{End};
};

// The attempts to open one file.
class Attempts {
 public:
    // After a wait; false when no time is left.
    bool Again();

 private:
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin_ = Clock::now();
};

}  // namespace tav
