#include "convert/load_rtf_file.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "common/get_next.h"
#include "common/guard.h"
#include "common/progress.h"
#include "common/windows1251.h"
#include "convert/cell_positions.h"
#include "convert/characters.h"
#include "convert/page_reader.h"
#include "convert/statement_lines.h"
#include "platform/input_file.h"
#include "settings/session.h"

namespace tav {
namespace {

constexpr std::string_view kPageMark = "##p";
constexpr std::size_t kBytesOfEntryByte = 4;  // about so many of an RTF make one of its entry

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

// The catalogue parts of lines of plain text, added to `lines`. False when the user cancelled.
bool ReadLines(std::string_view text, FileProgress& progress, StatementLines& lines) {
    while (!text.empty()) {
        const std::string_view line = GetNext(text, kLineEnd);
        if (StatementLines::KindOf(line) == StatementLines::LineKind::PageMark) {
            if (!FileProgress::GoOn()) return false;
            progress.Step();
        } else {
            lines.Add(line);
        }
    }
    return true;
}

// Page by page: its plain text, then the catalogue parts of its lines. A page's mark stands before the first line
// of the next one and hides it. A line that does not fit ends the reading of lines; what the other pages hide is
// still found. False when the user cancelled.
bool ReadPages(PageReader& reader, StatementLines& lines, Conversion& conversion) {
    FileProgress progress(reader.pages());
    std::exception_ptr failure;
    std::string text;
    const auto read_lines = [&] {
        if (failure) return true;
        try {
            return ReadLines(text, progress, lines);
        } catch (...) {
            failure = std::current_exception();
            return true;
        }
    };
    const auto more = [&] { return Noting(conversion, [&] { return reader.More(); }); };
    for (std::size_t page = 1; more(); ++page) {
        if (!FileProgress::GoOn()) return false;
        AppendWithTags(text, reader.Next());
        text.append(kLineEnd);
        if (reader.dropped_text()) conversion.dropped_pages.push_back(page);
        progress.Step();
        if (!read_lines()) return false;
        text = kPageMark;
    }
    conversion.cut_off = reader.inside_group();
    if (!read_lines()) return false;
    if (failure) std::rethrow_exception(failure);
    return true;
}

}  // namespace

Conversion LoadRtfFile(TextView folder, TextView file_name) {
    Conversion conversion;
    Guarded(u"Ошибка в функции LoadRtfFile", [&] {
        std::optional<InputFile> file;
        PageReader reader;
        Noting(conversion, [&] { reader.Open(file.emplace(Text(folder).append(file_name))); });
        StatementLines lines("<file>\r\n\t<name>" + ToWindows1251(file_name) + "</name>\r\n",
                             reader.size() / kBytesOfEntryByte);
        try {
            if (!ReadPages(reader, lines, conversion)) return;
        } catch (...) {
            if (conversion.unreadable) throw;
            const Failure failure = CurrentFailure();
            conversion.reason = u"Документ не разобран: " + failure.description();
            throw failure.In(file_name);
        }
        conversion.entry = lines.TakeOutput() + "</file>\r\n";
    });
    return conversion;
}

}  // namespace tav
