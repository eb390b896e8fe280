#include "load/known_files.h"

#include "db/literals.h"

namespace tav {

KnownFiles ReadKnownFiles(Connection& connection) {
    KnownFiles known;
    Recordset names = connection.Execute(u"select distinct filename from tav_operations_header");
    for (; !names.Eof(); names.MoveNext()) known.insert(UpperCase(isns(names.Field(0))));
    return known;
}

HeldFiles ReadHeldFiles(Connection& connection) {
    HeldFiles held;
    Recordset headers = connection.Execute(u"select filename, h6, vid from tav_operations_header");
    for (; !headers.Eof(); headers.MoveNext()) {
        HeldOfFile& file = held[UpperCase(isns(headers.Field(0)))];
        const bool act = IsNull(headers.Field(1));
        (act || !IsNull(headers.Field(2)) ? file.current : file.superseded) = true;
    }
    return held;
}

}  // namespace tav
