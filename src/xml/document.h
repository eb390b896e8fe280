// XML documents as a tree, over libxml2.
//
// Input: bytes of XML 1.0 in Windows-1251, UTF-8, UTF-16 or whatever encoding else the document
// declares and the library knows. Nothing is fetched from the network, and no entity is substituted
// but the predefined five: a document with a document type declaration is refused before anything
// in it is read. The library's limits on depth and on the length of one text apply (no huge mode).
//
// Texts are Text (UTF-16). As XML has it, line ends inside a document are single line feeds.
//
// Errors: XmlFailure with the line and the reason, in the library's own words. Nothing is written to standard
// error. Documents are used by one thread each.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/failure.h"
#include "common/text.h"

struct _xmlDoc;

namespace tav {

struct XmlError {
    int line = 0;  // counted from 1; 0 when unknown
    Text reason;
};

// "строка 12: Opening and ending tag mismatch: ..."
Text XmlErrorText(const XmlError& error);

// A document that is not well-formed, or refused.
class XmlFailure : public Failure {
 public:
    explicit XmlFailure(XmlError error) : Failure(XmlErrorText(error)), error_(std::move(error)) {}
    // The same with more about it in front of the line: a path, a document's name.
    XmlFailure(TextView subject, XmlError error)
        : Failure(Text(subject) + XmlErrorText(error)), error_(std::move(error)) {}

    const XmlError& error() const { return error_; }

 private:
    XmlError error_;
};

class Document {
 public:
    static Document Parse(std::string_view bytes);

    // The value of the first attribute, in document order, that a path leads to: "//a/b/@c" is attribute c of
    // an element b in an element a, wherever that is. Names of no namespace. (The library's XPath, which could
    // do more, ends the program when it gets no memory.)
    std::optional<Text> Attribute(TextView path) const;

    // The document as Windows-1251 with CR LF line ends, its white space kept. A character the code page
    // lacks becomes a character reference.
    std::string Save() const;

    _xmlDoc* handle() const { return document_.get(); }

 private:
    struct Free {
        void operator()(_xmlDoc* document) const;
    };

    explicit Document(_xmlDoc* document) : document_(document) {}

    std::unique_ptr<_xmlDoc, Free> document_;
};

}  // namespace tav
