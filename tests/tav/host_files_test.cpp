// Databases that another program made, in the shapes a host may have: the clearing, the import of the samples, the
// reports and the clearing again, or a refusal before anything changes (host_files.txt). What is not of the four tables stays.
#include <map>
#include <set>

#include "common/get_next.h"
#include "jet/file/global_map.h"
#include "jet/file/usage_map.h"
#include "jet/table/database.h"
#include "tav/cli_fixture.h"

namespace tav {
namespace {

constexpr TextView kTables[] = {u"tav_operations_header", u"tav_operations", u"tav_acts",
                                u"tav_operations_type"};

// The pages that the four tables have, their maps' pages, and the free ones.
std::set<jet::PageNumber> OwnPages(TextView path) {
    jet::Database database(path, jet::Database::Access::Read);
    std::set<jet::PageNumber> pages = {1};
    std::set<std::uint32_t> owners;
    for (const TextView name : kTables) {
        const jet::TableDefinition& table = database.FindTable(name)->definition();
        owners.insert(table.page);
        pages.insert(table.pages.begin(), table.pages.end());
        pages.insert({table.owned_map.page, table.free_map.page});
        for (const jet::RealIndex& index : table.indexes) pages.insert(index.map.page);
        for (const jet::LongValueMaps& maps : table.long_values) {
            const std::vector<jet::PageNumber> values = jet::UsageMap(database.file(), maps.owned).Pages();
            pages.insert(values.begin(), values.end());
            pages.insert({maps.owned.page, maps.free.page});
        }
    }
    for (jet::PageNumber page = 0; page < database.file().PageCount(); ++page) {
        const jet::Page& bytes = database.file().Read(page);
        const bool own = bytes[0] != 2 && owners.contains(jet::U32(&bytes[4]));
        if (own) pages.insert(page);
    }
    const jet::GlobalMap map(database.file());
    for (jet::PageNumber page = map.FindFree(0); page < database.file().PageCount();) {
        pages.insert(page);
        page = map.FindFree(page + 1);
    }
    return pages;
}

// The lines that tell of a failure.
Text Failures(const Text& said) {
    Text lines;
    for (TextView rest = said; !rest.empty();) {
        const TextView line = GetNext(rest, u"\n");
        if (line.starts_with(u"Ошибка в функции")) lines.append(line).append(u"\n");
    }
    return lines;
}

class HostFiles : public Cli {
 protected:
    // The reports by their names, and what is said instead of those that are refused.
    std::map<std::string, std::string> Reports(const Text& folder) const {
        std::map<std::string, std::string> files;
        const std::vector<std::string> summary = {"--inn", kInn, "--kpp", kKpp};
        const auto report = [&](std::vector<std::string> arguments, const std::vector<std::string>& more) {
            arguments.insert(arguments.end(), more.begin(), more.end());
            arguments.insert(arguments.end(), {"--to", ToUtf8(folder), "--database", Database()});
            const Outcome made = Tav(arguments);
            if (made.status != 0) files[made.err.substr(0, made.err.find('\n'))] = "refused";
        };
        for (const char* kind : {"statements", "acts"}) report({"report", kind}, summary);
        report({"report", "statement", "1"}, {});
        for (const Text& name : ListFiles(folder, u".doc")) files[ToUtf8(name)] = ReadFile(folder + name);
        return files;
    }

    // The number of rows of each table, and the first lines of what was said.
    Text Story(TextView name) const {
        const std::string before = test::TestFile("tav/hosts/" + ToUtf8(name));
        WriteFileWhole(FromUtf8(Database()), before);
        const std::set<jet::PageNumber> own = OwnPages(FromUtf8(Database()));
        const bool sound = Tav({"db", "check", "--database", Database()}).status == 0;
        const Outcome cleared = Tav({"clear", "--all", "--database", Database()});
        const Outcome import = Import();
        const Text said = Failures(FromUtf8(cleared.err + import.err));
        if (ReadFile(FromUtf8(Database())) == before) return u"unchanged: " + said;

        Text story = said;
        const Json dump = Dump();
        for (const TextView table : kTables) {
            story.append(table)
                .append(u": ")
                .append(Digits(static_cast<long long>(dump[ToUtf8(table)].size())))
                .append(u" rows\n");
        }
        const Text out = WithSeparator(folder_ / name.substr(0, name.find(u'.')));
        for (const auto& [file, bytes] : Reports(out)) {
            if (!reports_.contains(file) || reports_.at(file) != bytes)
                story += FromUtf8("other: " + file + "\n");
        }
        if (sound) ExpectWhole();
        EXPECT_EQ(Tav({"clear", "--all", "--database", Database()}).status, 0);
        EXPECT_TRUE(Dump()["tav_operations"].empty());
        if (sound) ExpectWhole();
        const std::string after = ReadFile(FromUtf8(Database()));
        for (jet::PageNumber page = 0; page < before.size() / jet::kPageSize; ++page) {
            const std::size_t at = page * jet::kPageSize;
            if (!own.contains(page)) {
                EXPECT_EQ(before.compare(at, jet::kPageSize, after, at, jet::kPageSize), 0) << page;
            }
        }
        return story;
    }

    std::map<std::string, std::string> reports_;  // from a database of our own
};

TEST_F(HostFiles, TakeTheSamplesOrAreRefused) {
    samples::SampleFolder(folder_ / u"in/");
    Create();
    Import();
    reports_ = Reports(folder_ / u"own/");
    EXPECT_GT(reports_.size(), 3u);
    test::ExpectTranscript("tav/host_files.txt", [&](TextView name) { return Story(name); });
}

}  // namespace
}  // namespace tav
