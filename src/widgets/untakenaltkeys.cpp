#include "untakenaltkeys.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QKeyEvent>
#include <QLineEdit>

namespace vantrel {

bool UntakenAltKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    // AltGr, which types a character of its own, is not Alt; Ctrl+Alt is left to what takes it.
    if ((key->modifiers() & (Qt::AltModifier | Qt::ControlModifier)) != Qt::AltModifier || key->text().isEmpty() || !key->text()[0].isPrint())
        return false;
    return qobject_cast<QLineEdit *>(watched) || qobject_cast<QAbstractSpinBox *>(watched) || qobject_cast<QAbstractItemView *>(watched);
}

} // namespace vantrel
