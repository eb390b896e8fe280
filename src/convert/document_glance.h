// What a list of documents shows of one of them, found without converting it.
//
// The head of the file is enough: the header of a printed form stands before its amounts. Of several
// documents in one file the first one counts. What shows is what the catalogue entry will say; only of a
// document whose groups or frames are damaged the entry may lack a field that shows here.
#pragma once

#include "common/text.h"

namespace tav {

enum class DocumentKind { Unknown, Statement, Act };

// The texts of the catalogue entry; a field that is missing is empty.
struct DocumentGlance {
    DocumentKind kind = DocumentKind::Unknown;
    Text code = {};          // the tax's budget classification code, 20 digits
    Text okato = {};         // the territory's code, 11 digits
    Text period_begin = {};  // dd.mm.yyyy
    Text period_end = {};
    Text tax = {};  // the tax's name
    Text kpp = {};  // the taxpayer's
    // Why the kind is unknown, for a person; else empty.
    Text reason = {};
    bool unreadable = false;  // because the file cannot be opened or read
};

// Looks at the document of that path. Shows no message and throws nothing: what cannot be read, and what is
// neither a statement nor an act, is Unknown and says why.
//
// An act as XML ("*.xml") is read whole. Of an RTF 64 KB are read, and 1 MB of a file where these have
// not shown all fields: tables of fonts and styles, or a picture, may stand before the header.
DocumentGlance GlanceAtDocument(TextView path);

// Why a document in which the reader of whole documents found nothing is none, for a person; `cut_off`
// when its text ends inside a group.
Text WhyNothing(TextView path, bool cut_off);

// Whether an XML file has the look of an act, by its head; not when it cannot be read.
bool LooksLikeXmlAct(TextView path);

}  // namespace tav
