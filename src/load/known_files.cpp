#include "load/known_files.h"

#include <algorithm>

#include "db/literals.h"
#include "load/counter.h"

namespace tav {

KnownFiles ReadKnownFiles(Connection& connection) {
    KnownFiles known;
    Recordset names = connection.Execute(u"select distinct filename from tav_operations_header");
    known.reserve(static_cast<std::size_t>(names.RecordCount()));
    for (; !names.Eof(); names.MoveNext()) known.insert(UpperCase(isns(names.Field(0))));
    return known;
}

HeldFiles ReadHeldFiles(Connection& connection, const TaxpayerChoice& taxpayer) {
    HeldFiles held;
    Recordset headers =
        connection.Execute(u"select id, filename, h6, vid, h1, h2 from tav_operations_header");
    held.reserve(static_cast<std::size_t>(headers.RecordCount()));
    for (; !headers.Eof(); headers.MoveNext()) {
        HeldOfFile& file = held[UpperCase(isns(headers.Field(1)))];
        const bool superseded = !IsNull(headers.Field(2)) && IsNull(headers.Field(3));
        const Text inn = isns(headers.Field(4));
        const Text kpp = isns(headers.Field(5));
        if (taxpayer.Owns(inn, kpp)) {
            (superseded ? file.superseded : file.current) = true;
            if (superseded) file.replaced.push_back(Counter(headers.Field(0)).value());
            continue;
        }
        const Remark remark = OtherTaxpayer(inn, kpp);
        if (std::ranges::find(file.foreign, remark) == file.foreign.end()) file.foreign.push_back(remark);
    }
    for (auto& [name, file] : held) {
        if (file.current || file.superseded) file.foreign.clear();
    }
    return held;
}

}  // namespace tav
