// The pages that the tables of a file use.
#pragma once

#include "jet/file/page_allocation.h"

namespace tav::jet {

class PageFile;

// Joins, for every table of the catalogue, the pages of its definition and what its maps list: data, indexes,
// long values; and the pages on which maps and their bitmaps stand. A page that two of them claim, or that
// lies beyond the end of the file, is damage.
PageSet PagesInUse(PageFile& file);

}  // namespace tav::jet
