// What stands behind a connection: the native engine, or on
// Windows the one that an ADO provider of the machine drives.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "common/text.h"
#include "sql/recordset.h"
#include "sql/sql_text.h"

namespace tav {

// A text column and how many characters it takes.
struct TextSize {
    Text column;
    std::size_t characters = 0;
};

class Engine {
 public:
    virtual ~Engine() = default;

    virtual Recordset Execute(const SqlText& sql) = 0;
    // Statements that return no rows, one after the other. An engine may do what it does for all of them at once; the
    // one that fails ends them.
    virtual void ExecuteAll(std::span<const SqlText> statements) {
        for (const SqlText& sql : statements) Execute(sql);
    }
    // Gives `take` the rows of a select one after the other, where an engine can do that without gathering them.
    virtual void ForEachRow(const SqlText& sql, const TakeRow& take) {
        for (Recordset rows = Execute(sql); !rows.Eof(); rows.MoveNext()) take(rows.Row());
    }
    // The statements executed so far reach the disk together, where an engine can do that.
    virtual void EndUnit() {}
    // What is executed since SetSavepoint is taken back by RollBackToSavepoint, or kept by ReleaseSavepoint.
    // There is one savepoint at a time, and no EndUnit between the two.
    virtual void SetSavepoint() = 0;
    virtual void ReleaseSavepoint() = 0;
    virtual void RollBackToSavepoint() = 0;
    // The text columns of a table that have a size; a memo has none.
    virtual std::vector<TextSize> TextSizes(TextView table) = 0;
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

// Which one that is for the database of the settings: the provider's name, or "native"; after it, in
// parentheses, why a provider that the machine has is not used for it.
Text EngineInUse();

// "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=", which the full path of the database file follows.
inline constexpr TextView kConnectionOpening = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=";

}  // namespace tav
