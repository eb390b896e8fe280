// Functions that are left without a word.
//
// A host may catch, by its own handlers, what the processor raises inside the component or what its own code raises while
// the component lets events through. The frames between are then given up and no destructor in them runs. Whoever calls
// the component, or is called by it, across such a border, is told (platform/border_windows.h), and lets those end
// that are about to go.
#pragma once

#include <functional>

namespace tav {

// Of a function, for as long as it runs; a variable on the stack, or a part of one.
class OnLeft {
 public:
    // What a destructor would have done. It runs only if the function is left without a word, while its variables are
    // still there, and throws nothing.
    explicit OnLeft(std::function<void()> end);
    ~OnLeft();
    OnLeft(const OnLeft&) = delete;
    OnLeft& operator=(const OnLeft&) = delete;

    // Of the present thread; null without any.
    static OnLeft* Innermost();
    // All that the present thread has made since then are left: the innermost ends first.
    static void LeaveTo(const OnLeft* outer);

 private:
    const std::function<void()> end_;
    OnLeft* const outer_;
};

}  // namespace tav
