// The mask over the part of the first page that tells of the creation date and the password.
#pragma once

#include <array>
#include <cstdint>

namespace tav::jet {

inline constexpr std::size_t kMaskedBegin = 0x18;
inline constexpr std::size_t kMaskedSize = 128;

// What the bytes 0x18 to 0x97 are XORed with: the key stream of the cipher RC4 for a constant key.
inline constexpr std::array<std::uint8_t, kMaskedSize> kHeaderMask = [] {
    constexpr std::uint8_t kKey[] = {0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state{};
    for (std::size_t i = 0; i < 256; ++i) state[i] = static_cast<std::uint8_t>(i);
    const auto swap = [&state](std::size_t a, std::size_t b) {
        const std::uint8_t kept = state[a];
        state[a] = state[b];
        state[b] = kept;
    };
    for (std::size_t i = 0, j = 0; i < 256; ++i) {
        j = (j + state[i] + kKey[i % 4]) % 256;
        swap(i, j);
    }
    std::array<std::uint8_t, kMaskedSize> mask{};
    std::size_t j = 0;
    for (std::size_t k = 0; k < kMaskedSize; ++k) {
        const std::size_t i = k + 1;
        j = (j + state[i]) % 256;
        swap(i, j);
        mask[k] = state[(state[i] + state[j]) % 256];
    }
    return mask;
}();

// Masks or unmasks the first page.
inline void MaskHeader(std::uint8_t* page) {
    for (std::size_t i = 0; i < kMaskedSize; ++i) page[kMaskedBegin + i] ^= kHeaderMask[i];
}

}  // namespace tav::jet
