#include "db/patience.h"

#include <atomic>
#include <thread>

namespace tav {
namespace {

constexpr std::chrono::seconds kPatience{4};
constexpr std::chrono::milliseconds kBetweenAttempts{100};

std::atomic<int> patient = 0;

}  // namespace

DatabasePatience::DatabasePatience() {
    ++patient;
}
DatabasePatience::~DatabasePatience() {
    End();
}

void DatabasePatience::End() {
    --patient;
}

bool Attempts::Again() {
    if (patient == 0 || Clock::now() - begin_ > kPatience) return false;
    std::this_thread::sleep_for(kBetweenAttempts);
    return true;
}

}  // namespace tav
