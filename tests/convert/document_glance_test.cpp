#include "convert/document_glance.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/windows1251.h"
#include "convert/load_rtf_file.h"
#include "samples/generator.h"
#include "support/support.h"

namespace tav {
namespace {

using samples::Document;
using test::TempFolder;

std::string Glance(const std::string& bytes) {
    const TempFolder folder;
    const test::MessageList messages;
    const DocumentGlance glance = GlanceAtDocument(folder.Write(u"a.rtf", bytes));
    EXPECT_TRUE(messages.messages.empty());
    EXPECT_EQ(glance.kind == DocumentKind::Unknown, !glance.reason.empty());
    if (glance.kind == DocumentKind::Unknown) return ToUtf8(glance.reason);
    return ToUtf8((glance.kind == DocumentKind::Act ? u"акт|" : u"выписка|") + glance.code + u"|" +
                  glance.okato + u"|" + glance.period_begin + u"|" + glance.period_end + u"|" + glance.tax +
                  u"|" + glance.kpp);
}

// What the first part of the document's catalogue entry says.
std::string Converted(const Document& document) {
    const TempFolder folder;
    samples::WriteDocument(folder.path(), document);
    const Text entry = FromWindows1251(LoadRtfFile(folder.path(), document.name).entry);
    const bool act = entry.find(u"<part type=\"акт\">") < entry.find(u"<part type=\"выписка\">");
    Text said = act ? u"акт" : u"выписка";
    for (const TextView name :
         {u"<h07>", u"<h10>", u"<h13>", act ? u"<pere>" : u"<h12>", u"<h08>", u"<h02>"}) {
        said += u'|';
        const std::size_t at = entry.find(name);
        if (at != entry.npos)
            said += entry.substr(at + name.size(), entry.find(u'<', at + 1) - at - name.size());
    }
    return ToUtf8(said);
}

void ExpectAsConverted(const Document& document) {
    EXPECT_EQ(Glance(document.bytes), Converted(document));
}

Document Replaced(Document document, const std::string& what, const std::string& with) {
    const std::size_t at = document.bytes.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    document.bytes.replace(at, what.size(), with);
    return document;
}

const std::string kOkato = "45280000000";

class DocumentGlanceTest : public testing::Test {
 protected:
    const std::string code_ = ToUtf8(samples::Taxes()[0].kbk);
    const Document statement_ = samples::MakeStatement({.rows = 3});
    const Document act_ = samples::MakeActRtf({.all_zero = true});
};

TEST_F(DocumentGlanceTest, ShowsWhatIsConverted) {
    EXPECT_EQ(Glance(act_.bytes), "акт|" + code_ + "|" + kOkato + "|01.01.2010|31.12.2010|" +
                                      ToUtf8(samples::Taxes()[0].name) + "|770101001");
    for (const Document& document : samples::SampleSet())
        if (document.name.ends_with(u".rtf") && !document.parts.empty()) ExpectAsConverted(document);
    using samples::Letters;
    for (const Letters letters :
         {Letters::LowerHex, Letters::UpperHex, Letters::Unicode, Letters::UnicodeHex, Letters::Raw}) {
        ExpectAsConverted(samples::MakeStatement({.rows = 200, .letters = letters, .parts = 2}));
        ExpectAsConverted(samples::MakeActRtf({.letters = letters, .parts = 2}));
    }
}

TEST_F(DocumentGlanceTest, ShowsOddHeadersAsConverted) {
    const std::pair<std::string, std::string> odd[] = {
        {code_, code_.substr(0, 8) + "}{\\b\\f1\\cf1 " + code_.substr(8)},
        {code_, code_.substr(0, 8) + "} {\\b\\f1\\cf1 " + code_.substr(8)},
        {"\\cf1 " + code_, "\\b " + code_},
        {"\\cf1 " + code_, "\\cf1 \\b " + code_},
        {code_, "\\'31" + code_.substr(1)},
        {kOkato, "45286552"},
        {kOkato, ""},
        {kOkato, kOkato + " (45290000000)"},
        {kOkato, "{}"},
        {kOkato, "}{x"},
        {"\\posx10377", "\\page\\posx10377"},
        {"\\posx10377", "\r\n\\posx10377"},
        {"\\fs24\\f1\\cf1 ", "\\fs24\\f1\\cf1 x"},
        {"{\\fonttbl", std::string(100'000, ' ') + "{\\fonttbl"}};
    for (const auto& [what, with] : odd) ExpectAsConverted(Replaced(statement_, what, with));
    ExpectAsConverted(Replaced(act_, code_ + "}\\par", code_ + "}\\par\\page "));
}

// 64 KB may end in the last field of a header: it is not cut.
TEST_F(DocumentGlanceTest, CutsNoField) {
    const std::pair<Document, std::string> cases[] = {
        {statement_, "01.01.2010"}, {act_, kOkato}, {Replaced(act_, kOkato, kOkato + " and more"), kOkato}};
    for (const auto& [document, last_field] : cases) {
        const std::string expected = Converted(document);
        const std::size_t field = document.bytes.find(last_field);
        for (std::size_t end = field - 3; end < field + 30; ++end) {
            std::string bytes = document.bytes + std::string(65'536, ' ');
            bytes.insert(bytes.find("{\\pard"), "{\\pict " + std::string(65'536 - 8 - end, '0') + "}");
            ASSERT_EQ(Glance(bytes), expected) << end - field;
        }
    }
}

TEST_F(DocumentGlanceTest, SaysWhyItIsUnknown) {
    EXPECT_EQ(Glance(""), "Файл пуст");
    EXPECT_EQ(Glance("<?xml version=\"1.0\"?>"), "Это не документ RTF");
    EXPECT_EQ(Glance("{\\rtf1 " + std::string(2'000'000, 'x')), "Не найдена шапка выписки или акта");
    EXPECT_EQ(Glance("{\\rtf1\\pard\\posx627 a\\par\\posx627 b\\par\\posx627 / c\\par}"),
              "Документ не разобран: Invalid procedure call or argument");
    const TempFolder folder;
    EXPECT_EQ(GlanceAtDocument(folder / u"none").reason, u"Файла больше нет");
}

TEST_F(DocumentGlanceTest, StandsAnyBytes) {
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        std::string bytes = (round % 2 == 0 ? statement_ : act_).bytes.substr(0, 500 + random() % 8'000);
        for (unsigned left = random() % 20; left > 0; --left)
            bytes[random() % bytes.size()] = "{}\\x0"[random() % 5];
        Glance(bytes);
    }
}

}  // namespace
}  // namespace tav
