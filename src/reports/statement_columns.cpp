#include "reports/statement_columns.h"

#include "common/concat.h"

namespace tav {
namespace {

// Two spaces before the parenthesis belong to the form.
constexpr std::array<StatementColumn, 14> kColumns = {{
    {{u"Дата записи", u"#w7%", u"#r2"}, {}, u"p1", u"p1", u"#ac", {}, {}},
    {{u"операция/вид документа", u"#w19%", u"#r2"}, {}, u"p3", u",p3", u"#al", {}, {}},
    {{u"Документ", u"#c2"}, {u"номер", u"#w6%"}, u"p6", u",p6", {}, {}, {}},
    {{}, {u"дата", u"#w7%"}, u"p7", u",p7", {}, {}, {}},
    {{u"Срок уплаты", u"#w7%", u"#r2"}, {}, u"p2", u",p2", u"#ac", {}, {}},
    {{u"Начислено", u"#l2", u"#c4"},
     {u"Налог", u"#l2", u"#w6%"},
     u"m1",
     u",iif(p9='налог',p10,Null) as m1",
     {},
     u"sum(m1) as m1",
     u"iif(p9='налог',m4,Null) as m1",
     true,
     true},
    {{},
     {u"Пеня", u"#w6%"},
     u"m2",
     u", iif(p9='пеня',p10,Null) as m2",
     {},
     u", sum(m2) as m2",
     u", iif(p9='пеня',m4,Null) as m2",
     true},
    {{},
     {u"Штраф", u"#w5%"},
     u"m3",
     u", iif(p9='штраф',p10,Null) as m3",
     {},
     u", sum(m3) as m3",
     u", iif(p9='штраф',m4,Null) as m3",
     true},
    {{}, {u"Итого", u"#w6%"}, u"m4", u", iif(isnull(p10),Null,p10) as m4", {}, {}, {}, true},
    {{u"Уплачено  (уменьшено)", u"#l2", u"#c4"},
     {u"Налог", u"#l2", u"#w6%"},
     u"m5",
     u", iif(p9='налог',p11,Null) as m5",
     {},
     u",sum(m5) as m5",
     u",iif(p9='налог',m8,Null) as m5",
     true,
     true},
    {{},
     {u"Пеня", u"#w6%"},
     u"m6",
     u",iif(p9='пеня',p11,Null) as m6",
     {},
     u",sum(m6) as m6",
     u", iif(p9='пеня',m8,Null) as m6",
     true},
    {{},
     {u"Штраф", u"#w5%"},
     u"m7",
     u", iif(p9='штраф',p11,Null) as m7",
     {},
     u",sum(m7) as m7",
     u", iif(p9='штраф',m8,Null) as m7",
     true},
    {{}, {u"Итого", u"#w6%"}, u"m8", u", iif(isnull(p11),Null,p11) as m8", {}, {}, {}, true},
    {{u"Переплата (+)/ Недоимка(-)", u"#l2", u"#r2", u"#w7%"},
     {},
     u"m9",
     u", p14 as m9",
     {},
     u", sum(p13) as m9",
     u", p13",
     false,
     true},
}};

Text Pieces(TextView before, TextView StatementColumn::*piece, TextView after) {
    Text text(before);
    for (const StatementColumn& column : kColumns) text += column.*piece;
    return text.append(after);
}

}  // namespace

std::span<const StatementColumn> StatementColumns() {
    return kColumns;
}

SqlText OperationsSelect(std::int64_t id) {
    static const Text select = Pieces(u"select ", &StatementColumn::operation,
                                      u" from tav_operations where not(isnull(p1)) and id=");
    return SqlText(select).Number(id);
}

SqlText OpeningSelect(TextView begin, std::int64_t id) {
    static const Text select =
        Pieces(u"select ", &StatementColumn::opening,
               Pieces(u" from (select ", &StatementColumn::by_kind,
                      u" from (select p9, p13, iif(p13<0,abs(p13),Null) as m4, iif(p13>0,p13,Null) as m8 "
                      u"from tav_operations where isnull(p1) and p3='"));
    SqlText sql(select);
    return sql.Value(Concat(u"Сальдо на ", begin)).Fixed(u"' and id=").Number(id).Fixed(u"))");
}

}  // namespace tav
