#include "reports/cells.h"

#include <algorithm>
#include <array>
#include <utility>

#include "common/concat.h"
#include "common/failure.h"
#include "common/regional.h"

namespace tav {
namespace {

// What lives on between calls.
struct StickyState {
    TextView alignment;
    char16_t alignment_letter = u'\0';
    std::int16_t bold = 0;
    std::int16_t top_border = 0;
};

StickyState& Sticky() {
    static StickyState state;
    return state;
}

// One element of the result: its cell and its attributes, a piece of the attribute text of the call.
struct Element {
    Cell cell;
    std::size_t attributes_begin = 0;
    std::size_t attributes_end = 0;
};

std::int16_t SmallInteger(TextView text) {
    const auto number = ParseInteger(text);
    if (!number) throw Failure(RunTimeError::TypeMismatch, text);
    if (*number < INT16_MIN || *number > INT16_MAX) throw Failure(RunTimeError::Overflow, text);
    return static_cast<std::int16_t>(*number);
}

constexpr TextView kStyle = u" style=\"";

// What a code puts before and after its value.
struct AttributeCode {
    TextView code;
    TextView before;
    TextView after;
    TextView Cell::*value = nullptr;
};
constexpr std::array<AttributeCode, 5> kAttributeCodes = {{
    {u"#r", u" rowspan=", u"", &Cell::rows},
    {u"#c", u" colspan=", u"", &Cell::columns},
    {u"#w", u" width=", u""},
    {u"#h", u" height=", u""},
    {u"#l", u" style=\"border-left-width:", u"px;\"", &Cell::left_rule},
}};

void SetAlignment(TextView letter) {
    for (const auto& [code, attribute] : {std::pair<TextView, TextView>{u"r", u" align=right"},
                                          {u"l", u" align=left"},
                                          {u"c", u" align=center"}}) {
        if (letter != code) continue;
        Sticky().alignment = attribute;
        Sticky().alignment_letter = letter.front();
    }
}

// Whether the item is a code; its effect is done then.
bool TakeCode(TextView item, Text& attributes, Cell& cell) {
    if (!item.starts_with(u'#')) return false;
    const TextView code = item.substr(0, 2);
    const TextView value = item.substr(code.size());
    for (const AttributeCode& known : kAttributeCodes) {
        if (code == known.code) {
            attributes.append(known.before).append(value).append(known.after);
            if (known.value != nullptr) cell.*known.value = value;
            return true;
        }
    }
    if (code == u"#u") {
        Sticky().top_border = SmallInteger(value);
    } else if (code == u"#b") {
        Sticky().bold = SmallInteger(value);
    } else if (code == u"#a") {
        SetAlignment(value);
    } else {
        return false;
    }
    return true;
}

// The top rule joins the styles that the element's attributes have already, or is their first style.
void AddTopBorder(Text& attributes, std::size_t begin) {
    if (Sticky().top_border == 0) return;
    const Text rule = Concat(u"border-top-width:", Digits(Sticky().top_border), u"px; ");
    if (attributes.find(u"style", begin) == attributes.npos) {
        attributes.append(kStyle).append(rule).append(u"\"");
        return;
    }
    const TextView opening = kStyle.substr(1);
    const Text own = ReplaceAll(TextView(attributes).substr(begin), opening, Text(opening).append(rule));
    attributes.replace(begin, attributes.npos, own);
}

}  // namespace

Text GetHS(TextView tag, std::span<const TextView> items, std::vector<Cell>* cells) {
    // The walk collects the elements in reverse, and all their attributes in one text.
    std::vector<Element> elements;
    elements.reserve(items.size());
    Text attributes;
    std::size_t begin = 0;
    std::size_t length = 0;
    Cell cell;
    for (std::size_t i = items.size(); i-- > 0;) {
        if (TakeCode(items[i], attributes, cell)) continue;
        if (tag == u"td") attributes += Sticky().alignment;
        AddTopBorder(attributes, begin);
        cell.content = items[i];
        cell.top_rule = Sticky().top_border;
        cell.alignment = Sticky().alignment_letter;
        cell.bold = Sticky().bold != 0;
        elements.push_back({cell, begin, attributes.size()});
        cell = {};
        begin = attributes.size();
        length += items[i].size();
    }
    Text result;
    constexpr std::size_t kFraming = 24;  // "<td><b></b></td>" and the line break, or more for longer tags
    result.reserve(length + attributes.size() + elements.size() * kFraming);
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        const TextView own(attributes.data() + element->attributes_begin,
                           element->attributes_end - element->attributes_begin);
        const TextView content = element->cell.content;
        const bool bold = element->cell.bold && !content.empty();
        if (cells != nullptr) cells->push_back(element->cell);
        result.append(u"<").append(tag).append(own).append(u">");
        if (bold) result.append(u"<b>");
        result.append(content.empty() ? TextView(u"&nbsp;") : content);
        if (bold) result.append(u"</b>");
        result.append(u"</").append(tag).append(u">\r\n");
    }
    return result;
}

Text GetHS(TextView tag, std::initializer_list<TextView> items) {
    return GetHS(tag, std::span(items.begin(), items.size()));
}

Text HtmlText(TextView text) {
    Text html;
    html.reserve(text.size());
    for (const char16_t c : text) {
        switch (c) {
            case u'&':
                html += u"&amp;";
                break;
            case u'<':
                html += u"&lt;";
                break;
            case u'>':
                html += u"&gt;";
                break;
            case u'"':
                html += u"&quot;";
                break;
            case u'#':
                if (html.empty()) {
                    html += u"&#35;";
                    break;
                }
                [[fallthrough]];
            default:
                html += c;
        }
    }
    return html;
}

Text ShownText(TextView content) {
    static constexpr std::pair<TextView, char16_t> kEntities[] = {{u"&nbsp;", u'\u00A0'}, {u"&amp;", u'&'},
                                                                  {u"&lt;", u'<'},        {u"&gt;", u'>'},
                                                                  {u"&quot;", u'"'},      {u"&#35;", u'#'}};
    Text text;
    while (!content.empty()) {
        if (content.front() == u'<') {
            content.remove_prefix(std::min(content.find(u'>'), content.size() - 1) + 1);
            continue;
        }
        const auto entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                         [&](const auto& known) { return content.starts_with(known.first); });
        const bool plain = entity == std::end(kEntities);
        text += plain ? content.front() : entity->second;
        content.remove_prefix(plain ? 1 : entity->first.size());
    }
    return text;
}

}  // namespace tav
