#include "ui/frmShortImport.h"

#include "common/concat.h"
#include "settings/session.h"
#include "settings/settings.h"

namespace tav {
namespace {

constexpr ControlPlan kControls[] = {
    {u"Label1", ControlKind::Label, u"Производится чтение файла:", {}, {0, 0, 2}},
    {u"Label2", ControlKind::Label, u"по налогоплательщику", {}, {1, 0, 2}},
    {u"PBar", ControlKind::ProgressBar, {}, {}, {2, 0, 2}},
    {u"CancelButton", ControlKind::Button, u"Отмена", {}, {3, 1}, u'О'},
    {u"Timer1", ControlKind::Timer},
};
constexpr FormPlan kPlan = {u"frmShortImport", u"Импорт файлов, полученных из ТАВ", kControls, 70, 6, {},
                            u"CancelButton"};

constexpr TextView kReading = u"Производится чтение файла: ";
constexpr TextView kOfTaxpayer = u"по налогоплательщику ";

}  // namespace

frmShortImport::frmShortImport() : Form(kPlan) {
    Bind<frmShortImport>(*this, {{u"CancelButton", Event::Click, &frmShortImport::CancelButton_Click},
                                 {u"Timer1", Event::Timer, &frmShortImport::Timer1_Timer}});
}

void frmShortImport::Form_Load() {
    Form_Again();
    const Text name = TaxpayerSetting().name;
    Label2.Set(Concat(kOfTaxpayer, name.empty() ? Taxpayer().inn : name));
}

void frmShortImport::Form_Again() {
    Timer1.SetInterval(0);
    Label1.Set(kReading);
    PBar.Set(0);
    reading_ = true;
}

// Whoever closes the window while files are read wants to cancel.
void frmShortImport::Form_Unload() {
    if (reading_) RequestCancel();
}

void frmShortImport::ShowProgress(TextView file, double part) {
    if (!Loaded()) return;
    Label1.Set(Concat(kReading, file));
    PBar.Set(part);
}

void frmShortImport::CloseSoon() {
    constexpr int kMilliseconds = 100;
    reading_ = false;
    if (!Loaded()) return;
    PBar.Set(1);
    Timer1.SetInterval(kMilliseconds);
}

void frmShortImport::CancelButton_Click() {
    RequestCancel();
}

void frmShortImport::Timer1_Timer() {
    Timer1.SetInterval(0);
    Unload();
}

}  // namespace tav
