// The program from outside: what a person or a script sees.

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "jet/bad_databases.h"
#include "platform/locked_file.h"
#include "tav/cli_fixture.h"

namespace tav {
namespace {

// FNV-1a: enough to see that two systems wrote the same bytes.
std::string Fingerprint(const std::string& bytes) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return std::to_string(bytes.size()) + " " + std::to_string(hash) + "\n";
}

TEST_F(Cli, AFolderBecomesADatabaseAndAReport) {
    samples::SampleFolder(folder_ / u"in/");
    Create();
    EXPECT_EQ(Tav({"db", "create", "--database", Database()}).status, 1);  // never over an existing one
    const Outcome first = Import();
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr("Загружено документов: "));
    ExpectWhole();
    EXPECT_THAT(Tav({"convert", Path(u"in/Акт 01 прибыль ФБ 2010.xml")}).out, HasSubstr("<part type="));
    folder_.Write(u"hidden.rtf", "{\\rtf1\\posx627\\par\\posx627 A}}} lost");
    EXPECT_EQ(Tav({"convert", Path(u"hidden.rtf")}).status, 1);
    const Json before = Dump();
    const Outcome second = Import();
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_THAT(second.out, HasSubstr("Новых документов нет.\n"));
    EXPECT_EQ(Dump(), before);

    const Json list = Json::parse(Tav({"list", "--inn", kInn, "--json", "--database", Database()}).out);
    EXPECT_EQ(list["documents"].size(),
              list["statements"].get<std::size_t>() + list["acts"].get<std::size_t>() + 1)
        << "one statement is superseded";
    EXPECT_GT(list["statements"], 3);
    EXPECT_GT(list["acts"], 0);
    std::string statement;
    for (const Json& document : list["documents"]) {
        if (document["kind"] == "statement") statement = std::to_string(document["id"].get<int>());
    }
    const Outcome report =
        Tav({"report", "statement", statement, "--to", Path(u"out"), "--database", Database()});
    EXPECT_EQ(report.out, Path(u"out/vipis.doc") + "\n") << report.err;
    EXPECT_EQ(Tav({"report", "statement", "30000", "--to", Path(u"out"), "--database", Database()}).status,
              1);
    for (const auto& [kind, file] :
         {std::pair("statements", u"out/index.doc"), std::pair("acts", u"out/acts.doc")}) {
        const auto summary = [&, name = kind](const std::string& kpp) {
            return Tav({"report", name, "--inn", kInn, "--kpp", kpp, "--to", Path(u"out"), "--database",
                        Database()});
        };
        EXPECT_EQ(summary(kKpp).out, Path(file) + "\n");
        const Outcome none = summary("1");
        EXPECT_EQ(none.status, 0);
        EXPECT_EQ(none.out, "");
        EXPECT_THAT(none.err, testing::StartsWith("Сводная справка: В базе данных"));
    }

    // One golden list for all systems. Where it differs, the goldens of catalogue and reports show how.
    std::string made = "rows " + Fingerprint(Content().dump());
    made += "listfiles.xml " + Fingerprint(ReadFile(folder_ / u"in/listfiles.xml"));
    for (const Text& name : ListFiles(folder_ / u"out", u".doc")) {
        made += ToUtf8(name) + " " + Fingerprint(ReadFile(folder_ / u"out/" + name));
    }
    test::ExpectGolden("tav/made.txt", made);

    EXPECT_EQ(Tav({"clear", "--all", "--database", Database()}).status, 0);
    EXPECT_TRUE(Dump()["tav_operations"].empty());
    EXPECT_FALSE(Dump()["tav_operations_type"].empty());
    ExpectWhole();
}

TEST_F(Cli, LoadedFilesAreMoved) {
    samples::SampleFolder(folder_ / u"in/");
    Create();
    std::vector<std::string> arguments = ImportArguments();
    arguments.insert(arguments.end(), {"--move-to", Path(u"loaded")});
    EXPECT_EQ(Tav(arguments).status, 0);
    const std::size_t documents = Dump()["tav_operations_header"].size();
    EXPECT_GE(ListFiles(folder_ / u"loaded", u".rtf").size(), 1u);
    EXPECT_LE(ListFiles(folder_ / u"loaded", u".rtf").size(), documents + 2);
    // Another taxpayer's document stays.
    EXPECT_FALSE(ListFiles(folder_ / u"in", u".rtf").empty());
}

TEST_F(Cli, NamesOfEveryKind) {
    const samples::Document sample = samples::MakeStatement({});
    MakeFolders(folder_ / u"in/");
    const std::vector<Text> names = test::OddNames();
    for (const Text& name : names) WriteFileWhole(folder_ / u"in/" + name, sample.bytes);
    Create();
    const Outcome outcome = Import();
    EXPECT_THAT(outcome.err, HasSubstr(ToUtf8(names.back())));  // names what cannot be taken
    ExpectWhole();
    EXPECT_EQ(ListFiles(folder_ / u"in", u".rtf").size(), names.size());
}

