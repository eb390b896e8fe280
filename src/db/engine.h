// What stands behind a connection: the native engine, or on
// Windows the one that an ADO provider of the machine drives.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>

#include "common/text.h"
#include "sql/recordset.h"
#include "sql/sql_text.h"

namespace tav {

class Engine {
 public:
    virtual ~Engine() = default;

    virtual Recordset Execute(const SqlText& sql) = 0;
    // The statements executed so far reach the disk together, where an engine can do that.
    virtual void EndUnit() {}
    // In bytes; an engine that minds its room itself has no end of it.
    virtual std::uint64_t RoomLeft() const { return std::numeric_limits<std::uint64_t>::max(); }
    // What was executed stays.
    virtual void Close() = 0;
};

// How a connection is opened.
struct OpenRequest {
    TextView connection_string;
    int cursor_location = 2;
    bool for_reading = false;
};

// The best engine there is.
std::unique_ptr<Engine> OpenEngine(const OpenRequest& request);

// Which one that is: the provider's name, or "native".
Text EngineInUse();

// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=", which the full path of the database file follows.
inline constexpr TextView kConnectionOpening = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=";

}  // namespace tav
