#include "jet/index/index_key.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "common/failure.h"
#include "jet/index/text_codes.h"

namespace tav::jet {

namespace {

constexpr char kNull = '\x00';
constexpr char kDescendingNull = '\xFF';
constexpr char kStart = '\x7F';
constexpr char kDescendingStart = '\x80';
constexpr std::size_t kKeyCharacters = 255;

void AppendBig(std::string& key, std::uint64_t value, int bytes) {
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) key += static_cast<char>(value >> shift);
}

// Below, every function appends the bytes of a value to the key and returns why it could not, or empty.

template <int bytes>
Text AppendWhole(std::string& key, const Value& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (number == nullptr) return u"it is not a whole number";
    constexpr std::int64_t limit = std::int64_t{1} << (bytes * 8 - 1);
    if (*number < -limit || *number >= limit) return u"it is out of the column's range";
    AppendBig(key, static_cast<std::uint64_t>(*number + limit), bytes);
    return {};
}

Text AppendByte(std::string& key, const Value& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (number == nullptr || *number < 0 || *number > 0xFF) return u"it is not a byte";
    key += static_cast<char>(*number);
    return {};
}

Text AppendMoney(std::string& key, const Value& value) {
    const auto* money = std::get_if<Money>(&value);
    if (money == nullptr) return u"it is not an amount of money";
    AppendBig(key, static_cast<std::uint64_t>(money->ten_thousandths) ^ (std::uint64_t{1} << 63), 8);
    return {};
}

Text AppendReal(std::string& key, double number) {
    if (!std::isfinite(number)) return u"it is not a number";
    const auto bits = std::bit_cast<std::uint64_t>(number);
    const std::uint64_t sign = std::uint64_t{1} << 63;
    AppendBig(key, (bits & sign) != 0 ? ~bits : bits ^ sign, 8);
    return {};
}

Text AppendDouble(std::string& key, const Value& value) {
    const auto* number = std::get_if<double>(&value);
    return number == nullptr ? u"it is not a number" : AppendReal(key, *number);
}

Text AppendDate(std::string& key, const Value& value) {
    const auto* date = std::get_if<Date>(&value);
    return date == nullptr ? u"it is not a date" : AppendReal(key, date->serial);
}

Text AppendBinary(std::string& key, const Value& value) {
    const auto* binary = std::get_if<Binary>(&value);
    if (binary == nullptr) return u"it is not binary";
    if (binary->bytes.empty()) return u"the code of an empty value is not known";
    constexpr std::size_t kGroup = 8;
    const std::string_view bytes = binary->bytes;
    for (std::size_t at = 0; at < bytes.size(); at += kGroup) {
        const std::string_view group = bytes.substr(at, kGroup);
        key += group;
        key.append(kGroup - group.size(), '\0');
        key += at + kGroup < bytes.size() ? '\x09' : static_cast<char>(group.size());
    }
    return {};
}

Text CharacterName(char16_t c) {
    constexpr TextView kHex = u"0123456789ABCDEF";
    Text name = u"U+";
    for (int shift = 12; shift >= 0; shift -= 4) name += kHex[c >> shift & 0xF];
    return c > u' ' ? Text(1, c) + u" (" + name + u")" : name;
}

Text AppendText(std::string& key, const Value& value) {
    const auto* text = std::get_if<Text>(&value);
    if (text == nullptr) return u"it is not text";
    TextView characters = TextView(*text).substr(0, kKeyCharacters);
    characters = characters.substr(0, characters.find_last_not_of(u' ') + 1);
    std::string accents;   // one byte for each character, 02 for a plain one
    std::string specials;  // apostrophes, hyphens, dashes
    bool accented = false;
    for (const char16_t c : characters) {
        const std::optional<TextCode> found = FindTextCode(c);
        if (!found) return u"the code of the character " + CharacterName(c) + u" is not known";
        if (found->special != 0) {
            AppendBig(specials, 0x8000 | (7 + 4 * accents.size()), 2);
            specials += '\x06';
            specials += static_cast<char>(found->special);
            continue;
        }
        AppendBig(key, found->code, found->code > 0xFF ? 2 : 1);
        accented = accented || found->accent != 0;
        accents += found->accent != 0 ? static_cast<char>(found->accent) : '\x02';
    }
    key += '\x01';
    if (accented) key.append(accents, 0, accents.find_last_not_of('\x02') + 1);
    if (!specials.empty()) key.append("\x01\x01\x01").append(specials);
    key += '\0';
    return {};
}

using Append = Text (*)(std::string& key, const Value& value);

// How values of a column type become bytes; nullptr when that is not known.
Append AppendOf(ColumnType type) {
    switch (type) {
        case ColumnType::Byte:
            return AppendByte;
        case ColumnType::Integer:
            return AppendWhole<2>;
        case ColumnType::Long:
            return AppendWhole<4>;
        case ColumnType::Currency:
            return AppendMoney;
        case ColumnType::Double:
            return AppendDouble;
        case ColumnType::Date:
            return AppendDate;
        case ColumnType::Binary:
            return AppendBinary;
        case ColumnType::Text:
        case ColumnType::Memo:
            return AppendText;
        default:
            return nullptr;
    }
}

// Why the column's values have no keys, or empty.
Text WhyNoKeys(const Column& column, bool ascending) {
    if (AppendOf(column.type) == nullptr) return u"the codes of its type are not known";
    if (!ascending && column.type != ColumnType::Long)
        return u"the codes of its descending order are not known";
    const bool known = column.sort_order == kCodedSortOrder && column.sort_version == kCodedSortVersion;
    if (!column.IsText() || known) return {};
    return u"the codes of its sort order " + Digits(column.sort_order) + u" version " +
           Digits(column.sort_version) + u" are not known";
}

Text AppendColumn(std::string& key, const Column& column, bool ascending, const Value& value) {
    if (Text reason = WhyNoKeys(column, ascending); !reason.empty()) return reason;
    if (IsNull(value)) {
        key += ascending ? kNull : kDescendingNull;
        return {};
    }
    key += ascending ? kStart : kDescendingStart;
    const std::size_t begin = key.size();
    Text reason = AppendOf(column.type)(key, value);
    if (!ascending) {
        std::transform(key.begin() + static_cast<std::ptrdiff_t>(begin), key.end(),
                       key.begin() + static_cast<std::ptrdiff_t>(begin),
                       [](char byte) { return static_cast<char>(~byte); });
    }
    return reason;
}

// How a value is shown in a message: a text by its beginning.
Text Shown(const Value& value) {
    constexpr std::size_t kShown = 60;
    if (const auto* text = std::get_if<Text>(&value)) {
        return u" \"" + text->substr(0, kShown) + (text->size() > kShown ? u"...\"" : u"\"");
    }
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? Text() : u" " + Digits(*number);
}

}  // namespace

