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

    Button Command1{*this, u"Command1"};
    Button Command2{*this, u"Command2"};
    Button Command3{*this, u"Command3"};
};

}  // namespace tav
