// Any text as a statement on a database, with values between bytes 1; what it did is taken back.
#include <optional>

#include "common/get_next.h"
#include "db/empty_database.h"
#include "fuzz.h"
#include "sql/executor.h"

namespace {

struct Prepared {
    Prepared() {
        file.Write(tav::NewOperationsDatabase());
        executor.emplace(file.path(), tav::jet::Database::Access::Write);
        for (const tav::TextView row : {u"1,'a.rtf','1','2'", u"2,'b.rtf','1','3'", u"3,Null,Null,'4'"}) {
            tav::SqlText sql(u"insert into tav_operations_header (id,filename,h1,h2) values (");
            executor->Execute(sql.Fixed(row).Fixed(u");"));
        }
    }
    tav::fuzz::Scratch file{"a.mdb"};
    std::optional<tav::jet::Executor> executor;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Prepared prepared;
    const tav::Text text(data, data + size);
    tav::TextView rest = text;
    tav::SqlText sql;
    while (!rest.empty()) sql.Fixed(tav::GetNext(rest, u"\u0001")).Value(tav::GetNext(rest, u"\u0001"));
    prepared.executor->SetSavepoint();
    tav::fuzz::Try([&] { prepared.executor->Execute(sql); });
    prepared.executor->RollBackToSavepoint();
    return 0;
}
