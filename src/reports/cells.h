// The cell mark-up of every report: a compact list of texts and two-character codes becomes HTML elements.
//
// An item whose first two characters are a code is a code, its value the text after them; any other item, an
// empty one too, is the content of one element. The codes that describe a cell follow its content:
//
//     #r5 #c2      rowspan, colspan              #u2 #u0   top border of the cells, in pixels; 0 for none
//     #w15% #h20   width, height                 #b1 #b0   bold on, off
//     #l2          left border in pixels         #ar #al #ac   alignment of the cells: right, left, centre
//
// The list is walked backwards. #u, #b and #a are sticky: they hold from the place where the walk meets them
// on, for all further cells, calls and reports of the process. So a code after the last content of a call
// acts on all its cells, and alignment is never switched off, only replaced.
//
// Contents are HTML already: texts of the database come through HtmlText. A #b or #u whose value is no whole
// number is "Type mismatch".
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "common/text.h"

namespace tav {

// A cell as its codes describe it, for what is not HTML. Texts are pieces of the items.
struct Cell {
    TextView content;
    TextView rows;  // the values of #r, #c and #l; empty where there is none
    TextView columns;
    TextView left_rule;
    std::int16_t top_rule = 0;
    char16_t alignment = u'\0';  // r, l, c
    bool bold = false;
};

// `tag` is "td" or "tr". Braced items are evaluated from left to right, which calls with side effects need.
// `cells`, if there is one, gets the cells in their order.
Text GetHS(TextView tag, std::span<const TextView> items, std::vector<Cell>* cells = nullptr);
Text GetHS(TextView tag, std::initializer_list<TextView> items);

// A text as HTML shows it: `&`, `<`, `>` and `"` as entities, and a leading "#" too, so that no text of a
// document reads as a code.
Text HtmlText(TextView text);
// The text that a content shows: without its tags, its entities as the characters they stand for.
Text ShownText(TextView content);

}  // namespace tav
