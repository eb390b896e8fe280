// Hashed look-ups of names without regard to letter case, by any text, without an upper-cased copy of it.
//
//     std::unordered_map<Text, T, NameHash, SameName>
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/text.h"

namespace tav {

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(TextView name) const {
        std::uint64_t hash = name.size();
        for (const char16_t c : name) hash = (hash ^ UpperChar(c)) * 0x9E3779B97F4A7C15;
        return static_cast<std::size_t>(hash ^ hash >> 32);
    }
};

struct SameName {
    using is_transparent = void;
    bool operator()(TextView a, TextView b) const { return a == b || EqualNoCase(a, b); }
};

}  // namespace tav
