#include "convert/document_glance.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/get_next.h"
#include "common/guard.h"
#include "common/windows1251.h"
#include "convert/cell_positions.h"
#include "convert/characters.h"
#include "convert/find_text_value.h"
#include "convert/load_xml_file.h"
#include "convert/page_reader.h"
#include "convert/statement_lines.h"
#include "platform/files.h"

namespace tav {
namespace {

constexpr std::size_t kHeads[] = {std::size_t{64} << 10, std::size_t{1} << 20};

constexpr std::size_t kPositionSize = 9;  // "posx" and five digits
constexpr std::string_view kStatementHeader = "##v<h@@>";
constexpr std::string_view kActHeader = "##a<h@@>";
constexpr std::string_view kActAmount = "##a<p";
constexpr std::string_view kPageMarker = "\r\n##p";

// The header lines of a statement, in the document's order.
enum HeaderLine : std::size_t {
    kKpp = 1,
    kCode = 6,
    kTax = 7,
    kOkato = 9,
    kPeriodEnd = 11,
    kPeriodBegin = 12
};
constexpr std::size_t kHeaderLines = 13;

// Shapes of fields: 0 stands for any digit.
constexpr std::string_view kCodeShape = "00000000000000000000";
constexpr std::string_view kOkatoShape = "00000000000";
constexpr std::string_view kDateShape = "00.00.0000";

const std::string kActPart = ToWindows1251(u"<part type=\"акт\">");
const std::string kStatementPart = ToWindows1251(u"<part type=\"выписка\">");

constexpr TextView kXmlEnding = u".xml";
constexpr TextView kTitleShown = u"Выписка операций по расчету с бюджетом";

template <class Char>
bool Fits(std::basic_string_view<Char> text, std::string_view shape) {
    return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), [](Char c, char expected) {
        return expected == '0' ? c >= '0' && c <= '9' : c == static_cast<Char>(expected);
    });
}

bool IsComplete(const DocumentGlance& glance) {
    return Fits<char16_t>(glance.code, kCodeShape) && Fits<char16_t>(glance.okato, kOkatoShape) &&
           Fits<char16_t>(glance.period_begin, kDateShape) && Fits<char16_t>(glance.period_end, kDateShape);
}

// Where the header lines of both forms stand, up to the last one of a statement or the first amount of an
// act.
struct Landmarks {
    std::vector<std::size_t> statement;
    std::vector<std::size_t> act;
    std::size_t amounts = std::string_view::npos;
};

Landmarks FindLandmarks(std::string_view head) {
    Landmarks found;
    for (std::size_t at = 1; (at = head.find(kFrame, at)) != head.npos; at += kFrame.size()) {
        // Only after a control word does a position begin its line.
        if (!IsLetter(head[at - 1]) && !IsDigit(head[at - 1])) continue;
        const std::string tag = ReplaceCellPositions(head.substr(at + 1, kPositionSize));
        if (tag.starts_with(kActHeader)) found.act.push_back(at);
        if (tag.starts_with(kStatementHeader)) found.statement.push_back(at);
        if (tag.starts_with(kActAmount)) found.amounts = at;
        if (found.statement.size() == kHeaderLines || found.amounts == at) break;
    }
    return found;
}

// The text of pages, their positions made tags: the lines that the reader of whole documents sees.
std::string TaggedText(std::string_view rtf) {
    PageReader reader;
    reader.Open(rtf);
    std::string text;
    while (reader.More()) text.append(reader.Next()).append(kPageMarker);
    return ReplaceCellPositions(text);
}

// The value of the frame's header line. Unlike FindTextValue this reads every kind of letters.
Text HeaderValue(std::string_view frame) {
    const std::string text = TaggedText(frame);
    std::string_view rest = text;
    GetNext(rest, kStatementHeader);
    return FromWindows1251(GetNext(rest, kLineEnd));
}

Text FrameText(std::string_view head, std::size_t frame) {
    auto pos = static_cast<std::int32_t>(frame + 1);
    return FromWindows1251(FindTextValueQuietly(pos, head));
}

// A statement as it should be: its title in letters that FindTextValue reads, its header on one page, and
// fields that are single frames of digits and points.
std::optional<DocumentGlance> GlanceAtFrames(std::string_view head, const Landmarks& landmarks) {
    const std::vector<std::size_t>& lines = landmarks.statement;
    if (lines.size() < kHeaderLines || landmarks.act.size() != 1) return std::nullopt;
    if (head.substr(0, lines.back()).find(kPage) != head.npos) return std::nullopt;
    if (FrameText(head, landmarks.act[0]) != kTitleShown) return std::nullopt;
    DocumentGlance glance{.kind = DocumentKind::Statement,
                          .code = FrameText(head, lines[kCode]),
                          .okato = FrameText(head, lines[kOkato]),
                          .period_begin = FrameText(head, lines[kPeriodBegin]),
                          .period_end = FrameText(head, lines[kPeriodEnd])};
    if (!IsComplete(glance)) return std::nullopt;
    const auto value = [&](std::size_t line) {
        return HeaderValue(head.substr(lines[line], head.find(kFrame, lines[line] + 1) - lines[line]));
    };
    glance.tax = value(kTax);
    glance.kpp = value(kKpp);
    return glance;
}

