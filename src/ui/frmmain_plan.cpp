#include "ui/frmmain_plan.h"

namespace tav {
namespace {

constexpr TextView kMainCaption =
    u"Групповой импорт актов сверки и выписок операций из файлов в формате rtf, полученных через ТАВ (v1.12)";
// "КБК", 38 spaces, "ОКАТО", 12 spaces, "Период".
constexpr TextView kColumns = u"КБК                                      ОКАТО            Период";

constexpr ColumnOrder kDates = ColumnOrder::Dates;
constexpr ListColumn kFileColumns[] = {{u"КБК", 24},   {u"ОКАТО", 12}, {u"Период", 22, kDates},
                                       {u"Налог", 27}, {u"Вид", 9},    {u"Состояние", 16},
                                       {u"КПП", 10},   {u"Файл", 16}};
constexpr ListColumn kBaseColumns[] = {{u"КБК", 24},   {u"ОКАТО", 12}, {u"Период", 22, kDates},
                                       {u"Налог", 27}, {u"Вид", 9},    {u"Состояние", 16},
                                       {u"КПП", 10}};
constexpr ControlPlan ListOf(TextView name, const Place& place, std::span<const ListColumn> columns) {
    return {name, ControlKind::ListBox, {}, {}, place, 0, Picture::None, columns};
}
// What a plain list has above it; a table says it itself.
constexpr ControlPlan HeadingOf(TextView name, TextView frame) {
    return {name, ControlKind::Label, kColumns, {}, {0, 0, 1, frame}, 0, Picture::None, {}, true};
}

constexpr ControlPlan kMainControls[] = {
    {u"Frame4", ControlKind::Frame, {}, {}, {0, 0, 2}},
    {u"lblInfoName", ControlKind::Label, {}, {}, {0, 0, 1, u"Frame4"}},
    {u"chkKons",
     ControlKind::CheckBox,
     u"Консолидированный налогоплательщик",
     {},
     {0, 1, 1, u"Frame4"},
     u'К'},
    {u"Label5", ControlKind::Label, {}, {}, {1, 0, 2, u"Frame4"}},

    {u"Frame2", ControlKind::Frame, u"Файлы, полученные из ТАВ в формате rtf", {}, {1, 0, 2}},
    {u"Label1", ControlKind::Label, u"Папка с файлами из ТАВ:", {}, {0, 0, 1, u"Frame2"}, u'П'},
    {u"txtImport", ControlKind::TextBox, {}, {}, {0, 1, 1, u"Frame2"}},
    {u"cmdImport",
     ControlKind::Button,
     u"...",
     u"Выбор папки с файлами из ТАВ в формате rtf",
     {0, 2, 1, u"Frame2"}},
    {u"Command4",
     ControlKind::PictureButton,
     {},
     u"Обновить список файлов, полученных из ТАВ",
     {0, 3, 1, u"Frame2"},
     0,
     Picture::Refresh},
    HeadingOf(u"Label4", u"Frame2"),
    ListOf(u"lstFile", {1, 0, 4, u"Frame2"}, kFileColumns),
    {u"lblInfoFile", ControlKind::Label, {}, {}, {2, 0, 4, u"Frame2"}},
    {u"chkImportPath",
     ControlKind::CheckBox,
     u"Переносить импортированные файлы в папку:",
     {},
     {3, 0, 1, u"Frame2"},
     u'е'},
    {u"txtOut", ControlKind::TextBox, {}, {}, {3, 1, 1, u"Frame2"}},
    {u"cmdOut",
     ControlKind::Button,
     u"...",
     u"Выбор папки, куда будут перенесены импортированные в базу данных файлы",
     {3, 2, 1, u"Frame2"}},
    {u"Frame5", ControlKind::Frame, {}, {}, {4, 0, 4, u"Frame2"}},
    {u"PBar", ControlKind::ProgressBar, {}, {}, {0, 0, 1, u"Frame5"}},
    {u"Command1",
     ControlKind::Button,
     u"Импортировать",
     u"Импортировать в базу данных файлы формата rtf, полученные из ТАВ",
     {0, 1, 1, u"Frame5"},
     u'И'},

    {u"Frame1",
     ControlKind::Frame,
     u"Акты сверки и выписки операций, импортированные в базу данных",
     {},
     {2, 0, 2}},
    HeadingOf(u"Label3", u"Frame1"),
    ListOf(u"lstBase", {0, 0, 2, u"Frame1"}, kBaseColumns),
    {u"lblInfoBase", ControlKind::Label, {}, {}, {1, 0, 1, u"Frame1"}},
    {u"Command2",
     ControlKind::PictureButton,
     {},
     u"Очистить базу данных от импортированных актов и выписок",
     {1, 1, 1, u"Frame1"},
     0,
     Picture::Erase},

    // The first letter is a Latin one.
    {u"Frame3", ControlKind::Frame, u"Cформировать сводную справку, используя:", {}, {3, 0, 2}},
    {u"Command3",
     ControlKind::Button,
     u"Выписки",
     u"Сформировать сводную справку, используя импортированные выписки",
     {0, 0, 1, u"Frame3"},
     u'В'},
    {u"Command6",
     ControlKind::Button,
     u"Акты",
     u"Сформировать сводную справку, используя импортированные акты",
     {0, 1, 1, u"Frame3"},
     u'А'},
    {u"Label2",
     ControlKind::Label,
     u"Папка для сформированных файлов сводных справок:",
     {},
     {0, 2, 1, u"Frame3"},
     u'с'},
    {u"txtExport", ControlKind::TextBox, {}, {}, {0, 3, 1, u"Frame3"}},
    {u"cmdExport",
     ControlKind::Button,
     u"...",
     u"Выбор папки, где будут сохраняться формируемые сводные справки",
     {0, 4, 1, u"Frame3"}},

    {u"txtAbout", ControlKind::Memo, {}, {}, {4, 0}},
    {u"Command5", ControlKind::Button, u"Закрыть", {}, {4, 1}, u'З'},
    {u"Timer1", ControlKind::Timer},
    {u"Timer2", ControlKind::Timer},
};

}  // namespace

const FormPlan kMainPlan = {u"frmmain", kMainCaption, kMainControls, 180,         54,
                            {},         u"Command5",  u"Command4",   u"txtImport"};

}  // namespace tav
