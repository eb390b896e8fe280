#include "convert/cell_positions.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tav {
namespace {

// What the table is defined to do: one replacement after the other, each over the whole text.
std::string OneAfterTheOther(std::string text) {
    for (const CellPosition& position : kCellPositions) {
        std::string out;
        std::size_t from = 0;
        for (std::size_t at; (at = text.find(position.frame, from)) != text.npos;
             from = at + position.frame.size()) {
            out.append(text, from, at - from).append(position.tag);
        }
        text = out.append(text, from);
    }
    return text;
}

TEST(CellPositions, NamesTheField) {
    EXPECT_EQ(ReplaceCellPositions("posx61201.02.2011\r\nposx6125 x\r\n"),
              "##<p01>01.02.2011\r\n##<p01>5 x\r\n");
    EXPECT_EQ(ReplaceCellPositions("posx5457posx627a"), "##a<p@@@@>##a<h@@>a");
    EXPECT_EQ(ReplaceCellPositions("posx999 a posx-612 posx"), "##|999 a ##|-612 ##|");
    EXPECT_EQ(ReplaceCellPositions("pposxposx642"), "p##|##<p00>");
    EXPECT_EQ(ReplaceCellPositions(""), "");
    EXPECT_EQ(ReplaceCellPositions("pos x612"), "pos x612");
}

TEST(CellPositions, EqualOneReplacementAfterTheOther) {
    std::vector<std::string> pieces = {"p",    "o",   "s", "x",     "pos", "posx",
                                       "\r\n", "##p", "#", "<p01>", "@@",  " "};
    for (const CellPosition& position : kCellPositions) {
        pieces.emplace_back(position.frame);
        pieces.emplace_back(position.frame.substr(0, position.frame.size() - 1));
        pieces.emplace_back(position.frame.substr(4));
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
