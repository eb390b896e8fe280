// The main window: imports the documents of a folder in one go, shows what the folder and the database hold,
// clears the database, asks for the summaries.
//
// Whatever may change the lists sets Timer1, which refreshes the folder's list, the counts and the buttons
// once. The folders are saved at every refresh with an import folder, and when the window closes.
#pragma once

#include "reports/summary_documents.h"
#include "ui/form.h"

namespace tav {

class frmmain : public Form {
 public:
    frmmain();

    // For the windows around this one; nothing when it is not loaded. The
    // list of the database is filled again, and everything is refreshed.
    void Refill();
    // Another taxpayer is the current one.
    void Renew();
    // On the bar, from 0 to 1.
    void ShowProgress(double part);

 private:
    void Form_Load() override;
    void Form_Again() override;
    bool Form_QueryUnload() override;
    void Form_Unload() override;
    void Form_Drop(const std::vector<Text>& paths) override;
    void Timer1_Timer();
    void Timer2_Timer();
    void txtImport_Change();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Command4_Click();
    void Command5_Click();
    void Command6_Click();
    void lstBase_DblClick();
    void lstFile_DblClick();
    void cmdImport_Click();
    void cmdOut_Click();
    void cmdExport_Click();
    void chkKons_Click();
    void chkImportPath_Click();
    void txtAbout_Click();

    void ShowTaxpayer();
    void ShowKpps();
    void FillBase();
    void ScheduleRefresh();
    void Refresh();
    void ShowCounts(const Text& information);
    void ShowAbout(bool busy);
    bool SaveFolders();
    Text ImportFolder() const;
    bool AskForMoveFolder();
    Text Kpp() const;
    void Summarise(SummaryKind kind);
    void Browse(TextView title, TextControl& box);

    TextControl lblInfoName{*this, u"lblInfoName"};
    TextControl Label5{*this, u"Label5"};
    CheckBox chkKons{*this, u"chkKons"};
    TextControl txtImport{*this, u"txtImport"};
    ListBox lstFile{*this, u"lstFile"};
    TextControl lblInfoFile{*this, u"lblInfoFile"};
    CheckBox chkImportPath{*this, u"chkImportPath"};
    TextControl txtOut{*this, u"txtOut"};
    Button Command1{*this, u"Command1"};
    ProgressBar PBar{*this, u"PBar"};
    ListBox lstBase{*this, u"lstBase"};
    TextControl lblInfoBase{*this, u"lblInfoBase"};
    Button Command2{*this, u"Command2"};
    Button Command3{*this, u"Command3"};
    Button Command6{*this, u"Command6"};
    TextControl txtExport{*this, u"txtExport"};
    TextControl txtAbout{*this, u"txtAbout"};
    Timer Timer1{*this, u"Timer1"};
    Timer Timer2{*this, u"Timer2"};
    Text base_counts_;  // of the documents in lstBase
    Text outcome_;      // of the last import, while its folder is shown
    bool refreshing_ = false;
    bool refreshed_ = false;
    bool summarising_ = false;
};

}  // namespace tav
