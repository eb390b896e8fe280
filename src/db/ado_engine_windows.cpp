#include "db/ado_engine_windows.h"

#include <algorithm>
#include <iterator>

#include "common/concat.h"
#include "common/database_failure.h"
#include "common/guard.h"
#include "common/regional.h"
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
ResultTable ReadAll(Object& set) {
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
        connection_.Call(L"Open", {&text, &nobody, &nobody, &options});
    }

    Recordset Execute(const SqlText& sql) override {
        Object set = Ask(sql);
        return Recordset(ReadAll(set));
    }
    std::vector<TextSize> TextSizes(TextView table) override {
        constexpr long kTexts[] = {129, 130, 200, 202};  // the kinds of text that have a size
        Object set = Ask(SqlText(Concat(u"select * from ", table, u" where id=0")));
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
    void SetSavepoint() override { connection_.Call(L"BeginTrans"); }
    void ReleaseSavepoint() override { connection_.Call(L"CommitTrans"); }
    void RollBackToSavepoint() override { connection_.Call(L"RollbackTrans"); }
    void Close() override { connection_.Call(L"Close"); }

 private:
    Object Ask(const SqlText& sql) {
        const Variant text(sql.Doubled());
        try {
            return Object(connection_.Call(L"Execute", {&text}));
        } catch (const Failure& failure) {
            if (IsOfStatement()) throw failure.In(provider_);
            throw DatabaseFailure(failure.In(provider_));
        }
    }

    // Whether the provider's last error is one of the statement and its values; what says nothing about itself
    // is taken for one of the database.
    bool IsOfStatement() {
        bool found = false;
        GuardedBy(
            [&] {
                Object errors(connection_.Get(L"Errors"));
                if (errors.Get(L"Count").lVal == 0) return;
                const Variant first(0L);
                Object error(errors.Get(L"Item", {&first}));
                const Text state = ValueText(win32::ValueOf(error.Get(L"SQLState")));
                found = std::ranges::find(kStatesOfStatement, state) != std::end(kStatesOfStatement);
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
