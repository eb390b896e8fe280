// What Qt cannot do itself: links from one page of a PDF to another, and another order of its pages.
//
// Qt writes a link as an annotation with an address. Those that SheetAddress makes become jumps to the first
// page of the sheet, in place: no byte after them moves, so the file's table of objects stays right.
#pragma once

#include <string>
#include <vector>

#include "pdf/sheet.h"

namespace tav {

// The address of a sheet; kNoSheet is the one that was added last.
std::string SheetAddress(int sheet);

// `first_pages` has the number of each sheet's first page, counted from 0 in the order they were written.
// Afterwards the last sheet comes first. A PDF of another form than Qt's stays as it is.
void ArrangePages(std::string& pdf, const std::vector<std::size_t>& first_pages);

}  // namespace tav