TEST_F(Cli, DatabasesThatCannotBeUsed) {
    samples::SampleFolder(folder_ / u"in/");
    Create();
    const std::string good = ReadFile(folder_ / u"PlX_Base.mdb");
    std::vector<test::BadDatabase> all = test::BadDatabases(good);
    all.push_back({"damaged", good.substr(0, 8192) + std::string(4096, 'Z') + good.substr(12288), "damaged"});
    for (const test::BadDatabase& bad : all) {
        WriteFileWhole(folder_ / u"PlX_Base.mdb", bad.bytes);
        const Outcome outcome = Import();
        EXPECT_EQ(outcome.status, 1) << bad.what;
        EXPECT_THAT(outcome.err, HasSubstr("PlX_Base.mdb")) << bad.what;
        EXPECT_EQ(ReadFile(folder_ / u"PlX_Base.mdb"), bad.bytes) << bad.what;
        EXPECT_EQ(Tav({"db", "check", "--database", Database()}).status, 1) << bad.what;
    }
    DeleteFile(folder_ / u"PlX_Base.mdb");
    const Outcome missing = Import();
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("PlX_Base.mdb"));
    EXPECT_FALSE(FileExists(folder_ / u"PlX_Base.mdb"));
}

TEST_F(Cli, ADatabaseInUseIsLeftAlone) {
    samples::SampleFolder(folder_ / u"in/");
    Create();
    const std::string before = ReadFile(folder_ / u"PlX_Base.mdb");
    {
        const LockedFile holder(folder_ / u"PlX_Base.mdb", LockedFile::Access::Read);
        const Outcome outcome = Import();
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.err, HasSubstr("already in use"));
        EXPECT_EQ(Tav({"db", "dump", "--database", Database()}).status, 0);  // readers share it
    }
    EXPECT_EQ(ReadFile(folder_ / u"PlX_Base.mdb"), before);
    EXPECT_EQ(Import().status, 0);
}

// Two hosts at once: each statement is in the database once, whoever was first, and the other says why.
TEST_F(Cli, TwoImportsAtOnce) {
    samples::ManyFiles(folder_ / u"in/", 60);
    Create();
    ASSERT_EQ(Import().status, 0);
    const Json whole = Content();
    for (int turn = 0; turn < 4; ++turn) {
        DeleteFile(folder_ / u"PlX_Base.mdb");
        if (turn % 2 == 0) DeleteFile(folder_ / u"in/listfiles.xml");
        Create();
        test::Process first("tav", ImportArguments());
        const Outcome second = Import();
        for (const Outcome& outcome : {first.Wait(), second}) {
            if (outcome.status == 0) continue;
            EXPECT_THAT(outcome.err, testing::AnyOf(HasSubstr("PlX_Base.mdb"), HasSubstr("listfiles.xml")));
        }
        ExpectWhole();
        ASSERT_EQ(Import().status, 0);
        EXPECT_EQ(Content(), whole) << turn;
    }
}

// Whatever a killed import has left, the next one ends with the same database, account and files.
TEST_F(Cli, AKillAtAnyMomentLosesNothing) {
    samples::SampleFolder(folder_ / u"in/");
    samples::ManyFiles(folder_ / u"in/", 40);
    const std::string good = samples::MakeStatement({.seed = 30}).bytes;
    folder_.Write(u"in/cut off.rtf", good.substr(0, good.size() / 2));
    std::string faulty = good;
    for (std::size_t at; (at = faulty.find("31.12.2010")) != faulty.npos;) faulty.replace(at, 2, "32");
    folder_.Write(u"in/faulty.rtf", faulty);
    ASSERT_EQ(Tav({"settings", "set", "ExportPath", Path(u"reports")}).status, 0);
    std::vector<std::string> arguments = ImportArguments();
    arguments.push_back("--json");
    const auto imported = [&] {
        const Outcome outcome = Tav(arguments);
        EXPECT_EQ(outcome.status, 1);  // because of the faulty one
        ExpectWhole();
        Json account = Json::parse(outcome.out);
        for (Json& file : account["files"]) file.erase("now");
        std::set<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Path(u"")))
            files.insert(entry.path());
        return std::tuple{account["counts"], account["files"], Content(), files};
    };
    Create();
    folder_.Write(u"reports/x", "");
    const auto whole = imported();
    for (int kill = 1; kill <= 12; ++kill) {
        DeleteFile(folder_ / u"PlX_Base.mdb");
        if (kill % 2 == 0) DeleteFile(folder_ / u"in/listfiles.xml");
        Create();
        for (const TextView folder : {u"", u"in/", u"reports/"})
            folder_.Write(Text(folder).append(u".tav-tmp-123456"), "");
        test::Process import("tav", arguments);
        std::this_thread::sleep_for(std::chrono::milliseconds(6 * kill));
        import.Kill();
        import.Wait();
        ExpectWhole();
        EXPECT_TRUE(imported() == whole) << kill;
    }
}

}  // namespace
}  // namespace tav
