#include "platform/floating_point_windows.h"

#include <xmmintrin.h>

namespace tav::win32 {
namespace {

constexpr std::uint16_t kControl = 0x037F;
constexpr std::uint32_t kVectors = 0x1F80;

// Flags that we leave would be the host's exception at its next instruction, once they are let through again.
void SetControl(std::uint16_t control) {
    __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(control));
}

}  // namespace

OwnFloatingPoint::OwnFloatingPoint() : vectors_(_mm_getcsr()) {
    __asm__ volatile("fnstcw %0" : "=m"(control_));
    SetControl(kControl);
    _mm_setcsr(kVectors);
}

OwnFloatingPoint::~OwnFloatingPoint() {
    SetControl(control_);
    _mm_setcsr(vectors_);
}

}  // namespace tav::win32
