// Files that are no databases this system can use, made of a good one: what each is, its bytes, and what a
// refusal says.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "jet/file/header_mask.h"

namespace tav::test {

struct BadDatabase {
    std::string what;
    std::string bytes;
    std::string words;
};

inline std::vector<BadDatabase> BadDatabases(const std::string& good) {
    const auto masked = [](std::size_t at, int plain) {
        return static_cast<char>(jet::kHeaderMask[at - jet::kMaskedBegin] ^ plain);
    };
    struct Patch {
        const char* what;
        std::size_t offset;
        std::string bytes;
        const char* words;
    };
    const Patch patches[] = {
        {"text", 0, "hello", "Unrecognized database format '"},
        {"older", 0x14, std::string(1, '\0'), "older version (Jet 3)"},
        {"newer", 0x14, std::string(1, '\2'), "newer version (ACCDB)"},
        {"other engine", 4, "Standard ACE DB", "newer version (ACCDB)"},
        {"encrypted", 0x3E, {masked(0x3E, 5)}, "is encrypted"},
        {"password", 0x42, {static_cast<char>(good[0x42] ^ 'x')}, "Not a valid password."},
        {"no date", 0x78, {masked(0x78, 0xF0), masked(0x79, 0x7F)}, "creation date is damaged"},
        {"cut", good.size(), "x", "its size is wrong"},
    };
    std::vector<BadDatabase> bad;
    for (const Patch& patch : patches) {
        std::string bytes = good;
        bytes.resize(std::max(bytes.size(), patch.offset + patch.bytes.size()));
        bad.push_back(
            {patch.what, bytes.replace(patch.offset, patch.bytes.size(), patch.bytes), patch.words});
    }
    for (const std::size_t size : {0, 100, 4096, 8192}) {
        bad.push_back(
            {std::to_string(size) + " bytes", good.substr(0, size), "Unrecognized database format"});
    }
    return bad;
}

}  // namespace tav::test
