#include "convert/load_xml_file.h"

#include <memory>
#include <optional>

#include "common/concat.h"
#include "common/guard.h"
#include "common/windows1251.h"
#include "convert/act_fields.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "xml/document.h"
#include "xml/schema.h"

namespace tav {
namespace {

// The schema of that file, read anew only when the file has other bytes than before; nullptr when there is
// none.
const Schema* SchemaOf(TextView path) {
    static std::string bytes;
    static std::unique_ptr<Schema> schema;
    if (!FileExists(path)) return nullptr;
    std::string now = ReadFile(path);
    if (!schema || now != bytes) {
        schema.reset();
        schema = std::make_unique<Schema>(path, now);
        bytes = std::move(now);
    }
    return schema.get();
}

std::string Line(int tabs, std::string_view text) {
    return std::string(static_cast<std::size_t>(tabs), '\t').append(text).append("\r\n");
}

std::string Element(int tabs, std::string_view name, std::string_view value) {
    const std::string tag(name);
    return Line(tabs, "<" + tag + ">" + std::string(value) + "</" + tag + ">");
}

std::string Part(const Document& document) {
    std::string part;
    for (const ActField& field : ActFields()) {
        const std::optional<Text> content = document.Attribute(FullPath(field));
        if (!content) continue;
        const std::string value = ToWindows1251(*content);
        if (field.name == "h1") part += Line(1, ToWindows1251(u"<part type=\"акт\">")) + Line(2, "<head>");
        if (field.name == "perb") part += Element(3, "h13", value);
        part += Element(3, ElementName(field), value);
        if (field.name == "pere") part += Line(2, "</head>") + Line(2, "<body>");
        if (field.name == "p45") part += Line(2, "</body>") + Line(1, "</part>");
    }
    return part;
}

}  // namespace

Text ActSchemaPath() {
    constexpr TextView kName = u"IU_AKTSVP_1_862_01_05_01_01.xsd";
    const Text beside = Concat(ComponentFolder(), kName);
    if (FileExists(beside)) return beside;
    return Concat(ComponentFolder(), u"../share/TAV_OperationImport/", kName);
}

Conversion ConvertAct(std::string_view document, TextView file_name, TextView schema_path) {
    Conversion conversion;
    std::optional<Document> act;
    try {
        act = Document::Parse(document);
    } catch (const XmlFailure& failure) {
        conversion.reason = u"Это не документ XML: " + failure.description();
    }
    if (const Schema* const schema = SchemaOf(schema_path)) {
        if (!act) return conversion;
        if (const std::optional<XmlError> error = schema->Validate(*act)) {
            conversion.reason = u"Документ не соответствует схеме акта: " + XmlErrorText(*error);
            return conversion;
        }
    }
    conversion.entry = Line(0, "<file>") + Element(1, "name", ToWindows1251(file_name));
    if (act) conversion.entry += Part(*act);
    conversion.entry += Line(0, "</file>");
    return conversion;
}

Conversion LoadXMLFile(TextView folder, TextView file_name) {
    Conversion conversion;
    GuardedBy(
        [&] {
            const std::string document =
                Noting(conversion, [&] { return ReadFile(Text(folder).append(file_name)); });
            conversion = ConvertAct(document, file_name, ActSchemaPath());
        },
        [&](const Failure& failure) {
            // It is no fault of the document's: the next scan tries again.
            conversion.unreadable = true;
            if (conversion.reason.empty()) conversion.reason = failure.description();
            ShowFailure(u"Ошибка в функции LoadXMLFile", failure);
        });
    return conversion;
}

}  // namespace tav
