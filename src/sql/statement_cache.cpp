#include "sql/statement_cache.h"

#include <charconv>
#include <functional>
#include <string>

namespace tav::jet {
namespace {

constexpr std::size_t kMostStatements = 128;

// Gives `take` each fixed piece with the value after it (nullptr after the last piece).
template <class Take>
bool ForEachPiece(const SqlText& sql, Take take) {
    const TextView text = sql.text();
    std::size_t begin = 0;
    for (const SqlText::Span& value : sql.values()) {
        if (!take(text.substr(begin, value.begin - begin), &value)) return false;
        begin = value.begin + value.length;
    }
    return take(text.substr(begin), nullptr);
}

}  // namespace

Shape::Shape(const SqlText& sql) {
    ForEachPiece(sql, [&](TextView piece, const SqlText::Span* value) {
        fixed_ += piece;
        pieces_.push_back({piece.size(), value != nullptr && value->quoted});
        return true;
    });
}

bool Shape::Fits(const SqlText& sql) const {
    if (pieces_.size() != sql.values().size() + 1) return false;
    std::size_t at = 0;
    const Piece* expected = pieces_.data();
    return ForEachPiece(sql, [&](TextView piece, const SqlText::Span* value) {
        const bool same = *expected == Piece{piece.size(), value != nullptr && value->quoted} &&
                          TextView(fixed_).substr(at, piece.size()) == piece;
        at += piece.size();
        ++expected;
        return same;
    });
}

std::uint64_t Shape::Hash(const SqlText& sql) {
    std::uint64_t hash = sql.values().size();
    ForEachPiece(sql, [&](TextView piece, const SqlText::Span*) {
        hash = (hash ^ std::hash<TextView>()(piece)) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 32;
        return true;
    });
    return hash;
}

Prepared* StatementCache::Find(const SqlText& sql) {
    const auto known = by_hash_.find(Shape::Hash(sql));
    if (known == by_hash_.end() || !known->second->prepared.shape.Fits(sql)) return nullptr;
    entries_.splice(entries_.begin(), entries_, known->second);
    return &entries_.front().prepared;
}

Prepared& StatementCache::Add(const SqlText& sql, Prepared prepared) {
    const std::uint64_t hash = Shape::Hash(sql);
    if (const auto same = by_hash_.find(hash); same != by_hash_.end()) {
        entries_.erase(same->second);
        by_hash_.erase(same);
    }
    if (entries_.size() == kMostStatements) {
        by_hash_.erase(entries_.back().hash);
        entries_.pop_back();
    }
    entries_.push_front({hash, std::move(prepared)});
    by_hash_[hash] = entries_.begin();
    return entries_.front().prepared;
}

SqlText WithValues(const SqlText& sql) {
    const TextView text = sql.text();
    const std::vector<Token> tokens = Tokenize(sql);
    const bool insert = !tokens.empty() && tokens[0].Is(u"insert");
    SqlText out;
    std::size_t at = 0;
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (token.kind == TokenKind::String) {
            out.Fixed(text.substr(at, token.begin + 1 - at))
                .Value(WithoutDoubling(token.text.substr(1, token.text.size() - 2)));
            at = token.begin + token.text.size() - 1;
        } else if (token.kind == TokenKind::Number && (insert || tokens[i - 1].Is(u"="))) {
            const std::string digits = ToUtf8(token.text);
            std::int64_t number = 0;
            const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
            if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) continue;
            out.Fixed(text.substr(at, token.begin - at)).Number(number);
            at = token.begin + token.text.size();
        }
    }
    return out.Fixed(text.substr(at));
}

}  // namespace tav::jet
