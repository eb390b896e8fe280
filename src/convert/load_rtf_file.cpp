#include "convert/load_rtf_file.h"

#include <algorithm>

#include "common/guard.h"
#include "common/progress.h"
#include "settings/session.h"

namespace tav {

void ShownSteps::Begin(std::size_t pages) {
    step_ = 1.0 / (2.0 * (static_cast<double>(pages) + 1));
}

bool ShownSteps::GoOn() {
    CurrentProgress().ProcessEvents();
    return CancelStamp() == 0;
}

// A line of the document may look like a page's mark: the bar still ends at 1.
void ShownSteps::Step() {
    CurrentProgress().SetFraction(std::min(1.0, static_cast<double>(++steps_) * step_));
}

void ShowRtfFailure(const Conversion& conversion) {
    if (conversion.failure) ShowFailure(u"Ошибка в функции LoadRtfFile", *conversion.failure);
}

Conversion LoadRtfFile(TextView folder, TextView file_name) {
    ShownSteps steps;
    Conversion conversion = RtfReader().Read(folder, file_name, steps);
    ShowRtfFailure(conversion);
    return conversion;
}

}  // namespace tav
