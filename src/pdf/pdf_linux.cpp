#include "common/failure.h"
#include "forms/qt_module.h"
#include "pdf/pdf_module.h"

namespace tav {
namespace {

PdfDocument* Make(const std::function<void()>& between_pages, Text& why) {
    auto* make = reinterpret_cast<MakePdf*>(QtModuleFunction(kMakePdf, why));
    return make == nullptr ? nullptr : make(between_pages, why);
}

}  // namespace

std::unique_ptr<PdfDocument> NewPdf(const std::function<void()>& between_pages) {
    Text why;
    std::unique_ptr<PdfDocument> document(Make(between_pages, why));
    if (document == nullptr) throw Failure(u"PDF сделать нельзя: " + why);
    return document;
}

bool PdfAvailable() {
    Text why;
    return std::unique_ptr<PdfDocument>(Make({}, why)) != nullptr;
}

}  // namespace tav
