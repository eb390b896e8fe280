// What is to be said of documents without storing them. Of those that the database does not have: what an
// import would say. Of those that it has: what the import said that stored them, and whether their files were
// changed since.
#pragma once

#include "convert/catalogue.h"
#include "load/account_maker.h"
#include "load/document_loader.h"
#include "load/held_rows.h"
#include "load/known_files.h"

namespace tav {

class Rehearsals {
 public:
    // All four are used as long as this is.
    Rehearsals(Connection& connection, const Catalogue& catalogue, const TaxpayerChoice& taxpayer,
               AccountMaker& account);
    Rehearsals(const Rehearsals&) = delete;
    Rehearsals& operator=(const Rehearsals&) = delete;

    void OfNew(const Text& name);
    // Costs one look at the facts of each entry; few have something to be said.
    void OfHeld(const HeldFiles& held);

 private:
    bool NeedsLook(const CatalogueEntry& entry) const;
    void OfHeld(const CatalogueEntry& entry, const HeldOfFile& held);

    Connection& connection_;
    const Catalogue& catalogue_;
    AccountMaker& account_;
    HeldRows* compared_ = nullptr;
    PartLoader parts_;
    DocumentLoader loader_;
    FieldLengths room_;  // in the text columns of the database
};

}  // namespace tav
