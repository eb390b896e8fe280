#include "exports/export_csv.h"

#include "common/concat.h"
#include "common/failure.h"
#include "exports/export_target.h"
#include "exports/value_text.h"
#include "platform/files.h"
#include "platform/work_folder.h"

namespace tav {
namespace {

std::string Quoted(const std::string& value) {
    std::string quoted = "\"";
    for (const char c : value) {
        if (c == '"') quoted += c;
        quoted += c;
    }
    return quoted + '"';
}

std::string CsvText(TextView text) {
    std::string value = WholeUtf8(text);
    const bool plain = !value.empty() && value.find_first_of("\",\r\n") == value.npos &&
                       value.front() != ' ' && value.back() != ' ';
    return plain ? value : Quoted(value);
}

struct CsvValue {
    std::string operator()(const Null&) const { return {}; }
    std::string operator()(bool flag) const { return flag ? "1" : "0"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return NumberText(number); }
    std::string operator()(const Money& money) const { return MoneyText(money); }
    std::string operator()(const Date& date) const { return IsoDate(date); }
    std::string operator()(const Text& text) const { return CsvText(text); }
    std::string operator()(const Binary& binary) const { return HexDigits(binary.bytes); }
};

std::string CsvTable(jet::Table& table) {
    std::string out;
    const auto add_line = [&](const auto& values, auto text_of) {
        const char* separator = "";
        for (const auto& value : values) {
            out.append(separator).append(text_of(value));
            separator = ",";
        }
        out += "\r\n";
    };
    add_line(table.definition().columns, [](const jet::Column& column) { return CsvText(column.name); });
    for (auto rows = table.Rows(); !rows.AtEnd(); rows.Next()) {
        StopIfInterrupted();
        add_line(rows.row().All(), [](const Value& value) { return std::visit(CsvValue(), value); });
    }
    return out;
}

Text FileName(TextView table) {
    Text name(table);
    for (char16_t& c : name) {
        if (c < u' ' || TextView(u"\\/:*?\"<>|").find(c) != TextView::npos) c = u'_';
    }
    return name + u".csv";
}

}  // namespace

void ExportToCsv(jet::Database& database, TextView folder) {
    const Text target = NewTarget(folder);
    WorkFolder work(target);
    for (const jet::TableEntry& entry : database.Tables()) {
        const Text path = work.path() + FileName(entry.name);
        if (FileExists(path)) throw Failure(Concat(u"Две таблицы дали бы один файл: ", FileName(entry.name)));
        const std::string text = CsvTable(*database.FindTable(entry.name));
        try {
            WriteFileWhole(path, text);
        } catch (const Failure& failure) {
            if (failure.error() != RunTimeError::DiskFull) throw;
            throw Failure(failure.error(), target);  // the folder of the work is nothing to a person
        }
    }
    work.Publish({}, target);
}

}  // namespace tav
