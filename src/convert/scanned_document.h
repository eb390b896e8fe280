// What a scan makes of one document's conversion, apart from what the catalogue had of it before.
#pragma once

#include "common/text.h"
#include "convert/conversion.h"
#include "convert/scan_account.h"

namespace tav {

struct ScannedDocument {
    Conversion conversion;  // its entry closed, and with its notes
    ScannedFile::Found found = ScannedFile::Found::Nothing;
    Text reason = {};  // as ScannedFile has it
};

// Finishes a conversion of the document of that path: the entry is closed where the document was cut off, gets its
// notes (Again, if `again`) and is read once as every later reader will read it. A printed form may be finished by any
// thread. An act delivered as XML may not: one in which nothing was found is read once more, to say why.
ScannedDocument Finished(TextView path, Conversion conversion, bool again);

}  // namespace tav
