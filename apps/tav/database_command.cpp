// tav db: create, check, dump; export is export_command.cpp.

#include "commands.h"
#include "common/guard.h"
#include "db/empty_database.h"
#include "db/engine.h"
#include "exports/value_text.h"
#include "jet/check/checker.h"
#include "jet/table/database.h"
#include "json_text.h"
#include "settings/settings.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

JsonText JsonOf(const Value& value) {
    struct Converter {
        JsonText operator()(const Null&) const { return nullptr; }
        JsonText operator()(bool flag) const { return flag; }
        JsonText operator()(std::int64_t number) const { return number; }
        JsonText operator()(double number) const { return number; }
        JsonText operator()(const Money& money) const {
            return static_cast<double>(money.ten_thousandths) / 10000;
        }
        JsonText operator()(const Date& date) const { return IsoDate(date); }
        JsonText operator()(const Text& text) const { return ToUtf8(text); }
        JsonText operator()(const Binary& binary) const { return HexDigits(binary.bytes); }
    };
    return std::visit(Converter(), value);
}

void DumpTable(jet::Table& table, bool first) {
    std::string out = first ? "\n" : ",\n";
    out += JsonText(ToUtf8(table.definition().name)).text() + ": [";
    std::vector<std::string> names;
    for (const jet::Column& column : table.definition().columns)
        names.push_back(ToUtf8(LowerCase(column.name)));
    const char* separator = "\n";
    for (auto rows = table.Rows(); !rows.AtEnd(); rows.Next()) {
        JsonText::Members row;
        const std::vector<Value> values = rows.row().All();
        for (std::size_t i = 0; i < values.size(); ++i) row.emplace_back(names[i], JsonOf(values[i]));
        out.append(separator).append(JsonText::Object(row, JsonText::Layout::Line).text());
        separator = ",\n";
        if (out.size() > 1 << 16) {
            Print(out);
            out.clear();
        }
    }
    Print(out + "]");
}

void Dump() {
    Guarded(u"Содержимое базы данных", [] {
        jet::Database database(getbase(), jet::Database::Access::Read);
        Print("{");
        bool first = true;
        for (const jet::TableEntry& entry : database.Tables()) {
            DumpTable(*database.FindTable(entry.name), first);
            first = false;
        }
        Print("\n}\n");
    });
}

void Check() {
    constexpr TextView kTitle = u"Проверка базы данных";
    Guarded(kTitle, [&] {
        PrintLine(u"Работает с базой: " + EngineInUse());
        const Text path = getbase();
        int errors = 0;
        for (const jet::Finding& finding : jet::CheckDatabase(path)) {
            errors += finding.error ? 1 : 0;
            PrintLine(Text(finding.error ? u"ошибка " : u"замечание ") + Digits(finding.invariant) + u": " +
                      finding.text);
        }
        if (errors == 0) {
            PrintLine(u"Ошибок нет: " + path);
        } else {
            ShowMessage(kTitle, u"Нарушений: " + Digits(errors) + u" (" + path + u")");
        }
    });
}

void Create() {
    Guarded(u"Создание базы данных", [] {
        CreateDatabase(getbase());
        PrintLine(getbase());
    });
}

}  // namespace

void AddDatabaseCommand(CLI::App& app, Context& context) {
    CLI::App& db = *app.add_subcommand("db", "Файл базы данных: создать, проверить, показать, выгрузить");
    db.require_subcommand(1);
    struct Action {
        const char* name;
        const char* help;
        void (*run)();
    };
    for (const Action& action :
         {Action{"create", "Создать пустую базу с четырьмя таблицами (существующий файл не заменяется)",
                 Create},
          Action{"check", "Проверить строение файла; найденное — на стандартный вывод", Check},
          Action{"dump", "Все таблицы в виде JSON", Dump}}) {
        CLI::App& command = *db.add_subcommand(action.name, action.help);
        AddDatabaseOptions(command, context);
        command.callback(action.run);
    }
    AddExportCommand(db, context);
}

}  // namespace tav::cli
