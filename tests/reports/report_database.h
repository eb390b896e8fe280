// A database that an SQL script of this folder has filled, at a moment that stands still, and its reports.
#pragma once

#include <gmock/gmock.h>

#include "common/get_next.h"
#include "common/windows1251.h"
#include "db/connection.h"
#include "db/empty_database.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "reports/cells.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav::test {

class ReportDatabase : public testing::Test {
 protected:
    // The statements of the script end with ";" and a new line.
    explicit ReportDatabase(const std::string& script) {
        SetClock([] { return LocalTime{{2011, 5, 9}, {14, 30, 7}}; });
        // Reports before this one leave the alignment of their last cells.
        GetHS(u"td", {u"#al", u"#b0", u"#u0"});
        CreateDatabase(database_);
        Connection connection;
        connection.Open(ConnectionString(database_));
        const Text statements = FromUtf8(TestFile("reports/" + script));
        for (TextView rest = statements; !rest.empty();) {
            TextView statement = GetNext(rest, u";\n");
            while (statement.starts_with(u"--")) GetNext(statement, u"\n");
            connection.Execute(statement);
        }
        connection.Close();
    }
    ~ReportDatabase() override { SetClock(nullptr); }

    // The report equals golden/NAME, which is kept as UTF-8, for those who read it; with a base, NAME has the
    // lines in which the report differs from that golden file.
    void ExpectReport(const Text& path, const std::string& name, const std::string& base = {}) const {
        EXPECT_TRUE(shown_.messages.empty());
        const std::string report = ToUtf8(FromWindows1251(ReadFile(path)));
        ExpectGolden("reports/golden/" + name,
                     base.empty() ? report : Differences(TestFile("reports/golden/" + base), report));
    }

    const OwnSettings settings_;
    const TempFolder folder_;
    const Text database_ = folder_ / u"PlX_Base.mdb";
    MessageList shown_;

 private:
    static std::vector<std::string> Lines(std::string_view text) {
        std::vector<std::string> lines;
        while (!text.empty()) lines.emplace_back(GetNext(text, "\n"));
        return lines;
    }
    // The lines of `a` that `b` lacks, with "-" before them, and those that it has instead, with "+"; "=" and
    // a number for as many equal ones.
    static std::string Differences(const std::string& a, const std::string& b) {
        const std::vector<std::string> from = Lines(a);
        const std::vector<std::string> to = Lines(b);
        // How many lines the texts from there on have in common.
        std::vector<std::vector<int>> common(from.size() + 1, std::vector<int>(to.size() + 1));
        for (std::size_t i = from.size(); i-- > 0;) {
            for (std::size_t j = to.size(); j-- > 0;) {
                common[i][j] = from[i] == to[j] ? common[i + 1][j + 1] + 1
                                                : std::max(common[i + 1][j], common[i][j + 1]);
            }
        }
        std::string said;
        int equal = 0;
        const auto say = [&](const std::string& words) {
            if (equal > 0) said += "=" + std::to_string(std::exchange(equal, 0)) + "\n";
            said += words;
        };
        for (std::size_t i = 0, j = 0; i < from.size() || j < to.size();) {
            if (i < from.size() && j < to.size() && from[i] == to[j]) {
                ++equal, ++i, ++j;
            } else if (j == to.size() || (i < from.size() && common[i + 1][j] >= common[i][j + 1])) {
                say("-" + from[i++] + "\n");
            } else {
                say("+" + to[j++] + "\n");
            }
        }
        say("");
        return said;
    }
};

}  // namespace tav::test
