// The documents that the database holds, for a scan that comes upon one of their names and cannot tell whether it
// is the same document.
#pragma once

#include <memory>
#include <string_view>

#include "common/text.h"

namespace tav {

class StoredDocuments {
 public:
    // The database is opened when it is first asked.
    explicit StoredDocuments(TextView database);
    ~StoredDocuments();
    StoredDocuments(const StoredDocuments&) = delete;
    StoredDocuments& operator=(const StoredDocuments&) = delete;

    // Whether the file's rows are others than those of its entry in the catalogue, whoever's they are. A database
    // that cannot be asked has none.
    bool HasOther(const Text& file, std::string_view entry);

 private:
    struct Opened;

    Text database_;
    std::unique_ptr<Opened> opened_;
    bool closed_ = false;  // it could not be asked
};

}  // namespace tav
