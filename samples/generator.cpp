#include "samples/generator.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "samples/form.h"
#include "samples/ledger.h"
#include "samples/model.h"

namespace tav::samples {
namespace {

constexpr int kColumns = 14;
constexpr int kLetterWidth = 72;  // of a letter of the table, on average
constexpr int kLineHeight = 150;
constexpr int kHeaderHeight = 290;
constexpr int kLabelWidth = 2150;

// Where the columns begin, in twips, and the right edge of the last one.
using Edges = std::array<int, kColumns + 1>;
constexpr Edges kLayout1{612,  1542, 2427, 3417,  4317,  5097,  6027, 6957,
                         7902, 8682, 9927, 11157, 12327, 13707, 15087};
constexpr Edges kLayout2{597,  1557, 2427, 3417,  4302,  5082,  6027, 6957,
                         7902, 8697, 9942, 11157, 12327, 13707, 15087};

// Column titles are a little to the right of their columns, except for the four that begin the table.
constexpr int kTitleShift = 30;
struct Title {
    int column;
    bool at_column;
    const char16_t* text;
};
constexpr Title kTitles[] = {
    {1, true, u"Дата записи"},
    {2, true, u"Срок уплаты"},
    {3, true, u"Операция"},
    {4, true, u"Вид документа"},
    {5, false, u"Отчетный период"},
    {6, false, u"Номер документа"},
    {7, false, u"Дата документа"},
    {8, false, u"Дата приема"},
    {9, false, u"Вид платежа"},
    {10, false, u"Начислено"},
    {11, false, u"Уплачено (уменьшено)"},
    {12, false, u"Отсрочено"},
    {13, false, u"Сальдо по виду платежа"},
    {14, false, u"Сальдо расчетов"},
};

// The header: labels at positions that mean nothing, values where a header line begins. The order is the
// document's own: the end of the period comes before its begin.
struct HeaderCell {
    int line;
    int label_x;
    const char16_t* label;
    int x;
    int width;
};
constexpr int kLeft = 3747;
constexpr int kMiddle = 6222;
constexpr int kRight = 10377;
constexpr HeaderCell kHeader[] = {
    {0, 702, u"ИНН:", kLeft, 2400},
    {0, 8202, u"КПП:", kRight, 4700},
    {1, 702, u"Наименование:", kLeft, 11300},
    {2, 702, u"Налоговый орган:", kLeft, 2400},
    {2, 0, u"", kMiddle, 8800},
    {3, 702, u"Статус плательщика:", kLeft, 4400},
    {3, 8202, u"КБК:", kRight, 4700},
    {4, 702, u"Вид налога:", kLeft, 11300},
    {5, 702, u"Бюджет:", kLeft, 4400},
    {5, 8202, u"ОКАТО:", kRight, 4700},
    {6, 702, u"Валюта:", kLeft, 4400},
    {7, 8202, u"Период по:", kRight, 4700},
    {7, 702, u"Период с:", kLeft, 4400},
};

// How many lines a text takes in a column, words being kept whole.
int LineCount(TextView text, int width) {
    const int fits = std::max(1, (width - 60) / kLetterWidth);
    int lines = 1;
    int used = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(u' '), text.size());
        const int word = static_cast<int>(end);
        if (used > 0 && used + 1 + word > fits) {
            ++lines;
            used = 0;
        }
        used += word + (used > 0 ? 1 : 0);
        lines += (used - 1) / fits;
        used -= (used - 1) / fits * fits;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

class Printer {
 public:
    Printer(Form& form, const StatementOptions& options)
        : form_(form), options_(options), edges_(options.layout == 2 ? kLayout2 : kLayout1) {}

    void Head(const Fields& head) {
        form_.Frame({627, form_.y(), 14400, 400}, {.bold = true, .align = 'c', .half_points = 24},
                    u"Выписка операций по расчету с бюджетом");
        form_.Advance(480);
        const Look look{.half_points = 18};
        for (std::size_t i = 0; i < std::size(kHeader); ++i) {
            const HeaderCell& cell = kHeader[i];
            const int y = form_.y() + cell.line * kHeaderHeight;
            if (cell.label_x > 0)
                form_.Frame({cell.label_x, y, kLabelWidth, kHeaderHeight}, look, cell.label);
            form_.Frame({cell.x, y, cell.width, kHeaderHeight}, look, head[i].second);
        }
        form_.Advance(kHeader[std::size(kHeader) - 1].line * kHeaderHeight + kHeaderHeight + 120);
    }

    void Titles() {
        const int height = 3 * kLineHeight + 60;
        for (const Title& title : kTitles) {
            Box box = CellBox(title.column, height);
            if (!title.at_column) box.x += kTitleShift;
            form_.Frame(box, {.border = true, .bold = true, .align = 'c'}, title.text);
        }
        form_.Advance(height);
    }

    void Numbering() {
        for (int column = 1; column <= kColumns; ++column)
            form_.Frame(CellBox(column, kLineHeight + 40), {.border = true, .align = 'c'}, Digits(column));
        form_.Advance(kLineHeight + 40);
    }

