#include "common/failure.h"
#include "pdf/pdf.h"

namespace tav {

std::unique_ptr<PdfDocument> NewPdf(const std::function<void()>&) {
    throw Failure(
        TextView(u"В Windows справки в виде PDF не делаются; справку печатает текстовый процессор"));
}

bool PdfAvailable() {
    return false;
}

}  // namespace tav
