#include "convert/page_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/get_next.h"
#include "support/support.h"

namespace tav {
namespace {

std::string AllPages(auto&& document) {
    static PageReader reader;
    reader.Open(document);
    std::string text = std::to_string(reader.pages());
    while (reader.More())
        text.append(reader.Next()).append("[").append(reader.dropped_text() ? "!" : "").append("]");
    return text;
}

// The same, said word for word.
std::string AllPagesPlainly(std::string document) {
    for (std::size_t at = 0; (at = document.find("\\posx", at)) != document.npos;) document[at] = ' ';
    int pages = 1;
    for (std::size_t at = 0; (at = document.find("\\page", at)) != document.npos; at += 5) ++pages;
    std::string_view rest = document;
    std::string text = std::to_string(pages);
    while (!rest.empty()) {
        const bool brace = rest.substr(0, 10).find('}') != rest.npos;
        const std::string page(GetNext(rest, "\\page"));
        RichText converter;
        text += converter.Read("{\\rtf1\\ansi\\ansicpg1251\\deff0\\deflang1033\\page" +
                               std::string(brace ? "{" : "") + page + "}\\par }\\sect }");
        text += converter.dropped_text() ? "[!]" : "[]";
    }
    return text;
}

TEST(PageReader, EqualsThePlainWords) {
    const std::vector<std::string> pieces = {
        "\\page", "\\posx", "\\posx612", "page", "posx",    "g",     "x", "\\",   "\\par",    "{",   "}",
        " ",      "\\'c0",  "\\bin9 ",   "text", "\\u1040", "\\pag", "e", "\\po", "{\\rtf1 ", "\\*", "\r\n"};
    const test::TempFolder folder;
    // One word ends where the first piece does, or a little before.
    for (std::size_t left = 0; left < 12; ++left) {
        const std::string before = "{\\rtf1 " + std::string(PageReader::kPiece - left - 12, 'x');
        const std::string document = before + "\\page \\page\\b0\\i }end}";
        folder.Write(u"at.rtf", document);
        InputFile file(folder / u"at.rtf");
        EXPECT_EQ(AllPages(file), AllPagesPlainly(document)) << left;
    }
    std::string many;
    std::mt19937 random(2011);
    for (int round = 0; round < 5'000; ++round) {
        std::string document;
        for (std::size_t n = random() % 40; n > 0; --n) document += pieces[random() % pieces.size()];
        ASSERT_EQ(AllPages(document), AllPagesPlainly(document)) << document;
        many.append(document).append(round == 2000 ? PageReader::kPiece + 1000 : 0, 'x');
        if (round % 250 != 0) continue;
        folder.Write(u"many.rtf", many);
        InputFile file(folder / u"many.rtf");
        ASSERT_EQ(AllPages(file), AllPagesPlainly(many)) << many.size();
    }
    EXPECT_GT(many.size(), 3 * PageReader::kPiece);
    // The frame's position is text; page 2 closes two groups, of which page 1 opened one.
    EXPECT_EQ(AllPages("{\\rtf1\\posx612 a{\\b{\\i\\page } b} lost}"), "2\r\nposx612 a\r\n[]\r\n  b[!]");
}

}  // namespace
}  // namespace tav
