#include "ui/frmDialog.h"

#include "db/clearbase.h"
#include "load/run_import.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/frmmain.h"

namespace tav {
namespace {

constexpr TextView kQuestion = u"Удалить данные по актам сверки и выпискам операций из базы данных?";
constexpr ControlPlan kDialogControls[] = {
    {u"Image1", ControlKind::Picture, {}, {}, {0, 0}, 0, Picture::Warning},
    {u"Label1", ControlKind::Label, kQuestion, {}, {0, 1, 3}},
    // The focus is here first: nothing is deleted by a hasty Enter.
    {u"Command3", ControlKind::Button, u"Отмена", {}, {1, 3}, u'О'},
    {u"Command1", ControlKind::Button, u"Да", {}, {1, 1}, u'Д'},
    {u"Command2", ControlKind::Button, u"Да, для всех", {}, {1, 2}, u'в'},
};
constexpr FormPlan kDialogPlan = {u"frmDialog", u"Внимание", kDialogControls, 60, 5,
                                  u"Command3",  u"Command3"};

}  // namespace

frmDialog::frmDialog() : Form(kDialogPlan) {
    Bind<frmDialog>(*this, {{u"Command1", Event::Click, &frmDialog::Command1_Click},
                            {u"Command2", Event::Click, &frmDialog::Command2_Click},
                            {u"Command3", Event::Click, &frmDialog::Command3_Click}});
}

void frmDialog::Command1_Click() {
    Clear([](const Text& database) { clearbase(database, Taxpayer().inn, Taxpayer().kpp); });
}

void frmDialog::Command2_Click() {
    Clear([](const Text& database) { clearbaseAll(database); });
}

void frmDialog::Command3_Click() {
    Unload();
}

void frmDialog::Clear(const std::function<void(const Text& database)>& clear) {
    RefuseDuringImport();
    for (Button* button : {&Command1, &Command2, &Command3}) button->Enable(false);
    clear(getbase());
    Shared<frmmain>().Refill();
    Unload();
}

}  // namespace tav
