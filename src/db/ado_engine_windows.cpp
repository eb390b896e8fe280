#include "db/ado_engine_windows.h"

#include <algorithm>
#include <iterator>

#include "common/concat.h"
#include "common/database_failure.h"
#include "common/guard.h"
#include "common/regional.h"
#include "db/literals.h"
#include "db/qualified_columns.h"
#include "platform/automation_windows.h"

namespace tav {
namespace {

using win32::Object;
using win32::Variant;

constexpr const wchar_t* kProviders[] = {L"Microsoft.Jet.OLEDB.4.0", L"Microsoft.ACE.OLEDB.16.0",
                                         L"Microsoft.ACE.OLEDB.12.0"};
constexpr int kUsualCursors = 2;  // on the server's side, as a new connection has them
constexpr long kUnspecified = -1;

// The numbers under which Jet tells that a statement cannot be done: a key that is there already, a value that
// is missing, too long, too large or of another kind, a rule of the table, a relation, a name that is not known.
constexpr TextView kStatesOfStatement[] = {u"3022", u"3058", u"3061", u"3075", u"3127", u"3162",
                                           u"3163", u"3190", u"3200", u"3201", u"3314", u"3315",
                                           u"3316", u"3317", u"3349", u"3421", u"3464"};

// Those of an open or a statement that somebody else's use of the file is in the way of.
constexpr TextView kStatesOfUse[] = {u"3006", u"3045", u"3050", u"3051", u"3196", u"3356", u"3704"};

// A clear of a large database locks every page of a table at once; a provider begins with 9,500 locks.
constexpr long kMostLocks = 1'000'000;

// The connection string, whose opening names Jet, with another provider.
Text With(TextView connection_string, TextView provider) {
    constexpr TextView kJet = u"Microsoft.Jet.OLEDB.4.0";
    Text text(connection_string);
    if (const auto at = kConnectionOpening.find(kJet); text.starts_with(kConnectionOpening)) {
        text.replace(at, kJet.size(), provider);
    }
    return text;
}

// A statement that returns no rows returns a closed record set.
ResultTable ReadAll(Object set) {
    constexpr long kOpen = 1;
    ResultTable table;
    if (!set || (set.Get(L"State").lVal & kOpen) == 0) return table;
    Object fields(set.Get(L"Fields"));
    std::vector<Object> columns;
    const long count = fields.Get(L"Count").lVal;
    for (long i = 0; i < count; ++i) {
        const Variant number(i);
        columns.emplace_back(fields.Get(L"Item", {&number}));
        const Value name = win32::ValueOf(columns.back().Get(L"Name"));
        table.names.push_back(std::get<Text>(name));
    }
    while (set.Get(L"EOF").boolVal == VARIANT_FALSE) {
        std::vector<Value>& row = table.rows.emplace_back();
        for (Object& column : columns) row.push_back(win32::ValueOf(column.Get(L"Value")));
        set.Call(L"MoveNext");
    }
    set.Call(L"Close");
    return table;
}

class AdoEngine : public Engine {
 public:
    AdoEngine(const OpenRequest& request, TextView provider)
        : provider_(provider), connection_(L"ADODB.Connection") {
        if (request.cursor_location != kUsualCursors) {
            connection_.Put(L"CursorLocation", Variant(static_cast<long>(request.cursor_location)));
        }
        const Variant text(With(request.connection_string, provider));
        const Variant nobody(u"");
        const Variant options(kUnspecified);
        try {
            connection_.Call(L"Open", {&text, &nobody, &nobody, &options});
        } catch (const Failure& failure) {
            if (IsAmong(kStatesOfUse)) throw Failure(RunTimeError::FileInUse, failure.description());
            throw;
        }
        if (!request.for_reading) AllowManyLocks();
        RefuseForeignReading();
    }

