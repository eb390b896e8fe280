#include "xml/document.h"

#include <libxml/tree.h>
#include <libxml/xmlsave.h>
#include <libxml/xpath.h>

#include <new>

#include "common/concat.h"
#include "xml/encoding.h"
#include "xml/handles.h"
#include "xml/push_parser.h"

namespace tav {
namespace {

std::string_view View(const xmlChar* chars) {
    return chars == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(chars));
}

const xmlChar* Chars(const std::string& utf8) {
    return reinterpret_cast<const xmlChar*>(utf8.c_str());
}

void Ignore(void*, xmlError*) {}

}  // namespace

Text XmlErrorText(const XmlError& error) {
    if (error.line <= 0) return error.reason;
    return u"строка " + Digits(error.line) + u": " + error.reason;
}

Text Node::Name() const {
    return FromUtf8(View(node_->name));
}

Text Node::Content() const {
    const OwnedChars content(xmlNodeGetContent(node_));
    return FromUtf8(View(content.get()));
}

std::vector<Node> Node::Children() const {
    std::vector<Node> children;
    if (node_->type != XML_ELEMENT_NODE) return children;
    for (xmlNode* child = xmlFirstElementChild(node_); child != nullptr;
         child = xmlNextElementSibling(child)) {
        children.emplace_back(child);
    }
    return children;
}

Node Node::FirstAttribute() const {
    if (node_->type != XML_ELEMENT_NODE) return {};
    return Node(reinterpret_cast<xmlNode*>(node_->properties));
}

std::vector<Node> Node::SelectNodes(TextView path) const {
    const Owned<xmlXPathContext, xmlXPathFreeContext> context(xmlXPathNewContext(node_->doc));
    if (!context) throw std::bad_alloc();
    context->node = node_;
    context->error = Ignore;
    const std::string utf8 = ToUtf8(path);
    const Owned<xmlXPathObject, xmlXPathFreeObject> result(
        xmlXPathEvalExpression(Chars(utf8), context.get()));
    if (!result || result->type != XPATH_NODESET) {
        throw Failure(RunTimeError::InvalidProcedureCall, Concat(u"XPath ", path));
    }
    std::vector<Node> nodes;
    if (result->nodesetval == nullptr) return nodes;
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) nodes.emplace_back(result->nodesetval->nodeTab[i]);
    return nodes;
}

Node Node::SelectSingleNode(TextView path) const {
    const std::vector<Node> nodes = SelectNodes(path);
    return nodes.empty() ? Node() : nodes.front();
}

void Document::Free::operator()(_xmlDoc* document) const {
    xmlFreeDoc(document);
}

Document Document::Parse(std::string_view bytes) {
    PushParser parser;
    parser.Read(bytes);
    return Document(parser.TakeTree());
}

Node Document::Root() const {
    return Node(xmlDocGetRootElement(document_.get()));
}

Node Document::Whole() const {
    return Node(reinterpret_cast<xmlNode*>(document_.get()));
}

std::string Document::Save() const {
    const Owned<xmlBuffer, xmlBufferFree> buffer(xmlBufferCreate());
    if (!buffer) throw std::bad_alloc();
    xmlSaveCtxt* const save = xmlSaveToBuffer(buffer.get(), "UTF-8", XML_SAVE_AS_XML | XML_SAVE_NO_DECL);
    if (save == nullptr) throw std::bad_alloc();
    const long written = xmlSaveDoc(save, document_.get());
    if (xmlSaveClose(save) < 0 || written < 0) throw std::bad_alloc();
    return "<?xml version=\"1.0\" encoding=\"windows-1251\" ?>" + Windows1251Markup(View(buffer->content));
}

}  // namespace tav
