#include "convert/page_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/get_next.h"

namespace tav {
namespace {

std::string AllPages(const std::string& document) {
    PageReader reader(document);
    std::string text;
    while (reader.More())
        text.append(reader.Next()).append("[").append(reader.dropped_text() ? "!" : "").append("]");
    return text;
}

// The same, said word for word.
std::string AllPagesPlainly(std::string document) {
    for (std::size_t at; (at = document.find("\\posx")) != document.npos;) document.replace(at, 5, " posx");
    std::string_view rest = document;
    std::string text;
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

TEST(PageReader, CutsAndWrapsPages) {
    const struct {
        std::string document;
        std::size_t pages;
        std::string text;
    } cases[] = {
        {"", 1, ""},
        {"{\\rtf1 a}", 1, "\r\na[]"},
        {"{\\rtf1 a\\par}", 1, "\r\na[]"},
        // Page 1 leaves one group open, which the end closes; page 2 closes a group that page 1 opened.
        {"{\\rtf1 a\\par\\page\\par b}", 2, "\r\na\r\n[]\r\n\r\nb[]"},
        {"{\\rtf1{\\b a\\page }\\pard b\\par }", 2, "\r\na\r\n[]\r\n b[]"},
        {"{\\rtf1 a\\page b}", 2, "\r\na[]\r\n b[]"},
        {"{\\rtf1 a\\page\r\n}", 2, "\r\na[][]"},
        {"{\\rtf1 a\\page", 2, "\r\na[]"},
        {"\\page\\page", 3, "[][]"},
        // The word goes on behind the cut, or in front of it.
        {"{\\rtf1 a\\pagebb0 some longer text}", 2, "\r\na[]some longer text[]"},
        {"{\\rtf1 a\\\\page some longer text}", 2, "\r\na}\r\n[]\r\nsome longer text[]"},
        // The frame's position is text, and its blank ends the word before it.
        {"{\\rtf1\\phpg\\posx612\\posy5 a\\par}", 1, "\r\nposx612a[]"},
        {"{\\rtf1 a\\posx612\\posy5 b}", 1, "\r\na posx612b[]"},
        // A font table counts on its own page alone.
        {"{\\rtf1{\\fonttbl{\\f1\\fcharset0 A;}}\\f1\\'c0\\page\\f1\\'c0 longer text}", 2,
         "\r\n?[]\r\n\xC0 longer text[]"},
        // Two groups are closed, one was opened.
        {"{\\rtf1{\\b{\\i a\\page } b} lost}", 2, "\r\na\r\n[]\r\n  b[!]"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PageReader(c.document).pages(), c.pages) << c.document;
        EXPECT_EQ(AllPages(c.document), c.text) << c.document;
    }
}

TEST(PageReader, EqualsThePlainWords) {
    const std::vector<std::string> pieces = {
        "\\page", "\\posx", "\\posx612", "page", "posx",    "g",     "x", "\\",   "\\par",    "{",   "}",
        " ",      "\\'c0",  "\\bin9 ",   "text", "\\u1040", "\\pag", "e", "\\po", "{\\rtf1 ", "\\*", "\r\n"};
    std::mt19937 random(2011);
    for (int round = 0; round < 5'000; ++round) {
        std::string document;
        for (std::size_t n = random() % 40; n > 0; --n) document += pieces[random() % pieces.size()];
        ASSERT_EQ(AllPages(document), AllPagesPlainly(document)) << document;
    }
}

}  // namespace
}  // namespace tav
