// The processor's floating-point settings inside a host that may have others: hosts let exceptions through or
// compute with less precision, and neither our code nor the libraries it uses is made for that.
//
// Every function that is called from outside (methods, exports, window procedures, hooks) has one guard,
// before all else; but not those that only count and compare: QueryInterface, AddRef, Release, LockServer,
// DllGetClassObject, DllCanUnloadNow, GetTypeInfoCount. What a library that is loaded meanwhile does to the
// settings does not reach the host, either.
#pragma once

#include <cstdint>

namespace tav::win32 {

// Ours while it lives: all exceptions masked, 64 bits of mantissa, to the nearest. Then the host's.
class OwnFloatingPoint {
 public:
    OwnFloatingPoint();
    ~OwnFloatingPoint();
    OwnFloatingPoint(const OwnFloatingPoint&) = delete;
    OwnFloatingPoint& operator=(const OwnFloatingPoint&) = delete;

 private:
    std::uint16_t control_ = 0;  // the control word of the old unit
    std::uint32_t vectors_ = 0;  // MXCSR
};

}  // namespace tav::win32
