#include "account_output.h"

#include "json_text.h"
#include "terminal_output.h"

namespace tav::cli {
namespace {

// Of more files with one finding a person is told the number; --json has all.
constexpr int kNamesShown = 20;

Text Named(const FileAccount& file, Finding finding) {
    Text line = u"    " + file.name;
    const Remark& remark = *file.Find(finding);
    if (!remark.reason.empty()) line.append(u": ").append(remark.reason);
    return line;
}

void PrintNames(const ImportAccount& account, Finding finding, int count) {
    int shown = 0;
    for (const FileAccount& file : account.files) {
        if (shown == kNamesShown) break;
        if (file.Find(finding) == nullptr) continue;
        PrintLine(Named(file, finding));
        ++shown;
    }
    if (count > shown) PrintLine(u"    ... и ещё " + Digits(count - shown));
}

JsonText JsonOf(const Remark& remark) {
    JsonText::Members members = {{"finding", TextOf(remark.finding).key}};
    for (const auto& [name, text] :
         {std::pair{"reason", &remark.reason}, {"inn", &remark.inn}, {"kpp", &remark.kpp}}) {
        if (!text->empty()) members.emplace_back(name, ToUtf8(*text));
    }
    return JsonText::Object(members);
}

JsonText JsonOf(const FileAccount& file) {
    std::vector<JsonText> remarks;
    for (const Remark& remark : file.remarks) remarks.push_back(JsonOf(remark));
    return JsonText::Object(
        {{"name", ToUtf8(file.name)}, {"now", file.now}, {"remarks", JsonText::Array(remarks)}});
}

}  // namespace

void PrintAccount(const ImportAccount& account) {
    if (!account.files.empty()) PrintLine(u"Файлов: " + Digits(static_cast<long long>(account.files.size())));
    for (const FindingText& text : FindingTexts()) {
        const int count = account.Count(text.finding);
        if (count == 0) continue;
        PrintLine(Text(text.counted) + u": " + Digits(count));
        if (text.named) PrintNames(account, text.finding, count);
    }
    if (account.moved > 0) PrintLine(u"Перенесено файлов: " + Digits(account.moved));
    for (const Text& notice : account.notices) PrintLine(notice);
    PrintLine(ClosingSentence(account));
}

void PrintAccountAsJson(const ImportAccount& account) {
    JsonText::Members counts;
    for (const FindingText& text : FindingTexts()) counts.emplace_back(text.key, account.Count(text.finding));
    std::vector<JsonText> notices;
    for (const Text& notice : account.notices) notices.emplace_back(ToUtf8(notice));
    std::vector<JsonText> files;
    for (const FileAccount& file : account.files) files.push_back(JsonOf(file));
    const JsonText whole = JsonText::Object({{"sentence", ToUtf8(ClosingSentence(account))},
                                             {"imported", account.imported},
                                             {"complete", account.complete},
                                             {"documents", account.documents},
                                             {"rows", account.rows},
                                             {"moved", account.moved},
                                             {"counts", JsonText::Object(counts)},
                                             {"notices", JsonText::Array(notices)},
                                             {"files", JsonText::Array(files)}});
    Print(whole.text() + "\n");
}

}  // namespace tav::cli
