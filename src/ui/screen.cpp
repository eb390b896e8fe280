#include "ui/screen.h"

#include "common/failure.h"
#include "common/message_box.h"
#include "common/progress.h"
#include "forms/forms.h"
#include "reports/paper.h"
#include "ui/frmShortImport.h"
#include "ui/open_as.h"
#include "ui/window_progress.h"

namespace tav {
namespace {

class WindowBox : public MessageBox {
 public:
    // A progress window that is about to go would take the box along, unread.
    void Show(const Message& message) override {
        Shared<frmShortImport>().CloseNow();
        CurrentToolkit().ShowMessage(message);
    }
};

}  // namespace

void UseWindows() {
    static WindowBox box;
    static WindowProgress progress;
    MakePaperCopies(OpensPaper);
    CurrentToolkit();
    SetDefaultMessageBox(box);
    SetDefaultProgress(progress);
}

bool UseWindowsIfAny() {
    try {
        UseWindows();
    } catch (const Failure&) {
        return false;
    }
    return true;
}

}  // namespace tav
