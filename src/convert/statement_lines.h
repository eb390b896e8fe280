// The second pass over a printed form: tagged lines of plain text to one catalogue part after the other.
//
// In: lines of Windows-1251 text without their line ends, in the document's order. A frame's line begins with
// a tag (cell_positions.h), the end of a page is "##p"; other lines are what stands outside of frames.
// Out: the `part` elements of the catalogue, lines indented with TABs and ended by CR LF. Values are copied
// unchanged.
//
// The elements are opened and closed by the lines that carry them: a document that lacks such a line yields a
// fragment that is not well-formed, on purpose.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tav {

class StatementLines {
 public:
    // What is written follows `before`; about so many bytes are expected.
    explicit StatementLines(std::string before = {}, std::size_t expected = 0) : output_(std::move(before)) {
        output_.reserve(expected);
    }

    enum class LineKind {
        Trailer,
        PageMark,
        UnknownPosition,
        StatementHeader,
        ActLine,
        StatementCell,
        Other
    };
    static LineKind KindOf(std::string_view line);

    // Takes the next line. A line that does not fit is a Failure: "Subscript out of range" for an act row
    // before the act's header is complete, "Overflow" for a taxpayer line with its slash after position
    // 32767, "Invalid procedure call or argument" for one with its slash before position 20, "Type mismatch"
    // for a cell whose tag has no number.
    void Add(std::string_view line);

    // What has been written; the last call.
    std::string TakeOutput() { return std::move(output_); }

 private:
    // Outside of frames: the dates and codes of an act, told apart by the act's line counter.
    void AddTrailer(std::string_view line);
    void AddActDate(std::string_view line);
    void AddActPeriod(std::string_view line);
    void AddActTaxOrTerritory(std::string_view line);

    void AddStatementHeader(std::string_view line);

    void AddActLine(std::string_view line);
    void AddActRow(std::string_view line);
    void AddActHeader(std::string_view line);
    void AddActHeaderField(std::string_view line);
    void AddTaxpayer(std::string_view line);

    void AddStatementCell(std::string_view line);
    void ConsumeColumnTitle();
    void AddCellOfBody(std::string_view column, std::string_view value);

    void Write(std::string_view lines) { output_ += lines; }
    void WriteElement(std::string_view indent, std::string_view name, std::string_view value);
    void WriteHeadField(std::string_view name, std::string_view value);
    void WriteCell(std::string_view column, std::string_view value);

    std::string output_;
    std::int16_t header_counter_ = 0;
    std::int16_t act_counter_ = 0;
    bool in_body_ = false;
    std::string_view pending_opening_;
    std::string_view pending_closing_;
    // Where the slash of the act's taxpayer line stands;
    // later 0 or 1, which of the trailer fields comes next.
    std::int16_t slash_position_ = 0;
};

}  // namespace tav
