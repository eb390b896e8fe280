// Prepared statements by shape: the fixed pieces of a text, with holes where its values stand.
//
// Thousands of statements differ in their values only. Recognising the shape costs one walk over the fixed
// pieces; nothing is tokenised or parsed again.
#pragma once

#include <cstdint>
#include <list>
#include <unordered_map>
#include <vector>

#include "sql/sql_rewrite.h"
#include "sql/sqlite_handles.h"

namespace tav::jet {

class VirtualTable;

class Shape {
 public:
    explicit Shape(const SqlText& sql);

    bool Fits(const SqlText& sql) const;
    static std::uint64_t Hash(const SqlText& sql);

 private:
    struct Piece {
        std::size_t length;
        bool quoted;  // the value after it
        bool operator==(const Piece&) const = default;
    };
    Text fixed_;
    std::vector<Piece> pieces_;
};

struct Prepared {
    Shape shape;
    Rewritten rewritten;
    VirtualTable* changed;  // by an insert, update or delete
    StatementHandle statement;
    bool finds_rows;             // it selects the numbers of the rows to be deleted
    std::vector<Text> names;     // of the result's columns
    std::vector<Value> written;  // values bound by reference that are not the text's own characters
};

class StatementCache {
 public:
    // nullptr when there is none of the shape. Valid until the next Add.
    Prepared* Find(const SqlText& sql);
    Prepared& Add(const SqlText& sql, Prepared prepared);

 private:
    struct Entry {
        std::uint64_t hash;
        Prepared prepared;
    };
    std::list<Entry> entries_;  // the last used first
    std::unordered_map<std::uint64_t, std::list<Entry>::iterator> by_hash_;
};

// The same text with its literals as values, so that texts that came without any have a shape too.
SqlText WithValues(const SqlText& sql);

}  // namespace tav::jet
