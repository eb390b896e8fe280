// A database with some bytes changed: checked, read, written. An input is a list of changes: the page and the offset in
// two bytes each, then a count of bytes, at most 15, and these bytes.
#include "db/empty_database.h"
#include "fuzz.h"
#include "jet/check/checker.h"
#include "sql/executor.h"

namespace {

using tav::jet::Database;

constexpr std::size_t kPage = 4096;

// With rows of several pages, indexes of several levels and freed pages.
std::string GoodDatabase(const tav::fuzz::Scratch& file) {
    file.Write(tav::NewOperationsDatabase());
    tav::jet::Executor executor(file.path(), Database::Access::Write);
    for (int i = 1; i <= 80; ++i) {
        tav::SqlText sql(u"insert into tav_operations_header (id,filename,h1,h2,h3,perb) values (");
        executor.Execute(
            sql.Number(i).Fixed(u",'").Value(tav::Text(i + 60, u'x')).Fixed(u"','1','2','3','01.01.2010');"));
        tav::SqlText line(u"insert into tav_operations (id,p2,p10) values (");
        executor.Execute(line.Number(i % 7).Fixed(u",'text','12,50');"));
    }
    executor.Execute(tav::SqlText(u"delete from tav_operations_header where id>50 and id<70;"));
    executor.Commit();
    std::ifstream in(tav::ToUtf8(file.path()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string Changed(std::string database, const std::uint8_t* data, std::size_t size) {
    for (std::size_t at = 0; at + 5 <= size;) {
        const std::size_t page = (data[at] << 8 | data[at + 1]) % (database.size() / kPage);
        const std::size_t offset = (data[at + 2] << 8 | data[at + 3]) % kPage;
        std::size_t count = data[at + 4] & 15U;
        for (at += 5; count > 0 && at < size; --count, ++at) {
            const std::size_t place = page * kPage + offset + count - 1;
            if (place < database.size()) database[place] = static_cast<char>(data[at]);
        }
    }
    return database;
}

void ReadAll(const tav::Text& path) {
    Database database(path, Database::Access::Read);
    for (const tav::jet::TableEntry& entry : database.Tables()) {
        tav::fuzz::Try([&] {
            for (auto rows = database.FindTable(entry.name)->Rows(); !rows.AtEnd(); rows.Next())
                rows.row().All();
        });
    }
}

void WriteSome(const tav::Text& path) {
    tav::jet::Executor executor(path, Database::Access::Write);
    for (const tav::TextView sql :
         {u"insert into tav_operations_header (id,filename,h1) values (1000,'new','1');",
          u"update tav_operations_header set h2='longer than it was' where id=7;",
          u"delete from tav_operations_header where id<30;", u"insert into tav_acts (id) values (1);",
          u"select * from tav_operations_header where h1='1' order by id desc;",
          u"delete from tav_operations where id=3;"}) {
        tav::fuzz::Try([&] { executor.Execute(tav::SqlText(sql)); });
    }
    // Pages are allocated for these.
    const tav::Text wide(255, u'ж');
    for (int i = 0; i < 12; ++i) {
        tav::SqlText sql(u"insert into tav_operations (id,p2,p3,p4,p5) values (");
        sql.Number(i);
        for (int column = 0; column < 4; ++column) sql.Fixed(u",'").Value(wide).Fixed(u"'");
        tav::fuzz::Try([&] { executor.Execute(sql.Fixed(u");")); });
    }
    executor.Commit();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tav::fuzz::Scratch file("a.mdb");
    static const std::string kGood = GoodDatabase(file);
    file.Write(Changed(kGood, data, size));
    tav::fuzz::Try([&] { tav::jet::CheckDatabase(file.path()); });
    tav::fuzz::Try([&] { ReadAll(file.path()); });
    tav::fuzz::Try([&] { WriteSome(file.path()); });
    return 0;
}
