// Where others call the component: its methods, the procedures of its windows, its hooks.
//
// On the two sides of such a border are handlers of exceptions that know nothing of each other. No exception of ours gets
// out. What others raise and catch passes through: the functions inside are left without a word, and those that have to
// know are told (common/on_left.h) when their frames are taken off the stack. That is so with every handler that unwinds,
// longjmp of the system's C library included.
#pragma once

#include "platform/floating_point_windows.h"

namespace tav::win32 {

// With floating-point settings of our own.
void CallAtBorder(void (*body)(void* argument), void* argument) noexcept;

// What `body` returns; it throws nothing, and the kind of its result has a default.
template <class Body>
auto AtBorder(const Body& body) noexcept {
    decltype(body()) result{};
    auto run = [&] { result = body(); };
    CallAtBorder([](void* argument) { (*static_cast<decltype(run)*>(argument))(); }, &run);
    return result;
}

}  // namespace tav::win32
