// The border between the loader (pdf_linux.cpp) and the module: one function with C linkage, `tav_make_pdf`.
// Both sides are built by one compiler from the same headers.
#pragma once

#include "pdf/pdf.h"

namespace tav {

// Null when nothing can be drawn; `why` then says the reason in a person's words.
using MakePdf = PdfDocument*(const std::function<void()>& between_pages, Text& why);

constexpr char kMakePdf[] = "tav_make_pdf";

}  // namespace tav
