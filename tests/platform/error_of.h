// What kind of failure an action ends with.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "common/failure.h"

namespace tav::test {

inline RunTimeError ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.error();
    }
    ADD_FAILURE() << "no failure";
    return RunTimeError::Other;
}

}  // namespace tav::test
