#include "convert/document_glance.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "common/windows1251.h"
#include "convert/load_rtf_file.h"
#include "samples/generator.h"
#include "support/support.h"

namespace tav {

void PrintTo(const DocumentGlance& glance, std::ostream* out) {
    *out << static_cast<int>(glance.kind);
    for (const Text& text :
         {glance.code, glance.okato, glance.period_begin, glance.period_end, glance.tax, glance.reason})
        *out << '|' << ToUtf8(text);
}

namespace {

using samples::Letters;
using test::MessageList;
using test::TempFolder;

DocumentGlance GlanceAtBytes(const std::string& bytes) {
    const TempFolder folder;
    const MessageList messages;
    const DocumentGlance glance = GlanceAtDocument(folder.Write(u"a.rtf", bytes));
    EXPECT_TRUE(messages.messages.empty());
    return glance;
}

// The first part of the document's catalogue entry.
DocumentGlance Converted(const samples::Document& document) {
    const TempFolder folder;
    samples::WriteDocument(folder.path(), document);
    const Text entry = FromWindows1251(LoadRtfFile(folder.path(), document.name));
    const auto element = [&](const Text& name) {
        const std::size_t at = entry.find(u"<" + name + u">");
        if (at == entry.npos) return Text();
        const std::size_t begin = at + name.size() + 2;
        return entry.substr(begin, entry.find(u"<", begin) - begin);
    };
    const bool act = entry.find(u"<part type=\"акт\">") < entry.find(u"<part type=\"выписка\">");
    return {act ? DocumentKind::Act : DocumentKind::Statement,
            element(u"h07"),
            element(u"h10"),
            element(u"h13"),
            element(act ? u"pere" : u"h12"),
            element(u"h08"),
            u""};
}

void ExpectAsConverted(const samples::Document& document) {
    const DocumentGlance glance = GlanceAtBytes(document.bytes);
    EXPECT_EQ(glance, Converted(document)) << ToUtf8(document.name);
    EXPECT_GE(glance.code.size(), 20u);
}

constexpr Letters kLetters[] = {Letters::LowerHex, Letters::UpperHex, Letters::Unicode, Letters::UnicodeHex,
                                Letters::Raw};

TEST(DocumentGlance, ShowsWhatIsConverted) {
    int documents = 0;
    for (const samples::Document& document : samples::SampleSet()) {
        if (!document.name.ends_with(u".rtf")) continue;
        ExpectAsConverted(document);
        ++documents;
    }
    EXPECT_EQ(documents, 12);
    for (const Letters letters : kLetters) {
        ExpectAsConverted(samples::MakeStatement({.rows = 200, .letters = letters, .parts = 2}));
        ExpectAsConverted(samples::MakeActRtf({.letters = letters, .parts = 2}));
    }
}

samples::Document Replaced(samples::Document document, const std::string& what, const std::string& with) {
    const std::size_t at = document.bytes.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    document.bytes.replace(at, what.size(), with);
    return document;
}

// Headers that are written in other ways, or are not as they should be: what the reader makes of them shows.
TEST(DocumentGlance, ShowsOddHeadersAsConverted) {
    const samples::Document statement = samples::MakeStatement({});
    const std::string code = ToUtf8(samples::Taxes()[0].kbk);
    const std::string okato = "45280000000";
    const std::pair<std::string, std::string> odd[] = {
        {code, code.substr(0, 8) + "}{\\b\\f1\\cf1 " + code.substr(8)},
        {code, code.substr(0, 8) + "} {\\b\\f1\\cf1 " + code.substr(8)},
        {"\\cf1 " + code, "\\b " + code},
        {"\\cf1 " + code, "\\cf1 \\b " + code},
        {code, "\\'31" + code.substr(1)},
        {"{\\fonttbl", std::string(100'000, ' ') + "{\\fonttbl"},
    };
    for (const auto& [what, with] : odd) ExpectAsConverted(Replaced(statement, what, with));

    const samples::Document act = samples::MakeActRtf({});
    ExpectAsConverted(Replaced(act, "{\\fonttbl", "{\\pict " + std::string(70'000, '0') + "}{\\fonttbl"));

    std::vector<samples::Document> incomplete = {Replaced(act, code + "}\\par", code + "}\\par\\page ")};
    for (const char* other : {"45286552", "", "45280000000 (45290000000)", "{}", "}{x"})
        incomplete.push_back(Replaced(statement, okato, other));
    for (const samples::Document& document : incomplete)
        EXPECT_EQ(GlanceAtBytes(document.bytes), Converted(document));
}

// 64 KB may end in the last field of a header: it is not cut.
TEST(DocumentGlance, CutsNoField) {
    const samples::Document statement = samples::MakeStatement({.rows = 1});
    const samples::Document act = samples::MakeActRtf({.all_zero = true});
    const std::string okato = "45280000000";
    const std::pair<samples::Document, std::string> cases[] = {
        {statement, "01.01.2010"},
        {act, okato},
        {Replaced(act, okato, okato + " and more"), okato},
    };
    for (const auto& [document, last_field] : cases) {
        const DocumentGlance expected = Converted(document);
        const std::size_t field = document.bytes.find(last_field);
        const std::size_t header = document.bytes.find("{\\pard");
        for (std::size_t end = field - 3; end < field + 30; ++end) {
            std::string bytes = document.bytes + std::string(65'536, ' ');
            bytes.insert(header, "{\\pict " + std::string(65'536 - 8 - end, '0') + "}");
            ASSERT_EQ(GlanceAtBytes(bytes), expected) << end - field;
        }
    }
}

TEST(DocumentGlance, SaysWhyItIsUnknown) {
    const std::pair<std::string, TextView> cases[] = {
        {"", u"Файл пуст"},
        {"<?xml version=\"1.0\"?>", u"Это не документ RTF"},
        {"{\\rtf1 text}", u"Не найдена шапка выписки или акта"},
        {std::string("{\\rtf1 ") + std::string(2'000'000, 'x'), u"Не найдена шапка выписки или акта"},
        {"{\\rtf1\\pard\\posx627 a\\par\\posx627 b\\par\\posx627 /\\posy1 /\\~ / c\\par}",
         u"Invalid procedure call or argument"},
    };
    for (const auto& [bytes, reason] : cases)
        EXPECT_EQ(GlanceAtBytes(bytes), DocumentGlance{.reason = Text(reason)}) << bytes.substr(0, 80);
    const TempFolder folder;
    const MessageList messages;
    EXPECT_EQ(GlanceAtDocument(folder / u"none.rtf").reason, u"File not found: " + (folder / u"none.rtf"));
    EXPECT_TRUE(messages.messages.empty());
}

TEST(DocumentGlance, StandsAnyBytes) {
    std::mt19937 random(1);
    for (const samples::Document& document : {samples::MakeStatement({}), samples::MakeActRtf({})}) {
        for (int round = 0; round < 200; ++round) {
            std::string bytes = document.bytes.substr(0, random() % 8'000);
            for (unsigned left = random() % 20; left > 0 && !bytes.empty(); --left)
                bytes[random() % bytes.size()] = "{}\\x0"[random() % 5];
            const DocumentGlance glance = GlanceAtBytes(bytes);
            EXPECT_EQ(glance.kind == DocumentKind::Unknown, !glance.reason.empty()) << bytes;
        }
    }
}

}  // namespace
}  // namespace tav
