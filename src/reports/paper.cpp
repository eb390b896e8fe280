#include "reports/paper.h"

#include "common/progress.h"
#include "platform/files.h"

namespace tav {
namespace {

constexpr TextView kExtension = u".pdf";

bool (*is_wanted)() = nullptr;

// The report that was copied last, and its copy.
struct Copied {
    Text report;
    Text copy;
};
Copied& LastCopied() {
    static Copied last;
    return last;
}

}  // namespace

void MakePaperCopies(bool (*wanted)()) {
    is_wanted = wanted;
}

Text ToOpen(TextView report) {
    return LastCopied().report == report ? LastCopied().copy : Text(report);
}

PaperCopy::PaperCopy() {
    LastCopied() = {};
    if (is_wanted == nullptr || !is_wanted()) return;
    document_ = NewPdf([] { CurrentProgress().ProcessEvents(); });
}

int PaperCopy::Add(const Sheet& sheet) {
    if (document_ == nullptr) return kNoSheet;
    document_->Add(sheet);
    return sheets_++;
}

Text PaperCopy::PathFor(TextView report) const {
    if (document_ == nullptr) return {};
    return Text(report.substr(0, report.rfind(u'.'))).append(kExtension);
}

void PaperCopy::Write(TextView report) {
    if (document_ == nullptr) return;
    const Text path = PathFor(report);
    WriteFileWhole(path, document_->Finish(), {}, OnDisk::Later);
    LastCopied() = {Text(report), path};
}

}  // namespace tav
