#include "convert/scanned_document.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "convert/balance_fault.h"
#include "convert/catalogue_entry.h"
#include "convert/document_glance.h"

namespace tav {

using Found = ScannedFile::Found;

namespace {

bool HasBalanceFault(std::string_view bytes, const CatalogueEntry& entry) {
    if (!entry.IsReadable()) return false;
    return std::ranges::any_of(PartsIn(bytes, entry),
                               [](const CatalogueElement& part) { return BalanceFault(part).has_value(); });
}

}  // namespace

ScannedDocument Finished(TextView path, Conversion conversion, bool again) {
    ScannedDocument made{.conversion = std::move(conversion)};
    if (made.conversion.unreadable) {
        made.reason = std::move(made.conversion.reason);
        return made;
    }
    const bool cut_off = made.conversion.cut_off;
    std::string& entry = made.conversion.entry;
    if (!entry.empty()) {
        if (cut_off) entry = WithAllClosed(std::move(entry));
        const CatalogueEntry read = ReadEntry(entry, TagAt(entry, 0));
        const EntryNotes notes = NoteIf(!made.conversion.dropped_pages.empty(), EntryNote::DroppedText) +
                                 NoteIf(cut_off, EntryNote::CutOff) +
                                 NoteIf(HasBalanceFault(entry, read), EntryNote::Arithmetic) +
                                 NoteIf(again, EntryNote::Again);
        entry = WithNotes(std::move(entry), notes);
        if (read.parts > 0) made.found = read.IsReadable() ? Found::Document : Found::Broken;
        if (made.found == Found::Broken) made.reason = u"Документ разобран не до конца: " + read.fault;
    }
    if (made.found == Found::Nothing) made.reason = WhyNothing(path, cut_off);
    return made;
}

}  // namespace tav
