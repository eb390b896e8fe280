#include "ui/frmmain.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "common/aside.h"
#include "common/concat.h"
#include "common/get_next.h"
#include "common/guard.h"
#include "common/regional.h"
#include "db/empty_database.h"
#include "db/patience.h"
#include "load/run_import.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "reports/get_files.h"
#include "reports/get_files_act.h"
#include "settings/session.h"
#include "settings/settings.h"
#include "ui/create_database.h"
#include "ui/folder_rows.h"
#include "ui/frmDialog.h"
#include "ui/frmFilter.h"
#include "ui/frmmain_plan.h"
#include "ui/set_files.h"

namespace tav {
namespace {

constexpr TextView kLoadTitle = u"Ошибка в функции Form_Load";
constexpr int kRefreshMilliseconds = 100;
constexpr int kBusyMilliseconds = 2000;  // until a database that somebody holds is asked again

// As high without numbers as with them: these then move nothing.
TextView CountsShown(TextView counts) {
    constexpr TextView kUnknown =
        u"Выписок в базе данных:\r\nАктов в базе данных:\r\nНе перекрываются интервалами:";
    return counts.empty() ? kUnknown : counts;
}

// The number after `label` in the information text, up to the line break; 0 when the label is missing.
long long NumberAfter(TextView information, TextView label) {
    const std::size_t at = information.find(label);
    if (at == information.npos) return 0;
    TextView rest = information.substr(at + label.size());
    return ParseInteger(GetNext(rest, u"\r\n")).value_or(0);
}

// A setting that cannot be read is shown as an empty box,
// and stays until something is written or ticked there.
bool IsStored(TextView name, TextView text) {
    try {
        return SettingText(name) == text;
    } catch (const Failure&) {
        return text.empty() || text == u"0";
    }
}

// "Загружено: 8; Не распознано: 1".
Text CountsOfStates(const ImportAccount& account) {
    Text counts;
    for (const FindingText& finding : FindingTexts()) {
        const int number = account.Count(finding.finding);
        if (number == 0) continue;
        counts.append(counts.empty() ? u"" : u"; ")
            .append(finding.counted)
            .append(u": ")
            .append(Digits(number));
    }
    return counts;
}

Text TaxpayerLine(TextView inn, TextView kpp) {
    Text line = Concat(u"ИНН: ", inn);
    if (kpp != kAllSubdivisions) line += Concat(u"     КПП: ", kpp);
    return line;
}

}  // namespace

frmmain::frmmain() : Form(kMainPlan) {
    using Main = frmmain;
    Bind<Main>(*this, {{u"Timer1", Event::Timer, &Main::Timer1_Timer},
                       {u"Timer2", Event::Timer, &Main::Timer2_Timer},
                       {u"txtImport", Event::Change, &Main::txtImport_Change},
                       {u"Command1", Event::Click, &Main::Command1_Click},
                       {u"Command2", Event::Click, &Main::Command2_Click},
                       {u"Command3", Event::Click, &Main::Command3_Click},
                       {u"Command4", Event::Click, &Main::Command4_Click},
                       {u"Command5", Event::Click, &Main::Command5_Click},
                       {u"Command6", Event::Click, &Main::Command6_Click},
                       {u"lstBase", Event::DblClick, &Main::lstBase_DblClick},
                       {u"lstFile", Event::DblClick, &Main::lstFile_DblClick},
                       {u"cmdImport", Event::Click, &Main::cmdImport_Click},
                       {u"cmdOut", Event::Click, &Main::cmdOut_Click},
                       {u"cmdExport", Event::Click, &Main::cmdExport_Click},
                       {u"chkKons", Event::Click, &Main::chkKons_Click},
                       {u"chkImportPath", Event::Click, &Main::chkImportPath_Click},
                       {u"txtAbout", Event::Click, &Main::txtAbout_Click}});
}

void frmmain::Form_Load() {
    constexpr int kUnattendedMilliseconds = 500;
    refreshed_ = false;
    refreshing_ = summarising_ = false;  // the thread of the window before may have ended in a handler
    // Each on its own; and what fails is shown when all are there: a message lets the timer go on, and a
    // refresh saves the boxes as they are.
    std::vector<Failure> failures;
    const auto load = [&](auto&& setting) {
        GuardedBy(setting, [&](const Failure& failure) { failures.push_back(failure); });
    };
    load([&] { txtImport.Set(SettingText(u"ImportPath")); });
    load([&] { txtExport.Set(SettingText(u"ExportPath")); });
    load([&] { txtOut.Set(SettingText(u"OutPath")); });
    load([&] { chkImportPath.Check(SettingTruth(u"ChkOut")); });
    for (Button* button : {&Command1, &Command2, &Command3, &Command6}) button->Enable(false);
    ShowKpps();
    txtOut.Enable(chkImportPath.Checked());
    lblInfoFile.Set(u"Файлов в папке:\r\nПодлежат загрузке:");
    lblInfoBase.Set(CountsShown({}));
    ShowAbout(false);
    load([&] { SetLayout(SettingText(u"MainWindow")); });
    for (const Failure& failure : failures) ShowFailure(kLoadTitle, failure);
    Form_Again();
    if (StartedFor().import) Timer2.SetInterval(kUnattendedMilliseconds);
}

// The host may have gone on to another taxpayer.
void frmmain::Form_Again() {
    outcome_.clear();
    ShowFailuresAgain();
    Guarded(kLoadTitle, [&] { ShowTaxpayer(); });
    ShowKpps();
    FillBase();
    ScheduleRefresh();
}

// Whoever closes the window while an import runs asks for its cancel first.
bool frmmain::Form_QueryUnload() {
    if (!ImportRunning() || CancelStamp() != 0) return true;
    RequestCancel();
    outcome_ = u"Импорт прерывается.";
    ShowAbout(false);
    return false;
}

void frmmain::Form_Unload() {
    WriteSetting(u"MainWindow", Layout());
    if (!SaveFolders()) throw Failure(Concat(u"Папки не сохранены. ", LastRegistryFailure()));
}

void frmmain::ShowTaxpayer() {
    const CurrentTaxpayer& current = Taxpayer();
    const NamedTaxpayer named = TaxpayerSetting();
    lblInfoName.Set(named.name);
    const Text& kpp = named.kpp.empty() ? current.kpp : named.kpp;
    Label5.Set(TaxpayerLine(named.inn.empty() ? current.inn : named.inn,
                            chkKons.Checked() ? kAllSubdivisions : TextView(kpp)));
}

Text frmmain::Kpp() const {
    return chkKons.Checked() ? Text(kAllSubdivisions) : Taxpayer().kpp;
}

// Work that runs has the database to itself: the refresh after it fills the list.
void frmmain::FillBase() {
    base_counts_.clear();
    if (ImportRunning() || AsideRuns()) return;
    bool busy = false;
    const Text information = SetFiles(lstBase, FilesOf::Database, getbase(), Taxpayer().inn, Kpp(), busy);
    if (busy || !Loaded()) return;
    TextView rest = information;
    GetNext(rest, u"*");
    base_counts_ = GetNext(rest, u"*");
    lblInfoBase.Set(CountsShown(base_counts_));
}

void frmmain::Refill() {
    if (!Loaded()) return;
    RunAsHandler([&] {
        FillBase();
        if (Loaded()) ScheduleRefresh();
    });
}

void frmmain::Renew() {
    if (Loaded()) RunAsHandler([&] { Form_Again(); });
}

void frmmain::ShowProgress(double part) {
    if (Loaded()) PBar.Set(part);
}

void frmmain::ScheduleRefresh() {
    Timer1.SetInterval(kRefreshMilliseconds);
}

void frmmain::txtImport_Change() {
    outcome_.clear();
    ScheduleRefresh();
}

void frmmain::Command4_Click() {
    ShowFailuresAgain();
    ScheduleRefresh();
}

// The event loop runs while a large folder is listed, and while other work runs: a refresh asked for meanwhile
// waits, and the timer goes on.
void frmmain::Timer1_Timer() {
    if (refreshing_ || ImportRunning() || AsideRuns()) return;
    Timer1.SetInterval(0);
    const Busy busy(refreshing_);
    Refresh();
}

void frmmain::Refresh() {
    for (Button* button : {&Command1, &Command2, &Command3}) button->Enable(false);
    const Text typed = txtImport.Get();
    const Text folder = ImportFolder();
    const Text inn = Taxpayer().inn;  // the host may go on to another meanwhile
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kBetweenCounts(100);
    const auto go_on = [this, typed, seen = 0, counted = Clock::now()]() mutable {
        ++seen;
        if (Clock::now() - counted < kBetweenCounts) return true;
        bool changed = false;
        RunAtWindows([&] {
            changed = !Loaded() || txtImport.Get() != typed;
            if (!changed) lblInfoFile.Set(Concat(u"Файлов в папке: ", Digits(seen), u"…\r\n"));
        });
        counted = Clock::now();
        return !changed;
    };
    bool busy = false;
    const Text information =
        SetFiles(lstFile, FilesOf::Folder, folder.empty() ? Text(u" ") : folder, inn, Kpp(), busy, go_on);
    // The change has asked for the next refresh.
    if (!Loaded() || txtImport.Get() != typed) return;
    if (!folder.empty()) SaveFolders();
    ShowAbout(busy);
    if (busy) {
        lblInfoFile.Set(TextView(information).substr(information.rfind(u'*') + 1));
        Timer1.SetInterval(kBusyMilliseconds);
        return;
    }
    ShowCounts(information);
    refreshed_ = true;
    if (StartedFor().summary && Command3.Enabled()) {
        Command3_Click();
        Unload();
    }
}

void frmmain::ShowCounts(const Text& information) {
    const bool statements = NumberAfter(information, u"Выписок в базе данных: ") > 0;
    const bool acts = NumberAfter(information, u"Актов в базе данных: ") > 0;
    Command6.Enable(acts);
    Command3.Enable(statements);
    Command2.Enable(statements || acts);
    Command1.Enable(NumberAfter(information, u"загрузке: ") > 0);
    TextView rest = information;
    if (const TextView name = GetNext(rest, u"*"); !name.empty()) lblInfoName.Set(name);
    const TextView base_counts = GetNext(rest, u"*");
    lblInfoBase.Set(CountsShown(base_counts));
    // The database was busy when its list was filled, or has changed without the window's knowing.
    if (base_counts != base_counts_) FillBase();
    lblInfoFile.Set(GetNext(rest, u"*"));
}

// A busy database leaves the rows and counts as they are shown.
void frmmain::ShowAbout(bool busy) {
    std::vector<Text> lines;
    if (busy) lines.push_back(u"База данных занята: списки обновятся, когда она освободится.");
    if (!outcome_.empty()) lines.push_back(outcome_);
    if (Text states = CountsOfStates(FolderAccount()); !states.empty()) lines.push_back(std::move(states));
    lines.insert(lines.end(), FolderAccount().notices.begin(), FolderAccount().notices.end());
    if (OffersDatabase()) {
        lines.push_back(u"Базы данных нет. Щелчок по этому тексту создаст её.");
    } else if (NextOfConcern(-1) >= 0) {
        lines.push_back(u"Щелчок по этому тексту ведёт к файлам, на которые стоит взглянуть.");
    }
    lines.push_back(Concat(u"База данных: ", getbase()));
    Text about;
    for (const Text& line : lines) about.append(about.empty() ? u"" : u"\r\n").append(line);
    txtAbout.Set(about);
}

// What can be done about what the text says.
void frmmain::txtAbout_Click() {
    if (OffersDatabase()) {
        CreateDatabase(getbase());
        Command4_Click();
        Refill();
        return;
    }
    const int row = NextOfConcern(lstFile.Selected());
    if (row >= 0) lstFile.Select(row);
}

// A folder that does not exist leaves the setting as it was.
bool frmmain::SaveFolders() {
    const auto save = [](TextView name, const Text& text) {
        return IsStored(name, text) || WriteSetting(name, text);
    };
    const std::pair<TextView, Text> folders[] = {
        {u"ImportPath", txtImport.Get()}, {u"ExportPath", txtExport.Get()}, {u"OutPath", txtOut.Get()}};
    bool saved = save(u"ChkOut", chkImportPath.Checked() ? u"1" : u"0");
    for (const auto& [name, typed] : folders) {
        const Text folder = UserPath(typed);
        if (folder.empty() || FolderExists(folder)) saved = save(name, folder) && saved;
    }
    return saved;
}

Text frmmain::ImportFolder() const {
    return UserPath(txtImport.Get());
}

// A folder, or files, of which the folder is meant.
void frmmain::Form_Drop(const std::vector<Text>& paths) {
    if (paths.empty()) return;
    const Text& first = paths.front();
    txtImport.Set(FolderExists(first) ? first : FolderOf(first));
}

void frmmain::Command1_Click() {
    if (chkImportPath.Checked() && !AskForMoveFolder()) return;
    Command1.Enable(false);
    const Text move_to = chkImportPath.Checked() ? UserPath(txtOut.Get()) : Text();
    const Text inn = Taxpayer().inn;  // the host may go on to another meanwhile
    const DatabasePatience wait;
    const ImportResult result = RunImport({ImportFolder(), move_to}, inn, Kpp());
    outcome_ = result.outcome == ImportOutcome::Nothing     ? Text()
               : result.outcome == ImportOutcome::Cancelled ? Text(u"Импорт прерван.")
                                                            : ClosingSentence(result.account);
    ShowAbout(false);
    PBar.Set(0);
    Refill();
}

// An import that finds nobody at the screen waits for the first
// refresh, which tells whether there is something to import.
void frmmain::Timer2_Timer() {
    if (!refreshed_ || refreshing_) return;
    Timer2.SetInterval(0);
    if (Command1.Enabled()) Command1_Click();
    Unload();
}

void frmmain::Command2_Click() {
    Shared<frmDialog>().ShowModal(*this);
}

void frmmain::Command3_Click() {
    Summarise(SummaryKind::Statements);
}

void frmmain::Command6_Click() {
    Summarise(SummaryKind::Acts);
}

// Of a consolidated taxpayer: the code of the selected document, if it is of the right kind.
void frmmain::Summarise(SummaryKind kind) {
    if (summarising_) return;  // its windows live on meanwhile
    const Busy busy(summarising_);
    RefuseDuringImport();
    if (UserPath(txtExport.Get()).empty()) txtExport.Set(ReportFolder());
    const bool statements = kind == SummaryKind::Statements;
    SummaryChoice choice;
    if (chkKons.Checked()) {
        const Text selected = lstBase.SelectedText();
        TextView rest = selected;
        if (selected.ends_with(statements ? u" Выписка" : u" Акт")) choice.code = GetNext(rest, u" ");
    }
    const Text path = (statements ? GetFiles : GetFilesAct)(getbase(), Taxpayer().inn, Kpp(),
                                                            UserPath(txtExport.Get()), choice);
    if (path.empty()) {
        ShowNothingToSumUp();
    } else {
        Shared<frmFilter>().Show();
    }
}

// The report is looked for in the one folder and opened from the other: it opens when both are the same.
void frmmain::lstBase_DblClick() {
    const Text row = ReplaceAll(ReplaceAll(lstBase.SelectedText(), u"   ", u"_"), u" - ", u"-");
    TextView rest = row;
    const TextView word = GetNext(rest, u" ");
    if (word.empty()) return;
    const std::vector<Text> found = ListFiles(ImportFolder(), Concat(word, u".doc"));
    if (!found.empty()) OpenDocument(Concat(WithSeparator(UserPath(txtExport.Get())), found.front()));
}

void frmmain::lstFile_DblClick() {
    const Text path = FileOfRow(lstFile.Selected());
    if (FileExists(path)) OpenDocument(path);
}

void frmmain::cmdImport_Click() {
    Browse(u"Выберите папку c файлами", txtImport);
}
void frmmain::cmdOut_Click() {
    Browse(u"Выберите папку c файлами", txtOut);
}
void frmmain::cmdExport_Click() {
    Browse(u"Выберите папку для выгрузки", txtExport);
}

void frmmain::Browse(TextView title, TextControl& box) {
    const Text folder = BrowseFolder(title, UserPath(box.Get()));
    if (!folder.empty()) box.Set(folder);
}

// Of one taxpayer they are all the same.
void frmmain::ShowKpps() {
    const bool shown = IsEverySubdivision(Kpp());
    for (ListBox* list : {&lstFile, &lstBase}) list->ShowColumn(kKppColumn, shown);
}

void frmmain::chkKons_Click() {
    Guarded(u"Ошибка в функции chkKons_Click", [&] { ShowTaxpayer(); });
    ShowKpps();
    Refill();
}

void frmmain::chkImportPath_Click() {
    txtOut.Enable(chkImportPath.Checked());
    if (chkImportPath.Checked() && !AskForMoveFolder()) {
        chkImportPath.Check(false);
        txtOut.Enable(false);
    }
}

// Whether there is a folder to move the imported files to, by now.
bool frmmain::AskForMoveFolder() {
    if (Trim(txtOut.Get()).empty() && !StartedFor().import) cmdOut_Click();
    return StartedFor().import || !Trim(txtOut.Get()).empty();
}

void frmmain::Command5_Click() {
    Close();
}

}  // namespace tav
