#include "sql/change_log.h"

#include "common/failure.h"

namespace tav::jet {
namespace {

// Above this, making a hash anew costs no more than following the changes.
constexpr std::size_t kMostChanges = 10'000;

}  // namespace

void ChangeLog::Begin() {
    End();
    noting_ = true;
}

void ChangeLog::End() {
    noting_ = false;
    lost_ = false;
    changes_.clear();
}

void ChangeLog::Note(Change change) {
    if (!noting_ || lost_) return;
    lost_ = changes_.size() == kMostChanges;
    if (!lost_) changes_.push_back(std::move(change));
}

void ChangeLog::Inserted(RowId id) {
    Note({id, {}});
}

void ChangeLog::Updated(RowId id, std::vector<Value> before) {
    Note({id, std::move(before)});
}

void ChangeLog::TakeBack(std::size_t length) {
    if (!search_.HasHashes()) return changes_.resize(length);
    try {
        for (; !lost_ && changes_.size() > length; changes_.pop_back()) {
            const auto& [id, before] = changes_.back();
            const std::vector<Value> now = table_.Find(id).All();
            if (before.empty()) {
                search_.Deleted(now, id);
            } else {
                search_.Updated(now, before, id);
            }
        }
    } catch (...) {
        lost_ = true;  // a damaged page, or too little memory; the statement's own failure says so
    }
    if (lost_) search_.DropHashes();
}

}  // namespace tav::jet
