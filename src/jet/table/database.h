// One open database file: its tables by name.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "common/text.h"
#include "jet/file/page_file.h"
#include "jet/table/table.h"

namespace tav::jet {

// A table in the catalogue (MSysObjects).
struct TableEntry {
    Text name;
    PageNumber page = 0;
    bool user = true;  // else one of the engine's or the program's own
    RowId row;         // of the catalogue
};

struct Catalogue {
    std::vector<TableEntry> tables;  // local ones
    std::vector<Text> linked;        // names of those in other databases
};
Catalogue ReadCatalogue(PageFile& file);

class Database {
 public:
    using Access = PageFile::Access;

    // Opens and locks the file; a missing, foreign, damaged, protected or busy file is a Failure that names
    // it and says why.
    Database(TextView path, Access access);

    PageFile& file() { return file_; }
    // The local user tables in the order of the catalogue.
    const std::vector<TableEntry>& Tables() const { return tables_; }
    // nullptr when there is no table of that name (letter case ignored); a Failure when it is only linked
    // here. The table lives as long as the database.
    Table* FindTable(TextView name);
    // The highest page with rows of the tables that were found so far: rows of theirs are added after it.
    PageNumber LastPageOfRows();

 private:
    PageFile file_;
    std::vector<TableEntry> tables_;
    std::vector<Text> linked_;
    std::map<PageNumber, std::unique_ptr<Table>> open_;
};

}  // namespace tav::jet
