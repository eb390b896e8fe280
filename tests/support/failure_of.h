// What failure an action ends with.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "common/failure.h"

namespace tav::test {

// Its words; empty when it does not fail.
template <class Action>
std::string FailureOf(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

// Its kind. The test fails when there is none.
template <class Action>
RunTimeError ErrorOf(Action action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.error();
    }
    ADD_FAILURE() << "no failure";
    return RunTimeError::Other;
}

}  // namespace tav::test
