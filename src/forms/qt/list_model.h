// The rows of a combo box as Qt's view asks for them: texts are converted when they are shown.
#pragma once

#include <QAbstractListModel>
#include <vector>

#include "forms/forms.h"

namespace tav {

class ListModelQt : public QAbstractListModel {
 public:
    using QAbstractListModel::QAbstractListModel;

    void SetRows(std::vector<ListRow> rows);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

 private:
    std::vector<ListRow> rows_;
};

}  // namespace tav
