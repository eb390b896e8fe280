// The reader of printed forms, statements of operations and reconciliation acts delivered as RTF, as a person sees it
// at work: with the progress, the cancel and the messages of the calling thread.
#pragma once

#include <cstddef>

#include "common/text.h"
#include "convert/conversion.h"
#include "convert/rtf_reader.h"

namespace tav {

// The steps of one document on the bar. Between them the user interface processes its events (common/progress.h), and
// the cancel stamp is looked at (settings/session.h).
class ShownSteps : public ReadingSteps {
 public:
    void Begin(std::size_t pages) override;
    bool GoOn() override;
    void Step() override;

 private:
    double step_ = 0;
    std::size_t steps_ = 0;
};

// Shows the failure of a conversion, if it has one: "Ошибка в функции LoadRtfFile".
void ShowRtfFailure(const Conversion& conversion);

// Reads `folder` (which ends with the path separator) + `file_name`. What the user cancelled has no
// entry, nor has what failed: the failure is shown, its description names the document.
Conversion LoadRtfFile(TextView folder, TextView file_name);

}  // namespace tav
