// The act as a printed form. Its header is made of lines at one position, counted by the reader; a few
// of them go on in a second line that has no position of its own, and there the reader counts characters
// from the end: the dates end in " г.", and eight characters are between the two dates of the period.
#include <algorithm>
#include <utility>

#include "samples/act_model.h"
#include "samples/form.h"
#include "samples/model.h"

namespace tav::samples {
namespace {

constexpr int kHeaderX = 627;
constexpr int kNumberX = 702;
constexpr int kNameX = 1602;
constexpr int kValueX = 5457;
constexpr int kPayerX = 8157;
constexpr int kHeaderLine = 270;
constexpr int kRowHeight = 220;

struct Block {
    const char16_t* title;
    int first_code;
};
constexpr Block kBlocks[] = {{u"1. Сальдо расчетов на начало сверяемого периода", 11},
                             {u"2. Сверяемый период", 211},
                             {u"3. Сальдо расчетов на конец сверяемого периода", 31},
                             {u"4. Денежные средства, списанные, но не перечисленные", 41}};

// "1.1.1.1"
Text Numbered(int code) {
    Text text;
    for (char16_t digit : Digits(code)) {
        text += digit;
        text += u'.';
    }
    return text;
}

// What the line is about: the elements of its path, without the block.
Text Meaning(const ActLine& line) {
    const Text path = line.path;
    const std::size_t slash = path.find(u'/');
    return ReplaceAll(slash == Text::npos ? path : path.substr(slash + 1), u"/", u", ");
}

// The lines as they are printed: 3142 after 32.
std::array<std::size_t, kActLines> PrintedOrder() {
    std::array<std::size_t, kActLines> order{};
    for (std::size_t i = 0; i < kActLines; ++i) order[i] = i;
    for (std::size_t i = 0; i + 1 < kActLines; ++i) {
        if (kActLineTable[i].code == 3142) {
            std::swap(order[i], order[i + 1]);
            break;
        }
    }
    return order;
}

class ActPrinter {
 public:
    ActPrinter(Form& form, const ActOptions& options, const Tax& tax)
        : form_(form), options_(options), tax_(tax) {}

    void Header() {
        const Text drawn_up = DateText(options_.drawn_up) + u" г.";
        const Text period = u"за период с " + DateText(options_.period.begin) + u" г.  по " +
                            DateText(options_.period.end) + u" г.";
        const Taxpayer& payer = options_.taxpayer;
        const std::vector<std::vector<Text>> lines = {
            {options_.authority},
            {u"Межрайонная инспекция № 99"},
            {payer.name + u" " + payer.inn + u"/ " + payer.kpp},
            {u"(наименование организации, ИНН/КПП)"},
            {kActNumber},
            {u"совместной сверки расчетов по налогам, сборам, пеням и штрафам"},
            {u"Акт составлен по состоянию на дату", u"составления акта: " + drawn_up},
            {u"Налоговый орган в лице должностного лица"},
            {u"______________________________"},
            {u"и налогоплательщик в лице представителя"},
            {u"______________________________"},
            {u"с одной и с другой стороны,"},
            {u"произвели сверку расчетов по налогу", period},
            {u"Наименование налога: " + tax_.name, u"КБК: " + tax_.kbk, u"Код ОКАТО: " + options_.okato},
        };
        for (const std::vector<Text>& frame : lines) {
            const int height = kHeaderLine * static_cast<int>(frame.size());
            form_.Frame({kHeaderX, form_.y(), 10600, height}, {.half_points = 18}, frame);
            form_.Advance(height);
        }
        form_.Advance(150);
    }

    // Lines without an amount are now printed as 0.00, now left empty.
    void Rows(const ActAmounts& amounts, Fields& expected) {
        for (std::size_t at : PrintedOrder()) {
            const ActLine& line = kActLineTable[at];
            for (const Block& block : kBlocks)
                if (block.first_code == line.code) BlockTitle(block);
            form_.Need(kRowHeight);
            const long long kopecks = amounts.lines[at];
            const Text value = kopecks == 0 && at % 3 != 0 ? Text() : AmountText(kopecks);
            const Look look{.border = true};
            const Look right{.border = true, .align = 'r'};
            form_.Frame({kNumberX, form_.y(), kNameX - kNumberX, kRowHeight}, look, Numbered(line.code));
            form_.Frame({kNameX, form_.y(), kValueX - kNameX, kRowHeight}, look, Meaning(line));
            form_.Frame({kValueX, form_.y(), kPayerX - kValueX, kRowHeight}, right, value);
            form_.Frame({kPayerX, form_.y(), kPayerX - kValueX, kRowHeight}, right, value);
            form_.Advance(kRowHeight);
            expected.emplace_back(ActField(line.code), value.empty() ? u"0.00" : Plain(value));
        }
    }

    // The footnote tells a reader that this act is over and another one may begin.
    void Footnote() {
        form_.Need(2 * kHeaderLine);
        form_.Advance(kHeaderLine);
        form_.Frame({kHeaderX, form_.y(), 10600, kHeaderLine}, {}, u"* Суммы указаны в рублях и копейках.");
        form_.Advance(kHeaderLine);
    }

    Fields ExpectedHead() const {
        const Taxpayer& payer = options_.taxpayer;
        Fields head{{"h04", options_.authority},
                    {"h03", payer.name},
                    {"h01", payer.inn},
                    {"h02", payer.kpp},
                    {"h05", kActNumber},
                    {"h12", DateText(options_.drawn_up)},
                    {"h13", DateText(options_.period.begin)},
                    {"perb", DateText(options_.period.begin)},
                    {"pere", DateText(options_.period.end)},
                    {"h08", tax_.name},
                    {"h07", tax_.kbk},
                    {"h10", options_.okato}};
        for (auto& [name, text] : head) text = Plain(text);
        return head;
    }

 private:
    static constexpr const char16_t* kActNumber = u"АКТ № 15";

    void BlockTitle(const Block& block) {
        form_.Need(2 * kRowHeight);
        form_.Frame({kNumberX, form_.y(), 2 * kPayerX - kValueX - kNumberX, kRowHeight},
                    {.border = true, .bold = true, .half_points = 16}, block.title);
        form_.Advance(kRowHeight);
    }

    Form& form_;
    const ActOptions& options_;
    const Tax& tax_;
};

}  // namespace

Document MakeActRtf(const ActOptions& options) {
    CheckPeriod(options.period);
    DayNumber(options.drawn_up);
    CheckCount(options.parts, "parts");
    Document document{options.name, {}, {}};
    Form form(u"Акт совместной сверки расчетов", kPortrait, options.letters, options.cut);
    for (int i = 0; i < options.parts; ++i) {
        if (i > 0) form.NewSheet();
        const Tax& tax = TaxOfPart(options.tax, i);
        ActPrinter printer(form, options, tax);
        const ActAmounts amounts =
            MakeActAmounts(options.seed + static_cast<std::uint64_t>(i), options.all_zero);
        Part part{u"акт", printer.ExpectedHead(), {{}}, amounts.sums};
        printer.Header();
        printer.Rows(amounts, part.rows[0]);
        printer.Footnote();
        document.parts.push_back(std::move(part));
    }
    document.bytes = std::move(form).Finish();
    return document;
}

}  // namespace tav::samples
