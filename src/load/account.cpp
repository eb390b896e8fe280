#include "load/account.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "common/concat.h"
#include "settings/session.h"

namespace tav {
namespace {

constexpr std::array<FindingText, kFindings> kTexts = {{
    {Finding::New, "new", u"ещё не загружен", u"Ещё не загружено", false},
    {Finding::Loaded, "loaded", u"загружен", u"Загружено", false},
    {Finding::Superseded, "superseded", u"заменена", u"Заменено другими выписками", true},
    {Finding::AllZero, "all_zero", u"все суммы нулевые", u"Не загружено, так как все суммы нулевые", true},
    {Finding::OtherTaxpayer, "other_taxpayer", u"другой налогоплательщик",
     u"Принадлежит другому налогоплательщику", true},
    {Finding::NotRecognised, "not_recognised", u"не распознан", u"Не распознано", true},
    {Finding::Unreadable, "unreadable", u"не читается", u"Не читается", true},
    {Finding::Failed, "failed", u"не загружен из-за ошибки", u"Не загружено из-за ошибки", true},
    {Finding::Changed, "changed", u"изменён после загрузки", u"Изменено после загрузки", true},
    {Finding::Shortened, "shortened", u"тексты сокращены", u"Тексты сокращены", true},
    {Finding::DroppedText, "dropped_text", u"текст пропущен", u"Текст пропущен", true},
    {Finding::CutOff, "cut_off", u"обрывается", u"Обрывается", true},
    {Finding::Arithmetic, "arithmetic", u"остатки не сходятся", u"Остатки не сходятся", true},
}};

// What belongs to the taxpayer, wherever it is now.
constexpr std::array kOwn = {Finding::New, Finding::Loaded, Finding::Superseded, Finding::AllZero,
                             Finding::Failed};

bool IsOneOf(TextView inn, TextView inns) {
    return std::ranges::any_of(InnsOf(inns), [&](const Text& one) { return one == inn; });
}

// "7701, 7702 и ещё 3": the different texts in the order of their first occurrence.
class Examples {
 public:
    void Add(const Text& text) {
        if (known_.insert(text).second) texts_.push_back(text);
    }
    bool empty() const { return texts_.empty(); }
    Text Joined() const {
        constexpr std::size_t kShown = 3;
        Text joined;
        for (std::size_t i = 0; i < std::min(kShown, texts_.size()); ++i) {
            joined.append(i > 0 ? u", " : u"").append(texts_[i]);
        }
        if (texts_.size() <= kShown) return joined;
        return joined.append(u" и ещё ").append(Digits(static_cast<long long>(texts_.size() - kShown)));
    }

 private:
    std::vector<Text> texts_;
    std::unordered_set<Text> known_;
};

// Nothing in the folder is the taxpayer's.
Text NothingOfTheTaxpayer(const ImportAccount& account) {
    Examples inns;
    Examples kpps;
    for (const FileAccount& file : account.files) {
        for (const Remark& remark : file.remarks) {
            if (remark.finding != Finding::OtherTaxpayer) continue;
            inns.Add(remark.inn);
            if (IsOneOf(remark.inn, account.inn)) kpps.Add(remark.kpp);
        }
    }
    if (inns.empty()) {
        return Concat(u"В папке нет ни выписок, ни актов: не распознано файлов ",
                      Digits(static_cast<long long>(account.files.size())), u".");
    }
    Text sentence = Text(u"В папке нет документов налогоплательщика с ИНН ").append(account.inn);
    if (kpps.empty()) return sentence.append(u", есть с ИНН ").append(inns.Joined()).append(u".");
    return sentence.append(u" и КПП ")
        .append(account.kpp)
        .append(u", есть с КПП ")
        .append(kpps.Joined())
        .append(u".");
}

Text Counted(TextView before, int number) {
    return Concat(before, Digits(number), u".");
}

}  // namespace

std::span<const FindingText> FindingTexts() {
    return kTexts;
}

const FindingText& TextOf(Finding finding) {
    return kTexts[static_cast<std::size_t>(finding)];
}

Remark OtherTaxpayer(const Text& inn, const Text& kpp) {
    return {Finding::OtherTaxpayer, Text(u"ИНН ").append(inn).append(u", КПП ").append(kpp), inn, kpp};
}

const Remark* FileAccount::Find(Finding finding) const {
    const auto found = std::ranges::find(remarks, finding, &Remark::finding);
    return found == remarks.end() ? nullptr : &*found;
}

Text FileAccount::Words() const {
    Text words;
    for (const Remark& remark : remarks) {
        if (!words.empty()) words.append(u"; ");
        words.append(TextOf(remark.finding).state);
        if (!remark.reason.empty()) words.append(u": ").append(remark.reason);
    }
    return words;
}

int ImportAccount::Count(Finding finding) const {
    return static_cast<int>(
        std::ranges::count_if(files, [&](const FileAccount& file) { return file.Find(finding) != nullptr; }));
}

int ImportAccount::CountNow() const {
    return static_cast<int>(std::ranges::count_if(files, &FileAccount::now));
}

Text ClosingSentence(const ImportAccount& account) {
    if (account.imported && !account.complete) return u"Импорт остановлен, загружены не все документы.";
    if (account.documents > 0) return Counted(u"Загружено документов: ", account.documents);
    if (account.files.empty()) return u"В папке нет документов.";
    const bool own = std::ranges::any_of(kOwn, [&](Finding finding) { return account.Count(finding) > 0; });
    if (!own) return NothingOfTheTaxpayer(account);
    if (const int failed = account.Count(Finding::Failed); failed > 0) {
        return Counted(u"Новых документов нет, не загружено из-за ошибок: ", failed);
    }
    if (const int fresh = account.Count(Finding::New); fresh > 0) {
        return Counted(u"К загрузке документов: ", fresh);
    }
    return u"Новых документов нет.";
}

}  // namespace tav
