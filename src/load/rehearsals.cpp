#include "load/rehearsals.h"

#include <algorithm>
#include <optional>

#include "common/database_failure.h"
#include "xml/document.h"

namespace tav {
namespace {

// What the text columns of new databases take; p9 is the kind of payment.
constexpr std::size_t kTextColumn = 255;
constexpr std::size_t kKindColumn = 50;

// Whether the column takes less than that. The currency is always cut.
bool IsNarrow(const TextSize& size) {
    if (EqualNoCase(size.column, u"h11")) return false;
    return size.characters < (EqualNoCase(size.column, u"p9") ? kKindColumn : kTextColumn);
}

const PartLoader::Numbers kNone{Counter(Value(Null{})), Counter(Value(Null{}))};

}  // namespace

Rehearsals::Rehearsals(Connection& connection, const Catalogue& catalogue, const TaxpayerChoice& taxpayer,
                       AccountMaker& account)
    : connection_(connection),
      catalogue_(catalogue),
      account_(account),
      parts_(connection, kNone,
             [this](const SqlText& insert) {
                 if (compared_ != nullptr) compared_->Compare(insert);
             }),
      loader_(taxpayer, parts_, account) {
    for (const TextView table : {u"tav_operations_header", u"tav_operations"}) {
        narrow_ = narrow_ || std::ranges::any_of(connection.TextSizes(table), IsNarrow);
    }
}

void Rehearsals::OfNew(const Text& name) {
    try {
        if (loader_.Take(catalogue_, name).documents > 0) account_.Add(name, {Finding::New});
    } catch (const XmlFailure& failure) {
        account_.Forget(name);
        account_.Add(name, {Finding::Unreadable, failure.description()});
    } catch (...) {
        if (ConcernsDatabase()) throw;
        account_.Forget(name);
        account_.Add(name, {Finding::Failed, CurrentFailure().description()});
    }
    parts_.GoOnFrom(kNone);  // no numbers are used up
}

void Rehearsals::OfHeld(const HeldFiles& held) {
    for (const CatalogueEntry& entry : catalogue_.entries()) {
        if (!NeedsLook(entry)) continue;
        const auto found = held.find(UpperCase(entry.name));
        if (found != held.end() && !account_.IsStored(entry.name)) OfHeld(entry, found->second);
    }
}

bool Rehearsals::NeedsLook(const CatalogueEntry& entry) const {
    return entry.IsReadable() && (narrow_ || entry.parts > 1 || entry.longest_kind > kKindColumn ||
                                  entry.longest_other > kTextColumn || entry.Has(EntryNote::Again) ||
                                  entry.Has(EntryNote::Arithmetic));
}

void Rehearsals::OfHeld(const CatalogueEntry& entry, const HeldOfFile& held) {
    std::optional<HeldRows> rows;
    if (entry.Has(EntryNote::Again)) compared_ = &rows.emplace(connection_, entry.name);
    try {
        const DocumentLoader::Taken taken = loader_.Take(catalogue_, entry.name);
        // What is held counted when it was stored, by other settings.
        if (taken.documents == 0) account_.Forget(entry.name);
        if (taken.documents > 0 && !held.foreign.empty()) {
            account_.Add(entry.name, {Finding::Failed,
                                      u"в базе данных есть только документы этого файла "
                                      u"другого налогоплательщика"});
        }
    } catch (...) {
        if (ConcernsDatabase()) throw;
    }
    if (rows && held.foreign.empty() && !rows->AreTheSame()) account_.Add(entry.name, {Finding::Changed});
    compared_ = nullptr;
    parts_.GoOnFrom(kNone);
}

}  // namespace tav
