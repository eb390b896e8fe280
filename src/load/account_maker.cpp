#include "load/account_maker.h"

#include <algorithm>

namespace tav {

void AccountMaker::Add(const Text& file, Remark remark) {
    std::vector<Remark>& remarks = found_[file].remarks;
    if (std::ranges::find(remarks, remark) == remarks.end()) remarks.push_back(std::move(remark));
}

void AccountMaker::AddFirst(const Text& file, Remark remark) {
    std::vector<Remark>& remarks = found_[file].remarks;
    remarks.insert(remarks.begin(), std::move(remark));
}

std::vector<FileAccount> AccountMaker::FilesOf(const std::vector<Text>& listed, const HeldFiles& held) const {
    std::vector<FileAccount> files;
    files.reserve(listed.size());
    for (const Text& name : listed) {
        FileAccount& file = files.emplace_back();
        file.name = name;
        if (const auto stored = held.find(UpperCase(name)); stored != held.end()) {
            if (stored->second.current) file.remarks.push_back({Finding::Loaded});
            if (stored->second.superseded) file.remarks.push_back({Finding::Superseded});
        }
        if (const auto found = found_.find(name); found != found_.end()) {
            file.now = found->second.now;
            const std::vector<Remark>& remarks = found->second.remarks;
            file.remarks.insert(file.remarks.end(), remarks.begin(), remarks.end());
        }
        if (file.remarks.empty()) file.remarks.push_back({Finding::New});
    }
    return files;
}

}  // namespace tav
