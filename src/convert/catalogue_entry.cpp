#include "convert/catalogue_entry.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "common/concat.h"
#include "common/windows1251.h"
#include "convert/characters.h"

namespace tav {
namespace {

constexpr std::string_view kFileClosing = "</file>";
constexpr std::string_view kNameClosing = "</name>";
// The elements of texts: <p01></p01>.
constexpr std::size_t kOpening = sizeof "<p01>" - 1;
constexpr std::size_t kBothTags = sizeof "<p01></p01>" - 1;

constexpr std::string_view kRow = "<row>";
constexpr std::string_view kRowClosing = "</row>";

constexpr int kNumbers = std::tuple_size_v<FieldLengths> / 2;  // of each letter's fields

constexpr std::size_t PlaceOf(char letter, int number) {
    return static_cast<std::size_t>(number + (letter == 'p' ? kNumbers : 0));
}

// Where the closing tag of an element ends whose text begins at `at` and holds no "<"; npos when it has
// more in it.
std::size_t EndOfValue(std::string_view text, std::size_t at, std::string_view name) {
    const std::size_t closing = text.find('<', at);
    if (closing == text.npos) return closing;
    const std::string_view rest = text.substr(closing);
    const std::size_t size = name.size() + 3;
    if (rest.size() < size || rest[1] != '/' || rest[size - 1] != '>' ||
        rest.substr(2, name.size()) != name) {
        return text.npos;
    }
    return closing + size;
}

// Where an element <p01>text</p01> ends whose tag is so long; nullptr when none begins there.
template <std::size_t TagSize>
const char* EndOfPlainValue(const char* tag, const char* end) {
    const char* const text = tag + TagSize;
    const char* const closing =
        static_cast<const char*>(std::memchr(text, '<', static_cast<std::size_t>(end - text)));
    if (closing == nullptr || end - closing <= static_cast<std::ptrdiff_t>(TagSize) || closing[1] != '/')
        return nullptr;
    return std::memcmp(closing + 2, tag + 1, TagSize - 1) == 0 ? closing + TagSize + 1 : nullptr;
}

// A value's element begins with that tag and has so many bytes, its tags included.
void NoteLength(CatalogueEntry& entry, const char* tag, std::size_t bytes) {
    if (tag[kOpening - 1] != '>' || tag[2] > '1') return;  // an amount of an act, or no field that is noted
    const int number = 10 * (tag[2] - '0') + (tag[3] - '0');
    constexpr std::size_t kMost = std::numeric_limits<std::uint16_t>::max();
    std::uint16_t& longest = entry.longest[PlaceOf(tag[1], number)];
    longest = std::max(longest, static_cast<std::uint16_t>(std::min(bytes - kBothTags, kMost)));
}

// Passes over the elements <p01>text</p01>, <h01> and <p0001>, of which nearly all of a catalogue
// consists: where the first other tag at or after `at` begins; the text's end when there is none.
// The lengths of their texts are noted in the entry.
std::size_t PassValues(std::string_view text, std::size_t begin, CatalogueEntry& entry) {
    constexpr std::size_t kShort = sizeof "<p01>" - 1;
    constexpr std::size_t kLong = sizeof "<p0001>" - 1;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data() + begin;;) {
        while (at != end && *at != '<') ++at;  // a line end and a few TABs
        const auto tag = static_cast<std::size_t>(at - text.data());
        if (text.size() - tag <= kLong) return std::min(text.find('<', tag), text.size());
        if ((at[1] != 'p' && at[1] != 'h') || !IsDigit(at[2]) || !IsDigit(at[3])) return tag;
        const char* after = nullptr;
        if (at[kShort - 1] == '>') {
            after = EndOfPlainValue<kShort>(at, end);
        } else if (at[kLong - 1] == '>' && IsDigit(at[4]) && IsDigit(at[5])) {
            after = EndOfPlainValue<kLong>(at, end);
        }
        if (after == nullptr) return tag;
        NoteLength(entry, at, static_cast<std::size_t>(after - at));
        at = after;
    }
}

// Any characters but line ends may stand in a file's name, whole tags too.
std::string_view NameFrom(std::string_view text, std::size_t at) {
    const std::string_view line = text.substr(at, text.find_first_of("\r\n", at) - at);
    return line.substr(0, line.find(kNameClosing));
}

Text Markup(TextView opening, std::string_view name) {
    return Concat(opening, FromWindows1251(name), u">");
}

class EntryReader {
 public:
    EntryReader(std::string_view text, const MarkupTag& file, NameForm names)
        : text_(text), names_(names), at_(file.end) {
        entry_.begin = file.begin;
        entry_.end = file.end;
        if (!file.is_whole) open_.push_back(file);
    }

    CatalogueEntry Read() {
        while (!open_.empty()) {
            at_ = PassValues(text_, at_, entry_);
            if (PassRowTag()) continue;
            const MarkupTag tag = NextTag(text_, at_);
            if (EndsBefore(tag)) {
                entry_.end = tag.name.empty() ? text_.size() : tag.begin;
                Refuse(u"запись обрывается, не закрыт " + Markup(u"<", open_.back().name), entry_.end);
                break;
            }
            at_ = entry_.end = tag.end;
            if (tag.closes) {
                Close(tag);
            } else if (!tag.is_whole) {
                Open(tag);
            }
        }
        return std::move(entry_);
    }

    // The elements of the entry that stand open where it ends, from the outside to the inside.
    std::vector<MarkupTag> TakeLeftOpen() { return std::move(left_open_); }

