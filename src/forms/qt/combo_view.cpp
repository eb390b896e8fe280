#include "forms/qt/combo_view.h"

#include <QComboBox>
#include <utility>

#include "forms/qt/list_model.h"

namespace tav {
namespace {

class ComboBox : public SeenControl<QComboBox> {
 public:
    ComboBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) : SeenControl(plan, parent) {
        widget_->setModel(model_);
        // Its width is the form's affair: not every row is measured for it.
        widget_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        widget_->setMinimumContentsLength(kCharacters);
        QObject::connect(widget_, &QComboBox::activated, [this, raise](int row) {
            if (std::exchange(selected_, row) != row) raise(Event::Click);
        });
    }
    std::vector<ListRow> SetRows(std::vector<ListRow>&& rows) override {
        model_->SetRows(std::move(rows));
        SelectRow(-1);
        return {};
    }
    int SelectedRow() const override { return widget_->currentIndex(); }
    void SelectRow(int row) override {
        widget_->setCurrentIndex(row);
        selected_ = widget_->currentIndex();
    }

 private:
    static constexpr int kCharacters = 10;

    ListModelQt* const model_ = new ListModelQt(widget_);
    int selected_ = -1;  // as the form knows it
};

}  // namespace

MadeControl MakeComboBox(const ControlPlan& plan, QWidget* parent, const Raise& raise) {
    return std::make_unique<ComboBox>(plan, parent, raise);
}

}  // namespace tav
