// Stories of a folder: what is put into it, taken out and changed, and what every import says of it.
//
//   put NAME statement|zero|act|division|foreign BEGIN END     a document of that period, of the sample taxpayer or not
//   text NAME WORDS      cut NAME BYTES      remove NAME       a file with other contents, only its beginning, none
//   switch NAME VALUE    sql STATEMENT                         a setting; what the host does to the database
//   import [INN [KPP]]   status [INN [KPP]]                    the account: files that came in now with a "+"
//   held                                                       the headers: number, file, vid
// After an import, "the same bytes" or "other bytes" tells whether it changed the database.

#include <filesystem>

#include "common/get_next.h"
#include "db/database_fixture.h"
#include "load/account_of_folder.h"
#include "load/run_import.h"
#include "samples/generator.h"

namespace tav {
namespace {

namespace fs = std::filesystem;

class Story : public test::OperationsDatabase {
 protected:
    Story() { UseDatabase(database_); }
    ~Story() override { UseDatabase({}); }

    Text Tell(TextView lines) {
        Text answer;
        while (!lines.empty()) answer += Do(GetNext(lines, u"\n"));
        return answer;
    }

    Text Path(TextView name) const { return folder_ / Text(u"in/").append(name); }

 private:
    Text Do(TextView line) {
        const Text verb(GetNext(line, u" "));
        if (verb == u"import" || verb == u"status") return Account(verb == u"import", line);
        if (verb == u"held") return Held();
        if (verb == u"sql") {
            Execute(line);
            return {};
        }
        const Text name(GetNext(line, u" "));
        if (verb == u"put") folder_.Write(Text(u"in/").append(name), Document(line));
        if (verb == u"text") folder_.Write(Text(u"in/").append(name), Bytes(line));
        if (verb == u"cut") fs::resize_file(test::NativePath(Path(name)), std::stoul(ToUtf8(line)));
        if (verb == u"remove") DeleteFile(Path(name));
        if (verb == u"switch") WriteSetting(name, line);
        return {};
    }

    static std::string Document(TextView line) {
        const Text kind(GetNext(line, u" "));
        const auto day = [&] { return CivilFromDate(*ParseDate(GetNext(line, u" "))); };
        const samples::Period period{day(), day()};
        if (kind == u"act") return samples::MakeActRtf({.period = period}).bytes;
        samples::StatementOptions options{.period = period, .rows = 3, .all_zero = kind == u"zero"};
        if (kind == u"division") options.taxpayer = samples::DivisionTaxpayer();
        if (kind == u"foreign") options.taxpayer = samples::OtherTaxpayer();
        return samples::MakeStatement(options).bytes;
    }

    Text Account(bool import, TextView taxpayer) {
        const samples::Taxpayer& sample = samples::SampleTaxpayer();
        const Text inn = taxpayer.empty() ? sample.inn : Text(GetNext(taxpayer, u" "));
        const Text kpp = taxpayer.empty() ? sample.kpp : Text(taxpayer);
        const std::string before = ReadFile(database_);
        shown_.messages.clear();
        const ImportAccount account = import ? RunImport({folder_ / u"in", {}}, inn, kpp).account
                                             : AccountOfFolder(folder_ / u"in", database_, inn, kpp);
        Text answer;
        for (const FileAccount& file : account.files) {
            answer.append(file.now ? u"+ " : u"  ")
                .append(file.name)
                .append(u": ")
                .append(file.Words())
                .append(u"\n");
        }
        answer.append(ClosingSentence(account)).append(u"\n");
        for (const std::string& message : Shown())
            answer.append(u"! ").append(Trim(FromUtf8(message))).append(u"\n");
        answer = ReplaceAll(ReplaceAll(answer, folder_.path(), u"FOLDER/"), u"\r\n", u"\n");
        return answer.append(ReadFile(database_) == before ? u"the same bytes\n" : u"other bytes\n");
    }

    Text Held() const {
        Text answer;
        for (const std::string& row :
             Rows(u"select id, filename, vid from tav_operations_header order by id")) {
            answer.append(FromUtf8(row)).append(u"\n");
        }
        return answer;
    }
    static std::string Bytes(TextView words) { return test::Bytes(words); }
};

TEST_F(Story, EveryDocumentIsAccountedFor) {
    for (const Text& name : ListFiles(FromUtf8(TAV_TEST_DIR) + u"/load/stories/", u".txt")) {
        for (const Text& file : ListFiles(folder_ / u"in", u"")) DeleteFile(Path(file));
        clearbaseAll(database_);
        test::ExpectTranscript("load/stories/" + ToUtf8(name), [&](TextView lines) { return Tell(lines); });
    }
}

}  // namespace
}  // namespace tav
