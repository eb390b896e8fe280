// The window shown while an import reads files, or a summary writes pages: the file's name, whose documents they
// are, a bar, and the button that cancels. The readers turn pages into plain text by themselves (convert/rich_text.h), so the
// window carries no rich-text control.
#pragma once

#include "ui/form.h"

namespace tav {

class frmShortImport : public Form {
 public:
    frmShortImport();

    enum class Work { Import, Summary };
    // In front of the form whose handler has begun the work.
    void Begin(Work work);
    // Nothing when the window is not shown.
    void ShowProgress(TextView file, double part);
    // Through the window's timer: the user sees the full bar for a moment.
    void CloseSoon();
    // At once; not while files are read.
    void CloseNow();

 private:
    void Form_Load() override;
    void Form_Again() override { Form_Load(); }
    void Form_Unload() override;
    void CancelButton_Click();
    void Timer1_Timer();

    TextControl Label1{*this, u"Label1"};
    TextControl Label2{*this, u"Label2"};
    ProgressBar PBar{*this, u"PBar"};
    Timer Timer1{*this, u"Timer1"};
    Work work_ = Work::Import;
    bool reading_ = false;
};

}  // namespace tav
