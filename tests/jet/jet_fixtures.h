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

// A database with the tables `things` (two indexes) and `plain` (none, rows of up to a page).
inline Text NewDatabase(const TempFolder& folder) {
    using jet::ColumnType;
    const std::vector<jet::TablePlan> plans = {{u"things",
                                                {{u"id", ColumnType::Long},
                                                 {u"name", ColumnType::Text, 255},
                                                 {u"amount", ColumnType::Double},
                                                 {u"day", ColumnType::Date},
                                                 {u"note", ColumnType::Text, 255}},
                                                {{u"PrimaryKey", {u"id"}, true}, {u"byname", {u"name"}}}},
                                               {u"plain",
                                                {{u"a", ColumnType::Text, 255},
                                                 {u"b", ColumnType::Text, 255},
                                                 {u"c", ColumnType::Text, 255},
                                                 {u"d", ColumnType::Text, 255},
                                                 {u"e", ColumnType::Text, 255}},
                                                {}}};
    return folder.Write(u"new.mdb", jet::EmptyDatabase(plans));
}

inline Values Thing(std::int64_t id, TextView name, Value note = Null()) {
    return {id, Text(name), static_cast<double>(id) / 2, Date{40000.0 + static_cast<double>(id % 1000)},
            std::move(note)};
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