Text Element(std::string_view part, std::string_view name) {
    const std::string tag = std::string(name) + ">";
    if (part.find("<" + tag) == part.npos) return {};
    GetNext(part, "<" + tag);
    return FromWindows1251(GetNext(part, "</" + tag));
}

// Of a part of an entry that has the whole head.
DocumentGlance GlanceAtPart(std::string_view part) {
    const bool act = part.find(kActPart) != part.npos;
    return {.kind = act ? DocumentKind::Act : DocumentKind::Statement,
            .code = Element(part, "h07"),
            .okato = Element(part, "h10"),
            .period_begin = Element(part, "h13"),
            .period_end = Element(part, act ? "pere" : "h12"),
            .tax = Element(part, "h08"),
            .kpp = Element(part, "h02")};
}

Text ReasonOf(std::string_view head) {
    if (head.empty()) return u"Файл пуст";
    if (!head.starts_with("{\\rtf")) return u"Это не документ RTF";
    return u"Не найдена шапка выписки или акта";
}

// Any other document: its head is read as the whole of it would be.
DocumentGlance GlanceAtLines(std::string_view head, const Landmarks& landmarks) {
    const std::string text = TaggedText(head.substr(0, landmarks.amounts));
    StatementLines lines;
    for (std::string_view rest = text; !rest.empty();) lines.Add(GetNext(rest, kLineEnd));
    const std::string parts = lines.TakeOutput();
    std::string_view rest = parts;
    const std::string_view part = GetNext(rest, "</head>");

    if (part.find(kActPart) == part.npos && part.find(kStatementPart) == part.npos) {
        return {.reason = ReasonOf(head)};
    }
    return GlanceAtPart(part);
}

DocumentGlance GlanceAtHead(std::string_view head) {
    const Landmarks landmarks = FindLandmarks(head);
    if (landmarks.statement.empty() && landmarks.act.empty()) return {.reason = ReasonOf(head)};
    const std::optional<DocumentGlance> statement = GlanceAtFrames(head, landmarks);
    return statement ? *statement : GlanceAtLines(head, landmarks);
}

DocumentGlance GlanceAtXml(TextView path) {
    const Conversion act = ConvertAct(ReadFile(path), NameOf(path), ActSchemaPath());
    std::string_view rest = act.entry;
    const std::string_view part = GetNext(rest, "</head>");
    if (part.find(kActPart) != part.npos) return GlanceAtPart(part);
    return {.reason = act.reason.empty() ? u"Не найден акт сверки" : act.reason};
}

DocumentGlance GlanceAtFile(TextView path) {
    if (EqualNoCase(Right(path, kXmlEnding.size()), kXmlEnding)) return GlanceAtXml(path);
    DocumentGlance glance;
    for (const std::size_t most : kHeads) {
        const std::string bytes = ReadFileHead(path, most);
        const bool whole = bytes.size() < most;
        // A frame that is cut would show a part of its text.
        glance = GlanceAtHead(std::string_view(bytes).substr(0, whole ? bytes.size() : bytes.rfind(kFrame)));
        if (whole || IsComplete(glance)) break;
    }
    return glance;
}

}  // namespace

DocumentGlance GlanceAtDocument(TextView path) {
    DocumentGlance glance;
    GuardedBy([&] { glance = GlanceAtFile(path); },
              [&](const Failure& failure) {
                  glance.unreadable = IsAboutFile(failure);
                  glance.reason = glance.unreadable ? WhyUnreadable(failure)
                                                    : u"Документ не разобран: " + failure.description();
              });
    return glance;
}

Text WhyNothing(TextView path, bool cut_off) {
    if (cut_off) return u"Файл обрывается";
    const DocumentGlance glance = GlanceAtDocument(path);
    return glance.kind == DocumentKind::Unknown ? glance.reason : u"Документ не удалось разобрать целиком";
}

bool LooksLikeXmlAct(TextView path) {
    constexpr std::size_t kHead = 16384;
    constexpr TextView kAct = u"<АктСвер";
    bool found = false;
    GuardedBy(
        [&] {
            const std::string head = ReadFileHead(path, kHead);
            found = head.find(ToUtf8(kAct)) != head.npos || head.find(ToWindows1251(kAct)) != head.npos;
        },
        [](const Failure&) {});
    return found;
}

}  // namespace tav
