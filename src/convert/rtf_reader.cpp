#include "convert/rtf_reader.h"

#include <exception>
#include <string_view>
#include <utility>

#include "common/get_next.h"
#include "common/guard.h"
#include "common/windows1251.h"
#include "convert/cell_positions.h"
#include "convert/characters.h"
#include "convert/statement_lines.h"
#include "platform/input_file.h"

namespace tav {
namespace {

constexpr std::string_view kPageMark = "##p";
constexpr std::size_t kBytesOfEntryByte = 4;          // about so many of an RTF make one of its entry
constexpr std::size_t kLarge = std::size_t{4} << 20;  // buffers of larger documents are not kept

// The catalogue parts of lines of plain text, added to `lines`. False when the reading is ended.
bool ReadLines(std::string_view text, ReadingSteps& steps, StatementLines& lines) {
    while (!text.empty()) {
        const std::string_view line = GetNext(text, kLineEnd);
        if (StatementLines::KindOf(line) == StatementLines::LineKind::PageMark) {
            if (!steps.GoOn()) return false;
            steps.Step();
        } else {
            lines.Add(line);
        }
    }
    return true;
}

// Page by page: its plain text, then the catalogue parts of its lines. A page's mark stands before the first line
// of the next one and hides it. A line that does not fit ends the reading of lines; what the other pages hide is
// still found. False when the reading is ended.
bool ReadPages(PageReader& reader, std::string& text, ReadingSteps& steps, StatementLines& lines,
               Conversion& conversion) {
    std::exception_ptr failure;
    const auto read_lines = [&] {
        if (failure) return true;
        try {
            return ReadLines(text, steps, lines);
        } catch (...) {
            failure = std::current_exception();
            return true;
        }
    };
    const auto more = [&] { return Noting(conversion, [&] { return reader.More(); }); };
    steps.Begin(reader.pages());
    text.clear();
    for (std::size_t page = 1; more(); ++page) {
        if (!steps.GoOn()) return false;
        AppendWithTags(text, reader.Next());
        text.append(kLineEnd);
        if (reader.dropped_text()) conversion.dropped_pages.push_back(page);
        steps.Step();
        if (!read_lines()) return false;
        text = kPageMark;
    }
    conversion.cut_off = reader.inside_group();
    if (!read_lines()) return false;
    if (failure) std::rethrow_exception(failure);
    return true;
}

}  // namespace

void RtfReader::ReadFile(const Text& path, TextView file_name, ReadingSteps& steps, Conversion& conversion) {
    std::optional<InputFile> file;
    if (!pages_ || pages_->size() > kLarge) pages_.emplace();
    Noting(conversion, [&] { pages_->Open(file.emplace(path)); });
    StatementLines lines("<file>\r\n\t<name>" + ToWindows1251(file_name) + "</name>\r\n",
                         pages_->size() / kBytesOfEntryByte);
    try {
        if (!ReadPages(*pages_, text_, steps, lines, conversion)) return;
    } catch (...) {
        if (conversion.unreadable) throw;
        const Failure failure = CurrentFailure();
        conversion.reason = u"Документ не разобран: " + failure.description();
        throw failure.In(file_name);
    }
    conversion.entry = lines.TakeOutput() + "</file>\r\n";
}

Conversion RtfReader::Read(TextView folder, TextView file_name, ReadingSteps& steps) {
    Conversion conversion;
    GuardedBy([&] { ReadFile(Text(folder).append(file_name), file_name, steps, conversion); },
              [&](const Failure& failure) {
                  conversion.failure = failure;
                  // That is no fault of the document's: the next scan tries again.
                  if (failure.error() != RunTimeError::OutOfMemory) return;
                  conversion.unreadable = true;
                  conversion.reason = WhyUnreadable(failure);
              });
    return conversion;
}

}  // namespace tav
