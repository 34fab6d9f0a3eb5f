#pragma once

#include <QStyledItemDelegate>

namespace vantrel {

// Paints the grid's current cell apart from the rest of its highlighted row: a frame in the
// colour of the row's text just inside the cell, with or without the keyboard in the grid. Where
// a handler reads the current column, the operator sees which one it is.
class CurrentCellDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace vantrel
