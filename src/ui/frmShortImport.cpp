#include "ui/frmShortImport.h"

#include "common/concat.h"
#include "load/run_import.h"
#include "settings/session.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr ControlPlan kImportControls[] = {
    {u"Label1", ControlKind::Label, u"Производится чтение файла:", {}, {0, 0, 2}},
    {u"Label2", ControlKind::Label, u"по налогоплательщику", {}, {1, 0, 2}},
    {u"PBar", ControlKind::ProgressBar, {}, {}, {2, 0, 2}},
    {u"CancelButton", ControlKind::Button, u"Отмена", {}, {3, 1}, u'О'},
    {u"Timer1", ControlKind::Timer},
};
struct WorkText {
    TextView caption;
    TextView label;  // before the file's name
};
constexpr WorkText kImport = {u"Импорт файлов, полученных из ТАВ", u"Производится чтение файла: "};
constexpr WorkText kSummary = {u"Формирование сводной справки", u"Формируется файл: "};

constexpr FormPlan kImportPlan = {u"frmShortImport", kImport.caption, kImportControls, 70, 6, {},
                                  u"CancelButton"};

constexpr TextView kOfTaxpayer = u"по налогоплательщику ";

// The host's name for the taxpayer, if it is this one.
Text NameOfTaxpayer(const Text& inn) {
    const NamedTaxpayer named = TaxpayerSetting();
    return named.name.empty() || (!named.inn.empty() && named.inn != inn) ? inn : named.name;
}

}  // namespace

frmShortImport::frmShortImport() : Form(kImportPlan) {
    Bind<frmShortImport>(*this, {{u"CancelButton", Event::Click, &frmShortImport::CancelButton_Click},
                                 {u"Timer1", Event::Timer, &frmShortImport::Timer1_Timer}});
}

void frmShortImport::Begin(Work work) {
    work_ = work;
    Show(Handling());
}

void frmShortImport::Form_Load() {
    Timer1.SetInterval(0);
    const bool import = work_ == Work::Import;
    SetCaption((import ? kImport : kSummary).caption);
    ShowProgress({}, 0);
    Label2.Set(Concat(kOfTaxpayer, NameOfTaxpayer(import ? RunningInn() : Taxpayer().inn)));
    reading_ = true;
}

// Whoever closes the window while files are read wants to cancel.
void frmShortImport::Form_Unload() {
    if (reading_) RequestCancel();
}

void frmShortImport::ShowProgress(TextView file, double part) {
    if (!Loaded()) return;
    Label1.Set(Concat((work_ == Work::Import ? kImport : kSummary).label, file));
    PBar.Set(part);
}

void frmShortImport::CloseSoon() {
    constexpr int kMilliseconds = 100;
    reading_ = false;
    if (!Loaded()) return;
    PBar.Set(1);
    Timer1.SetInterval(kMilliseconds);
}

void frmShortImport::CloseNow() {
    if (Loaded() && !reading_) Timer1_Timer();
}

void frmShortImport::CancelButton_Click() {
    RequestCancel();
}

void frmShortImport::Timer1_Timer() {
    Timer1.SetInterval(0);
    Unload();
}

}  // namespace tav
