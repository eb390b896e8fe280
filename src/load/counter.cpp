#include "load/counter.h"

#include <cmath>

#include "common/database_failure.h"
#include "common/regional.h"
#include "db/literals.h"

namespace tav {

Counter::Counter(const Value& highest) {
    const auto number = ParseNumber(isns(isn(highest)));
    if (!number) throw Failure(RunTimeError::TypeMismatch, isns(highest));
    const double whole = std::nearbyint(*number);
    if (!(whole >= INT16_MIN && whole <= INT16_MAX)) throw Failure(RunTimeError::Overflow, isns(highest));
    value_ = static_cast<std::int16_t>(whole);
}

std::int16_t Counter::Next() {
    if (value_ == INT16_MAX) {
        throw DatabaseFailure(Failure(RunTimeError::Overflow));
    }
    return ++value_;
}

}  // namespace tav
