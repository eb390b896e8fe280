#include "jet/table/read_only.h"

#include "common/concat.h"
#include "jet/index/index_key.h"

namespace tav::jet {
namespace {

// The columns by which two tables are related: "'a', 'b'".
Text ColumnsOf(const TableDefinition& table, const LogicalIndex& index) {
    Text names;
    for (const IndexColumn& part : table.indexes[index.real_index].columns) {
        names.append(names.empty() ? u"'" : u", '").append(table.columns[part.column].name).append(u"'");
    }
    return names;
}

}  // namespace

Text WhyReadOnly(const TableDefinition& table) {
    for (const LogicalIndex& index : table.logical_indexes) {
        if (index.type == 2 || index.relationship != 0) {
            return Concat(u"Cannot update table '", table.name, u"': it takes part in the relationship '",
                          index.name, u"' by ", ColumnsOf(table, index), u", which is not enforced here.");
        }
    }
    for (const RealIndex& index : table.indexes) {
        const Text why = WhyNoKeys(table, index);
        if (!why.empty()) return Concat(u"Cannot update table '", table.name, u"': ", why);
    }
    return {};
}

}  // namespace tav::jet
