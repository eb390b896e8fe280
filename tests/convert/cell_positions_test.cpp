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
    EXPECT_EQ(ReplaceCellPositions("pposx61201.02.2011 posx627\r\nposx999"),
              "p##<p01>01.02.2011 ##a<h@@>\r\n##|999");
    std::mt19937 random(612);
    for (int round = 0; round < 10'000; ++round) {
        std::string text;
        for (std::size_t n = random() % 30; n > 0; --n) text += pieces[random() % pieces.size()];
        ASSERT_EQ(ReplaceCellPositions(text), OneAfterTheOther(text)) << text;
    }
}

}  // namespace
}  // namespace tav
