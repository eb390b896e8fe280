// The act in the exchange format: one document element per file, an act with one or more sections 2, and in
// each section one element per line of the act, the authority's amount in the attribute "НалОрг".
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "common/windows1251.h"
#include "samples/act_model.h"
#include "samples/form.h"
#include "samples/model.h"

namespace tav::samples {
namespace {

class XmlText {
 public:
    using Attributes = std::vector<std::pair<TextView, Text>>;

    void Open(TextView name, const Attributes& attributes = {}) {
        Start(name, attributes);
        text += u">\r\n";
        open_.emplace_back(name);
    }
    void Close() {
        Text name = std::move(open_.back());
        open_.pop_back();
        Indent();
        text += u"</" + name + u">\r\n";
    }
    void Empty(TextView name, const Attributes& attributes) {
        Start(name, attributes);
        text += u"/>\r\n";
    }
    std::size_t depth() const { return open_.size(); }
    TextView at(std::size_t level) const { return open_[level]; }

    Text text;

 private:
    void Indent() { text.append(open_.size(), u' '); }
    void Start(TextView name, const Attributes& attributes) {
        Indent();
        text += u'<';
        text += name;
        for (const auto& [attribute, value] : attributes) {
            text += u' ';
            text += attribute;
            text += u"=\"" + Escaped(value) + u"\"";
        }
    }
    static Text Escaped(const Text& value) {
        Text escaped = ReplaceAll(value, u"&", u"&amp;");
        escaped = ReplaceAll(escaped, u"<", u"&lt;");
        return ReplaceAll(escaped, u"\"", u"&quot;");
    }

    std::vector<Text> open_;
};

std::vector<TextView> Steps(TextView path) {
    std::vector<TextView> steps;
    while (true) {
        const std::size_t slash = path.find(u'/');
        steps.push_back(path.substr(0, slash));
        if (slash == TextView::npos) return steps;
        path.remove_prefix(slash + 1);
    }
}

// A line of the section: elements that the line before has in common with it stay open.
void AddLine(XmlText& xml, std::size_t section_depth, TextView path, const Text& amount) {
    const std::vector<TextView> steps = Steps(path);
    std::size_t common = 0;
    while (common + 1 < steps.size() && section_depth + common < xml.depth() &&
           xml.at(section_depth + common) == steps[common])
        ++common;
    while (xml.depth() > section_depth + common) xml.Close();
    for (; common + 1 < steps.size(); ++common) xml.Open(steps[common]);
    xml.Empty(steps.back(), {{u"НалОрг", amount}});
}

void AddSection(XmlText& xml, const ActOptions& options, const Tax& tax, const ActAmounts& amounts) {
    xml.Open(u"Раздел2", {{u"КПП", options.taxpayer.kpp},
                          {u"КБК", tax.kbk},
                          {u"ВидНал", tax.name},
                          {u"ОКАТО", options.okato}});
    const std::size_t depth = xml.depth();
    for (std::size_t i = 0; i < kActLines; ++i) {
        const bool left_out = options.sparse && amounts.lines[i] == 0 && i + 1 < kActLines;
        if (!left_out) AddLine(xml, depth, kActLineTable[i].path, PlainAmountText(amounts.lines[i]));
    }
    while (xml.depth() >= depth) xml.Close();
}

Fields ExpectedHead(const ActOptions& options) {
    const Text begin = DateText(options.period.begin);
    return {{"h01", options.taxpayer.inn},
            {"h02", options.taxpayer.kpp},
            {"h03", options.taxpayer.name},
            {"h04", options.authority},
            {"h07", options.tax.kbk},
            {"h08", options.tax.name},
            {"h10", options.okato},
            {"h12", DateText(options.drawn_up)},
            {"h13", begin},
            {"perb", begin},
            {"pere", DateText(options.period.end)}};
}

// Of each line the first amount in the file, in whichever section it is.
Fields ExpectedAmounts(const std::vector<ActAmounts>& sections, bool sparse) {
    Fields fields;
    for (std::size_t i = 0; i < kActLines; ++i) {
        const bool always = !sparse || i + 1 == kActLines;
        const auto first = std::find_if(sections.begin(), sections.end(), [&](const ActAmounts& section) {
            return always || section.lines[i] != 0;
        });
        if (first != sections.end())
            fields.emplace_back(ActField(kActLineTable[i].code), PlainAmountText(first->lines[i]));
    }
    return fields;
}

}  // namespace

Document MakeActXml(const ActOptions& options) {
    CheckPeriod(options.period);
    CheckCount(options.parts, "parts");
    if (options.parts == 0) throw std::invalid_argument("an act needs a section 2");
    XmlText xml;
    xml.text = options.utf8 ? u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
                            : u"<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n";
    xml.Open(u"Файл", {{u"ВерсФорм", u"5.01"}});
    xml.Open(u"Документ", {{u"ДатаДок", DateText(options.drawn_up)}});
    xml.Open(u"АктСвер", {{u"КодНО", options.authority},
                          {u"ДатаСост", DateText(options.drawn_up)},
                          {u"ДатаНачПер", DateText(options.period.begin)},
                          {u"ДатаКонПер", DateText(options.period.end)}});
    xml.Open(u"СвНП");
    xml.Empty(u"НПЮЛ", {{u"НаимОрг", options.taxpayer.name}, {u"ИННЮЛ", options.taxpayer.inn}});
    xml.Close();
    xml.Open(u"СодАкт");
    std::vector<ActAmounts> sections;
    for (int i = 0; i < options.parts; ++i) {
        sections.push_back(MakeActAmounts(options.seed + static_cast<std::uint64_t>(i), options.all_zero));
        AddSection(xml, options, TaxOfPart(options.tax, i), sections.back());
    }
    while (xml.depth() > 0) xml.Close();

    Part part{u"акт", ExpectedHead(options), {ExpectedAmounts(sections, options.sparse)}, sections[0].sums};
    return {options.name, options.utf8 ? ToUtf8(xml.text) : ToWindows1251(xml.text), {std::move(part)}};
}

}  // namespace tav::samples
