#include "sql/sql_collation.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "common/concat.h"
#include "common/failure.h"
#include "common/regional.h"
#include "jet/index/text_codes.h"
#include "sql/sql_value.h"
#include "sql/sqlite_handles.h"

namespace tav::jet {
namespace {

// Characters in memory that may begin at an odd address: SQLite keeps them wherever they fit.
struct Characters {
    const unsigned char* bytes;
    std::size_t size;

    Characters(const void* text, std::size_t length)
        : bytes(static_cast<const unsigned char*>(text)), size(length) {
        while (size > 0 && (*this)[size - 1] == u' ') --size;  // trailing spaces do not count
    }
    explicit Characters(TextView text) : Characters(text.data(), text.size()) {}

    char16_t operator[](std::size_t i) const {
        char16_t c;
        std::memcpy(&c, bytes + i * sizeof c, sizeof c);
        return c;
    }
};

// Where a character stands in the order of texts. One without a known code comes after those that have one.
struct Place {
    std::uint32_t weight = 0;
    std::uint8_t accent = 0;
    std::uint8_t special = 0;  // of an apostrophe, a hyphen or a dash, which order texts last of all
};

Place PlaceOf(char16_t c) {
    constexpr std::uint8_t kNoMark = 2;
    const std::optional<TextCode> code = FindTextCode(c);
    if (!code) return {0x10000U + UpperChar(c), kNoMark, 0};
    const std::uint32_t weight = code->code > 0xFF ? code->code : code->code * 0x100U;
    return {weight, code->accent != 0 ? code->accent : kNoMark, code->special};
}

// Walks the letters (all but the specials) or the specials of a text.
class Walk {
 public:
    Walk(const Characters& text, std::size_t at) : text_(text), at_(at) {}

    std::optional<Place> NextLetter() {
        while (at_ < text_.size) {
            const Place place = PlaceOf(text_[at_++]);
            if (place.special == 0) return place;
        }
        return std::nullopt;
    }
    // With the number of letters before it.
    std::optional<std::pair<std::size_t, std::uint8_t>> NextSpecial() {
        while (at_ < text_.size) {
            const Place place = PlaceOf(text_[at_++]);
            if (place.special != 0) return std::pair(letters_, place.special);
            ++letters_;
        }
        return std::nullopt;
    }

 private:
    const Characters& text_;
    std::size_t at_;
    std::size_t letters_ = 0;
};

int Sign(bool less) {
    return less ? -1 : 1;
}

// As the index keys of the texts compare: by letters, then by accents, then by specials.
int Compare(const Characters& a, const Characters& b) {
    const std::size_t common = std::min(a.size, b.size);
    std::size_t same = 0;
    while (same < common && a[same] == b[same]) ++same;
    if (same == a.size && same == b.size) return 0;

    int by_accents = 0;
    Walk x(a, same);
    Walk y(b, same);
    auto p = x.NextLetter();
    auto q = y.NextLetter();
    for (; p && q; p = x.NextLetter(), q = y.NextLetter()) {
        if (p->weight != q->weight) return Sign(p->weight < q->weight);
        if (by_accents == 0 && p->accent != q->accent) by_accents = Sign(p->accent < q->accent);
    }
    if (p || q) return Sign(!p);
    if (by_accents != 0) return by_accents;

    Walk u(a, same);
    Walk v(b, same);
    while (true) {
        const auto r = u.NextSpecial();
        const auto t = v.NextSpecial();
        if (r != t) return Sign(r < t);  // none comes first
        if (!r) return 0;
    }
}

int CollateBytes(void*, int a_bytes, const void* a, int b_bytes, const void* b) {
    const auto characters = [](const void* text, int bytes) {
        return Characters(text, static_cast<std::size_t>(bytes) / sizeof(char16_t));
    };
    return Compare(characters(a, a_bytes), characters(b, b_bytes));
}

Value UpperCaseOf(sqlite3_value* argument) {
    return UpperCase(ValueText(FromSqlite(argument)));
}

// An amount: a text by the regional form; a date is none.
Value NumberOf(sqlite3_value* argument) {
    Value value = FromSqlite(argument);
    if (const Text* text = std::get_if<Text>(&value)) {
        if (const std::optional<double> number = ParseNumber(*text)) return *number;
    } else if (!std::holds_alternative<Date>(value) && !std::holds_alternative<Binary>(value)) {
        return value;
    }
    throw Failure(RunTimeError::DataTypeMismatch, Concat(u"'", ValueText(value), u"'"));
}

// A function of one argument; of Null it is Null.
template <Value (*function)(sqlite3_value*)>
void Call(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    try {
        SetResult(context, function(arguments[0]));
    } catch (...) {
        static_cast<Callbacks*>(sqlite3_user_data(context))->Keep();
        sqlite3_result_error_code(context, SQLITE_ERROR);
    }
}

}  // namespace

int Collate(TextView a, TextView b) {
    return Compare(Characters(a), Characters(b));
}

std::uint64_t CollationHash(TextView text) {
    const Characters characters(text);
    std::uint64_t hash = 0xCBF29CE484222325;
    for (std::size_t i = 0; i < characters.size; ++i) {
        hash = (hash ^ UpperChar(characters[i])) * 0x100000001B3;
    }
    return hash;
}

void AddDialect(sqlite3* database, Callbacks& callbacks) {
    const auto add = [&](const char* name, auto* function) {
        const int flags = SQLITE_UTF16LE | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
        return sqlite3_create_function(database, name, 1, flags, &callbacks, function, nullptr, nullptr) ==
               SQLITE_OK;
    };
    const int collation =
        sqlite3_create_collation(database, kCollation, SQLITE_UTF16LE, nullptr, &CollateBytes);
    if (collation != SQLITE_OK || !add("ucase", &Call<UpperCaseOf>) || !add("number", &Call<NumberOf>)) {
        throw Failure(RunTimeError::OutOfMemory);
    }
}

}  // namespace tav::jet
