#include "reports/summary_documents.h"

#include <utility>

#include "common/message_box.h"
#include "reports/page.h"

namespace tav {
namespace {

Summary& Last() {
    static Summary summary;
    return summary;
}

}  // namespace

const Summary& LastSummary() {
    return Last();
}

Text WriteSummary(const SummaryPlan& plan, TextView database, TextView export_folder,
                  const BuildSummary& build) {
    // It counts as failed until its documents are known and its page is written.
    Last() = {plan.kind, true, {}};
    return GuardedReport(plan.title, database, [&](Text& file) -> Text {
        Connection connection;
        connection.CursorLocation = 3;
        connection.OpenForReading(ConnectionString(database));
        std::vector<SummaryDocument> documents;
        const Text page = build(connection, file, documents);
        Text written;
        if (!page.empty()) {
            file = ReportPath(export_folder, plan.name);
            WriteReport(file, page);
            written = file;
        }
        Last() = {plan.kind, false, std::move(documents)};
        return written;
    });
}

void ShowNothingToSumUp() {
    if (Last().failed) return;
    const TextView what = Last().kind == SummaryKind::Statements ? u"импортированным выпискам операций"
                                                                 : u"импортированным актам сверки";
    ShowMessage(u"Сводная справка",
                Text(u"В базе данных для выбранного налогоплательщика отсутствует информация по ")
                    .append(what)
                    .append(u".\r\nСводная справка не может быть сформирована."),
                MessageIcon::Information);
}

}  // namespace tav
