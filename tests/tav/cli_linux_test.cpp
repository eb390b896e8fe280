// The program from outside, where it takes what Linux has: mdbtools, limits, signals.
#include <sys/resource.h>

#include <csignal>

#include "tav/cli_fixture.h"

namespace tav {
namespace {

using LinuxCli = Cli;

TEST_F(LinuxCli, IndependentReadersSeeTheSame) {
    if (!test::HasProgram("mdb-count")) GTEST_SKIP() << "mdbtools is not installed";
    samples::SampleFolder(folder_ / u"in/");
    Create();
    ASSERT_EQ(Import().status, 0);
    const Json dump = Dump();
    for (const auto& [table, rows] : dump.items()) {
        EXPECT_EQ(test::RunProgram("mdb-count", {Database(), table}).out, std::to_string(rows.size()) + "\n");
    }
    const std::string exported = test::RunProgram("mdb-export", {"-H", "-d", "|", "-Q", "-T", "%Y-%m-%d",
                                                                 Database(), "tav_operations"})
                                     .out;
    std::string expected;
    for (const Json& row : dump["tav_operations"]) {
        for (const char* column : {"id", "p1", "p2", "p3", "p4", "p5", "p6", "p7", "p8", "p9", "p10", "p11",
                                   "p12", "p13", "p14", "tid"}) {
            const Json& value = row[column];
            if (value.is_string()) {
                expected += value.get<std::string>();
            } else if (value.is_number_float()) {
                char text[64];
                std::snprintf(text, sizeof text, "%.16g", value.get<double>());
                expected += text;
            } else if (value.is_number()) {
                expected += value.dump();
            }
            expected += column == std::string("tid") ? "\n" : "|";
        }
    }
    EXPECT_EQ(exported, expected);
}

TEST_F(LinuxCli, AFullDiskLosesNothing) {
    samples::SampleFolder(folder_ / u"in/");
    samples::ManyFiles(folder_ / u"in/", 450);  // so that a unit reaches the disk before it is full
    Create();
    ASSERT_EQ(Tav({"scan", Path(u"in")}).status, 0);
    const auto size = static_cast<rlim_t>(ReadFile(folder_ / u"PlX_Base.mdb").size());
    std::vector<std::string> arguments = ImportArguments();
    arguments.push_back("--json");
    for (const rlim_t room : {rlim_t{0}, rlim_t{40000}, rlim_t{750000}}) {
        const std::size_t before = Dump()["tav_operations_header"].size();
        const Outcome outcome = Tav(arguments, [&] {
            ::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{size + room, size + room};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_EQ(outcome.status, 1) << room;
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
        if (!outcome.out.empty()) {
            EXPECT_EQ(Json::parse(outcome.out)["documents"], Dump()["tav_operations_header"].size() - before);
        }
        ExpectWhole();
    }
    EXPECT_GT(Dump()["tav_operations_header"].size(), 0U);
    EXPECT_EQ(Import().status, 0);
    const Json interrupted = Content()["tav_operations_header"];
    DeleteFile(folder_ / u"PlX_Base.mdb");
    DeleteFile(folder_ / u"in/listfiles.xml");
    Create();
    EXPECT_EQ(Import().status, 0);
    EXPECT_EQ(Content()["tav_operations_header"], interrupted);
}

TEST_F(LinuxCli, CtrlCCancels) {
    samples::ManyFiles(folder_ / u"in/", 3000);
    Create();
    test::Process import("tav", ImportArguments());
    import.Interrupt();
    const Outcome outcome = import.Wait();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.err, HasSubstr("Прервано"));
    ExpectWhole();
}

}  // namespace
}  // namespace tav
