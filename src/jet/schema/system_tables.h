// The four core system tables of a new database, as data: columns, indexes, rows.
//
// Known from databases that Access and its engine made; all of them hold
// the same tables. The security ids (SIDs) are masked with something that
// depends on the file, so the creation date and the ids belong together.
#pragma once

#include <array>
#include <span>
#include <string>

#include "common/value.h"
#include "jet/schema/table_plan.h"

namespace tav::jet {

// As the file has them, eight bytes each.
inline constexpr std::string_view kCreationDate{"\x3e\x85\xd3\x3b\x3e\xab\xe4\x40", 8};
inline constexpr std::string_view kCatalogueDate{"\x4e\xfb\xd3\x3b\x3e\xab\xe4\x40", 8};
inline constexpr std::uint16_t kEngineBuild = 0x261C;

// At the end of the first page the database engine counts the uses of the file, two bytes for each user.
inline constexpr std::size_t kUseCounters = 0xE00;
inline constexpr std::uint16_t kFirstUseCounter = 0x0101;
inline constexpr std::uint16_t kIdleUseCounter = 0x0100;

inline constexpr std::string_view kEngineSid{"\x65\x89", 2};
inline constexpr std::string_view kAdminSid{"\x64\x8b", 2};
inline constexpr std::string_view kUsersSid{"\x65\x8b", 2};
inline constexpr std::string_view kCreatorSid{"\x65\x8e", 2};

// The system tables stand in this order on the pages 2 to 5.
enum SystemTable : std::size_t { kObjects, kAccess, kQueries, kRelationships, kSystemTables };

struct SystemTablePlan {
    TablePlan table;
    // One per index. (No vector: when that at the end of an aggregate in a list gets no memory, the compiler's
    // code frees what stands before it twice.)
    std::array<std::uint8_t, 3> index_flags{};
};
const std::array<SystemTablePlan, kSystemTables>& SystemTablePlans();

// A row of MSysObjects: a table, or a container of objects.
struct ObjectRow {
    std::uint32_t id = 0;
    std::uint32_t parent = 0;
    TextView name;
    std::int16_t type = 0;
    std::uint32_t flags = 0;
    std::string_view owner;
};
std::span<const ObjectRow> SystemObjects();
inline constexpr std::uint32_t kTablesContainer = 0x0F000001;

// A row of MSysACEs: who may do what with an object.
struct AccessRow {
    std::uint32_t object = 0;
    std::string_view sid;
    std::uint32_t rights = 0;
    bool inheritable = false;
};
std::span<const AccessRow> SystemAccess();
inline constexpr std::uint32_t kTableRights = 0xFFEFF;

// Whether the column holds a masked security id.
bool HoldsSid(TextView column);

}  // namespace tav::jet
