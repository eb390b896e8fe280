// An operations database in a folder of its own, a catalogue beside it, and what the tables hold as text.
#pragma once

#include <gmock/gmock.h>

#include "common/regional.h"
#include "db/clearbase.h"
#include "db/connection.h"
#include "db/empty_database.h"
#include "load/constr_tab_type_oper.h"
#include "load/load_from_xml.h"
#include "platform/files.h"
#include "settings/settings.h"
#include "support/support.h"

namespace tav::test {

// A statement's head: the fields that tests vary.
struct Head {
    Text inn = u"7701234567";
    Text kpp = u"770101001";
    Text end = u"31.03.2011";
    Text begin = u"01.01.2011";
    Text code = u"18210101011011000110";
};

inline Text Element(TextView name, TextView text) {
    return Text(u"<").append(name).append(u">").append(text).append(u"</").append(name).append(u">\r\n");
}

// "p01=01.02.2011|p10=5.00" as elements.
inline Text Elements(TextView list) {
    Text elements;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(u'|'), list.size());
        const TextView item = list.substr(0, end);
        list.remove_prefix(std::min(end + 1, list.size()));
        elements += Element(item.substr(0, item.find(u'=')), item.substr(item.find(u'=') + 1));
    }
    return elements;
}

inline Text StatementPart(const Head& head, const std::vector<Text>& rows) {
    Text part = u"<part type=\"выписка\">\r\n<head>\r\n" +
                Elements(u"h01=" + head.inn + u"|h02=" + head.kpp +
                         u"|h03=ООО Ромашка|h04=7701|h05=x|h06=НДС|h07=" + head.code +
                         u"|h08=Налог на прибыль|h09=y|h10=45286552000|h11=рубль Российской Федерации|h12=" +
                         head.end + u"|h13=" + head.begin) +
                u"</head>\r\n<body>\r\n";
    for (const Text& row : rows) part += u"<row>\r\n" + Elements(row) + u"</row>\r\n";
    return part + u"</body>\r\n</part>\r\n";
}

inline Text ActPart(const Head& head, TextView amounts) {
    return u"<part type=\"акт\">\r\n<head>" +
           Elements(u"h01=" + head.inn + u"|h02=" + head.kpp + u"|h03=ООО Ромашка|h04=7701|h07=" + head.code +
                    u"|h08=Налог|h10=45286552000|h12=05.04.2011|h13=" + head.begin + u"|perb=" + head.begin +
                    u"|pere=" + head.end) +
           u"</head><body>" + Elements(amounts) + u"</body></part>\r\n";
}

class OperationsDatabase : public testing::Test {
 protected:
    OperationsDatabase() {
        CreateDatabase(database_);
        MakeFolders(folder_ / u"in/");
    }

    // Writes the catalogue of these files: names and their parts.
    void Write(const std::vector<std::pair<Text, Text>>& files) const {
        Text text = u"<?xml version=\"1.0\" encoding=\"windows-1251\" ?><all>\r\n<actual>\r\n";
        for (const auto& [name, parts] : files) text += Element(u"item", name);
        text += u"</actual>\r\n";
        for (const auto& [name, parts] : files) {
            text += u"<file>\r\n" + Element(u"name", name) + parts + u"</file>\r\n";
        }
        folder_.Write(u"in/listfiles.xml", Bytes(text + u"</all>\r\n"));
    }

    ImportAccount Load(TextView inn = u"7701234567", TextView kpp = u"770101001",
                       TextView move_to = {}) const {
        return LoadFromXml(catalogue_, database_, inn, kpp, move_to);
    }
    ImportAccount Load(const std::vector<std::pair<Text, Text>>& files) const {
        Write(files);
        return Load();
    }

    void Execute(TextView sql) const {
        Connection connection;
        connection.Open(ConnectionString(database_));
        connection.Execute(sql);
        connection.Close();
    }

    // The rows as "a|b|c", Null as "-".
    std::vector<std::string> Rows(TextView sql) const {
        Connection connection;
        connection.OpenForReading(ConnectionString(database_));
        std::vector<std::string> rows;
        for (Recordset set = connection.Execute(sql); !set.Eof(); set.MoveNext()) {
            Text row;
            for (std::size_t i = 0; i < Columns(sql); ++i) {
                const Value& value = set.Field(i);
                row += (i == 0 ? u"" : u"|") + (IsNull(value) ? Text(u"-") : ValueText(value));
            }
            rows.push_back(ToUtf8(row));
        }
        return rows;
    }

    // The messages shown, as "title: text".
    std::vector<std::string> Shown() const {
        std::vector<std::string> shown;
        for (const Message& message : shown_.messages)
            shown.push_back(ToUtf8(message.title + u": " + message.text));
        return shown;
    }

    const OwnSettings settings_;
    const TempFolder folder_;
    const Text database_ = folder_ / u"PlX_Base.mdb";
    const Text catalogue_ = folder_ / u"in/listfiles.xml";
    MessageList shown_;

 private:
    // The columns of a select list without commas inside its expressions.
    static std::size_t Columns(TextView sql) {
        const TextView list = sql.substr(0, sql.find(u" from "));
        return 1 + static_cast<std::size_t>(std::ranges::count(list, u','));
    }
};

}  // namespace tav::test
