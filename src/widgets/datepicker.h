#pragma once

#include <QDate>
#include <QString>

class QDateEdit;
class QWidget;

namespace vantrel {

// A date picker with a calendar pop-up, named by its label, showing DATE in the short date form.
QDateEdit *makeDatePicker(QWidget *parent, const QString &accessibleName, const QDate &date);

} // namespace vantrel
