// Random numbers that are the same on every machine and with every library: a counter stepped by the golden
// ratio, each value mixed by two rounds of multiplication and shift.
#pragma once

#include <cstdint>

namespace tav::samples {

class Random {
 public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Next() {
        std::uint64_t x = state_ += 0x9E3779B97F4A7C15u;
        x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
        x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
        return x ^ (x >> 31);
    }
    // 0 to limit - 1; the limit must be positive. Small limits only, so the modulo's bias does not matter.
    int Below(int limit) { return static_cast<int>(Next() % static_cast<std::uint64_t>(limit)); }
    // An amount of money in kopecks, from one rouble to about ten million, small ones more often.
    long long Amount() {
        static constexpr int kLimits[] = {100'000, 2'000'000, 50'000'000, 1'000'000'000};
        return 100 + Below(kLimits[Below(4)]);
    }

    // The difference of two amounts.
    long long Balance() {
        const long long credit = Amount();
        return credit - Amount();
    }

 private:
    std::uint64_t state_;
};

}  // namespace tav::samples
