#include "platform/environment.h"

namespace tav {
namespace {

LocalTime (*clock_in_use)() = SystemClock;

}  // namespace

LocalTime Now() {
    return clock_in_use();
}
void SetClock(LocalTime (*clock)()) {
    clock_in_use = clock == nullptr ? SystemClock : clock;
}

Date Today() {
    return DateFromCivil(Now().date).value_or(Date());
}

}  // namespace tav
