// Failures of the database itself: it is damaged, full, not to be written. Every other statement would fail as
// well, while a failure of one statement and its values (no date, no number, a rule of the table) says nothing
// about the next.
#pragma once

#include "common/failure.h"

namespace tav {

class DatabaseFailure : public Failure {
 public:
    explicit DatabaseFailure(TextView text) : Failure(text) {}
    explicit DatabaseFailure(const Failure& failure) : Failure(failure) {}
};

// Whether the exception being handled concerns the database itself, or the machine.
bool ConcernsDatabase();

}  // namespace tav
