#include "ui/frmFilter.h"

#include <algorithm>
#include <map>
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
    summary_ = LastSummary();
    periods_.clear();
    ShowCodes();
    FindPeriods();
    Check1.Check(SettingTruth(u"ChkFilter"));
    ShowPeriods();
}

std::vector<ListRow> frmFilter::RowsOfCodes() const {
    const auto taxes = std::make_shared<std::map<Text, Text>>();
    // Without the names the codes alone are shown.
    GuardedBy(
        [&] {
            RunAside([taxes, inn = summary_.inn] {
                for (HeldDocument& document : HeldDocuments(getbase(), inn, {})) {
                    taxes->emplace(std::move(document.code), std::move(document.tax));
                }
            });
        },
        [](const Failure&) {});
    std::vector<ListRow> rows;
    if (!Consolidated()) rows.push_back({Text(kAllCodes), {}});
    for (const Text& code : summary_.codes) {
        const Text& tax = (*taxes)[code];
        rows.push_back({tax.empty() ? code : Concat(code, u"   ", tax), {}});
    }
    return rows;
}

void frmFilter::ShowCodes() {
    cmbKBK.SetRows(RowsOfCodes());
    SelectCode();
}

void frmFilter::SelectCode() {
    const auto code = std::find(summary_.codes.begin(), summary_.codes.end(), summary_.code);
    cmbKBK.Select(Consolidated() ? static_cast<int>(code - summary_.codes.begin()) : 0);
}

Text frmFilter::ChosenCode() const {
    const int row = cmbKBK.Selected();
    return Consolidated() || row <= 0 ? Text() : summary_.codes[static_cast<std::size_t>(row - 1)];
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

void frmFilter::cmbKBK_Click() {
    if (building_) return;
    const Busy busy(building_);
    if (Consolidated()) {
        const Text code = summary_.codes[static_cast<std::size_t>(cmbKBK.Selected())];
        SelectCode();  // of the periods shown, until others are shown
        RefuseDuringImport();
        (summary_.kind == SummaryKind::Statements ? ListStatements : ListActs)(getbase(), summary_.inn, code);
        if (LastSummary().failed) return;
        const Text path = summary_.path;
        summary_ = LastSummary();
        summary_.path = path;
        ShowCodes();
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
    choice.code = ChosenCode();
    return choice;
}

void frmFilter::Command1_Click() {
    if (building_) return;
    const Busy busy(building_);
    RefuseDuringImport();
    const Text kpp = Consolidated() ? summary_.code : summary_.kpp;
    const Text path = (summary_.kind == SummaryKind::Statements ? GetFiles : GetFilesAct)(
        getbase(), summary_.inn, kpp, FolderOf(summary_.path), Choice());
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
