#include "datepicker.h"

#include "data/shortdate.h"

#include <QKeyEvent>

namespace vantrel {

DatePicker::DatePicker(const QDate &date, QWidget *parent) : QDateEdit(date, parent)
{
    setCalendarPopup(true);
    setDisplayFormat(ShortDate().pattern());
    setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 48);
}

void DatePicker::keyPressEvent(QKeyEvent *event)
{
    const QString text = event->text();
    const bool digit = text.size() == 1 && text[0].isDigit();
    const bool separator = text.size() == 1 && !text[0].isLetterOrNumber() && !text[0].isSpace() && displayFormat().contains(text[0]);
    if (separator && m_movedOnByDigits) {
        m_movedOnByDigits = false;
        event->accept();
        return;
    }
    const Section before = currentSection();
    QDateEdit::keyPressEvent(event);
    m_movedOnByDigits = digit && currentSection() != before;
}

void DatePicker::focusInEvent(QFocusEvent *event)
{
    m_movedOnByDigits = false;
    QDateEdit::focusInEvent(event);
}

QDateEdit *makeDatePicker(QWidget *parent, const QString &accessibleName, const QDate &date)
{
    auto *picker = new DatePicker(date, parent);
    picker->setAccessibleName(accessibleName);
    return picker;
}

} // namespace vantrel
