// A printed form as RTF: sheets of paper with frames at
// absolute positions, each frame one or more paragraphs.
//
// A frame is a group of its own, {\pard...\pvpg\phpg\posx..\posy..\absw..\absh.. {run}\par}: the control word
// of the horizontal position follows another control word directly, and further control words follow it, so
// that the position never runs into the text. Sizes are in twips (1/1440 inch).
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "samples/generator.h"

namespace tav::samples {

// Texts as the catalogue will hold them: U+2011 becomes "-".
Text Plain(TextView text);
// "‑1 234.50" from kopecks: U+2011 before negative amounts, U+00A0 between thousands.
Text AmountText(long long kopecks);
// "1234.50", "-0.05": nothing but digits, point and "-".
Text PlainAmountText(long long kopecks);
// "dd.mm.yyyy"
Text DateText(const CivilDate& date);

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct Look {
    bool border = false;
    bool bold = false;
    char align = 'l';      // l, c, r
    int half_points = 12;  // size of the letters
};

struct Sheet {
    int width = 0;
    int height = 0;
};
inline constexpr Sheet kPortrait{11906, 16838};
inline constexpr Sheet kLandscape{16838, 11906};

class Form {
 public:
    static constexpr int kMargin = 567;

    Form(TextView title, const Sheet& sheet, Letters letters, Cut cut);

    void Frame(const Box& box, const Look& look, TextView text);
    // Several paragraphs in one frame: only the first one shows the frame's position.
    void Frame(const Box& box, const Look& look, const std::vector<Text>& lines);

    // Where the next band of frames goes, from the top of the sheet.
    int y() const { return y_; }
    void Advance(int height) { y_ += height; }
    // Begins a new sheet when a band of this height does not fit on this one, and tells whether it did.
    bool Need(int height);
    // A form that is never cut has one endless sheet: false, and nothing changes.
    bool NewSheet();
    // The whole document; the form is used up.
    std::string Finish() &&;

 private:
    void Open(const Box& box, const Look& look);
    void Run(const Look& look, TextView text);
    void Escape(TextView text);

    Sheet sheet_;
    Cut cut_;
    int y_ = kMargin;
    std::array<std::string, 256> letters_;  // how each character of Windows-1251 is written
    std::string rtf_;
};

}  // namespace tav::samples
