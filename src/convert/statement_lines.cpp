#include "convert/statement_lines.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "common/failure.h"
#include "common/get_next.h"
#include "common/windows1251.h"

namespace tav {
namespace {

constexpr std::string_view kTag = "##";
constexpr std::string_view kFieldIndent = "\t\t";
constexpr std::string_view kCellIndent = "\t\t\t";
constexpr std::string_view kHeadToBody = "\t</head>\r\n\t<body>\r\n";
constexpr std::string_view kBodyEnd = "\t</body>\r\n";
constexpr std::string_view kPartEnd = "\t</body>\r\n\t</part>\r\n";
constexpr std::string_view kRowStart = "\t\t<row>\r\n";
constexpr std::string_view kRowEnd = "\t\t</row>\r\n";

constexpr int kStatementFields = 13;
// Behind the header stand the titles of the first four columns.
constexpr int kColumnTitles = 4;

constexpr int kActDateLine = 7;
constexpr int kActPeriodLine = 12;
constexpr int kActHeaderLines = 13;

// The amounts of an act in the order of the form's rows.
constexpr std::string_view kActCodes =
    "11|1111|1112|1113|1114|112|1121|1122|1123|1124|113|1131|1132|1133|1134|114|1141|1142|115|121|122|123|"
    "124|"
    "125|211|212|213|214|215|221|222|223|224|225|231|232|233|24|2411|2412|2413|2414|242|2421|2422|2423|2424|"
    "243|2431|2432|2433|2434|244|2441|2442|2443|251|252|253|254|255|26|27|281|282|283|284|291|292|293|294|"
    "295|"
    "31|3111|3112|3113|3114|312|3121|3122|3123|3124|313|3131|3132|3133|3134|314|3141|32|3142|321|322|323|324|"
    "325|41|42|43|44|45";
constexpr int kActRows = 101;
constexpr int kActLines = kActHeaderLines + kActRows;

const std::array<std::string, kActRows> kActElements = [] {
    std::array<std::string, kActRows> codes;
    std::string_view rest = kActCodes;
    for (std::string& code : codes) {
        code = GetNext(rest, "|");
        code.insert(0, 4 - code.size(), '0');
    }
    return codes;
}();

// Texts of the forms that the reader looks for.
const std::string kStatementTitle = ToWindows1251(u"##a<h@@>Выписка операций по расчету с бюджетом");
const std::string kCarriedOut = ToWindows1251(u"произвели");
const std::string kClosingLetter = ToWindows1251(u"Д");
const std::string kStatementStart = ToWindows1251(u"\t<part type=\"выписка\">\r\n\t<head>\r\n");
const std::string kActStart = ToWindows1251(u"\t<part type=\"акт\">\r\n\t<head>\r\n");

// Characters count from 1; what lies after the line's end is empty.
std::string_view Mid(std::string_view line, std::size_t start, std::size_t count = std::string_view::npos) {
    return line.size() < start ? std::string_view{} : line.substr(start - 1, count);
}

std::string_view Last(std::string_view line, std::size_t count) {
    return line.substr(line.size() - std::min(count, line.size()));
}

std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == text.npos ? std::string_view{}
                              : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string Replace(std::string_view line, std::string_view what, std::string_view with) {
    std::string out;
    for (std::size_t at; (at = line.find(what)) != line.npos;) {
        out.append(line.substr(0, at)).append(with);
        line.remove_prefix(at + what.size());
    }
    return out.append(line);
}

bool IsNumber(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view WithoutLeadingZeros(std::string_view number) {
    return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

// The line under the column titles numbers the columns: "5" or "05" in column 05, but not the amount "5.00".
bool IsOwnNumber(std::string_view column, std::string_view value) {
    if (!IsNumber(column)) throw Failure(RunTimeError::TypeMismatch);
    const std::string_view number = TrimBlanks(value);
    return IsNumber(number) && WithoutLeadingZeros(number) == WithoutLeadingZeros(column);
}

}  // namespace

StatementLines::LineKind StatementLines::KindOf(std::string_view line) {
    if (!line.starts_with(kTag)) return LineKind::Trailer;
    if (line.size() == kTag.size()) return LineKind::Other;
    switch (line[kTag.size()]) {
        case 'p':
            return LineKind::PageMark;
        case '|':
            return LineKind::UnknownPosition;
        case 'v':
            return LineKind::StatementHeader;
        case 'a':
            return LineKind::ActLine;
        case '<':
            return LineKind::StatementCell;
        default:
            return LineKind::Other;
    }
}

void StatementLines::Add(std::string_view line) {
    switch (KindOf(line)) {
        case LineKind::Trailer:
            return AddTrailer(line);
        case LineKind::StatementHeader:
            return AddStatementHeader(line);
        case LineKind::ActLine:
            return AddActLine(line);
        case LineKind::StatementCell:
            return AddStatementCell(line);
        case LineKind::PageMark:
        case LineKind::UnknownPosition:
        case LineKind::Other:
            return;
    }
}

void StatementLines::AddTrailer(std::string_view line) {
    switch (act_counter_) {
        case kActDateLine:
            return AddActDate(line);
        case kActPeriodLine:
            return AddActPeriod(line);
        case kActHeaderLines:
            return AddActTaxOrTerritory(line);
        default:
            return;
    }
}

// "... на 01.04.2011 г": the line's last date.
void StatementLines::AddActDate(std::string_view line) {
    if (line.size() < 14) return;
    WriteHeadField("h12", Mid(line, line.size() - 12, 10));
}

// "... с 01.01.2011 по 31.03.2011 г": the first and the last day of the period.
void StatementLines::AddActPeriod(std::string_view line) {
    if (line.size() < 32) return;
    const std::string_view first_day = Mid(line, line.size() - 30, 10);
    WriteHeadField("h13", first_day);
    WriteHeadField("perb", first_day);
    WriteHeadField("pere", Mid(line, line.size() - 12, 10));
}

void StatementLines::AddActTaxOrTerritory(std::string_view line) {
    if (slash_position_ != 0) {
        if (line.size() > 20) WriteHeadField("h07", Last(line, 20));
        slash_position_ = 0;
        return;
    }
    if (line.size() > 11) {
        WriteHeadField("h10", Last(line, 11));
        Write(kHeadToBody);
    }
    slash_position_ = 1;
}

// "##v<h@@>value". The counter gives the field its number; header lines inside the body count on from h05.
void StatementLines::AddStatementHeader(std::string_view line) {
    pending_opening_ = {};
    if (in_body_) Write(kBodyEnd);
    if (header_counter_ == 0) Write(kStatementStart);
    ++header_counter_;
    const std::string number = {static_cast<char>('0' + header_counter_ / 10),
                                static_cast<char>('0' + header_counter_ % 10)};
    const std::string field = Replace(line, "@@", number);
    WriteHeadField(Mid(field, 5, 3), Mid(field, 9));
    if (header_counter_ == kStatementFields) {
        header_counter_ = kColumnTitles;
        Write(kHeadToBody);
        in_body_ = true;
    }
}

void StatementLines::AddActLine(std::string_view line) {
    pending_opening_ = {};
    if (Mid(line, 5, 1) == "h") {
        AddActHeader(line);
    } else {
        AddActRow(line);
    }
}

// "##a<p@@@@>amount".
void StatementLines::AddActRow(std::string_view line) {
    if (act_counter_ >= kActLines) return;
    if (act_counter_ < kActHeaderLines) throw Failure(RunTimeError::SubscriptOutOfRange);
    const auto row = static_cast<std::size_t>(act_counter_ - kActHeaderLines);
    std::string amount = Replace(line, "@@@@", kActElements[row]);
    if (amount.ends_with('>')) amount += "0.00";
    WriteHeadField(Mid(amount, 5, 5), Mid(amount, 11));
    if (++act_counter_ == kActLines) Write(kPartEnd);
}

// "##a<h@@>text". The statement's title stands at the same position of its form.
void StatementLines::AddActHeader(std::string_view line) {
    if (line != kStatementTitle) {
        AddActHeaderField(line);
        if (act_counter_ < kActHeaderLines) ++act_counter_;
    }
    if (Mid(line, 9, 1) == "*") act_counter_ = 0;
}

void StatementLines::AddActHeaderField(std::string_view line) {
    switch (act_counter_) {
        case 0:
            Write(kActStart);
            return WriteHeadField("h04", Mid(line, 9));
        case 2:
            return AddTaxpayer(line);
        case 4:
            return WriteHeadField("h05", Mid(line, 9));
        case 12:
            if (Mid(line, 9, 9) == kCarriedOut) {
                --act_counter_;
            } else if (line.size() >= 31) {
                WriteHeadField("h08", Mid(line, 30));
            }
            return;
        default:
            return;
    }
}

// "##a<h@@>name 7701000000/ 770101001": the number before the slash has 10 characters, or 12 when they
// all are digits. The character before the 10 is a blank; before the 12 the name may end without one.
void StatementLines::AddTaxpayer(std::string_view line) {
    const std::size_t found = line.find("/ ");
    const std::size_t position = found == line.npos ? 0 : found + 1;
    if (position > static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) {
        throw Failure(RunTimeError::Overflow);
    }
    slash_position_ = static_cast<std::int16_t>(position);
    if (position == 0) return;
    if (position < 20) throw Failure(RunTimeError::InvalidProcedureCall);
    const std::size_t digits = position > 20 && IsNumber(Mid(line, position - 12, 12)) ? 12 : 10;
    const std::size_t around = digits + (digits == 12 ? 9 : 10);
    const std::size_t name = std::max(position, around) - around;
    WriteHeadField("h03", TrimBlanks(Mid(line, 9, name)));
    WriteHeadField("h01", Mid(line, position - digits, digits));
    WriteHeadField("h02", Mid(line, position + 2));
}

// "##<p01>value".
void StatementLines::AddStatementCell(std::string_view line) {
    if (header_counter_ != 0) return ConsumeColumnTitle();
    if (in_body_) AddCellOfBody(Mid(line, 5, 2), Mid(line, 8));
}

// The third title opens the first row.
void StatementLines::ConsumeColumnTitle() {
    if (--header_counter_ == 1) Write(kRowStart);
}

// A row is closed when the next cell arrives, for its last cell may be followed by a second line of column
// 04.
void StatementLines::AddCellOfBody(std::string_view column, std::string_view value) {
    const bool belongs_to_row_before = !pending_closing_.empty() && column == "04";
    if (!pending_closing_.empty()) {
        if (belongs_to_row_before) WriteCell(column, value);
        Write(pending_closing_);
        pending_closing_ = {};
        pending_opening_ = kRowStart;
    }
    if (column == "00") {
        if (value.starts_with(kClosingLetter)) {
            in_body_ = false;
            Write(kPartEnd);
        }
        return;
    }
    if (!belongs_to_row_before) {
        Write(pending_opening_);
        pending_opening_ = {};
        if (!IsOwnNumber(column, value)) WriteCell(column, value);
    }
    if (column == "14") pending_closing_ = kRowEnd;
}

void StatementLines::WriteElement(std::string_view indent, std::string_view name, std::string_view value) {
    output_.append(indent).append("<").append(name).append(">").append(value);
    output_.append("</").append(name).append(">\r\n");
}

void StatementLines::WriteHeadField(std::string_view name, std::string_view value) {
    WriteElement(kFieldIndent, name, value);
}

void StatementLines::WriteCell(std::string_view column, std::string_view value) {
    const char name[] = {'p', column.empty() ? ' ' : column[0], column.size() < 2 ? ' ' : column[1]};
    WriteElement(kCellIndent, {name, column.size() + 1}, value);
}

}  // namespace tav
