#include "load/account_maker.h"

#include <algorithm>

#include "common/concat.h"

namespace tav {

void AccountMaker::Add(const Text& file, Remark remark) {
    std::vector<Remark>& remarks = found_[file].remarks;
    if (std::ranges::find(remarks, remark) == remarks.end()) remarks.push_back(std::move(remark));
}

void AccountMaker::AddScanned(const ScannedFile& file, const HeldFiles& held) {
    const bool nothing = file.found == ScannedFile::Found::Nothing;
    const bool unreadable =
        file.state == ScannedFile::State::Unreadable || file.found == ScannedFile::Found::Broken;
    if (!nothing && !unreadable && !file.cut_off && !file.dropped_text) return;
    FileAccount& found = found_[file.name];
    const auto add_once = [&](Finding finding) {
        if (found.Find(finding) == nullptr) found.remarks.push_back({finding, file.reason});
    };
    if (unreadable) {
        add_once(Finding::Unreadable);
    } else if (nothing) {
        add_once(Finding::NotRecognised);
    }
    // Nothing was stored of such a document.
    if (nothing && !unreadable && held.contains(file.name)) {
        Add(file.name, {Finding::Changed});
    }
    if (file.cut_off) Add(file.name, {Finding::CutOff});
    if (file.dropped_text) Add(file.name, {Finding::DroppedText});
}

std::vector<Text> NoticesOf(const ScanAccount& scan) {
    std::vector<Text> notices;
    if (!scan.unnamable.empty()) {
        notices.push_back(Concat(u"Файлов с именами, которые нельзя записать в каталог: ",
                                 Digits(static_cast<long long>(scan.unnamable.size())), u"."));
    }
    if (scan.unlisted_acts > 0) {
        notices.push_back(Concat(u"Файлов XML, похожих на акты: ", Digits(scan.unlisted_acts),
                                 u"; их загружает параметр ActXml (tav import --acts-xml)."));
    }
    return notices;
}

std::vector<FileAccount> AccountMaker::FilesOf(const std::vector<TextView>& listed,
                                               const HeldFiles& held) const {
    std::vector<FileAccount> files;
    files.reserve(listed.size());
    for (const TextView name : listed) {
        FileAccount& file = files.emplace_back();
        file.name = name;
        const auto stored = held.find(name);
        if (stored != held.end()) {
            if (stored->second.current) file.remarks.push_back({Finding::Loaded});
            if (stored->second.superseded) file.remarks.push_back({Finding::Superseded});
        }
        if (const auto found = found_.find(file.name); found != found_.end()) {
            file.now = found->second.now;
            const std::vector<Remark>& remarks = found->second.remarks;
            file.remarks.insert(file.remarks.end(), remarks.begin(), remarks.end());
        }
        if (stored != held.end()) {
            for (const Remark& remark : stored->second.foreign) {
                if (std::ranges::find(file.remarks, remark) == file.remarks.end())
                    file.remarks.push_back(remark);
            }
        }
        if (file.remarks.empty()) file.remarks.push_back({Finding::New});
        if (file.remarks.size() > 1) std::ranges::stable_sort(file.remarks, {}, &Remark::finding);
    }
    return files;
}

}  // namespace tav
