// Stories of a folder: what is put into it, taken out and changed, and what every import says of it.
//
//   put NAME KIND BEGIN END     a document of that period: statement, act; zero (its amounts), long (the tax's
//                               name), fault (of a balance); of a division, of a foreign taxpayer, of both (and
//                               a division)
//   text NAME WORDS    cut NAME BYTES    remove NAME         a file with other contents, its beginning, none
//   switch NAME VALUE    sql STATEMENT                       a setting; what the host does to the database
//   narrow TABLE COLUMN CHARACTERS                           a column has room for so many
//   import [INN [KPP]]    status [INN [KPP]]                 the account: files that came in now with a "+"
//   list NAME statement|act [HEAD] / ROW / ROW               an entry of the catalogue, its head and rows as
//   list NAME text WORDS                                     in db/database_fixture.h; after a load they begin
//                                                            anew
//   load [INN [KPP]]                                         loads the catalogue as it is
//   types    clear [INN KPP]                                 operation types; clearing
//   rows SELECT    held                                      what the database has; its headers: number, file,
//                                                            vid
//
// After an import, "the same bytes" or "other bytes" tells whether it changed the database.

#include <filesystem>
#include <map>

#include "common/get_next.h"
#include "common/windows1251.h"
#include "db/database_fixture.h"
#include "jet/table/database.h"
#include "load/account_of_folder.h"
#include "load/run_import.h"
#include "platform/environment.h"
#include "samples/generator.h"

namespace tav {
namespace {

namespace fs = std::filesystem;

class Story : public test::OperationsDatabase {
 protected:
    Story() {
        UseDatabase(database_);
        SetClock([] { return LocalTime{{2011, 5, 9}, {14, 30, 7}}; });
    }
    ~Story() override {
        UseDatabase({});
        SetClock(nullptr);
    }

    // An empty folder and a new database.
    void Begin() {
        for (const Text& file : ListFiles(folder_ / u"in", u"")) DeleteFile(Path(file));
        DeleteFile(database_);
        CreateDatabase(database_);
        listed_.clear();
    }
    Text Tell(TextView lines) {
        Text answer;
        while (!lines.empty()) answer += Do(GetNext(lines, u"\n"));
        return answer;
    }

 private:
    Text Path(TextView name) const { return folder_ / Text(u"in/").append(name); }
    Text Do(TextView line) {
        const Text verb(GetNext(line, u" "));
        if (verb == u"import" || verb == u"status" || verb == u"load") return Account(verb, line);
        if (verb == u"rows") return Lines(Rows(line));
        if (verb == u"held")
            return Lines(Rows(u"select id, filename, vid from tav_operations_header order by id"));
        if (verb == u"sql") {
            Execute(line);
            return {};
        }
        if (verb == u"types") return Failures([&] { ConstrTabTypeOper(database_); });
        const Text name(GetNext(line, u" "));
        if (verb == u"clear")
            return Failures(
                [&] { name.empty() ? clearbaseAll(database_) : clearbase(database_, Said(name), line); });
        if (verb == u"list") List(name, line);
        if (verb == u"put") WriteFileWhole(Path(name), Document(line));
        if (verb == u"text") WriteFileWhole(Path(name), test::Bytes(line));
        if (verb == u"cut") fs::resize_file(test::NativePath(Path(name)), std::stoul(ToUtf8(line)));
        if (verb == u"remove") DeleteFile(Path(name));
        if (verb == u"switch") WriteSetting(name, line);
        if (verb == u"narrow") Narrow(name, line);
        return {};
    }

    static std::string Document(TextView line) {
        const Text kind(GetNext(line, u" "));
        const auto day = [&] { return CivilFromDate(*ParseDate(GetNext(line, u" "))); };
        const samples::Period period{day(), day()};
        if (kind == u"act") return samples::MakeActRtf({.period = period}).bytes;
        samples::StatementOptions options{.period = period, .rows = 12, .all_zero = kind == u"zero"};
        if (kind == u"fault") options.rows = 30;
        if (kind == u"long") options.tax.name = Text(300, u'я');
        if (kind == u"division") options.taxpayer = samples::DivisionTaxpayer();
        if (kind == u"foreign") options.taxpayer = samples::OtherTaxpayer();
        std::string bytes = samples::MakeStatement(options).bytes;
        if (kind == u"fault")
            bytes.insert(bytes.rfind("}\\par}", bytes.find("\\posx13707", bytes.size() / 2)), "1");
        if (kind == u"both") {
            options.taxpayer = samples::DivisionTaxpayer();
            const std::string second = samples::MakeStatement(options).bytes;
            bytes.replace(bytes.rfind('}'), 1, "\\page").append(second, second.find("{\\pard"));
        }
        return bytes;
    }

