#include "reports/summary_documents.h"

#include <utility>

#include "common/message_box.h"

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

void BeginSummary(SummaryKind kind) {
    Last() = {kind, true, {}};
}

void RecordDocuments(std::vector<SummaryDocument> documents) {
    Last().documents = std::move(documents);
    Last().failed = false;
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
