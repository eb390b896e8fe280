// One entry of the catalogue, a `file` element, found and checked in the catalogue's bytes without a tree.
//
// An entry reaches from its <file> to its </file>. It can be read when its own tags (catalogue_markup.h)
// are all closed in the reverse order of their opening. One that cannot is bounded all the same, so that
// it costs no other entry anything: the next <file>, or the catalogue's end, ends it.
//
// What a later scan must know of a document, and the catalogue has no element for, stands in the
// indentation of </file>, which means nothing to other readers: the number of TABs is a sum of
// EntryNote.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/text.h"
#include "convert/catalogue_elements.h"
#include "convert/catalogue_markup.h"

namespace tav {

enum class EntryNote : unsigned {
    None = 0,
    DroppedText = 1,  // a page hid visible text after its last closing brace
    CutOff = 2,       // the document ended inside a group
    Again = 4,        // another document may have been loaded under its name
    Arithmetic = 8,   // a line's balance does not follow from the line before it (balance_fault.h)
};
// Several of them.
using EntryNotes = unsigned;
inline EntryNotes NoteIf(bool holds, EntryNote note) {
    return holds ? static_cast<EntryNotes>(note) : 0;
}

// A length for each of h00 to h19 and p00 to p19; what is longer than it can say counts as its highest value.
using FieldLengths = std::array<std::uint16_t, 40>;
// The place among them of the field of a letter and a number; none of any other.
std::optional<std::size_t> PlaceOfField(char letter, int number);

struct CatalogueEntry {
    Text name;              // of the document
    std::size_t begin = 0;  // at the "<" of <file>
    std::size_t end = 0;    // after </file>
    // Where the element of the name begins and ends, from the entry's beginning on.
    std::size_t name_begin = 0;
    std::size_t name_end = 0;
    int parts = 0;
    EntryNotes notes = 0;
    FieldLengths longest = {};  // of the texts of each field and cell, in bytes
    Text fault;                 // for a person: why it cannot be read; else empty
    std::size_t fault_at = 0;   // where
    int fault_line = 0;         // which line that is, in a catalogue

    bool IsReadable() const { return fault.empty(); }
    bool Has(EntryNote note) const { return (notes & static_cast<EntryNotes>(note)) != 0; }
};

// How the names of documents stand in a catalogue: the scan writes them as they are, also those that hold an
// entity; whoever edits it as XML has the entities replaced.
enum class NameForm { Raw, Escaped };
Text NameOfDocument(std::string_view bytes, NameForm form);

// The entry whose <file> is that tag of the catalogue.
CatalogueEntry ReadEntry(std::string_view catalogue, const MarkupTag& file, NameForm names = NameForm::Raw);

// The parts of a readable entry, whose bytes these are or begin with. Its `name` is passed over: any text is a
// name there.
std::vector<CatalogueElement> PartsIn(std::string_view bytes, const CatalogueEntry& entry);

// The entry, one element from <file> to the line end after </file>, with its notes.
std::string WithNotes(std::string entry, EntryNotes notes);

// The entry of a document that was cut off, all its elements closed. The row that was not finished goes,
// or of an act the last amount: they may be half of what they were.
std::string WithAllClosed(std::string entry);

}  // namespace tav
