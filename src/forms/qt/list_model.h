// The rows of a list or of a combo box, as Qt's views ask for them: texts are converted when they are shown.
#pragma once

#include <QAbstractListModel>
#include <QFontMetricsF>
#include <vector>

#include "forms/forms.h"

namespace tav {

class ListModelQt : public QAbstractListModel {
 public:
    using QAbstractListModel::QAbstractListModel;

    void SetRows(std::vector<ListRow> rows);
    // The width of the widest row, in pixels of the font; kerning is not looked at.
    double Widest(const QFontMetricsF& metrics) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

 private:
    std::vector<ListRow> rows_;
};

}  // namespace tav
