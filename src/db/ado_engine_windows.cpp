#include "db/ado_engine_windows.h"

#include "common/failure.h"
#include "platform/automation_windows.h"
#include "sql/sql_token.h"

namespace tav {
namespace {

using win32::Object;
using win32::Variant;

constexpr const wchar_t* kProviders[] = {L"Microsoft.Jet.OLEDB.4.0", L"Microsoft.ACE.OLEDB.16.0",
                                         L"Microsoft.ACE.OLEDB.12.0"};
constexpr int kUsualCursors = 2;  // on the server's side, as a new connection has them
constexpr long kUnspecified = -1;

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
        for (const SqlText::Span& value : sql.values()) {
            if (value.quoted) jet::CheckQuotedValue(TextView(sql.text()).substr(value.begin, value.length));
        }
        const Variant text(sql.text());
        try {
            Object set(connection_.Call(L"Execute", {&text}));
            return Recordset(ReadAll(set));
        } catch (const Failure& failure) {
            throw failure.In(provider_);
        }
    }
    void Close() override { connection_.Call(L"Close"); }

 private:
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
