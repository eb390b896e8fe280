// The PDF part of the module: its entry and its document.
#include "pdf/pdf_module.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

#include "common/memory_watch.h"
#include "forms/qt/application.h"
#include "pdf/qt/page_links.h"
#include "pdf/qt/sheet_painter.h"

namespace tav {
namespace {

class PdfDocumentQt : public PdfDocument {
 public:
    explicit PdfDocumentQt(std::function<void()> between_pages) : between_pages_(std::move(between_pages)) {
        constexpr double kCentimetre = 10;  // margins, in millimetres
        constexpr int kPointsPerInch = 72;
        file_.open(QIODevice::WriteOnly);
        writer_.setResolution(static_cast<int>(kPoint) * kPointsPerInch);
        writer_.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Landscape,
                                          QMarginsF(kCentimetre, kCentimetre, kCentimetre, kCentimetre),
                                          QPageLayout::Millimeter));
        writer_.setTitle(QStringLiteral("Справка"));
        writer_.setCreator(QStringLiteral("TAV_OperationImport"));
    }

    void Add(const Sheet& sheet) override {
        const MemoryWatch memory;
        if (painter_.isActive()) {
            NewPage();
        } else if (!painter_.begin(&writer_)) {
            throw std::bad_alloc();
        }
        first_pages_.push_back(page_);
        const QSizeF area(writer_.width(), writer_.height());
        SheetPainter(painter_, area, [this] { NewPage(); }).Draw(sheet);
        memory.Check();
        if (between_pages_) between_pages_();
    }

    std::string Finish() override {
        const MemoryWatch memory;
        painter_.end();
        memory.Check();
        std::string bytes = file_.buffer().toStdString();
        ArrangePages(bytes, first_pages_);
        return bytes;
    }

 private:
    void NewPage() {
        if (between_pages_) between_pages_();
        if (!writer_.newPage()) throw std::bad_alloc();
        ++page_;
    }

    std::function<void()> between_pages_;
    QBuffer file_;
    QPdfWriter writer_{&file_};
    QPainter painter_;
    std::size_t page_ = 0;
    std::vector<std::size_t> first_pages_;
};

}  // namespace
}  // namespace tav

extern "C" __attribute__((visibility("default"))) tav::PdfDocument* tav_make_pdf(
    const std::function<void()>& between_pages, tav::Text& why) {
    return tav::EnsureDrawing(why) ? new tav::PdfDocumentQt(between_pages) : nullptr;
}
