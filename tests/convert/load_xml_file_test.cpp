#include "convert/load_xml_file.h"

#include <gtest/gtest.h>

#include <set>

#include "common/windows1251.h"
#include "convert/act_fields.h"
#include "platform/files.h"
#include "support/support.h"
#include "xml/document.h"

namespace tav {
namespace {

using test::Bytes;

Text DataFolder() {
    return FromUtf8(TAV_TEST_DIR) + u"/convert/data/";
}
Text ShippedSchema() {
    return FromUtf8(TAV_TEST_DIR) + u"/../schema/IU_AKTSVP_1_862_01_05_01_01.xsd";
}

// The UTF-8 act of two sections as Text, to be changed.
Text Act() {
    return FromUtf8(test::TestFile("convert/data/act-utf8-two-sections.xml"));
}
// The same act with its first section alone.
Text OneSection() {
    const Text act = Act();
    const std::size_t second = act.find(u"<Раздел2", act.find(u"<Раздел2") + 1);
    return act.substr(0, second) + act.substr(act.find(u"</СодАкт>"));
}
Text Without(const Text& act, TextView what) {
    EXPECT_NE(act.find(what), Text::npos) << ToUtf8(what);
    return ReplaceAll(act, what, u"");
}

class Acts : public testing::Test {
 protected:
    static Conversion Convert(const Text& act, const Text& schema = {}) {
        return ConvertAct(ToUtf8(act), u"act.xml", schema);
    }

