#include "convert/load_rtf_file.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "common/get_next.h"
#include "common/guard.h"
#include "common/progress.h"
#include "common/windows1251.h"
#include "convert/cell_positions.h"
#include "convert/page_reader.h"
#include "convert/statement_lines.h"
#include "settings/session.h"

namespace tav {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kPageMark = "##p";

// The progress of one file: each page counts once when it is converted and once when its lines are read.
class FileProgress {
 public:
    explicit FileProgress(std::size_t pages) : step_(1.0 / (2.0 * (static_cast<double>(pages) + 1))) {}

    // Lets the user interface work; false when the user has cancelled.
    static bool GoOn() {
        CurrentProgress().ProcessEvents();
        return CancelStamp() == 0;
    }
    // A line of the document may look like a page's mark: the bar still ends at 1.
    void Step() { CurrentProgress().SetFraction(std::min(1.0, static_cast<double>(++steps_) * step_)); }

 private:
    double step_;
    std::size_t steps_ = 0;
};

// First pass: the plain text of all pages, each followed by its mark. No value when the user cancelled.
std::optional<std::string> PlainText(PageReader& reader, FileProgress& progress, Conversion& conversion) {
    std::string text;
    for (std::size_t page = 1; reader.More(); ++page) {
        if (!FileProgress::GoOn()) return std::nullopt;
        text.append(reader.Next()).append(kLineEnd).append(kPageMark);
        if (reader.dropped_text()) conversion.dropped_pages.push_back(page);
        progress.Step();
    }
    conversion.cut_off = reader.inside_group();
    return text;
}

// Second pass: the catalogue parts of the lines. No value when the user cancelled.
std::optional<std::string> Parts(std::string_view text, FileProgress& progress) {
    StatementLines lines;
    while (!text.empty()) {
        const std::string_view line = GetNext(text, kLineEnd);
        if (StatementLines::KindOf(line) == StatementLines::LineKind::PageMark) {
            if (!FileProgress::GoOn()) return std::nullopt;
            progress.Step();
        } else {
            lines.Add(line);
        }
    }
    return lines.TakeOutput();
}

std::optional<std::string> Convert(std::string bytes, Conversion& conversion) {
    std::optional<PageReader> reader(std::in_place, std::move(bytes));
    FileProgress progress(reader->pages());
    std::optional<std::string> text = PlainText(*reader, progress, conversion);
    reader.reset();  // the document itself is needed no more, and may be large
    if (!text) return std::nullopt;
    text = ReplaceCellPositions(*text);
    return Parts(*text, progress);
}

}  // namespace

Conversion LoadRtfFile(TextView folder, TextView file_name) {
    Conversion conversion;
    Guarded(u"Ошибка в функции LoadRtfFile", [&] {
        std::string bytes = ReadDocument(Text(folder).append(file_name), conversion);
        std::optional<std::string> parts;
        try {
            parts = Convert(std::move(bytes), conversion);
        } catch (...) {
            const Failure failure = CurrentFailure();
            conversion.reason = u"Документ не разобран: " + failure.description();
            throw failure.In(file_name);
        }
        if (!parts) return;
        std::string& entry = conversion.entry;
        entry.append("<file>\r\n\t<name>").append(ToWindows1251(file_name)).append("</name>\r\n");
        entry.append(*parts).append("</file>\r\n");
    });
    return conversion;
}

}  // namespace tav
