// Gathers what is found of a folder's files, one after the other, and makes the account of it.
#pragma once

#include <unordered_map>

#include "convert/scan_account.h"
#include "load/account.h"
#include "load/known_files.h"

namespace tav {

// What a scan knows of the folder as a whole, one sentence each.
std::vector<Text> NoticesOf(const ScanAccount& scan);

class AccountMaker {
 public:
    // A remark about a file; the same one twice counts once.
    void Add(const Text& file, Remark remark);
    // What a scan knows of the file, beside what was found of its documents.
    void AddScanned(const ScannedFile& file, const HeldFiles& held);
    // Something of the file has been stored now.
    void Stored(const Text& file) { found_[file].now = true; }
    bool IsStored(const Text& file) const {
        const auto found = found_.find(file);
        return found != found_.end() && found->second.now;
    }
    // What was found of the file, or that it was stored, is taken back.
    void Forget(const Text& file) { found_.erase(file); }

    // The files that are listed, with what the database holds of them and what was found; a file of which
    // nothing is known is new.
    std::vector<FileAccount> FilesOf(const std::vector<TextView>& listed, const HeldFiles& held) const;

 private:
    std::unordered_map<Text, FileAccount> found_;  // by the name; without the state in the database
};

}  // namespace tav
