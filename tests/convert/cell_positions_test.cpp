#include "convert/cell_positions.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tav {
namespace {

void Replace(std::string& text, std::string_view what, std::string_view with) {
    std::string out;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(what, from)) != text.npos; from = at + what.size()) {
        out.append(text, from, at - from).append(with);
    }
    text = out.append(text, from);
}

// What the table is defined to do: one replacement after the other, each over the whole text.
std::string OneAfterTheOther(std::string text) {
    for (const CellPosition& position : kCellPositions) {
        Replace(text, "posx" + std::to_string(position.twips), position.tag);
    }
    Replace(text, "posx", "##|");
    return text;
}

TEST(CellPositions, NamesTheField) {
    EXPECT_EQ(ReplaceCellPositions("posx61201.02.2011\r\nposx6125 x\r\n"),
              "##<p01>01.02.2011\r\n##<p01>5 x\r\n");
    EXPECT_EQ(ReplaceCellPositions("posx5457posx627a"), "##a<p@@@@>##a<h@@>a");
    EXPECT_EQ(ReplaceCellPositions("posx999 a posx-612 posx"), "##|999 a ##|-612 ##|");
    EXPECT_EQ(ReplaceCellPositions("pposxposx642"), "p##|##<p00>");
    EXPECT_EQ(ReplaceCellPositions("posx0612 posx61 posx9999999 posx1541 posx1542"),
              "##|0612 ##|61 ##|9999999 ##|1541 ##<p02>");
    EXPECT_EQ(ReplaceCellPositions(""), "");
    EXPECT_EQ(ReplaceCellPositions("pos x612"), "pos x612");
}

TEST(CellPositions, EqualOneReplacementAfterTheOther) {
    std::vector<std::string> pieces = {"p",    "o",   "s", "x",     "pos", "posx",
                                       "\r\n", "##p", "#", "<p01>", "@@",  " "};
    for (const CellPosition& position : kCellPositions) {
        const std::string digits = std::to_string(position.twips);
        pieces.push_back("posx" + digits);
        pieces.push_back("posx" + digits.substr(0, digits.size() - 1));
        pieces.push_back(digits);
    }
    for (char digit = '0'; digit <= '9'; ++digit) pieces.emplace_back(1, digit);
    std::mt19937 random(612);
    for (int round = 0; round < 10'000; ++round) {
        std::string text;
        for (std::size_t n = random() % 30; n > 0; --n) text += pieces[random() % pieces.size()];
        ASSERT_EQ(ReplaceCellPositions(text), OneAfterTheOther(text)) << text;
    }
}

}  // namespace
}  // namespace tav
