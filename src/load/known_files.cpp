#include "load/known_files.h"

#include "db/literals.h"

namespace tav {

KnownFiles ReadKnownFiles(Connection& connection) {
    KnownFiles known;
    Recordset names = connection.Execute(u"select distinct filename from tav_operations_header");
    for (; !names.Eof(); names.MoveNext()) known.insert(UpperCase(isns(names.Field(0))));
    return known;
}

}  // namespace tav
