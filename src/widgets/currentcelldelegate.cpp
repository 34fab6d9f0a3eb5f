#include "currentcelldelegate.h"

#include <QAbstractItemView>
#include <QPainter>

namespace vantrel {

void CurrentCellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem plain = option;
    plain.state &= ~QStyle::State_HasFocus; // the style's dotted focus line is replaced by the frame
    QStyledItemDelegate::paint(painter, plain, index);
    const auto *view = qobject_cast<const QAbstractItemView *>(option.widget);
    if (!view || view->currentIndex() != index)
        return;
    const bool active = option.state & QStyle::State_Active;
    const QPalette::ColorGroup group = active ? QPalette::Active : QPalette::Inactive;
    const QColor ink = option.palette.color(group, option.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text);
    painter->save();
    painter->setPen(QPen(ink, 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5));
    painter->restore();
}

} // namespace vantrel
