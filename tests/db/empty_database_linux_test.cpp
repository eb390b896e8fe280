// An empty database as mdbtools see it.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "db/empty_database.h"
#include "support/support.h"

namespace tav {
namespace {

// What an independent reader of the format prints.
std::string Output(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 4096> buffer;
    while (pipe != nullptr && std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) {
        output += buffer.data();
    }
    return output;
}

bool HasReader() {
    return std::system("command -v mdb-schema mdb-tables mdb-count > /dev/null 2>&1") == 0;
}

TEST(LinuxEmptyDatabase, AnIndependentReaderSeesTheFourTables) {
    if (!HasReader()) GTEST_SKIP() << "mdbtools are not installed";
    const test::TempFolder folder;
    CreateDatabase(folder / u"new.mdb");
    const std::string file = ToUtf8(folder / u"new.mdb");

    EXPECT_EQ(Output("mdb-tables -1 " + file),
              "tav_operations_header\ntav_operations\ntav_acts\ntav_operations_type\n");
    for (const char* table : {"tav_operations_header", "tav_operations", "tav_acts", "tav_operations_type"}) {
        EXPECT_EQ(Output("mdb-count " + file + " " + table), "0\n") << table;
    }
    test::ExpectGolden("db/schema.txt", Output("mdb-schema --indexes " + file +
                                               " postgres | sed -E '/^(--|SET|$)/d; s/[[:space:]]+/ /g'"));
}

}  // namespace
}  // namespace tav
