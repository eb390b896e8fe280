// Qt's own texts that a person meets in our windows, in Russian: the menu of a text box, the folder dialog.
// Qt's full translation is a package that may not be installed.
#pragma once

#include <QTranslator>

namespace tav {

class RussianQt : public QTranslator {
 public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    // A null text, which lets Qt look further, for what is not in the table.
    QString translate(const char* context, const char* source, const char* disambiguation,
                      int number) const override;
};

}  // namespace tav
