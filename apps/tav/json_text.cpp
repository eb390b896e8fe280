#include "json_text.h"

namespace tav::cli {
namespace {

// Parts by name, or without names, between brackets.
template <class Parts, class Append>
std::string Bracketed(const char* brackets, const Parts& parts, JsonText::Layout layout, Append append) {
    const bool lines = layout == JsonText::Layout::Lines && !parts.empty();
    std::string text(1, brackets[0]);
    for (const auto& part : parts) {
        if (text.size() > 1) text += ',';
        if (lines) text += "\n ";
        append(text, part);
    }
    if (lines) text += '\n';
    return text += brackets[1];
}

// The lines of a part are a level deeper than it knows.
void AppendDeeper(std::string& text, const std::string& part) {
    for (const char c : part) {
        text += c;
        if (c == '\n') text += ' ';
    }
}

}  // namespace

JsonText JsonText::Object(const Members& members, Layout layout) {
    JsonText object;
    object.text_ = Bracketed("{}", members, layout, [layout](std::string& text, const auto& member) {
        text.append(JsonText(member.first).text_).append(layout == Layout::Lines ? ": " : ":");
        AppendDeeper(text, member.second.text_);
    });
    return object;
}

JsonText JsonText::Array(const std::vector<JsonText>& items) {
    JsonText array;
    array.text_ = Bracketed("[]", items, Layout::Lines,
                            [](std::string& text, const JsonText& item) { AppendDeeper(text, item.text_); });
    return array;
}

}  // namespace tav::cli
