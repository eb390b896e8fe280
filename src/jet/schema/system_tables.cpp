#include "jet/schema/system_tables.h"

namespace tav::jet {

const std::array<SystemTablePlan, kSystemTables>& SystemTablePlans() {
    using enum ColumnType;
    static const std::array<SystemTablePlan, kSystemTables> plans = {{
        {{u"MSysObjects",
          {{u"Id", Long},
           {u"ParentId", Long},
           {u"Name", Text, 255},
           {u"Type", Integer},
           {u"DateCreate", Date},
           {u"DateUpdate", Date},
           {u"Owner", Binary, 255},
           {u"Flags", Long},
           {u"Database", Memo},
           {u"Connect", Memo},
           {u"ForeignName", Text, 255},
           {u"RmtInfoShort", Binary, 255},
           {u"RmtInfoLong", Ole},
           {u"Lv", Ole},
           {u"LvProp", Ole},
           {u"LvModule", Ole},
           {u"LvExtra", Ole}},
          {{u"ParentIdName", {u"ParentId", u"Name"}}, {u"Id", {u"Id"}, true}}},
         {0x81, 0x81}},
        {{u"MSysACEs",
          {{u"ObjectId", Long}, {u"SID", Binary, 255}, {u"ACM", Long}, {u"FInheritable", Boolean}},
          {{u"ObjectId", {u"ObjectId"}}}},
         {0x88}},
        {{u"MSysQueries",
          {{u"ObjectId", Long},
           {u"Attribute", Byte},
           {u"Order", Binary, 255},
           {u"Name1", Text, 255},
           {u"Name2", Text, 255},
           {u"Expression", Memo},
           {u"Flag", Integer},
           {u"LvExtra", Long}},
          {{u"ObjectIdAttribute", {u"ObjectId", u"Attribute", u"Order"}, true}}},
         {0x81}},
        {{u"MSysRelationships",
          {{u"szRelationship", Text, 255},
           {u"grbit", Long},
           {u"ccolumn", Long},
           {u"icolumn", Long},
           {u"szObject", Text, 255},
           {u"szColumn", Text, 255},
           {u"szReferencedObject", Text, 255},
           {u"szReferencedColumn", Text, 255}},
          {{u"szRelationship", {u"szRelationship"}},
           {u"szObject", {u"szObject"}},
           {u"szReferencedObject", {u"szReferencedObject"}}}},
         {0x82, 0x82, 0x82}},
    }};
    return plans;
}

std::span<const ObjectRow> SystemObjects() {
    constexpr std::uint32_t kSystem = 0x80000000;
    constexpr std::uint32_t kRoot = 0x0F000000;
    static constexpr ObjectRow kRows[] = {
        {0x0F000001, kRoot, u"Tables", 3, kSystem, kEngineSid},
        {0x0F000002, kRoot, u"Databases", 3, kSystem, kEngineSid},
        {0x0F000003, kRoot, u"Relationships", 3, kSystem, kEngineSid},
        {0x10000000, 0x0F000002, u"MSysDb", 2, kSystem, kAdminSid},
        {2, kTablesContainer, u"MSysObjects", 1, kSystem, kEngineSid},
        {3, kTablesContainer, u"MSysACEs", 1, kSystem, kEngineSid},
        {4, kTablesContainer, u"MSysQueries", 1, kSystem, kEngineSid},
        {5, kTablesContainer, u"MSysRelationships", 1, kSystem, kEngineSid},
    };
    return kRows;
}

std::span<const AccessRow> SystemAccess() {
    static constexpr AccessRow kRows[] = {
        {2, kAdminSid, 0x60000, false},
        {3, kAdminSid, 0x60000, false},
        {4, kAdminSid, 0x60000, false},
        {5, kAdminSid, 0xE0000, false},
        {0x0F000001, kCreatorSid, 0xF00FE, true},
        {0x0F000001, kAdminSid, 0x60001, false},
        {0x0F000003, kCreatorSid, 0xF00FE, true},
        {0x0F000003, kAdminSid, 0x60001, false},
        {0x0F000002, kAdminSid, 0x60000, false},
        {0x10000000, kAdminSid, 0x6000E, false},
        {0x10000000, kUsersSid, 0xE, false},
        {4, kUsersSid, 0x14, false},
        {5, kUsersSid, 0x14, false},
        {2, kUsersSid, 0x14, false},
        {0x0F000001, kUsersSid, 0xFFEFF, true},
        {0x0F000003, kUsersSid, 0xFFFFF, true},
    };
    return kRows;
}

bool HoldsSid(TextView column) {
    return column == u"Owner" || column == u"SID";
}

}  // namespace tav::jet
