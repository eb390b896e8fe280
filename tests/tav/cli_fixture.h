// A folder with documents and a database in it, and the program run on them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "platform/files.h"
#include "samples/generator.h"
#include "support/process.h"
#include "support/support.h"

namespace tav {

using test::Outcome;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::json;

inline const std::string kInn = ToUtf8(samples::SampleTaxpayer().inn);
inline const std::string kKpp = ToUtf8(samples::SampleTaxpayer().kpp);

class Cli : public ::testing::Test {
 protected:
    Outcome Tav(const std::vector<std::string>& arguments, const std::function<void()>& in_child = {}) const {
        return test::RunProgram("tav", arguments, in_child);
    }
    std::string Path(TextView name) const { return ToUtf8(folder_ / name); }
    std::string Database() const { return Path(u"PlX_Base.mdb"); }
    std::vector<std::string> ImportArguments() const {
        return {"import", "--inn", kInn, "--kpp", kKpp, "--folder", Path(u"in"), "--database", Database()};
    }
    Outcome Import() const { return Tav(ImportArguments()); }
    void Create() const { ASSERT_EQ(Tav({"db", "create", "--database", Database()}).status, 0); }
    Json Dump() const { return Json::parse(Tav({"db", "dump", "--database", Database()}).out); }
    void ExpectWhole() const {
        const Outcome check = Tav({"db", "check", "--database", Database()});
        EXPECT_EQ(check.status, 0) << check.out << check.err;
    }
    // The dump without what depends on the day.
    Json Content() const {
        Json dump = Dump();
        for (Json& row : dump["tav_operations_type"]) row.erase("add_date");
        return dump;
    }

    const test::OwnSettings settings_;
    const test::TempFolder folder_;
};

}  // namespace tav
