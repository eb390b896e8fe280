#include "sql/sql_collation.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "common/failure.h"
#include "common/regional.h"
#include "sql/sql_value.h"
#include "sql/sqlite_handles.h"

namespace tav::jet {
namespace {

// Twice the character, so that a letter that has no place of its own fits between two others.
unsigned Weight(char16_t c) {
    const char16_t upper = UpperChar(c);
    return upper == u'Ё' ? 2U * u'Е' + 1 : 2U * upper;
}

// Characters in memory that may begin at an odd address: SQLite keeps them wherever they fit.
struct Characters {
    const unsigned char* bytes;
    std::size_t size;

    Characters(const void* text, std::size_t length)
        : bytes(static_cast<const unsigned char*>(text)), size(length) {
        while (size > 0 && (*this)[size - 1] == u' ') --size;  // trailing blanks do not count
    }
    explicit Characters(TextView text) : Characters(text.data(), text.size()) {}

    char16_t operator[](std::size_t i) const {
        char16_t c;
        std::memcpy(&c, bytes + i * sizeof c, sizeof c);
        return c;
    }
};

int Compare(const Characters& a, const Characters& b) {
    const std::size_t common = std::min(a.size, b.size);
    for (std::size_t i = 0; i < common; ++i) {
        if (a[i] == b[i]) continue;
        const unsigned x = Weight(a[i]);
        const unsigned y = Weight(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size == b.size) return 0;
    return a.size < b.size ? -1 : 1;
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
    throw Failure(RunTimeError::DataTypeMismatch, Text(u"'").append(ValueText(value)).append(u"'"));
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
