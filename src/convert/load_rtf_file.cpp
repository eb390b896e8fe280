#include "convert/load_rtf_file.h"

#include <algorithm>
#include <cstdio>
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
#include "platform/files.h"
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

// Tells the user where visible text got lost; a document damaged all over is told about a few times only.
class DroppedTextReport {
 public:
    explicit DroppedTextReport(TextView file_name) : file_name_(file_name) {}

    void Add(std::size_t page) {
        if (++pages_ <= kTold) Tell(u", страница " + Digits(static_cast<long long>(page)));
    }
    void Finish() const {
        if (pages_ > kTold) Tell(u", ещё страниц: " + Digits(static_cast<long long>(pages_ - kTold)));
    }

 private:
    static constexpr std::size_t kTold = 10;

    void Tell(TextView where) const {
        const Text line =
            Text(file_name_).append(where).append(u": текст за последней закрывающей скобкой не показан\n");
        std::fputs(ToUtf8(line).c_str(), stderr);
    }

    TextView file_name_;
    std::size_t pages_ = 0;
};

// First pass: the plain text of all pages, each followed by its mark. No value when the user cancelled.
std::optional<std::string> PlainText(PageReader& reader, FileProgress& progress, TextView file_name) {
    DroppedTextReport dropped(file_name);
    std::string text;
    for (std::size_t page = 1; reader.More(); ++page) {
        if (!FileProgress::GoOn()) return std::nullopt;
        text.append(reader.Next()).append(kLineEnd).append(kPageMark);
        if (reader.dropped_text()) dropped.Add(page);
        progress.Step();
    }
    dropped.Finish();
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

std::optional<std::string> ReadDocument(std::string bytes, TextView file_name) {
    std::optional<PageReader> reader(std::in_place, std::move(bytes));
    FileProgress progress(reader->pages());
    std::optional<std::string> text = PlainText(*reader, progress, file_name);
    reader.reset();  // the document itself is needed no more, and may be large
    if (!text) return std::nullopt;
    text = ReplaceCellPositions(*text);
    return Parts(*text, progress);
}

}  // namespace

std::string LoadRtfFile(TextView folder, TextView file_name) {
    std::string entry;
    Guarded(u"Ошибка в функции LoadRtfFile", [&] {
        std::string bytes = ReadFile(Text(folder).append(file_name));
        std::optional<std::string> parts;
        try {
            parts = ReadDocument(std::move(bytes), file_name);
        } catch (...) {
            throw CurrentFailure().In(file_name);
        }
        if (!parts) return;
        entry.append("<file>\r\n\t<name>").append(ToWindows1251(file_name)).append("</name>\r\n");
        entry.append(*parts).append("</file>\r\n");
    });
    return entry;
}

}  // namespace tav
