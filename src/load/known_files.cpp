#include "load/known_files.h"

#include <algorithm>

#include "db/literals.h"
#include "load/counter.h"

namespace tav {

KnownFiles ReadKnownFiles(Connection& connection) {
    KnownFiles known;
    Recordset names = connection.Execute(u"select distinct filename from tav_operations_header");
    known.reserve(static_cast<std::size_t>(names.RecordCount()));
    for (; !names.Eof(); names.MoveNext()) known.insert(isns(names.Field(0)));
    return known;
}

HeldFiles ReadHeldFiles(Connection& connection, const TaxpayerChoice& taxpayer) {
    HeldFiles held;
    const auto take = [&](std::span<const Value> header) {
        HeldOfFile& file = held[isns(header[1])];
        const bool superseded = !IsNull(header[2]) && IsNull(header[3]);
        const Text inn = isns(header[4]);
        const Text kpp = isns(header[5]);
        if (taxpayer.Owns(inn, kpp)) {
            (superseded ? file.superseded : file.current) = true;
            if (superseded) file.replaced.push_back(Counter(header[0]).value());
            return;
        }
        const Remark remark = OtherTaxpayer(inn, kpp);
        if (std::ranges::find(file.foreign, remark) == file.foreign.end()) file.foreign.push_back(remark);
    };
    connection.ForEachRow(SqlText(u"select id, filename, h6, vid, h1, h2 from tav_operations_header"), take);
    for (auto& [name, file] : held) {
        if (file.current || file.superseded) file.foreign.clear();
    }
    return held;
}

}  // namespace tav
