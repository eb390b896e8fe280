#include "reports/cells.h"

#include <array>
#include <cstdint>
#include <vector>

#include "common/failure.h"
#include "common/regional.h"

namespace tav {
namespace {

// What lives on between calls.
struct StickyState {
    TextView alignment;
    std::int16_t bold = 0;
    std::int16_t top_border = 0;
};

StickyState& Sticky() {
    static StickyState state;
    return state;
}

// One element of the result: its content and its attributes, a piece of the attribute text of the call.
struct Element {
    TextView content;
    std::size_t attributes_begin = 0;
    std::size_t attributes_end = 0;
    bool bold = false;
};

std::int16_t SmallInteger(TextView text) {
    const auto number = ParseInteger(text);
    if (!number) throw Failure(RunTimeError::TypeMismatch, text);
    if (*number < INT16_MIN || *number > INT16_MAX) throw Failure(RunTimeError::Overflow, text);
    return static_cast<std::int16_t>(*number);
}

constexpr TextView kStyle = u" style=\"";

// What a code puts before and behind its value.
struct AttributeCode {
    TextView code;
    TextView before;
    TextView behind;
};
constexpr std::array<AttributeCode, 5> kAttributeCodes = {{
    {u"#r", u" rowspan=", u""},
    {u"#c", u" colspan=", u""},
    {u"#w", u" width=", u""},
    {u"#h", u" height=", u""},
    {u"#l", u" style=\"border-left-width:", u"px;\""},
}};

void SetAlignment(TextView letter) {
    if (letter == u"r") Sticky().alignment = u" align=right";
    if (letter == u"l") Sticky().alignment = u" align=left";
    if (letter == u"c") Sticky().alignment = u" align=center";
}

// Whether the item is a code; its effect is done then.
bool TakeCode(TextView item, Text& attributes) {
    if (!item.starts_with(u'#')) return false;
    const TextView code = item.substr(0, 2);
    const TextView value = item.substr(code.size());
    for (const AttributeCode& known : kAttributeCodes) {
        if (code == known.code) {
            attributes.append(known.before).append(value).append(known.behind);
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
    const Text rule = Text(u"border-top-width:").append(Digits(Sticky().top_border)).append(u"px; ");
    if (attributes.find(u"style", begin) == attributes.npos) {
        attributes.append(kStyle).append(rule).append(u"\"");
        return;
    }
    const TextView opening = kStyle.substr(1);
    const Text own = ReplaceAll(TextView(attributes).substr(begin), opening, Text(opening).append(rule));
    attributes.replace(begin, attributes.npos, own);
}

}  // namespace

Text GetHS(TextView tag, std::span<const TextView> items) {
    // The walk collects the elements in reverse, and all their attributes in one text.
    std::vector<Element> elements;
    elements.reserve(items.size());
    Text attributes;
    std::size_t begin = 0;
    std::size_t length = 0;
    for (std::size_t i = items.size(); i-- > 0;) {
        if (TakeCode(items[i], attributes)) continue;
        if (tag == u"td") attributes += Sticky().alignment;
        AddTopBorder(attributes, begin);
        elements.push_back({items[i], begin, attributes.size(), Sticky().bold != 0});
        begin = attributes.size();
        length += items[i].size();
    }
    Text result;
    constexpr std::size_t kFraming = 24;  // "<td><b></b></td>" and the line break, or more for longer tags
    result.reserve(length + attributes.size() + elements.size() * kFraming);
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        const TextView own(attributes.data() + element->attributes_begin,
                           element->attributes_end - element->attributes_begin);
        const bool bold = element->bold && !element->content.empty();
        result.append(u"<").append(tag).append(own).append(u">");
        if (bold) result.append(u"<b>");
        result.append(element->content.empty() ? TextView(u"&nbsp;") : element->content);
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

}  // namespace tav
