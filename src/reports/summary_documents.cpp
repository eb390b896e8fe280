#include "reports/summary_documents.h"

#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "common/concat.h"
#include "common/message_box.h"
#include "reports/page.h"

namespace tav {
namespace {

Summary& Last() {
    static Summary summary;
    return summary;
}

std::vector<Text> CodesOf(const std::vector<SummaryDocument>& documents) {
    std::set<Text> codes;
    for (const SummaryDocument& document : documents) {
        if (!document.code.empty()) codes.insert(document.code);
    }
    return {codes.begin(), codes.end()};
}

void ShowCancelled(const CancelledSummary& cancelled, TextView folder) {
    ShowMessage(
        u"Сводная справка",
        Concat(u"Прервано пользователем. Готовы страницы выписок: ", Digits(cancelled.done), u" из ",
               Digits(cancelled.of), u"; они остаются в папке ", folder, u". Сводная справка не записана."),
        MessageIcon::Information);
}

}  // namespace

const Summary& LastSummary() {
    return Last();
}

Text WriteSummary(const SummaryPlan& plan, const SummaryRequest& request, const BuildSummary& build) {
    const auto made = std::make_shared<std::optional<Summary>>();
    const auto write = [plan, request, build, made](Text& file) -> Text {
        Connection connection;
        connection.CursorLocation = 3;
        connection.OpenForReading(ConnectionString(request.database));
        Summary summary;
        summary.kind = plan.kind;
        summary.inn = request.inn;
        summary.kpp = request.kpp;
        PaperCopy paper;
        Sheet sheet;
        SummaryCopy copy{paper, paper.Wanted(sheet)};
        Text page;
        try {
            page = build(connection, request, summary, file, copy);
        } catch (const CancelledSummary& cancelled) {
            ShowCancelled(cancelled, request.export_folder);
            return {};
        }
        if (!page.empty()) {
            file = ReportPath(request.export_folder, plan.name);
            WriteReport(file, page);
            sheet.amounts.bars = copy.bars.Bars();
            paper.Add(sheet);
            paper.Write(file);
            summary.path = file;
        }
        if (summary.codes.empty()) summary.codes = CodesOf(summary.documents);
        *made = std::move(summary);
        return (*made)->path;
    };
    const Text written = GuardedReport(plan.title, request.database, write);
    if (*made) {
        Last() = std::move(**made);
    } else {
        Last().failed = true;
    }
    return written;
}

void ShowNothingToSumUp() {
    const Summary& last = Last();
    if (last.failed) return;
    const bool statements = last.kind == SummaryKind::Statements;
    Text text;
    if (last.documents.empty()) {
        text.append(u"В базе данных для выбранного налогоплательщика отсутствует информация по ")
            .append(statements ? u"импортированным выпискам операций" : u"импортированным актам сверки");
    } else {
        text.append(u"Выбранным периоду и КБК не соответствует ни ")
            .append(statements ? u"одна выписка операций" : u"один акт сверки");
    }
    ShowMessage(u"Сводная справка", text.append(u".\r\nСводная справка не может быть сформирована."),
                MessageIcon::Information);
}

}  // namespace tav
