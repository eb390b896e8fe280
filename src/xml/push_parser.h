// The one way into libxml2: bytes are handed over in pieces, with this
// project's rules about what is accepted (document.h). Inside this room only.
#pragma once

#include <libxml/parser.h>

#include <exception>
#include <optional>
#include <string_view>

#include "xml/document.h"
#include "xml/handles.h"

namespace tav {

class PushParser {
 public:
    // `events` receives what is read; without it, a tree is built.
    explicit PushParser(xmlSAXHandler* events = nullptr, void* events_owner = nullptr);
    ~PushParser();
    PushParser(const PushParser&) = delete;
    PushParser& operator=(const PushParser&) = delete;

    // Reads the whole document. Throws XmlFailure, or what a handler of events kept with Keep.
    void Read(std::string_view bytes);
    // Hands over the tree.
    xmlDoc* TakeTree();

    // For handlers of events, which must not throw through the library's frames.
    static PushParser& Of(void* context);
    void* events_owner() const { return events_owner_; }
    void Keep(std::exception_ptr exception);

 private:
    static void RefuseDoctype(void* context, const xmlChar*, const xmlChar*, const xmlChar*);
    static void NoteError(void* context, xmlError* error);
    bool Feed(std::string_view piece, bool last);

    Owned<xmlParserCtxt, xmlFreeParserCtxt> context_;
    void* events_owner_;
    std::optional<XmlError> error_;
    std::exception_ptr exception_;
};

}  // namespace tav
