#include "jet/file/header.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "common/concat.h"
#include "jet/file/header_mask.h"

namespace tav::jet {
namespace {

constexpr std::size_t kVersionAt = 0x14;
constexpr std::size_t kFreeMapAt = 0x18;
constexpr std::size_t kReleasedMapAt = 0x1C;
constexpr std::size_t kDatabaseKeyAt = 0x3E;
constexpr std::size_t kPasswordAt = 0x42;
constexpr std::size_t kCreatedAt = 0x72;
constexpr std::string_view kMagic("\0\1\0\0Standard Jet DB\0", 20);
constexpr std::string_view kNewerMagic("\0\1\0\0Standard ACE DB\0", 20);

// The password is empty when its first unit equals the mask's.
bool HasPassword(const std::uint8_t* plain, double created) {
    const auto day = static_cast<std::uint32_t>(static_cast<std::int64_t>(std::trunc(created)));
    return U16(plain + kPasswordAt) != (day & 0xFFFF);
}

}  // namespace

Text WhyForeign(TextView path, const std::uint8_t* header) {
    const Text unrecognized = Concat(u"Unrecognized database format '", path, u"'.");
    const auto starts_with = [&](std::string_view magic) {
        return std::equal(magic.begin(), magic.end(), header,
                          [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
    };
    const std::uint32_t version = U32(header + kVersionAt);
    if (starts_with(kNewerMagic) || (starts_with(kMagic) && version > 1)) {
        return unrecognized + u" It was made by a newer version (ACCDB).";
    }
    if (!starts_with(kMagic)) return unrecognized;
    if (version == 0) return unrecognized + u" It was made by an older version (Jet 3).";

    std::array<std::uint8_t, kHeaderSize> plain{};
    std::copy_n(header, kHeaderSize, plain.begin());
    for (std::size_t i = 0; i < kMaskedSize; ++i) plain[kMaskedBegin + i] ^= kHeaderMask[i];
    if (U32(plain.data() + kDatabaseKeyAt) != 0) {
        return Concat(u"The database '", path, u"' is encrypted and cannot be opened.");
    }
    const double created = DoubleAt(plain.data() + kCreatedAt);
    if (!std::isfinite(created) || std::fabs(created) > 1e7) {
        return unrecognized + u" Its creation date is damaged.";
    }
    if (HasPassword(plain.data(), created)) {
        return Concat(u"Not a valid password. The database '", path, u"' asks for one.");
    }
    return {};
}

GlobalMapPointers FindGlobalMaps(const std::uint8_t* header) {
    const auto plain = [&](std::size_t at) {
        return U32(header + at) ^ U32(&kHeaderMask[at - kMaskedBegin]);
    };
    return {Pointer::FromWord(plain(kFreeMapAt)), Pointer::FromWord(plain(kReleasedMapAt))};
}

}  // namespace tav::jet
