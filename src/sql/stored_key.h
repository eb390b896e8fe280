// What is known of rows by the bytes that some of their columns have in the file. Equal bytes are equal values;
// equal values may have different bytes.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/table/row.h"

namespace tav::jet {

template <class Known>
class StoredKeys {
 public:
    StoredKeys(const TableDefinition& table, std::vector<std::size_t> columns)
        : table_(&table), columns_(std::move(columns)) {}

    // What was added for a row of these bytes; nullptr when nothing was.
    const Known* Find(const Row& row) {
        Read(row);
        const auto known = known_.find(key_);
        return known == known_.end() ? nullptr : &known->second;
    }
    // Adds something for the row that Find did not know, as long as memory is not too much.
    void Add(Known known) {
        if (bytes_ >= kMostBytes) return;
        bytes_ += key_.size() + kBesideKey;
        known_.emplace(key_, std::move(known));
    }

 private:
    static constexpr std::size_t kMostBytes = 8 << 20;
    static constexpr std::size_t kBesideKey = 80;  // what a key costs without its bytes

    void Read(const Row& row) {
        key_.clear();
        for (const std::size_t column : columns_) {
            if (table_->columns[column].type == ColumnType::Boolean) {
                key_ += std::get<bool>(row.Get(column)) ? '\1' : '\0';
                continue;
            }
            const auto stored = row.Stored(column);
            key_ += stored ? '\1' : '\0';
            if (!stored) continue;
            const auto size = static_cast<std::uint16_t>(stored->size());  // a row is shorter than a page
            key_.append({static_cast<char>(size & 0xFF), static_cast<char>(size >> 8)});
            key_.append(reinterpret_cast<const char*>(stored->data()), stored->size());
        }
    }

    const TableDefinition* table_;
    std::vector<std::size_t> columns_;
    std::string key_;  // of the row last asked for
    std::unordered_map<std::string, Known> known_;
    std::size_t bytes_ = 0;  // of memory
};

}  // namespace tav::jet
