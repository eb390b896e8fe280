#include "xml/schema.h"

#include <libxml/parser.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlschemas.h>

#include <new>

#include "common/memory_watch.h"
#include "xml/handles.h"

namespace tav {
namespace {

// While one lives, the library opens local files only.
class NoNetwork {
 public:
    NoNetwork() : before_(xmlGetExternalEntityLoader()) {
        xmlSetExternalEntityLoader(xmlNoNetExternalEntityLoader);
    }
    ~NoNetwork() { xmlSetExternalEntityLoader(before_); }
    NoNetwork(const NoNetwork&) = delete;
    NoNetwork& operator=(const NoNetwork&) = delete;

 private:
    xmlExternalEntityLoader before_;
};

// Remembers the first error the library reports.
struct FirstError {
    std::optional<XmlError> error;

    static void Note(void* self, xmlError* reported) {
        auto& first = *static_cast<FirstError*>(self);
        if (first.error || reported->level < XML_ERR_ERROR) return;
        try {
            Text reason = FromUtf8(reported->message == nullptr ? "" : reported->message);
            while (!reason.empty() && reason.back() == u'\n') reason.pop_back();
            first.error = XmlError{reported->line, std::move(reason)};
        } catch (...) {
            first.error = XmlError{};  // no memory for the words; that there is an error stays known
        }
    }
};

}  // namespace

// The schema points into its document, which therefore lives as long.
struct Schema::State {
    Document document;
    Owned<xmlSchema, xmlSchemaFree> schema;
};

Schema::Schema(TextView path, std::string_view bytes) {
    const Text subject = Text(path) + u": ";
    try {
        state_ = std::make_unique<State>(State{Document::Parse(bytes), nullptr});
    } catch (const XmlFailure& failure) {
        throw XmlFailure(subject, failure.error());
    }
    xmlDoc* const document = state_->document.handle();
    document->URL = xmlStrdup(reinterpret_cast<const xmlChar*>(ToUtf8(path).c_str()));
    const Owned<xmlSchemaParserCtxt, xmlSchemaFreeParserCtxt> parser(xmlSchemaNewDocParserCtxt(document));
    if (!parser) throw std::bad_alloc();
    FirstError first;
    xmlSchemaSetParserStructuredErrors(parser.get(), FirstError::Note, &first);
    const NoNetwork no_network;
    const MemoryWatch memory;
    state_->schema.reset(xmlSchemaParse(parser.get()));
    memory.Check();
    if (!state_->schema) throw XmlFailure(subject, first.error.value_or(XmlError{0, u"not a schema"}));
}

Schema::~Schema() = default;

std::optional<XmlError> Schema::Validate(const Document& document) const {
    const Owned<xmlSchemaValidCtxt, xmlSchemaFreeValidCtxt> validator(
        xmlSchemaNewValidCtxt(state_->schema.get()));
    if (!validator) throw std::bad_alloc();
    FirstError first;
    xmlSchemaSetValidStructuredErrors(validator.get(), FirstError::Note, &first);
    const MemoryWatch memory;
    const bool valid = xmlSchemaValidateDoc(validator.get(), document.handle()) == 0;
    memory.Check();
    if (valid) return std::nullopt;
    return first.error ? first.error : XmlError{0, u"not valid"};
}

}  // namespace tav
