// The dialog that narrows the last summary to a period and a budget classification code, builds the report of
// exactly the chosen documents and opens it.
//
// It shows the documents of LastSummary() (reports/summary_documents.h) as they were when it was shown. The
// report is built from the database as it is then, by the same choice, beside the summary it narrows. Of a
// consolidated taxpayer a summary has one code, and choosing another lists that code's documents.
#pragma once

#include <map>

#include "reports/summary_documents.h"
#include "ui/form.h"
#include "ui/period_tree.h"

namespace tav {

using TaxNames = std::map<Text, Text>;  // by code

class frmFilter : public Form {
 public:
    frmFilter();

 private:
    void Form_Load() override;
    void Form_Again() override { Form_Load(); }
    void cmbKBK_Click();
    void Check1_Click();
    void Command1_Click();
    void Command2_Click();
    bool Consolidated() const { return !summary_.code.empty(); }
    void ShowCodes(const TaxNames& taxes);
    // The summary's own code, or all codes of an ordinary one.
    void SelectCode();
    // The one that narrows an ordinary summary; empty for all codes.
    Text ChosenCode() const;
    void FindPeriods();
    void ShowPeriods();
    SummaryChoice Choice() const;

    ListBox cmbKBK{*this, u"cmbKBK"};
    TreeView TreeView1{*this, u"TreeView1"};
    CheckBox Check1{*this, u"Check1"};
    Button Command1{*this, u"Command1"};
    Summary summary_;
    int code_row_ = 0;  // in the box, of the periods shown
    bool building_ = false;
    std::vector<PeriodNode> periods_;
};

}  // namespace tav
