// Every kind of sample document is read back into exactly the fields it was made of. What is expected comes
// from the samples' model, never from the bytes, so the reader and the generator check each other.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "convert/check_xml.h"
#include "convert/every_make.h"
#include "convert/load_rtf_file.h"
#include "convert/load_xml_file.h"
#include "platform/files.h"
#include "samples/generator.h"
#include "support/support.h"

namespace tav::samples {
namespace {

using test::MessageList;
using test::TempFolder;

// Without the tabs that begin the lines.
std::string WithoutIndentation(const std::string& entry) {
    std::string text;
    for (char c : entry)
        if (c != '\t' || !(text.empty() || text.back() == '\n')) text += c;
    return text;
}

// The line in which two texts part, for a readable message.
std::string FirstDifference(const std::string& a, const std::string& b) {
    const auto at = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin();
    const std::size_t begin = a.rfind('\n', static_cast<std::size_t>(at)) + 1;
    return "\nread:     " + a.substr(begin, 100) + "\nexpected: " + b.substr(std::min(begin, b.size()), 100);
}

void ExpectReadBack(const Document& document) {
    const TempFolder folder;
    const MessageList messages;
    WriteDocument(folder.path(), document);
    const bool rtf = document.name.ends_with(u".rtf");
    const std::string read =
        WithoutIndentation((rtf ? LoadRtfFile : LoadXMLFile)(folder.path(), document.name).entry);
    const std::string expected = CatalogueEntry(document);
    EXPECT_TRUE(read == expected) << ToUtf8(document.name) << FirstDifference(read, expected);
    EXPECT_TRUE(messages.messages.empty());
}

TEST(SamplesRead, StandardSet) {
    const std::vector<Document> documents = SampleSet();
    EXPECT_GT(documents.size(), 10u);
    for (const Document& document : documents) ExpectReadBack(document);
}

TEST(SamplesRead, AScanMakesTheirCatalogue) {
    const TempFolder folder;
    std::vector<Document> documents = SampleFolder(folder.path());
    std::erase_if(documents, [](const Document& document) { return document.name.ends_with(u".xml"); });
    const Text path = CheckXml(folder.path()).catalogue;
    ASSERT_FALSE(path.empty());
    const std::string read = WithoutIndentation(ReadFile(path));
    const std::string expected = Catalogue(documents);
    EXPECT_TRUE(read == expected) << FirstDifference(read, expected);
}

TEST(SamplesRead, EveryMake) {
    for (const Document& document : EveryMake()) ExpectReadBack(document);
}

TEST(SamplesRead, ActsInTheExchangeFormat) {
    for (bool utf8 : {false, true}) {
        for (bool sparse : {false, true}) {
            for (int parts : {1, 2, 3}) {
                SCOPED_TRACE(parts);
                ExpectReadBack(MakeActXml({.name = u"акт.xml",
                                           .all_zero = parts == 3,
                                           .utf8 = utf8,
                                           .sparse = sparse,
                                           .parts = parts,
                                           .seed = 4}));
            }
        }
    }
}

TEST(SamplesRead, ALongStatement) {
    ExpectReadBack(MakeStatement({.rows = 1500, .layout = 2, .cut = Cut::InsideGroup, .seed = 9}));
}

}  // namespace
}  // namespace tav::samples
