#include "jet/create.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "common/failure.h"
#include "jet/format.h"
#include "platform/files.h"

namespace tav::jet {
namespace {

// Bytes that mean nothing in the file the database engine made: places of variable columns, orders of unused
// index places, and a field of the index block nobody reads.
const std::set<std::size_t> kMeaningless = [] {
    const std::vector<std::pair<std::size_t, std::vector<std::size_t>>> pages = {
        {2, {233, 308, 309, 333, 334, 359, 383, 409, 483, 801, 807}},
        {3, {171, 250, 262, 265, 277, 279}},
        {4, {122, 197, 222, 272, 415, 421, 427, 439, 441}}};
    std::set<std::size_t> places;
    for (const auto& [page, offsets] : pages) {
        for (const std::size_t offset : offsets) places.insert(page * kPageSize + offset);
    }
    return places;
}();

TEST(EmptyDatabase, EqualsWhatTheDatabaseEngineMakes) {
    const char* folder = std::getenv("TAV_MDB_SAMPLES");
    if (folder == nullptr) GTEST_SKIP() << "TAV_MDB_SAMPLES names no folder of sample databases";
    const std::string expected = ReadFile(FromUtf8(std::string(folder) + "/adox_jet4.mdb"));

    const std::string made = EmptyDatabase({});

    ASSERT_EQ(made.size(), expected.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        if (kMeaningless.contains(i)) continue;
        ASSERT_EQ(static_cast<unsigned char>(made[i]), static_cast<unsigned char>(expected[i]))
            << "page " << i / kPageSize << ", offset " << i % kPageSize;
    }
}

}  // namespace
}  // namespace tav::jet
