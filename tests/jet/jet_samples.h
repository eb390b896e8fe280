// The sample databases: files made by the database engine itself, with their expected contents.
//
// They lie in the folder that TAV_MDB_SAMPLES names; tests that need them are skipped where it is not set.
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

inline Text SamplePath(std::string_view name) {
    return WithSeparator(FromUtf8(SampleFolder())) + FromUtf8(name);
}

inline Text SampleDatabase(const std::string& stem) {
    return SamplePath(stem + ".mdb");
}

// The file names of all sample databases, sorted.
inline std::vector<Text> SampleDatabases() {
    return ListFiles(FromUtf8(SampleFolder()), u".mdb");
}

// A copy to work on.
inline Text CopySample(const TempFolder& folder, std::string_view name) {
    return folder.Write(FromUtf8(name), ReadFile(SamplePath(name)));
}

}  // namespace tav::test

#define TAV_NEEDS_SAMPLES() \
    if (tav::test::SampleFolder().empty()) GTEST_SKIP() << "TAV_MDB_SAMPLES is not set"
