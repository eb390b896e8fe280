#include "ui/frmFilter.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "common/aside.h"
#include "common/concat.h"
#include "common/guard.h"
#include "db/holdings.h"
#include "load/run_import.h"
#include "platform/files.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "reports/paper.h"
#include "settings/session.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr TextView kFilterCaption = u"Выбор отчетного периода для формирования сводной справки";
constexpr TextView kAllCodes = u"Все КБК";
constexpr ControlPlan kFilterControls[] = {
    {u"Label1", ControlKind::Label, u"КБК:", {}, {0, 0}, u'К'},
    {u"cmbKBK", ControlKind::ComboBox, {}, {}, {0, 1, 3}},
    {u"TreeView1", ControlKind::TreeView, {}, {}, {1, 0, 4}},
    {u"Check1",
     ControlKind::CheckBox,
     u"Использовать документы, частично содержащие выбранный период",
     {},
     {2, 0, 4},
     u'ч'},
    {u"Command1", ControlKind::Button, u"Сформировать", {}, {3, 2}, u'С'},
    {u"Command2", ControlKind::Button, u"Закрыть", {}, {3, 3}, u'З'},
};
constexpr FormPlan kFilterPlan = {u"frmFilter", kFilterCaption, kFilterControls, 160,
                                  30,           u"Command1",    u"Command2"};

Picture PictureOf(PeriodKind kind) {
    switch (kind) {
        case PeriodKind::All:
            return Picture::All;
        case PeriodKind::Year:
            return Picture::Year;
        case PeriodKind::HalfYear:
        case PeriodKind::NineMonths:
            return Picture::Part;
        case PeriodKind::Quarter:
            return Picture::Quarter;
        case PeriodKind::Month:
            return Picture::Month;
    }
    return Picture::None;
}

// Without them the codes alone are shown.
TaxNames NamesOfTaxes(TextView inn) {
    const auto taxes = std::make_shared<TaxNames>();
    GuardedBy(
        [&] {
            RunAside([taxes, inn = Text(inn)] {
                for (HeldDocument& document : HeldDocuments(getbase(), inn, {})) {
                    taxes->emplace(std::move(document.code), std::move(document.tax));
                }
            });
        },
        [](const Failure&) {});
    return *taxes;
}

// "18210101011011000110   Налог на прибыль".
ListRow RowOf(const Text& code, const TaxNames& taxes) {
    const auto tax = taxes.find(code);
    return {tax == taxes.end() || tax->second.empty() ? code : Concat(code, u"   ", tax->second), {}};
}

}  // namespace

frmFilter::frmFilter() : Form(kFilterPlan, u"Ошибка в процедуре frmFilter_load") {
    Bind<frmFilter>(*this,
                    {{u"cmbKBK", Event::Click, &frmFilter::cmbKBK_Click},
                     {u"TreeView1", Event::DblClick, &frmFilter::Command1_Click, u"Ошибка в процедуре cmdOK"},
                     {u"Check1", Event::Click, &frmFilter::Check1_Click},
                     {u"Command1", Event::Click, &frmFilter::Command1_Click, u"Ошибка в процедуре cmdOK"},
                     {u"Command2", Event::Click, &frmFilter::Command2_Click}});
}

void frmFilter::Form_Load() {
    building_ = false;  // the thread of the window before may have ended in a handler
    const Busy busy(building_);
    // Meanwhile all that is shown is of the summary before.
    const TaxNames taxes = NamesOfTaxes(LastSummary().inn);
    summary_ = LastSummary();
    periods_.clear();
    ShowCodes(taxes);
    FindPeriods();
    Check1.Check(SettingTruth(u"ChkFilter"));
    ShowPeriods();
}

void frmFilter::ShowCodes(const TaxNames& taxes) {
    std::vector<ListRow> rows;
    if (!Consolidated()) rows.push_back({Text(kAllCodes), {}});
    for (const Text& code : summary_.codes) rows.push_back(RowOf(code, taxes));
    cmbKBK.SetRows(std::move(rows));
    SelectCode();
}

void frmFilter::SelectCode() {
    const auto code = std::find(summary_.codes.begin(), summary_.codes.end(), summary_.code);
    code_row_ = Consolidated() ? static_cast<int>(code - summary_.codes.begin()) : 0;
    cmbKBK.Select(code_row_);
}

Text frmFilter::ChosenCode() const {
    return Consolidated() || code_row_ <= 0 ? Text()
                                            : summary_.codes[static_cast<std::size_t>(code_row_ - 1)];
}

void frmFilter::FindPeriods() {
    const std::vector<PeriodNode> before = std::exchange(periods_, PeriodTree(summary_, ChosenCode()));
    const Text chosen = SamePeriod(before, TreeView1.SelectedKey(), periods_);
    ShowPeriods();
    TreeView1.Select(chosen);
}

void frmFilter::ShowPeriods() {
    std::vector<TreeNode> nodes;
    for (const PeriodNode& period : periods_) {
        const bool expanded = period.kind == PeriodKind::All || period.kind == PeriodKind::Year;
        const bool nothing = period.whole == 0 && !Check1.Checked();
        nodes.push_back({period.key, period.parent, period.text, PictureOf(period.kind), expanded, nothing});
    }
    TreeView1.SetNodes(std::move(nodes));
}

// While a report is made, the box stays at the code of the periods shown.
void frmFilter::cmbKBK_Click() {
    if (building_) return cmbKBK.Select(code_row_);
    const Busy busy(building_);
    if (Consolidated()) {
        const Text code = summary_.codes[static_cast<std::size_t>(cmbKBK.Selected())];
        SelectCode();  // of the periods shown, until others are shown
        RefuseDuringImport();
        const TaxNames taxes = NamesOfTaxes(summary_.inn);
        (summary_.kind == SummaryKind::Statements ? ListStatements : ListActs)(getbase(), summary_.inn,
                                                                               kAllSubdivisions, code);
        if (LastSummary().failed) return;
        const Text path = summary_.path;
        summary_ = LastSummary();
        summary_.path = path;
        ShowCodes(taxes);
    } else {
        code_row_ = cmbKBK.Selected();
    }
    FindPeriods();
}

void frmFilter::Check1_Click() {
    WriteSetting(u"ChkFilter", Check1.Checked() ? u"1" : u"0");
    ShowPeriods();
}

SummaryChoice frmFilter::Choice() const {
    SummaryChoice choice;
    const Text key = TreeView1.SelectedKey();
    const auto node = std::find_if(periods_.begin(), periods_.end(),
                                   [&](const PeriodNode& period) { return period.key == key; });
    if (node != periods_.end()) choice.period = node->period;
    choice.overlapping = Check1.Checked();
    choice.code = Consolidated() ? summary_.code : ChosenCode();
    return choice;
}

void frmFilter::Command1_Click() {
    if (building_) return;
    Text path;
    {
        const Busy busy(building_);
        RefuseDuringImport();
        const TextView kpp = Consolidated() ? kAllSubdivisions : TextView(summary_.kpp);
        path = (summary_.kind == SummaryKind::Statements ? GetFiles : GetFilesAct)(
            getbase(), summary_.inn, kpp, FolderOf(summary_.path), Choice());
    }
    if (path.empty()) {
        ShowNothingToSumUp();
    } else {
        OpenDocument(ToOpen(path));
    }
}

void frmFilter::Command2_Click() {
    Unload();
}

}  // namespace tav
