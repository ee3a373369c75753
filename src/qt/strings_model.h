#pragma once

#include <QAbstractListModel>
#include <QSize>

#include "platform/objects/strings.h"

namespace vyn::qt {

// A control's lines as the toolkit's lists want them: nothing is copied, a line is converted when it is drawn.
class StringsModel final : public QAbstractListModel {
  public:
    StringsModel(TStrings& strings, QObject* parent) : QAbstractListModel(parent), strings_(strings) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : strings_.Count(); }
    QVariant data(const QModelIndex& index, int role) const override;
    // The lines have changed.
    void Reset() {
        beginResetModel();
        endResetModel();
    }
    // 0: as high as the text.
    void SetRowHeight(int height) { rowHeight_ = height; }

  private:
    TStrings& strings_;
    int rowHeight_ = 0;
};

}  // namespace vyn::qt