 private:
    // Only the catalogue itself has these.
    static bool EndsBefore(const MarkupTag& tag) {
        return tag.name.empty() || tag.name == "all" || (tag.name == "file" && !tag.closes);
    }

    // After its values a row's tags are the commonest: nothing has to be looked up for them.
    bool PassRowTag() {
        const std::string_view rest = text_.substr(at_);
        if (rest.starts_with(kRow)) {
            open_.push_back({.name = rest.substr(1, 3), .begin = at_, .end = at_ + kRow.size()});
            at_ += kRow.size();
        } else if (rest.starts_with(kRowClosing) && open_.back().name == "row") {
            open_.pop_back();
            at_ += kRowClosing.size();
        } else {
            return false;
        }
        entry_.end = at_;
        return true;
    }

    void Open(const MarkupTag& tag) {
        if (open_.size() == 1 && tag.name == "part") ++entry_.parts;
        if (open_.size() == 1 && tag.name == "name" && entry_.name.empty()) {
            const std::string_view name = NameFrom(text_, tag.end);
            entry_.name = NameOfDocument(name, names_);
            at_ = tag.end + name.size();
            if (text_.substr(at_).starts_with(kNameClosing)) {
                at_ += kNameClosing.size();
            } else {
                Refuse(u"не закрыт <name>", at_);
            }
            entry_.name_begin = tag.begin - entry_.begin;
            entry_.name_end = at_ - entry_.begin;
            return;
        }
        const std::size_t end = EndOfValue(text_, tag.end, tag.name);
        if (end == text_.npos) {
            open_.push_back(tag);
        } else {
            at_ = end;
        }
    }

    void Close(const MarkupTag& tag) {
        if (tag.name != open_.back().name) {
            Refuse(Markup(u"</", tag.name) + u" стоит там, где нужен " + Markup(u"</", open_.back().name),
                   tag.begin);
        } else if (open_.size() > 1) {
            const std::size_t begin = open_.back().begin;
            if (IsDigit(tag.name.back())) NoteLength(entry_, text_.data() + begin, tag.end - begin);
            open_.pop_back();
        }
        if (tag.name != "file") return;
        left_open_.assign(open_.begin() + 1, open_.end());
        open_.clear();
        const std::size_t line = text_.find_last_not_of('\t', tag.begin - 1);
        const std::size_t tabs = tag.begin - 1 - line;
        entry_.notes = static_cast<EntryNotes>(tabs);
    }

    void Refuse(Text fault, std::size_t at) {
        if (!entry_.fault.empty()) return;
        entry_.fault = std::move(fault);
        entry_.fault_at = at;
    }

    std::string_view text_;
    NameForm names_;
    std::size_t at_;
    std::vector<MarkupTag> open_;
    std::vector<MarkupTag> left_open_;
    CatalogueEntry entry_;
};

// Where the last line before `end` begins.
std::size_t LastLine(std::string_view text, std::size_t end) {
    return text.rfind('\n', end - 2) + 1;
}

bool IsValue(std::string_view line) {
    const std::size_t tag = line.find_first_not_of('\t');
    return tag != line.npos && (line.substr(tag).starts_with("<h0") || line.substr(tag).starts_with("<h1") ||
                                line.substr(tag).starts_with("<p"));
}

}  // namespace

std::optional<std::size_t> PlaceOfField(char letter, int number) {
    if ((letter != 'h' && letter != 'p') || number < 0 || number >= kNumbers) return std::nullopt;
    return PlaceOf(letter, number);
}

Text NameOfDocument(std::string_view bytes, NameForm form) {
    return form == NameForm::Raw ? FromWindows1251(bytes) : TextBetweenTags(bytes);
}

CatalogueEntry ReadEntry(std::string_view catalogue, const MarkupTag& file, NameForm names) {
    return EntryReader(catalogue, file, names).Read();
}

std::vector<CatalogueElement> PartsIn(std::string_view bytes, const CatalogueEntry& entry) {
    const std::string_view whole = bytes.substr(0, entry.end - entry.begin);
    const std::size_t begin = TagAt(whole, 0).end;
    std::vector<CatalogueElement> parts;
    const auto take = [&](std::string_view content) {
        for (const CatalogueElement& part : ElementsOf(content, "part")) parts.push_back(part);
    };
    if (entry.name_end > 0) take(whole.substr(begin, entry.name_begin - begin));
    take(whole.substr(std::max(begin, entry.name_end)));
    return parts;
}

std::string WithNotes(std::string entry, EntryNotes notes) {
    return entry.insert(entry.rfind(kFileClosing), notes, '\t');
}

std::string WithAllClosed(std::string entry) {
    EntryReader reader(entry, TagAt(entry, 0), NameForm::Raw);
    reader.Read();
    std::vector<MarkupTag> open = reader.TakeLeftOpen();
    if (open.empty()) return entry;
    std::size_t end = entry.rfind(kFileClosing);
    if (open.back().name == "row") {
        end = LastLine(entry, open.back().end + 2);
        open.pop_back();
    } else if (IsValue(std::string_view(entry).substr(LastLine(entry, end)))) {
        end = LastLine(entry, end);
    }
    std::string closed = entry.substr(0, end);
    for (auto tag = open.rbegin(); tag != open.rend(); ++tag)
        closed.append("</").append(tag->name).append(">\r\n");
    return closed.append(kFileClosing).append("\r\n");
}

}  // namespace tav
