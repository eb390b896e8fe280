// The reader of reconciliation acts delivered as XML documents.
//
// Input: a document whose root is Файл, in Windows-1251 or UTF-8 (xml/document.h says what is accepted).
// Where the schema file kActSchema lies beside the component, the document is validated against it; without
// the file nothing is validated.
//
// Output: one `file` entry of the catalogue as Windows-1251 bytes with CR LF line ends:
//
//   <file>
//     <name>act.xml</name>
//     <part type="акт">
//       <head> h01 h02 h03 h04 h07 h08 h10 h12 h13 perb pere </head>
//       <body> p0011 ... p0045, the 101 amounts </body>
//     </part>
//   </file>
//
// Values are the attributes' texts, neither escaped nor reformatted; an attribute that is not there writes
// nothing. The part and its head are opened with h01, the head is closed and the body opened with pere, both
// are closed with p0045: a document without one of these attributes yields an entry that is not well-formed,
// and the schema rejects such a document first.
#pragma once

#include <string>

#include "common/text.h"

namespace tav {

// The schema file's full path: its fixed name, beside the component.
Text ActSchemaPath();

// The entry of the document `folder` + `file_name`. Empty text when the schema rejects the document, in
// silence, and after an unexpected failure, which is shown.
std::string LoadXMLFile(TextView folder, TextView file_name);

enum class ActFault {
    None,
    Malformed,    // no XML document
    Doctype,      // refused for its document type declaration
    FailsSchema,  // read, but the schema rejects it
};

struct ActEntry {
    std::string
        bytes;  // empty when rejected; without a schema, a document that cannot be read leaves its name
    ActFault fault = ActFault::None;
    Text reason;  // what the fault is and in which line
};

// The same for those who want to know why, and by which schema (a file that is not there validates nothing).
// Throws Failure: the document cannot be opened, the schema file is no schema.
ActEntry ConvertAct(TextView folder, TextView file_name, TextView schema_path);

}  // namespace tav
