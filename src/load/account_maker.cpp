#include "load/account_maker.h"

#include <algorithm>

#include "common/concat.h"

namespace tav {

void AccountMaker::Add(const Text& file, Remark remark) {
    std::vector<Remark>& remarks = found_[file].remarks;
    if (std::ranges::find(remarks, remark) == remarks.end()) remarks.push_back(std::move(remark));
}

void AccountMaker::AddFirst(const Text& file, Remark remark) {
    std::vector<Remark>& remarks = found_[file].remarks;
    remarks.insert(remarks.begin(), std::move(remark));
}

void AccountMaker::AddScanned(const ScannedFile& file, bool held) {
    FileAccount& found = found_[file.name];
    const auto add_once = [&](Finding finding) {
        if (found.Find(finding) == nullptr) found.remarks.push_back({finding, file.reason});
    };
    if (file.state == ScannedFile::State::Unreadable || file.found == ScannedFile::Found::Broken) {
        add_once(Finding::Unreadable);
    } else if (file.found == ScannedFile::Found::Nothing) {
        add_once(Finding::NotRecognised);
    }
    if (held && !found.now && file.state == ScannedFile::State::Again) Add(file.name, {Finding::Changed});
    if (file.cut_off) Add(file.name, {Finding::CutOff});
    if (!file.dropped_text) return;
    Text pages;
    for (const std::size_t page : file.dropped_pages) {
        pages.append(pages.empty() ? u"страницы: " : u", ").append(Digits(static_cast<long long>(page)));
    }
    Add(file.name, {Finding::DroppedText, pages});
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
