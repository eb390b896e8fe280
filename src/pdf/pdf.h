// Reports on paper: sheets (pdf/sheet.h) become a PDF, A4 landscape, made without a screen.
//
// What draws is a module that a process loads when it makes its first PDF (on Linux, the one that has the
// windows); where there is none, on Windows too, nothing else needs it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "common/text.h"
#include "pdf/sheet.h"

namespace tav {

class PdfDocument {
 public:
    virtual ~PdfDocument() = default;
    // Draws the sheet on pages of its own. The sheets of a document are numbered from 0 in the order of these
    // calls.
    virtual void Add(const Sheet& sheet) = 0;
    // The file's bytes. The sheet added last comes first in it: what sums up the others is known last.
    virtual std::string Finish() = 0;
};

// `between_pages` is called after each page drawn. Without the module, or where it cannot work, a Failure
// that says why.
std::unique_ptr<PdfDocument> NewPdf(const std::function<void()>& between_pages);

// Whether NewPdf would make one; loads the module.
bool PdfAvailable();

}  // namespace tav
