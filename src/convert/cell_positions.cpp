#include "convert/cell_positions.h"

#include <algorithm>
#include <iterator>

namespace tav {

const CellPosition kCellPositions[27] = {
    {"posx612", "##<p01>"},   {"posx1542", "##<p02>"},    {"posx597", "##<p01>"},    {"posx1557", "##<p02>"},
    {"posx2427", "##<p03>"},  {"posx3417", "##<p04>"},    {"posx4317", "##<p05>"},   {"posx5097", "##<p06>"},
    {"posx6027", "##<p07>"},  {"posx6957", "##<p08>"},    {"posx7902", "##<p09>"},   {"posx8682", "##<p10>"},
    {"posx9927", "##<p11>"},  {"posx11157", "##<p12>"},   {"posx12327", "##<p13>"},  {"posx13707", "##<p14>"},
    {"posx3747", "##v<h@@>"}, {"posx642", "##<p00>"},     {"posx10377", "##v<h@@>"}, {"posx6222", "##v<h@@>"},
    {"posx627", "##a<h@@>"},  {"posx5457", "##a<p@@@@>"}, {"posx4302", "##<p05>"},   {"posx5082", "##<p06>"},
    {"posx9942", "##<p11>"},  {"posx8697", "##<p10>"},    {"posx", "##|"},
};

std::string ReplaceCellPositions(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    const std::string_view frame = std::prev(std::end(kCellPositions))->frame;
    for (std::size_t at; (at = text.find(frame)) != text.npos;) {
        const CellPosition& position = *std::find_if(
            std::begin(kCellPositions), std::end(kCellPositions),
            [rest = text.substr(at)](const CellPosition& p) { return rest.starts_with(p.frame); });
        out.append(text.substr(0, at)).append(position.tag);
        text.remove_prefix(at + position.frame.size());
    }
    return out.append(text);
}

}  // namespace tav
