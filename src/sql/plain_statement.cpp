#include "sql/plain_statement.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "sql/sql_collation.h"
#include "sql/stored_key.h"

namespace tav::jet {
namespace {

// Reads the words of a statement one after the other. After the first that is not as expected none is any more.
class Words {
 public:
    explicit Words(const Statement& statement) : statement_(statement), table_(*statement.Changed()) {}

    bool Take(TextView word) {
        const bool is = At().Is(word);
        if (is) ++at_;
        return is;
    }
    void Expect(TextView word) { as_expected_ = Take(word) && as_expected_; }
    void ExpectTable() { as_expected_ = statement_.TableAt(at_++) == &table_ && as_expected_; }
    std::size_t Column() {
        const auto column = IsName(At()) ? table_.FindColumn(At().text) : std::nullopt;
        as_expected_ = as_expected_ && column.has_value();
        ++at_;
        return column.value_or(0);
    }
    void Value(PlainValue& value) {
        if (Take(u"null")) return;
        Literal(value);
    }
    // One of texts, and the text that it equals.
    PlainValue Condition() {
        PlainValue condition{Column(), {}};
        as_expected_ = as_expected_ && table_.columns[condition.column].IsText();
        Expect(u"=");
        as_expected_ = as_expected_ && At().kind == TokenKind::String;
        Literal(condition);
        return condition;
    }
    bool WereAllAsExpected() const { return as_expected_ && at_ >= statement_.tokens().size(); }

 private:
    const Token& At() const { return statement_.At(at_); }
    void Literal(PlainValue& value) {
        as_expected_ = as_expected_ && At().IsLiteral();
        value.parameter = literals_++;
        ++at_;
    }

    const Statement& statement_;
    const TableDefinition& table_;
    std::size_t at_ = 0;
    std::size_t literals_ = 0;
    bool as_expected_ = true;
};

void ReadInsert(Words& words, PlainStatement& plain) {
    words.Expect(u"insert");
    words.Expect(u"into");
    words.ExpectTable();
    words.Expect(u"(");
    do {
        plain.stored.push_back({words.Column(), {}});
    } while (words.Take(u","));
    words.Expect(u")");
    words.Expect(u"values");
    for (PlainValue& value : plain.stored) {
        words.Expect(&value == plain.stored.data() ? u"(" : u",");
        words.Value(value);
    }
    words.Expect(u")");
}

void ReadUpdate(Words& words, PlainStatement& plain) {
    words.Expect(u"update");
    words.ExpectTable();
    words.Expect(u"set");
    do {
        PlainValue& value = plain.stored.emplace_back(PlainValue{words.Column(), {}});
        words.Expect(u"=");
        words.Value(value);
    } while (words.Take(u","));
    words.Expect(u"where");
    do {
        plain.conditions.push_back(words.Condition());
    } while (words.Take(u"and"));
}

bool SetsCondition(const PlainStatement& plain) {
    return std::ranges::any_of(plain.stored, [&](const PlainValue& value) {
        return std::ranges::find(plain.conditions, value.column, &PlainValue::column) !=
               plain.conditions.end();
    });
}

// Which update a row with these values belongs to: the last one whose conditions it meets.
class Choice {
 public:
    explicit Choice(std::span<const PlainUpdate> updates) : updates_(updates) {
        for (std::size_t i = 0; i < updates.size(); ++i) by_hash_.emplace(HashOf(updates[i].conditions), i);
    }

    std::optional<std::size_t> Find(const std::vector<Text>& texts) const {
        std::optional<std::size_t> found;
        const auto [begin, end] = by_hash_.equal_range(HashOf(texts));
        for (auto at = begin; at != end; ++at) {
            const std::size_t update = at->second;
            const bool meets = std::ranges::equal(texts, updates_[update].conditions,
                                                  [](TextView a, TextView b) { return Collate(a, b) == 0; });
            if (meets) found = std::max(update, found.value_or(update));
        }
        return found;
    }

 private:
    static std::uint64_t HashOf(const std::vector<Text>& texts) {
        std::uint64_t hash = 0;
        for (const Text& text : texts) hash = hash * 0x9E3779B97F4A7C15 + CollationHash(text);
        return hash;
    }

    std::span<const PlainUpdate> updates_;
    std::unordered_multimap<std::uint64_t, std::size_t> by_hash_;
};

std::vector<std::size_t> ColumnsOf(const std::vector<PlainValue>& values) {
    std::vector<std::size_t> columns;
    for (const PlainValue& value : values) columns.push_back(value.column);
    return columns;
}

}  // namespace

std::optional<PlainStatement> ReadPlain(const Statement& statement) {
    PlainStatement plain;
    if (statement.kind() != StatementKind::Insert && statement.kind() != StatementKind::Update) {
        return std::nullopt;
    }
    Words words(statement);
    statement.kind() == StatementKind::Insert ? ReadInsert(words, plain) : ReadUpdate(words, plain);
    if (!words.WereAllAsExpected() || SetsCondition(plain)) return std::nullopt;
    return plain;
}

bool IgnoresRepeats(const Statement& statement) {
    constexpr TextView kCounting[] = {u"group", u"having", u"union", u"top", u"limit", u"right",
                                      u"count", u"sum",    u"avg",   u"min", u"max"};
    std::ptrdiff_t selects = 0;
    for (const Token& token : statement.tokens()) {
        selects += token.Is(u"select");
        const auto is = [&](TextView word) { return token.Is(word); };
        if (std::ranges::any_of(kCounting, is)) return false;
    }
    return statement.Outermost().distinct && selects == 1;
}

void UpdateRows(Table& table, const PlainStatement& statement, std::span<const PlainUpdate> updates) {
    const std::vector<std::size_t> stored = ColumnsOf(statement.stored);
    const std::vector<std::size_t> conditions = ColumnsOf(statement.conditions);
    const Choice choice(updates);
    // The same bytes lead to the same update: most rows are decided without a look at their texts.
    StoredKeys<std::optional<std::size_t>> known(table.definition(), conditions);
    for (Table::Scan scan = table.Rows(); !scan.AtEnd(); scan.Next()) {
        const Table::Row row = scan.row();
        const std::optional<std::size_t>* update = known.Find(row);
        std::optional<std::size_t> found;
        if (update == nullptr) {
            std::vector<Text> texts;
            for (const std::size_t column : conditions) {
                Value value = row.Get(column);
                if (Text* text = std::get_if<Text>(&value)) texts.push_back(std::move(*text));
            }
            if (texts.size() == conditions.size()) found = choice.Find(texts);  // a Null equals nothing
            known.Add(found);
            update = &found;
        }
        if (*update) table.Set(row.id(), stored, updates[**update].stored);
        table.Trim();
    }
}

}  // namespace tav::jet
