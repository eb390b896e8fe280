#include "ui/period_tree.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <utility>

#include "common/concat.h"
#include "common/get_next.h"
#include "ui/is_date_in.h"

namespace tav {
namespace {

constexpr TextView kRootKey = u"all";
constexpr int kManyYears = 30;
constexpr int kMonthsOfQuarter = 3;
constexpr int kMonthsOfHalf = 6;

constexpr std::array<TextView, 12> kMonths = {u"Январь",   u"Февраль", u"Март",   u"Апрель",
                                              u"Май",      u"Июнь",    u"Июль",   u"Август",
                                              u"Сентябрь", u"Октябрь", u"Ноябрь", u"Декабрь"};
constexpr std::array<TextView, 4> kQuarters = {u"I", u"II", u"III", u"IV"};

std::int32_t DayNumber(int year, int month, int day) {
    return static_cast<std::int32_t>(DateFromCivil({year, month, day})->serial);
}

// The last month of the calendar's last year has no next one.
DayRange Months(int year, int first, int last) {
    const std::int32_t end = last == 12 ? DayNumber(year, 12, 31) : DayNumber(year, last + 1, 1) - 1;
    return {DayNumber(year, first, 1), end};
}

// A node already made, and the documents that can have to do with its children.
struct Branch {
    Text key;
    std::vector<std::int32_t> begins;
    std::vector<std::int32_t> ends;
};

class TreeBuilder {
 public:
    explicit TreeBuilder(std::vector<PeriodNode>& nodes) : nodes_(nodes) {}

    void AddYear(const Branch& root, int year) {
        const Branch months = Add(root, PeriodKind::Year, Digits(year), Months(year, 1, 12));
        AddHalf(months, year, 1);
        Add(months, PeriodKind::NineMonths, u"9 месяцев", Months(year, 1, 9));
        AddHalf(months, year, 2);
    }

 private:
    void AddHalf(const Branch& parent, int year, int number) {
        const int last = number * kMonthsOfHalf;
        const Branch half = Add(parent, PeriodKind::HalfYear, Concat(Digits(number), u" полугодие"),
                                Months(year, last - kMonthsOfHalf + 1, last));
        AddQuarter(half, year, 2 * number - 1);
        AddQuarter(half, year, 2 * number);
    }

    void AddQuarter(const Branch& parent, int year, int number) {
        const int last = number * kMonthsOfQuarter;
        const int first = last - kMonthsOfQuarter + 1;
        const Branch quarter = Add(parent, PeriodKind::Quarter,
                                   Concat(kQuarters[static_cast<std::size_t>(number - 1)], u" квартал"),
                                   Months(year, first, last));
        for (int month = first; month <= last; ++month) {
            Add(quarter, PeriodKind::Month, Text(kMonths[static_cast<std::size_t>(month - 1)]),
                Months(year, month, month));
        }
    }

    // Makes the node, unless none of the parent's documents has to do with the period; the branch is without
    // documents then, and nothing comes of its children either.
    Branch Add(const Branch& parent, PeriodKind kind, TextView name, const DayRange& period) {
        Text answer;
        IsDateIn(period.begin, period.end, parent.begins, parent.ends, answer);
        if (answer.empty()) return {};
        TextView overlapping = answer;
        const TextView counts = GetNext(overlapping, u"|");
        const TextView whole = GetNext(overlapping, u"|");
        Branch branch = {Concat(u"k", Digits(++last_key_)), {}, {}};
        while (!overlapping.empty()) {
            std::size_t number = 0;
            for (const char16_t digit : GetNext(overlapping, u",")) {
                number = number * 10 + static_cast<std::size_t>(digit - u'0');
            }
            branch.begins.push_back(parent.begins[number - 1]);
            branch.ends.push_back(parent.ends[number - 1]);
        }
        nodes_.push_back({branch.key, parent.key, Concat(name, u" ", counts), kind, period,
                          std::ranges::count(whole, u',')});
        return branch;
    }

    std::vector<PeriodNode>& nodes_;
    long long last_key_ = 0;
};

void AddYearsOf(const DayRange& document, std::set<int>& years) {
    const auto year = [](std::int32_t day) { return CivilFromDate({static_cast<double>(day)}).year; };
    const int first = year(document.begin);
    const int last = year(document.end);
    years.insert({first, last});
    if (last - first >= kManyYears) return;
    for (int between = first + 1; between < last; ++between) years.insert(between);
}

Text RootText(SummaryKind kind, long long documents) {
    return Concat(u"Все периоды ", kind == SummaryKind::Statements ? u"(выписок: " : u"(актов: ",
                  Digits(documents), u" - целиком включающихся в выбранный период / ", Digits(documents),
                  u" - частично содержащих выбранный период)");
}

}  // namespace

TextView PictureKey(PeriodKind kind) {
    switch (kind) {
        case PeriodKind::All:
            return u"all";
        case PeriodKind::Year:
            return u"y";
        case PeriodKind::HalfYear:
        case PeriodKind::NineMonths:
            return u"p";
        case PeriodKind::Quarter:
            return u"q";
        case PeriodKind::Month:
            return u"m";
    }
    return {};
}

std::vector<PeriodNode> PeriodTree(const Summary& summary, TextView code) {
    const SummaryChoice of_code = {std::nullopt, false, Text(code)};
    Branch root = {Text(kRootKey), {}, {}};
    std::set<int> years;
    long long documents = 0;
    for (const SummaryDocument& document : summary.documents) {
        if (!IsChosen(of_code, document)) continue;
        ++documents;
        const auto days = DaysOf(document.begin, document.end);
        if (!days) continue;
        root.begins.push_back(days->begin);
        root.ends.push_back(days->end);
        AddYearsOf(*days, years);
    }
    std::vector<PeriodNode> nodes = {
        {root.key, {}, RootText(summary.kind, documents), PeriodKind::All, std::nullopt, documents}};
    TreeBuilder builder(nodes);
    for (const int year : years) builder.AddYear(root, year);
    return nodes;
}

Text SamePeriod(const std::vector<PeriodNode>& before, TextView key, const std::vector<PeriodNode>& now) {
    const auto of_key = [&](TextView wanted) {
        return std::find_if(before.begin(), before.end(),
                            [&](const PeriodNode& node) { return node.key == wanted; });
    };
    for (auto node = of_key(key); node != before.end(); node = of_key(node->parent)) {
        const auto same = std::find_if(now.begin(), now.end(), [&](const PeriodNode& other) {
            return other.kind == node->kind && other.period == node->period;
        });
        if (same != now.end()) return same->key;
    }
    return Text(kRootKey);
}

}  // namespace tav
