#include "common/on_left.h"

#include <utility>

namespace tav {
namespace {

thread_local OnLeft* innermost = nullptr;

}  // namespace

OnLeft::OnLeft(std::function<void()> end) : end_(std::move(end)), outer_(std::exchange(innermost, this)) {}

OnLeft::~OnLeft() {
    innermost = outer_;
}

OnLeft* OnLeft::Innermost() {
    return innermost;
}

void OnLeft::LeaveTo(const OnLeft* outer) {
    while (innermost != outer) {
        const OnLeft& left = *innermost;
        innermost = left.outer_;
        left.end_();
    }
}

}  // namespace tav
