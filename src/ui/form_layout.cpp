#include <algorithm>

#include "common/concat.h"
#include "common/get_next.h"
#include "common/regional.h"
#include "ui/form.h"

namespace tav {
namespace {

constexpr int kMost = 100'000;

// A length that a person can have made.
int LengthOf(TextView text) {
    return static_cast<int>(std::clamp<long long>(ParseInteger(text).value_or(0), 0, kMost));
}

}  // namespace

Text Form::Layout() const {
    const FormSize size = window().Size();
    Text layout = Concat(Digits(size.width), u"x", Digits(size.height));
    for (std::size_t i = 0; i < plan_.controls.size(); ++i) {
        const ControlPlan& control = plan_.controls[i];
        if (control.columns.empty()) continue;
        Text widths;
        for (const int width : window().ColumnWidths(i)) {
            widths.append(widths.empty() ? u"" : u",").append(Digits(width));
        }
        layout.append(u";").append(control.name).append(u":").append(widths);
    }
    return layout;
}

void Form::SetLayout(TextView layout) {
    TextView lists = layout;
    TextView height = GetNext(lists, u";");
    const TextView width = GetNext(height, u"x");
    const FormSize size = {LengthOf(width), LengthOf(height)};
    if (size.width > 0 && size.height > 0) window().Resize(size);
    while (!lists.empty()) {
        TextView numbers = GetNext(lists, u";");
        const TextView name = GetNext(numbers, u":");
        std::vector<int> widths;
        while (!numbers.empty()) widths.push_back(LengthOf(GetNext(numbers, u",")));
        const auto list = std::ranges::find(plan_.controls, name, &ControlPlan::name);
        if (list == plan_.controls.end() || list->columns.empty()) continue;
        window().SetColumnWidths(static_cast<std::size_t>(list - plan_.controls.begin()), widths);
    }
}

}  // namespace tav
