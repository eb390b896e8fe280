// The tables of a database as an SQLite database, for those who go on with SQL.
#pragma once

#include "common/text.h"
#include "jet/table/database.h"

namespace tav {

// Makes the file, in UTF-8, with every table of the database under its name, the columns in their order under
// theirs, with primary keys and what is required. Declared types and what is stored:
//
//     Boolean                  BOOLEAN         1 or 0
//     Byte, Integer, Long      INTEGER         an integer
//     Single, Double           REAL            a real number
//     Currency, Decimal        REAL            the nearest one: an amount has 15 digits that are sure
//     Date                     DATETIME        text as of IsoDate, which the functions of SQLite understand
//     Text                     VARCHAR(n)      text
//     Memo                     TEXT            text
//     Binary, OLE, GUID        BLOB            the bytes as they are stored
//
// The file appears when it is whole and on the disk. One that exists is a Failure that names it, and so is a full
// disk; the words of SQLite are shown for what else it refuses.
void ExportToSqlite(jet::Database& database, TextView file);

}  // namespace tav
