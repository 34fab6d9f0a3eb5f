#include "datepicker.h"

#include "data/shortdate.h"

#include <QDateEdit>

namespace vantrel {

QDateEdit *makeDatePicker(QWidget *parent, const QString &accessibleName, const QDate &date)
{
    auto *picker = new QDateEdit(date, parent);
    picker->setCalendarPopup(true);
    picker->setDisplayFormat(ShortDate().pattern());
    picker->setAccessibleName(accessibleName);
    picker->setMaximumWidth(picker->fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 48);
    return picker;
}

} // namespace vantrel
