// A list or a tree whose selected row is opened by Enter as by a double click, and copied as its text says.
// Without a selected row Enter is left to the window's default button.
#pragma once

#include <QAbstractItemView>
#include <QClipboard>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QKeyEvent>

#include "forms/qt/table_model.h"
#include "forms/qt/widget_control.h"

namespace tav {

// The selected row of a view that selects at most one; else an invalid index.
inline QModelIndex SelectedIndex(const QAbstractItemView& view) {
    const QModelIndexList selected = view.selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QModelIndex() : selected.front();
}

template <class View>
class OpenedByEnter : public View {
 public:
    using View::View;

    void Open(const Raise& raise) {
        raise_ = raise;
        QObject::connect(this, &QAbstractItemView::doubleClicked, [this] { raise_(Event::DblClick); });
    }
    // It gets the spare room, and asks for none.
    QSize sizeHint() const override { return this->minimumSize(); }

 protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        const QVariant row = SelectedIndex(*this).data(kRowText);
        if (row.isValid() && event->matches(QKeySequence::Copy)) {
            QGuiApplication::clipboard()->setText(row.toString());
        } else if (!enter) {
            View::keyPressEvent(event);
        } else if (SelectedIndex(*this).isValid()) {
            event->accept();
            raise_(Event::DblClick);
        } else {
            event->ignore();
        }
    }

 private:
    Raise raise_;
};

}  // namespace tav
