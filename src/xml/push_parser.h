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
    PushParser();
    ~PushParser();
    PushParser(const PushParser&) = delete;
    PushParser& operator=(const PushParser&) = delete;

    // Reads the whole document into a tree. Throws XmlFailure.
    void Read(std::string_view bytes);
    // Hands over the tree.
    xmlDoc* TakeTree();

 private:
    // For handlers of the library, which must not throw through its frames.
    static PushParser& Of(void* context);
    void Keep(std::exception_ptr exception);
    static void RefuseDoctype(void* context, const xmlChar*, const xmlChar*, const xmlChar*);
    static void NoteError(void* context, xmlError* error);
    bool Feed(std::string_view piece, bool last);

    Owned<xmlParserCtxt, xmlFreeParserCtxt> context_;
    std::optional<XmlError> error_;
    std::exception_ptr exception_;
};

}  // namespace tav
