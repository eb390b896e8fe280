// "Внимание": whether to clear the database, of the current taxpayer's documents or of all.
#pragma once

#include "ui/form.h"

namespace tav {

class frmDialog : public Form {
 public:
    frmDialog();

 private:
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Clear(const std::function<void(const Text& database)>& clear);
};

}  // namespace tav
