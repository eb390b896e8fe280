// What a list of documents shows of one of them, found without converting it.
//
// The head of the file is enough: the header of a printed form stands before its amounts. Of several
// documents in one file the first one counts.
#pragma once

#include "common/text.h"

namespace tav {

enum class DocumentKind { Unknown, Statement, Act };

// The texts are those of the catalogue entry that the document gets; one that is missing there is empty.
struct DocumentGlance {
    DocumentKind kind = DocumentKind::Unknown;
    Text code = {};          // the tax's budget classification code, 20 digits
    Text okato = {};         // the territory's code, 11 digits
    Text period_begin = {};  // dd.mm.yyyy
    Text period_end = {};
    Text tax = {};  // the tax's name
    Text reason =
        {};  // why the kind is unknown, for a person, in Russian or as the system says it; else empty
};

// Looks at the RTF of that path. Shows no message and throws nothing: what cannot be read, and what is
// neither a statement nor an act, is Unknown and says why.
//
// 64 KB are read, and 1 MB of a file where these have not shown all fields: tables of fonts and styles, or a
// picture, may stand before the header.
DocumentGlance GlanceAtDocument(TextView path);

}  // namespace tav
