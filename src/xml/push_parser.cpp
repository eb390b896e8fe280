#include "xml/push_parser.h"

#include <new>
#include <utility>

#include "common/memory_watch.h"
#include "xml/encoding.h"

namespace tav {
namespace {

constexpr std::size_t kPiece = 64 * 1024;

Text Reason(const xmlError& error) {
    std::string_view words = error.message == nullptr ? "unknown error" : error.message;
    while (!words.empty() && (words.back() == '\n' || words.back() == ' ')) words.remove_suffix(1);
    return FromUtf8(words);
}

void Silence(void*, const char*, ...) {}

// What the library says besides a parser, to the thread: a broken character of UTF-16 is an error of that kind. The
// host may have functions of its own there.
class ThreadErrors {
 public:
    ThreadErrors(xmlStructuredErrorFunc note, void* context) {
        xmlSetStructuredErrorFunc(context, note);
        xmlSetGenericErrorFunc(nullptr, Silence);
    }
    ~ThreadErrors() {
        xmlSetStructuredErrorFunc(context_, note_);
        xmlSetGenericErrorFunc(generic_context_, generic_);
    }
    ThreadErrors(const ThreadErrors&) = delete;
    ThreadErrors& operator=(const ThreadErrors&) = delete;

 private:
    xmlStructuredErrorFunc note_ = xmlStructuredError;
    void* context_ = xmlStructuredErrorContext;
    xmlGenericErrorFunc generic_ = xmlGenericError;
    void* generic_context_ = xmlGenericErrorContext;
};

}  // namespace

PushParser::PushParser() : context_(xmlCreatePushParserCtxt(nullptr, nullptr, nullptr, 0, nullptr)) {
    if (!context_) throw std::bad_alloc();
    context_->_private = this;
    context_->sax->internalSubset = RefuseDoctype;
    context_->sax->serror = NoteError;
}

PushParser::~PushParser() {
    if (context_->myDoc != nullptr) xmlFreeDoc(context_->myDoc);
}

PushParser& PushParser::Of(void* context) {
    return *static_cast<PushParser*>(static_cast<xmlParserCtxt*>(context)->_private);
}

void PushParser::Keep(std::exception_ptr exception) {
    exception_ = std::move(exception);
    xmlStopParser(context_.get());
}

void PushParser::RefuseDoctype(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
    PushParser& parser = Of(context);
    const int line = xmlSAX2GetLineNumber(context);
    try {
        parser.error_ = XmlError{line, u"document type declarations are refused"};
    } catch (...) {
        parser.exception_ = std::current_exception();
    }
    xmlStopParser(parser.context_.get());
}

void PushParser::NoteError(void* context, xmlError* error) {
    PushParser& parser = Of(context);
    if (error->level != XML_ERR_FATAL || parser.error_) return;
    try {
        parser.error_ = XmlError{error->line, Reason(*error)};
    } catch (...) {
        parser.Keep(std::current_exception());
    }
}

bool PushParser::Feed(std::string_view piece, bool last) {
    const ThreadErrors errors(NoteError, context_.get());
    xmlParseChunk(context_.get(), piece.data(), static_cast<int>(piece.size()), last ? 1 : 0);
    return !exception_ && !error_ && context_->wellFormed != 0;
}

void PushParser::Read(std::string_view bytes) {
    // What the declaration says about the encoding does not hold for what was recoded, nor against a byte
    // order mark of UTF-8.
    const bool recode = DeclaresWindows1251(bytes);
    const bool settled = recode || bytes.starts_with("\xEF\xBB\xBF");
    xmlCtxtUseOptions(context_.get(),
                      XML_PARSE_NONET | XML_PARSE_COMPACT | (settled ? XML_PARSE_IGNORE_ENC : 0));
    if (bytes.empty()) throw XmlFailure(XmlError{1, u"the document is empty"});
    const MemoryWatch memory;
    bool well = true;
    for (std::size_t at = 0; well && at < bytes.size(); at += kPiece) {
        const std::string_view piece = bytes.substr(at, kPiece);
        well = recode ? Feed(Utf8FromWindows1251(piece), false) : Feed(piece, false);
    }
    if (well) well = Feed({}, true);
    if (exception_) std::rethrow_exception(exception_);
    memory.Check();
    if (error_) throw XmlFailure(*error_);
    if (!well || xmlDocGetRootElement(context_->myDoc) == nullptr) {
        throw XmlFailure(XmlError{0, u"not well-formed"});
    }
}

xmlDoc* PushParser::TakeTree() {
    return std::exchange(context_->myDoc, nullptr);
}

}  // namespace tav
