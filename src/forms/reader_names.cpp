#include "forms/reader_names.h"

#include <algorithm>
#include <map>

namespace tav {
namespace {

bool NamesTheNext(const ControlPlan& plan) {
    return plan.kind == ControlKind::Label || plan.kind == ControlKind::CheckBox;
}

}  // namespace

bool HasWords(TextView caption) {
    return caption.find_first_not_of(u".…") != caption.npos;
}

std::vector<TextView> NamesForReaders(std::span<const ControlPlan> plans) {
    std::map<TextView, TextView> frames;
    std::vector<TextView> names;
    const ControlPlan* before = nullptr;
    for (const ControlPlan& plan : plans) {
        TextView& name = names.emplace_back();
        if (plan.hidden) continue;
        const bool picture = plan.kind == ControlKind::PictureButton || plan.kind == ControlKind::Picture;
        const TextView around = frames[plan.place.parent];
        if (plan.kind == ControlKind::Frame) {
            frames[plan.name] = plan.caption.empty() ? around : plan.caption;
        } else if (picture || (!plan.caption.empty() && !HasWords(plan.caption))) {
            name = plan.tool_tip.empty() ? plan.caption : plan.tool_tip;
        } else if (plan.caption.empty() && plan.kind != ControlKind::Label &&
                   plan.kind != ControlKind::Timer) {
            const bool named =
                before != nullptr && before->place.parent == plan.place.parent && NamesTheNext(*before);
            name = named ? before->caption : around;
        }
        before = &plan;
    }
    return names;
}

}  // namespace tav
