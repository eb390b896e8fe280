#include "xml/document.h"

#include <libxml/tree.h>
#include <libxml/xmlsave.h>

#include <new>
#include <span>
#include <vector>

#include "common/get_next.h"
#include "common/memory_watch.h"
#include "xml/encoding.h"
#include "xml/handles.h"
#include "xml/push_parser.h"

namespace tav {
namespace {

std::string_view View(const xmlChar* chars) {
    return chars == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(chars));
}

// Names of the path, from the outermost on; that of the attribute is the last.
std::vector<std::string> NamesOf(TextView path) {
    std::vector<std::string> names;
    path.remove_prefix(path.find_first_not_of(u'/'));
    while (!path.empty()) names.push_back(ToUtf8(GetNext(path, u"/")));
    names.back().erase(0, 1);  // "@"
    return names;
}

template <class Node>
bool IsCalled(const Node* node, const std::string& name) {
    return node->ns == nullptr && View(node->name) == name;
}

// Whether the element and those it is in have these names, from the innermost on.
bool IsAt(const xmlNode* element, std::span<const std::string> names) {
    for (; !names.empty(); names = names.first(names.size() - 1), element = element->parent) {
        if (element->type != XML_ELEMENT_NODE || !IsCalled(element, names.back())) return false;
    }
    return true;
}

// The element after this one, in the order of their opening tags.
xmlNode* Next(xmlNode* element) {
    if (xmlNode* const child = xmlFirstElementChild(element)) return child;
    for (; element->type == XML_ELEMENT_NODE; element = element->parent) {
        if (xmlNode* const next = xmlNextElementSibling(element)) return next;
    }
    return nullptr;
}

}  // namespace

Text XmlErrorText(const XmlError& error) {
    if (error.line <= 0) return error.reason;
    return u"строка " + Digits(error.line) + u": " + error.reason;
}

void Document::Free::operator()(_xmlDoc* document) const {
    xmlFreeDoc(document);
}

Document Document::Parse(std::string_view bytes) {
    PushParser parser;
    parser.Read(bytes);
    return Document(parser.TakeTree());
}

std::optional<Text> Document::Attribute(TextView path) const {
    const std::vector<std::string> names = NamesOf(path);
    const auto elements = std::span(names).first(names.size() - 1);
    for (xmlNode* element = xmlDocGetRootElement(document_.get()); element != nullptr;
         element = Next(element)) {
        if (!IsAt(element, elements)) continue;
        for (const xmlAttr* attribute = element->properties; attribute != nullptr;
             attribute = attribute->next) {
            if (!IsCalled(attribute, names.back())) continue;
            const MemoryWatch memory;
            const OwnedChars value(xmlNodeListGetString(document_.get(), attribute->children, 1));
            memory.Check();
            return FromUtf8(View(value.get()));
        }
    }
    return std::nullopt;
}

std::string Document::Save() const {
    const MemoryWatch memory;
    const Owned<xmlBuffer, xmlBufferFree> buffer(xmlBufferCreate());
    if (!buffer) throw std::bad_alloc();
    xmlSaveCtxt* const save = xmlSaveToBuffer(buffer.get(), "UTF-8", XML_SAVE_AS_XML | XML_SAVE_NO_DECL);
    if (save == nullptr) throw std::bad_alloc();
    const long written = xmlSaveDoc(save, document_.get());
    if (xmlSaveClose(save) < 0 || written < 0) throw std::bad_alloc();
    memory.Check();
    return "<?xml version=\"1.0\" encoding=\"windows-1251\" ?>" + Windows1251Markup(View(buffer->content));
}

}  // namespace tav
