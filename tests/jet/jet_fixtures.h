// What several tests of this room need: a small database to write to, rows for it, the words of a failure.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/value.h"
#include "jet/check/checker.h"
#include "jet/create/create.h"
#include "platform/files.h"
#include "support/failure_of.h"
#include "support/support.h"

namespace tav::test {

using Values = std::vector<Value>;

// A database with the tables `things` (of every kind of column, two indexes), `empty` (one column) and
// `plain` (no index, rows of up to a page).
inline Text NewDatabase(const TempFolder& folder) {
    using enum jet::ColumnType;
    std::vector<jet::TablePlan> plans = {{u"things",
                                          {{u"id", Long},
                                           {u"name", jet::ColumnType::Text, 255},
                                           {u"amount", Double},
                                           {u"day", jet::ColumnType::Date},
                                           {u"note", jet::ColumnType::Text, 255},
                                           {u"memo", Memo},
                                           {u"data", Ole},
                                           {u"done", Boolean}},
                                          {{u"PrimaryKey", {u"id"}, true}, {u"byname", {u"name"}}}},
                                         {u"empty", {{u"id", Long}}, {}},
                                         {u"plain", {}, {}}};
    for (const TextView name : {u"a", u"b", u"c", u"d", u"e"})
        plans.back().columns.push_back({name, jet::ColumnType::Text, 255});
    return folder.Write(u"new.mdb", jet::EmptyDatabase(plans));
}

inline Values Thing(std::int64_t id, TextView name, Value note = Null()) {
    const Date day{40000.0 + static_cast<double>(id % 1000)};
    return {id, Text(name), static_cast<double>(id) / 2, day, std::move(note), Null(), Null(), id % 2 == 0};
}

// A row of `plain` that fills more than half a page.
inline Values PageOfText() {
    return Values(5, Text(255, u'ж'));
}

// The checker finds no error in the file as it is on the disk. Nobody writes it meanwhile.
inline void ExpectSound(TextView path) {
    const TempFolder folder;
    for (const jet::Finding& finding : jet::CheckDatabase(folder.Write(u"copy.mdb", ReadFile(path)))) {
        EXPECT_FALSE(finding.error) << finding.invariant << ": " << ToUtf8(finding.text);
    }
}

}  // namespace tav::test
