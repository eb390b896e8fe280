#include "load/rehearsals.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <optional>
#include <string>

#include "common/database_failure.h"
#include "xml/document.h"

namespace tav {
namespace {

// How many characters the columns of the fields take. The currency is always cut, and nothing is said of it.
FieldLengths RoomIn(Connection& connection) {
    constexpr std::size_t kAny = std::numeric_limits<FieldLengths::value_type>::max();
    FieldLengths room;
    room.fill(kAny);
    for (const TextView table : {u"tav_operations_header", u"tav_operations"}) {
        for (const TextSize& size : connection.TextSizes(table)) {
            const std::string name = ToUtf8(LowerCase(size.column));
            int number = -1;
            const char* const end = name.data() + name.size();
            if (std::from_chars(name.data() + 1, end, number).ptr != end || name == "h11") continue;
            const auto place = PlaceOfField(name.front(), number);
            if (place) room[*place] = static_cast<FieldLengths::value_type>(std::min(size.characters, kAny));
        }
    }
    return room;
}

constexpr PartLoader::Numbers kNone{};

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
      loader_(taxpayer, parts_, account),
      room_(RoomIn(connection)) {}

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
        const auto found = held.find(entry.name);
        if (found == held.end() || account_.IsStored(entry.name)) continue;
        // A file of others may be somebody else's of the same name.
        const bool doubtful = entry.IsReadable() && !found->second.foreign.empty();
        if (doubtful || NeedsLook(entry)) OfHeld(entry, found->second);
    }
}

bool Rehearsals::NeedsLook(const CatalogueEntry& entry) const {
    if (!entry.IsReadable()) return false;
    const bool noted = entry.Has(EntryNote::Again) || entry.Has(EntryNote::Arithmetic);
    return noted || entry.parts > 1 || !std::ranges::equal(entry.longest, room_, std::less_equal());
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
