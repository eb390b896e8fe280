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
    const auto because = [&](TextView why) {
        return Concat(u"Cannot update table '", table.name, u"': ", why);
    };
    for (const LogicalIndex& index : table.logical_indexes) {
        if (index.type == 2 || index.relationship != 0) {
            return because(Concat(u"it takes part in the relationship '", index.name, u"' by ",
                                  ColumnsOf(table, index), u", which is not enforced here."));
        }
    }
    for (const RealIndex& index : table.indexes) {
        if (const Text why = WhyNoKeys(table, index); !why.empty()) return because(why);
    }
    const auto rule = [&](TextView owner, TextView text) {
        return because(Concat(u"the validation rule '", text, u"' of ", owner, u" is not enforced here."));
    };
    for (const Column& column : table.columns) {
        if (!column.validation_rule.empty())
            return rule(Concat(u"column '", column.name, u"'"), column.validation_rule);
    }
    return table.validation_rule.empty() ? Text() : rule(u"the table", table.validation_rule);
}

}  // namespace tav::jet