    test::TempFolder folder_;
    test::MessageList messages_;
};

TEST_F(Acts, BecomeEntries) {
    for (const char16_t* const name : {u"act-1251", u"act-utf8-two-sections"}) {
        const Text file = Text(name) + u".xml";
        const Conversion act = ConvertAct(ReadFile(DataFolder() + file), file, ShippedSchema());
        EXPECT_EQ(act.reason, u"");
        test::ExpectGolden("convert/golden/" + ToUtf8(name) + ".entry", act.entry);
        EXPECT_EQ(LoadXMLFile(DataFolder(), file).entry, act.entry);
    }
    EXPECT_TRUE(messages_.messages.empty());
}

TEST_F(Acts, TakeTheFirstOfEachField) {
    EXPECT_EQ(Convert(Act()).entry, Convert(OneSection()).entry);
    // A field the first section lacks comes from the second: the first in the document counts.
    const std::string mixed = Convert(Without(Act(), u" КБК=\"18210102010010000110\"")).entry;
    EXPECT_NE(mixed.find("<h07>18210301000010000110</h07>"), mixed.npos);
}

TEST_F(Acts, WriteValuesAsTheyStand) {
    Text act = ReplaceAll(OneSection(), u"НалОрг=\"1005.05\"", u"НалОрг=\"\"");
    act = ReplaceAll(act, u"НалОрг=\"1006.06\"", u"НалОрг=\" 1 006,06  &lt;&amp;&gt; — \u2212\u4E2D\"");
    act = Without(act, u"<Недоимка НалОрг=\"1001.01\" НалПлат=\"0.00\"/>");
    const std::string bytes = Convert(act).entry;
    EXPECT_NE(bytes.find("\t\t\t<p0112></p0112>\r\n"), bytes.npos);
    EXPECT_NE(bytes.find("\t\t\t<p1121>" + Bytes(u" 1 006,06  <&> — -?") + "</p1121>\r\n"), bytes.npos);
    EXPECT_NE(bytes.find("\t\t\t<p0011>1000.00</p0011>\r\n\t\t\t<p1112>"), bytes.npos);
}

TEST_F(Acts, WithoutTheSchemaWhatIsMissingStaysOpen) {
    const std::string no_inn = Convert(Without(Act(), u"ИННЮЛ=\"7701234567\"")).entry;
    EXPECT_TRUE(no_inn.starts_with("<file>\r\n\t<name>act.xml</name>\r\n\t\t\t<h02>"))
        << no_inn.substr(0, 80);
    const std::string no_end = Convert(Without(Act(), u"ДатаКонПер=\"31.03.2011\"")).entry;
    EXPECT_EQ(no_end.find("<body>"), no_end.npos);
    const std::string no_last =
        Convert(Without(Without(Act(), u"<Процент НалОрг=\"1100.00\" НалПлат=\"0.00\"/>"),
                        u"<Процент НалОрг=\"5100.00\" НалПлат=\"0.00\"/>"))
            .entry;
    EXPECT_TRUE(no_last.ends_with("</p0044>\r\n</file>\r\n"));
    const std::string name_only = "<file>\r\n\t<name>act.xml</name>\r\n</file>\r\n";
    EXPECT_EQ(Convert(u"<other/>").entry, name_only);
    for (const Text text : {u"<Файл>", u"", u"<!DOCTYPE Файл><Файл/>"}) {
        const Conversion act = Convert(text);
        EXPECT_EQ(act.entry, name_only);
        EXPECT_TRUE(act.reason.starts_with(u"Это не документ XML: строка 1: ")) << ToUtf8(act.reason);
    }
}

TEST_F(Acts, TheSchemaRejectsWhatCannotBeClosed) {
    const Text cases[] = {
        u"<Файл/>",
        u"<other/>",
        Without(Act(), u"ИННЮЛ=\"7701234567\""),
        Without(Act(), u"ДатаКонПер=\"31.03.2011\""),
        Without(Act(), u"<Процент НалОрг=\"1100.00\" НалПлат=\"0.00\"/>"),
        ReplaceAll(Act(), u"Раздел2", u"Раздел3"),
    };
    for (const Text& text : cases) {
        const Conversion act = Convert(text, ShippedSchema());
        EXPECT_EQ(act.entry, "");
        EXPECT_TRUE(act.reason.starts_with(u"Документ не соответствует схеме акта: ")) << ToUtf8(act.reason);
    }
    EXPECT_EQ(Convert(u"<Файл>", ShippedSchema()).entry, "");
    EXPECT_TRUE(messages_.messages.empty());
}

TEST_F(Acts, TheSchemaLeavesRoomForWhatItDoesNotKnow) {
    Text act = ReplaceAll(Act(), u"<СвНП>", u"<Прочее а=\"1\"><б/></Прочее><СвНП>");
    act = ReplaceAll(act, u"<СодАкт>", u"<СодАкт новый=\"да\"><Раздел1><Итог/></Раздел1>");
    act = ReplaceAll(act, u"<НалВсего ", u"<Всего/><НалВсего ещё=\"1\" ");
    act = ReplaceAll(act, u"НалОрг=\"1005.05\"", u"НалОрг=\"\"");
    EXPECT_EQ(Convert(act, ShippedSchema()).reason, u"");
}

// Every amount of the table is known to the shipped schema, and nothing else has the amounts' attribute.
TEST_F(Acts, TheSchemaMatchesTheFieldTable) {
    std::set<Text> in_table;
    int amount = 0;
    for (const ActField& field : ActFields()) {
        if (field.path.starts_with(u"//")) continue;
        const Text value = Digits(1000 + amount) + u"." + Digits(amount % 100, 2);
        const Conversion act =
            Convert(ReplaceAll(Act(), u"НалОрг=\"" + value + u"\"", u"НалОрг=\"много\""), ShippedSchema());
        EXPECT_EQ(act.entry, "") << ToUtf8(field.path);
        ++amount;
        TextView path = field.path;
        for (std::size_t slash; (slash = path.find(u'/')) != path.npos; path.remove_prefix(slash + 1)) {
            in_table.emplace(path.substr(0, slash));
        }
    }
    EXPECT_EQ(amount, 101);
    std::set<Text> in_schema;
    const Text schema = FromWindows1251(test::TestFile("../schema/IU_AKTSVP_1_862_01_05_01_01.xsd"));
    for (std::size_t end = 0; (end = schema.find(u"\" type=\"Показатель\"", end + 1)) != Text::npos;) {
        const std::size_t begin = schema.rfind(u'"', end - 1) + 1;
        in_schema.insert(schema.substr(begin, end - begin));
    }
    EXPECT_EQ(in_schema, in_table);
}

TEST_F(Acts, UnexpectedFailuresAreShown) {
    EXPECT_TRUE(LoadXMLFile(folder_.path(), u"none.xml").unreadable);
    ASSERT_EQ(messages_.messages.size(), 1u);
    EXPECT_EQ(messages_.messages[0].title, u"Ошибка в функции LoadXMLFile");
    EXPECT_EQ(messages_.messages[0].text, u"File not found: " + folder_ / u"none.xml" + u"\r\n");

    const Text schema = folder_.Write(u"broken.xsd", "<xs:schema");
    EXPECT_THROW(Convert(Act(), schema), XmlFailure);
    folder_.Write(u"broken.xsd", test::TestFile("../schema/IU_AKTSVP_1_862_01_05_01_01.xsd"));
    EXPECT_EQ(Convert(Act(), schema).reason, u"");
}

}  // namespace
}  // namespace tav
