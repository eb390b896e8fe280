// Takes one document after the other: its parts that are the taxpayer's go into the database, and what is to
// be said of each goes into the account.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convert/catalogue.h"
#include "load/account_maker.h"
#include "load/part_loader.h"
#include "load/taxpayer_choice.h"

namespace tav {

class DocumentLoader {
 public:
    // The part loader and the account are used as long as this is.
    DocumentLoader(const TaxpayerChoice& taxpayer, PartLoader& parts, AccountMaker& account)
        : taxpayer_(taxpayer), parts_(parts), account_(account) {}

    struct Taken {
        bool any = false;   // there is a part
        bool own = false;   // a part is the taxpayer's
        int documents = 0;  // stored
        int rows = 0;       // stored
    };
    // What fails is thrown; the statements executed before stay.
    Taken Take(const Catalogue& catalogue, const Text& file);
    Taken Take(const std::vector<CatalogueElement>& parts, const Text& file);

 private:
    // What a statement has come to that is the taxpayer's; of other parts nothing.
    std::optional<PartOutcome> TakePart(const CatalogueElement& part, const Text& file, Taken& taken);

    const TaxpayerChoice taxpayer_;
    PartLoader& parts_;
    AccountMaker& account_;
    std::string bytes_;  // of the document's entries
};

}  // namespace tav
