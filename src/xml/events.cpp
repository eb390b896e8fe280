#include "xml/events.h"

#include <string>

#include "xml/push_parser.h"

namespace tav {
namespace {

std::string_view View(const xmlChar* chars) {
    return reinterpret_cast<const char*>(chars);
}

// No exception may pass the library's frames: it is kept, and thrown again when the library has returned.
template <class Call>
void Forward(void* context, Call&& call) {
    PushParser& parser = PushParser::Of(context);
    try {
        call(*static_cast<XmlEvents*>(parser.events_owner()));
    } catch (...) {
        parser.Keep(std::current_exception());
    }
}

void StartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar*, int,
                  const xmlChar**, int, int, const xmlChar**) {
    Forward(context, [&](XmlEvents& events) {
        if (prefix == nullptr) {
            events.StartElement(View(name));
        } else {
            events.StartElement(std::string(View(prefix)).append(":").append(View(name)));
        }
    });
}

void EndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
    Forward(context, [](XmlEvents& events) { events.EndElement(); });
}

void Characters(void* context, const xmlChar* text, int length) {
    Forward(context, [&](XmlEvents& events) {
        events.Characters({reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
    });
}

}  // namespace

void ReadXml(std::string_view bytes, XmlEvents& events) {
    xmlSAXHandler handler = {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = StartElement;
    handler.endElementNs = EndElement;
    handler.characters = Characters;
    handler.ignorableWhitespace = Characters;
    handler.cdataBlock = Characters;
    PushParser(&handler, &events).Read(bytes);
}

}  // namespace tav
