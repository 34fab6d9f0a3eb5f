#pragma once

#include <QDate>
#include <QDateEdit>
#include <QString>

class QWidget;

namespace vantrel {

// A date picker with a calendar pop-up, showing its date in the short date form. A whole date
// typed into it as the form writes it ("11/01/2026") gives that date, at any speed: a section
// filled by its digits moves on by itself, and the separator typed after it is then taken as
// that move, not as a second one that would skip the next section.
class DatePicker final : public QDateEdit {
    Q_OBJECT
public:
    DatePicker(const QDate &date, QWidget *parent);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    bool m_movedOnByDigits = false;
};

// A date picker named by its label, showing DATE.
QDateEdit *makeDatePicker(QWidget *parent, const QString &accessibleName, const QDate &date);

} // namespace vantrel