Text WhyNoKeys(const TableDefinition& table, const RealIndex& index) {
    for (const IndexColumn& part : index.columns) {
        const Column& column = table.columns[part.column];
        if (const Text reason = WhyNoKeys(column, part.ascending); !reason.empty()) {
            return u"the index \"" + index.name + u"\" cannot be kept: column \"" + column.name + u"\": " +
                   reason;
        }
    }
    return {};
}

std::string EncodeKey(const TableDefinition& table, const RealIndex& index, std::span<const Value> row) {
    std::string key;
    for (const IndexColumn& part : index.columns) {
        const Column& column = table.columns[part.column];
        const Value& value = row[part.column];
        Text reason = AppendColumn(key, column, part.ascending, value);
        if (reason.empty() && key.size() > kMaxKeySize) reason = u"the key is too long";
        if (!reason.empty()) {
            throw Failure(u"The value" + Shown(value) + u" of column \"" + column.name +
                          u"\" cannot be put into the index \"" + index.name + u"\": " + reason + u".");
        }
    }
    return key;
}

std::optional<std::string> EncodeKeyColumn(const Column& column, bool ascending, const Value& value) {
    if (value == Value(0.0) || value == Value(Date{0.0})) return std::nullopt;
    std::string key;
    if (!AppendColumn(key, column, ascending, value).empty()) return std::nullopt;
    return key;
}

bool AllNull(const RealIndex& index, std::span<const Value> row) {
    return std::all_of(index.columns.begin(), index.columns.end(),
                       [&](const IndexColumn& part) { return IsNull(row[part.column]); });
}

}  // namespace tav::jet
