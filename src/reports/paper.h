// Copies of reports on paper: a PDF (pdf/pdf.h) beside the report, of the same name.
#pragma once

#include <memory>

#include "common/text.h"
#include "pdf/pdf.h"

namespace tav {

// `wanted` is asked when a report is made; null, as it is at first, is never.
void MakePaperCopies(bool (*wanted)());

// What to open of a report: its copy on paper, if the report made last is that one and has a copy.
Text ToOpen(TextView report);

// The copy of one report. Where none is wanted, everything here does nothing.
class PaperCopy {
 public:
    // A Failure when a copy is wanted and cannot be made.
    PaperCopy();

    // The sheet, or null when it need not be filled.
    Sheet* Wanted(Sheet& sheet) const { return document_ == nullptr ? nullptr : &sheet; }
    // The sheet's number.
    int Add(const Sheet& sheet);
    // The path of the copy of that report; empty without one.
    Text PathFor(TextView report) const;
    void Write(TextView report);

 private:
    std::unique_ptr<PdfDocument> document_;
    int sheets_ = 0;
};

}  // namespace tav
