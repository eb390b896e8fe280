#include "jet/table/table_properties.h"

#include <vector>

#include "jet/table/text_compression.h"

namespace tav::jet {
namespace {

constexpr std::string_view kMark{"MR2\0", 4};
constexpr std::uint16_t kNames = 0x80;
constexpr std::uint16_t kOfTable = 0;
constexpr std::uint16_t kOfColumn = 1;

// Takes fields off the front; what runs over the end gives zeros and empty pieces.
class Pieces {
 public:
    explicit Pieces(std::string_view bytes) : bytes_(bytes) {}

    bool AtEnd() const { return bytes_.empty(); }
    std::string_view Take(std::size_t size) {
        const std::string_view piece = bytes_.substr(0, size);
        bytes_.remove_prefix(piece.size());
        return piece;
    }
    std::uint32_t Number(std::size_t size) {
        std::uint32_t number = 0;
        int shift = 0;
        for (const char byte : Take(size)) {
            number |= static_cast<std::uint32_t>(static_cast<unsigned char>(byte)) << shift;
            shift += 8;
        }
        return number;
    }
    Text Name() {
        const std::string_view units = Take(Number(2));
        Pieces rest(units);
        Text name;
        for (std::size_t i = 0; i < units.size() / 2; ++i) name += static_cast<char16_t>(rest.Number(2));
        return name;
    }
    // A piece whose size, which counts itself, stands before it.
    Pieces Sized(std::size_t size_field) {
        const std::size_t size = Number(size_field);
        return Pieces(size < size_field ? Take(bytes_.size()).substr(0, 0) : Take(size - size_field));
    }

 private:
    std::string_view bytes_;
};

Text TextOf(std::string_view data) {
    return DecodeText(reinterpret_cast<const std::uint8_t*>(data.data()), data.size()).value_or(Text());
}

void TakeValue(Column& column, TextView property, std::string_view data) {
    const bool set = !data.empty() && data[0] != '\0';
    if (property == u"Required") {
        column.required = set;
    } else if (property == u"AllowZeroLength") {
        column.refuses_empty = !set;
    } else if (property == u"DefaultValue") {
        column.default_value = TextOf(data);
    } else if (property == u"ValidationRule") {
        column.validation_rule = TextOf(data);
    }
}

// Calls take(property, data) for the values of one part.
template <class Take>
void ForEachValue(Pieces& part, const std::vector<Text>& names, Take take) {
    while (!part.AtEnd()) {
        Pieces value = part.Sized(2);
        value.Take(2);
        const std::size_t property = value.Number(2);
        const std::string_view data = value.Take(value.Number(2));
        if (property < names.size()) take(names[property], data);
    }
}

void TakePart(Pieces part, bool of_column, const std::vector<Text>& names, TableDefinition& table) {
    const Text name = part.Sized(4).Name();
    if (!of_column) {
        return ForEachValue(part, names, [&](TextView property, std::string_view data) {
            if (property == u"ValidationRule") table.validation_rule = TextOf(data);
        });
    }
    const std::optional<std::size_t> column = table.FindColumn(name);
    if (!column) return;
    ForEachValue(part, names, [&](TextView property, std::string_view data) {
        TakeValue(table.columns[*column], property, data);
    });
}

}  // namespace

void TakeProperties(std::string_view properties, TableDefinition& table) {
    if (!properties.starts_with(kMark)) return;
    Pieces rest(properties.substr(kMark.size()));
    std::vector<Text> names;
    while (!rest.AtEnd()) {
        Pieces chunk = rest.Sized(4);
        const std::uint32_t kind = chunk.Number(2);
        if (kind == kNames) {
            names.clear();
            while (!chunk.AtEnd()) names.push_back(chunk.Name());
        } else if (kind == kOfTable || kind == kOfColumn) {
            TakePart(chunk, kind == kOfColumn, names, table);
        }
    }
}

}  // namespace tav::jet
