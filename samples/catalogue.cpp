#include "common/windows1251.h"
#include "samples/generator.h"

namespace tav::samples {
namespace {

constexpr const char16_t* kLineEnd = u"\r\n";

void AddElement(Text& text, const Text& name, const Text& value) {
    text += u"<" + name + u">" + value + u"</" + name + u">" + kLineEnd;
}

void AddFields(Text& text, const Fields& fields) {
    for (const auto& [name, value] : fields) AddElement(text, FromUtf8(name), value);
}

void AddPart(Text& text, const Part& part) {
    text += u"<part type=\"" + part.type + u"\">" + kLineEnd;
    text += Text(u"<head>") + kLineEnd;
    AddFields(text, part.head);
    text += Text(u"</head>") + kLineEnd + u"<body>" + kLineEnd;
    const bool has_rows = part.type == u"выписка";
    for (const Fields& row : part.rows) {
        if (has_rows) text += Text(u"<row>") + kLineEnd;
        AddFields(text, row);
        if (has_rows) text += Text(u"</row>") + kLineEnd;
    }
    text += Text(u"</body>") + kLineEnd + u"</part>" + kLineEnd;
}

}  // namespace

std::string CatalogueEntry(const Document& document) {
    Text text = Text(u"<file>") + kLineEnd;
    AddElement(text, u"name", document.name);
    for (const Part& part : document.parts) AddPart(text, part);
    return ToWindows1251(text + u"</file>" + kLineEnd);
}

std::string Catalogue(const std::vector<Document>& documents) {
    Text head =
        Text(u"<?xml version=\"1.0\" encoding=\"windows-1251\" ?><all>") + kLineEnd + u"<actual>" + kLineEnd;
    for (const Document& document : documents)
        if (EqualNoCase(Right(document.name, 4), u".rtf")) AddElement(head, u"item", document.name);
    std::string bytes = ToWindows1251(head + u"</actual>" + kLineEnd);
    for (const Document& document : documents) bytes += CatalogueEntry(document);
    return bytes + "</all>\r\n";
}

}  // namespace tav::samples