    // A column's description has 25 bytes, the last two of which are its length.
    void Narrow(const Text& name, TextView line) {
        const Text column(GetNext(line, u" "));
        jet::Database database(database_, jet::Database::Access::Write);
        const jet::TableDefinition& table = database.FindTable(name)->definition();
        const std::size_t at = 63 + 12 * table.indexes.size() + 25 * *table.FindColumn(column) + 23;
        jet::PutU16(&database.file().Change(table.page)[at],
                    static_cast<std::uint16_t>(2 * std::stoul(ToUtf8(line))));
        database.file().Commit();
    }

    void List(const Text& name, TextView line) {
        if (std::exchange(loaded_, false)) listed_.clear();
        const Text kind(GetNext(line, u" "));
        Text part(line);
        if (kind != u"text") {
            const Text all = u" " + Said(line);
            TextView rest = all;
            test::Head head;
            const std::map<TextView, Text*> fields = {{u"inn", &head.inn},
                                                      {u"kpp", &head.kpp},
                                                      {u"end", &head.end},
                                                      {u"begin", &head.begin},
                                                      {u"code", &head.code}};
            for (TextView words = Trim(GetNext(rest, u" / ")); !words.empty();) {
                const TextView field = GetNext(words, u"=");
                *fields.at(field) = GetNext(words, u" ");
            }
            std::vector<Text> rows;
            while (!rest.empty()) rows.emplace_back(GetNext(rest, u" / "));
            part = kind == u"act" ? test::ActPart(head, rows.at(0)) : test::StatementPart(head, rows);
        }
        if (!listed_.empty() && listed_.back().first == name) {
            listed_.back().second += part;
        } else {
            listed_.emplace_back(name, part);
        }
        Write(listed_);
    }

    Text Account(TextView verb, TextView taxpayer) {
        const samples::Taxpayer& sample = samples::SampleTaxpayer();
        const bool given = !taxpayer.empty();
        const Text inn = given ? Said(GetNext(taxpayer, u" ")) : sample.inn;
        const Text kpp = given ? Said(taxpayer) : sample.kpp;
        const std::string before = ReadFile(database_);
        ImportAccount account;
        const Text failures = Failures([&] {
            account = verb == u"import" ? RunImport({folder_ / u"in", {}}, inn, kpp).account
                      : verb == u"load" ? Load(inn, kpp)
                                        : AccountOfFolder(folder_ / u"in", database_, inn, kpp);
        });
        Text answer;
        for (const FileAccount& file : account.files) {
            answer.append(file.now ? u"+ " : u"  ")
                .append(file.name)
                .append(u": ")
                .append(file.Words())
                .append(u"\n");
        }
        answer.append(ClosingSentence(account)).append(u"\n").append(failures);
        answer = ReplaceAll(answer, folder_.path() + u"in" + kPathSeparator, u"FOLDER/in/");
        answer = ReplaceAll(answer, folder_.path(), u"FOLDER/");
        loaded_ |= verb == u"load";
        if (verb == u"load") return answer;
        return answer.append(ReadFile(database_) == before ? u"the same bytes\n" : u"other bytes\n");
    }

    static Text Said(TextView pictured) { return FromWindows1251(test::Unpictured(pictured)); }

    // What is shown meanwhile.
    template <class Action>
    Text Failures(Action action) {
        shown_.messages.clear();
        action();
        Text lines;
        for (const std::string& message : Shown()) {
            const Text words = ReplaceAll(FromUtf8(message), u"\r\n", u"\n");
            lines.append(u"! ").append(words).append(words.ends_with(u'\n') ? u"" : u"\n");
        }
        return lines;
    }
    static Text Lines(const std::vector<std::string>& rows) {
        Text answer;
        for (const std::string& row : rows) answer.append(FromUtf8(row)).append(u"\n");
        return answer;
    }

    std::vector<std::pair<Text, Text>> listed_;  // entries of the catalogue
    bool loaded_ = false;
};

TEST_F(Story, EveryDocumentIsAccountedFor) {
    for (const Text& name : ListFiles(FromUtf8(TAV_TEST_DIR) + u"/load/stories/", u".txt")) {
        Begin();
        test::ExpectTranscript("load/stories/" + ToUtf8(name), [&](TextView lines) { return Tell(lines); });
    }
}

}  // namespace
}  // namespace tav
