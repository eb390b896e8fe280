#include "load/stored_documents.h"

#include "common/database_failure.h"
#include "common/guard.h"
#include "convert/catalogue_entry.h"
#include "load/account_maker.h"
#include "load/document_loader.h"
#include "load/held_rows.h"
#include "load/known_files.h"

namespace tav {

struct StoredDocuments::Opened {
    explicit Opened(TextView database) {
        connection.CursorLocation = 3;
        connection.OpenForReading(ConnectionString(database));
        known = ReadKnownFiles(connection);
    }

    bool IsOther(const Text& file, std::string_view entry);

    Connection connection;
    KnownFiles known;
};

bool StoredDocuments::Opened::IsOther(const Text& file, std::string_view entry) {
    HeldRows rows(connection, file);
    AccountMaker unused;
    PartLoader parts(connection, {}, [&](const SqlText& insert) { rows.Compare(insert); });
    try {
        DocumentLoader(TaxpayerChoice::Everybody(), parts, unused)
            .Take(PartsIn(entry, ReadEntry(entry, TagAt(entry, 0))), file);
    } catch (...) {
        if (ConcernsDatabase()) throw;
        return true;  // what is stored was no such document
    }
    return !rows.AreTheSame();
}

StoredDocuments::StoredDocuments(TextView database) : database_(database) {}
StoredDocuments::~StoredDocuments() = default;

bool StoredDocuments::HasOther(const Text& file, std::string_view entry) {
    bool other = false;
    const auto look = [&] {
        if (!opened_) opened_ = std::make_unique<Opened>(database_);
        other = opened_->known.contains(file) && opened_->IsOther(file, entry);
    };
    if (!closed_) GuardedBy(look, [&](const Failure&) { closed_ = true; });
    return other;
}

}  // namespace tav
