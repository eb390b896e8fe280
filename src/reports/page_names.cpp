#include "reports/page_names.h"

#include "common/concat.h"
#include "common/windows1251.h"

namespace tav {
namespace {

// In bytes of UTF-8, of which a file name may have 255. A name comes first and gets room for 60 Cyrillic
// letters, enough to tell taxes apart; codes and periods need no more than 20 digits.
constexpr std::size_t kNameRoom = 120;
constexpr std::size_t kCodeRoom = 24;

// "#", "%" and "?" have a meaning in links.
bool IsPlain(char16_t c) {
    constexpr TextView kForbidden = u"\\/:*?\"<>|#%";
    const bool control = c < u' ' || (c >= u'\u007F' && c < u'\u00A0');
    return !control && kForbidden.find(c) == kForbidden.npos && IsWindows1251(TextView(&c, 1));
}

// Dots and spaces at either end are cut: they hide the file, or the system drops them.
Text PlainField(TextView field, std::size_t room) {
    Text plain;
    for (const char16_t c : field) {
        const char16_t kept = IsPlain(c) ? c : u'_';
        const std::size_t bytes = ToUtf8(TextView(&kept, 1)).size();
        if (bytes > room) break;
        room -= bytes;
        plain += kept;
    }
    constexpr TextView kOuter = u" .\u00A0";
    const std::size_t begin = plain.find_first_not_of(kOuter);
    if (begin == plain.npos) return {};
    return plain.substr(begin, plain.find_last_not_of(kOuter) + 1 - begin);
}

}  // namespace

Text YearAndMonth(const Value& day) {
    const Date* date = std::get_if<Date>(&day);
    if (date == nullptr) return {};
    const CivilDate civil = CivilFromDate(*date);
    return Digits(civil.year, 4) + Digits(civil.month, 2);
}

Text PageNames::Take(std::initializer_list<TextView> fields) {
    Text stem;
    for (const TextView field : fields) {
        const Text plain = PlainField(field, stem.empty() ? kNameRoom : kCodeRoom);
        if (!stem.empty() && !plain.empty()) stem += u'_';
        stem += plain;
    }
    Text name = stem;
    std::size_t& uses = uses_[UpperCase(stem)];
    while (++uses > 1) {
        name = Concat(stem, u"_", Digits(static_cast<long long>(uses)));
        if (uses_.try_emplace(UpperCase(name), 1).second) break;
    }
    return name.append(u".doc");
}

}  // namespace tav
