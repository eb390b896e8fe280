// The tables of a database as CSV files, for spreadsheets and scripts.
#pragma once

#include "common/text.h"
#include "jet/table/database.h"

namespace tav {

// Makes the folder, with a file "TABLE.csv" for each table of the database, in the form of RFC 4180 and in UTF-8:
// a line with the columns' names, then a line for each row; commas, quotation marks where a value needs them,
// CR LF. Null is nothing, empty text is "". Numbers have a decimal point, dates are as of IsoDate, a boolean is 1
// or 0, bytes are hexadecimal digits. Characters that no file name may have become "_" in the names of files.
//
// The folder appears when all of it is on the disk. One that exists, even if it is empty, is a Failure that names
// it, and so is a full disk. A table's whole text is in memory while it is written.
void ExportToCsv(jet::Database& database, TextView folder);

}  // namespace tav