    Recordset Execute(const SqlText& sql) override { return Recordset(ReadAll(Ask(sql))); }
    std::vector<TextSize> TextSizes(TextView table) override {
        constexpr long kTexts[] = {129, 130, 200, 202};  // the kinds of text that have a size
        Object set = Ask(SqlText(Concat(u"select * from ", table, u" where 1=0")));
        Object fields(set.Get(L"Fields"));
        std::vector<TextSize> sizes;
        const long count = fields.Get(L"Count").lVal;
        for (long i = 0; i < count; ++i) {
            const Variant number(i);
            Object field(fields.Get(L"Item", {&number}));
            if (std::ranges::find(kTexts, field.Get(L"Type").lVal) == std::end(kTexts)) continue;
            const Value name = win32::ValueOf(field.Get(L"Name"));
            sizes.push_back({std::get<Text>(name), static_cast<std::size_t>(field.Get(L"DefinedSize").lVal)});
        }
        set.Call(L"Close");
        return sizes;
    }
    void SetSavepoint() override { Transact(L"BeginTrans"); }
    void ReleaseSavepoint() override { Transact(L"CommitTrans"); }
    void RollBackToSavepoint() override { Transact(L"RollbackTrans"); }
    void Close() override { connection_.Call(L"Close"); }

 private:
    Object Ask(const SqlText& sql) {
        const Variant text(QualifiedColumns(sql.Doubled()));
        try {
            return Object(connection_.Call(L"Execute", {&text}));
        } catch (const Failure& failure) {
            if (IsAmong(kStatesOfStatement)) throw failure.In(provider_);
            throw DatabaseFailure(failure.In(provider_));
        }
    }

    // What a transaction fails for is no document's fault.
    void Transact(const wchar_t* step) {
        try {
            connection_.Call(step);
        } catch (const Failure& failure) {
            throw DatabaseFailure(failure.In(provider_));
        }
    }

    // A provider that lacks the property does without it.
    void AllowManyLocks() {
        GuardedBy(
            [&] {
                Object properties(connection_.Get(L"Properties"));
                const Variant name(u"Jet OLEDB:Max Locks Per File");
                Object(properties.Get(L"Item", {&name})).Put(L"Value", Variant(kMostLocks));
            },
            [](const Failure&) {});
    }

    // Dates and numbers stand in the statements as texts, which the provider reads by settings of its own: a
    // month taken for a day would be stored without a word.
    void RefuseForeignReading() {
        const Text number = ToLocalNumber(u"1.5");
        bool right = false;
        Text why;
        GuardedBy(
            [&] {
                const ResultTable answer =
                    ReadAll(Ask(SqlText(Concat(u"select cdate('01.02.2011'), cdbl('", number, u"')"))));
                const auto* date = std::get_if<Date>(&answer.rows.at(0).at(0));
                const auto* half = std::get_if<double>(&answer.rows.at(0).at(1));
                right = date != nullptr && *date == DateFromCivil({2011, 2, 1}) && half != nullptr &&
                        *half == 1.5;
            },
            [&](const Failure& failure) { why = Concat(u": ", failure.description()); });
        if (right) return;
        throw Failure(
            Concat(u"Провайдер читает даты и числа иначе, чем они записаны в документах (1 февраля 2011 — "
                   u"01.02.2011, полтора — ",
                   number, u"); проверьте региональные настройки", why));
    }

    // Whether the number of the provider's last error is one of these. What says nothing about itself is none
    // of them, and a statement's failure then one of the database.
    template <std::size_t count>
    bool IsAmong(const TextView (&states)[count]) {
        bool found = false;
        GuardedBy(
            [&] {
                Object errors(connection_.Get(L"Errors"));
                if (errors.Get(L"Count").lVal == 0) return;
                const Variant first(0L);
                Object error(errors.Get(L"Item", {&first}));
                const Text state = ValueText(win32::ValueOf(error.Get(L"SQLState")));
                found = std::ranges::find(states, state) != std::end(states);
            },
            [](const Failure&) {});
        return found;
    }

    const Text provider_;
    win32::ComUse com_;
    Object connection_;
};

}  // namespace

Text AdoProvider() {
    for (const wchar_t* provider : kProviders) {
        if (win32::CanMake(provider)) return win32::FromWide(provider);
    }
    return {};
}

std::unique_ptr<Engine> OpenAdoEngine(const OpenRequest& request, TextView provider) {
    return std::make_unique<AdoEngine>(request, provider);
}

}  // namespace tav
