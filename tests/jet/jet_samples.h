// The sample databases with their expected contents: a small one of our own in tests/jet/samples, whose rows
// are those that other readers of the format find in it, and files made by the original engine in the folder
// that TAV_MDB_SAMPLES names; tests that need one of these are skipped where it is not set.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "common/text.h"
#include "platform/files.h"
#include "support/support.h"

namespace tav::test {

inline std::string SampleFolder() {
    const char* folder = std::getenv("TAV_MDB_SAMPLES");
    return folder == nullptr ? std::string() : std::string(folder);
}

// A file of either folder.
inline Text SamplePath(std::string_view name) {
    const Text own = FromUtf8(TAV_TEST_DIR "/jet/samples/") + FromUtf8(name);
    return FileExists(own) ? own : WithSeparator(FromUtf8(SampleFolder())) + FromUtf8(name);
}

// All sample databases, by their paths.
inline std::vector<Text> SampleDatabases() {
    std::vector<Text> paths;
    for (const std::string& folder : {std::string(TAV_TEST_DIR "/jet/samples/"), SampleFolder()}) {
        if (folder.empty()) continue;
        const Text path = WithSeparator(FromUtf8(folder));
        for (const Text& name : ListFiles(path, u".mdb")) paths.push_back(path + name);
    }
    return paths;
}

// A copy to work on.
inline Text CopySample(const TempFolder& folder, TextView path) {
    return folder.Write(NameOf(path), ReadFile(path));
}

}  // namespace tav::test

#define TAV_NEEDS_SAMPLES() \
    if (tav::test::SampleFolder().empty()) GTEST_SKIP() << "TAV_MDB_SAMPLES is not set"