    // A second line of column 4 is a frame of its own below the first one. Returns whether the numbering line
    // was printed again, on top of a new sheet.
    bool Row(const Line& line) {
        std::array<int, kColumns + 1> lines{};
        for (const Cell& cell : line)
            lines[static_cast<std::size_t>(cell.column)] += LineCount(cell.text, Width(cell.column));
        const int height = *std::max_element(lines.begin(), lines.end()) * kLineHeight + 60;
        const bool again = form_.Need(height) && options_.repeat_numbering;
        if (again) Numbering();
        for (const Cell& cell : line) {
            Box box = CellBox(cell.column, height);
            const bool shared = cell.column == 4 && line.back().column == 4;
            if (shared && &cell == &line.back()) {
                box.y += height - kSecondLine;
                box.height = kSecondLine;
            } else if (shared) {
                box.height -= kSecondLine;
            }
            const char align = cell.column >= 10 ? 'r' : cell.column == 3 ? 'l' : 'c';
            form_.Frame(box, {.border = true, .align = align}, cell.text);
        }
        form_.Advance(height);
        return again;
    }

    void Closing() {
        form_.Need(700);
        form_.Advance(250);
        const Look look{.half_points = 18};
        form_.Frame({642, form_.y(), 5000, kHeaderHeight}, look, u"Дата " + DateText(options_.period.end));
        form_.Frame({8202, form_.y(), 6500, kHeaderHeight}, look, u"Исполнитель ____________________");
        form_.Advance(kHeaderHeight);
    }

 private:
    static constexpr int kSecondLine = kLineHeight + 30;

    int Width(int column) const {
        const auto at = static_cast<std::size_t>(column);
        return edges_[at] - edges_[at - 1];
    }
    Box CellBox(int column, int height) const {
        return {edges_[static_cast<std::size_t>(column) - 1], form_.y(), Width(column), height};
    }

    Form& form_;
    const StatementOptions& options_;
    const Edges& edges_;
};

Fields Head(const StatementOptions& options, const Tax& tax) {
    return {{"h01", options.taxpayer.inn},
            {"h02", options.taxpayer.kpp},
            {"h03", options.taxpayer.name},
            {"h04", u"0099"},
            {"h05", u"Межрайонная инспекция № 99"},
            {"h06", options.status},
            {"h07", tax.kbk},
            {"h08", tax.name},
            {"h09", tax.budget},
            {"h10", options.okato},
            {"h11", options.currency},
            {"h12", DateText(options.period.end)},
            {"h13", DateText(options.period.begin)}};
}

Fields Expected(const Line& line) {
    Fields fields;
    fields.reserve(line.size());
    for (const Cell& cell : line) {
        const char digits[] = {'p', static_cast<char>('0' + cell.column / 10),
                               static_cast<char>('0' + cell.column % 10)};
        fields.emplace_back(std::string(digits, sizeof digits), Plain(cell.text));
    }
    return fields;
}

// One statement of the file; what a reader has to find in it.
Part PrintStatement(Form& form, const StatementOptions& options, const Tax& tax) {
    Ledger ledger(options);
    Printer printer(form, options);
    Part part{u"выписка", Head(options, tax), {{}}, {}};
    printer.Head(part.head);
    printer.Titles();
    printer.Numbering();
    for (const Line& line : ledger.Lines()) {
        if (printer.Row(line)) part.rows.emplace_back();
        part.rows.push_back(Expected(line));
    }
    printer.Closing();
    part.sums = ledger.sums();
    for (auto& [name, text] : part.head) text = Plain(text);
    return part;
}

}  // namespace

Document MakeLetter(const Text& name) {
    Form form(u"Письмо", kPortrait, Letters::LowerHex, Cut::None);
    const std::vector<Text> lines{u"Уважаемый налогоплательщик!",
                                  u"Сообщаем об изменении времени приёма в инспекции.",
                                  u"С уважением, Межрайонная инспекция № 99"};
    // No field of a document stands at this position.
    form.Frame({kHeader[0].label_x, form.y(), 9000, 3 * kHeaderHeight}, {.half_points = 24}, lines);
    return {name, std::move(form).Finish(), {}};
}

Document MakeStatement(const StatementOptions& options) {
    CheckPeriod(options.period);
    CheckCount(options.rows, "rows");
    CheckCount(options.parts, "parts");
    if (options.layout != 1 && options.layout != 2)
        throw std::invalid_argument("the layout is neither 1 nor 2");
    Document document{options.name, {}, {}};
    Form form(u"Выписка операций по расчету с бюджетом", kLandscape, options.letters, options.cut);
    for (int i = 0; i < options.parts; ++i) {
        if (i > 0) form.NewSheet();
        StatementOptions own = options;
        own.seed += static_cast<std::uint64_t>(i);
        document.parts.push_back(PrintStatement(form, own, TaxOfPart(options.tax, i)));
    }
    document.bytes = std::move(form).Finish();
    return document;
}

}  // namespace tav::samples
