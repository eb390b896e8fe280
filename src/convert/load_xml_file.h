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
// Values are the attributes' texts, neither escaped nor reformatted; an attribute that is not there
// writes nothing. The part and its head are opened with h01, the head is closed and the body opened with
// pere, both are closed with p0045: a document without one of these attributes yields an entry that
// cannot be read, and the schema rejects such a document first.
#pragma once

#include <string_view>

#include "common/text.h"
#include "convert/conversion.h"

namespace tav {

// The schema file's full path: its fixed name, beside the component, else in share/TAV_OperationImport of where it is
// installed.
Text ActSchemaPath();

// Reads `folder` + `file_name`. A document that the schema rejects has no entry, in silence; neither has
// one after an unexpected failure, which is shown ("Ошибка в функции LoadXMLFile"): it cannot be read,
// or the schema file is no schema.
Conversion LoadXMLFile(TextView folder, TextView file_name);

// The entry of a document that was read, by the schema of that path (a file that is missing validates
// nothing). Throws Failure: the schema file is no schema.
Conversion ConvertAct(std::string_view document, TextView file_name, TextView schema_path);

}  // namespace tav
