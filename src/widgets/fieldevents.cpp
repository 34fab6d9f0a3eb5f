#include "fieldevents.h"

#include <QKeyEvent>
#include <QWidget>

namespace vantrel {

FieldEvents::FieldEvents(QWidget *field) : QObject(field)
{
    field->installEventFilter(this);
}

bool FieldEvents::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        emit keyPressed(static_cast<QKeyEvent *>(event)->key());
        break;
    case QEvent::KeyRelease:
        if (!static_cast<QKeyEvent *>(event)->isAutoRepeat())
            emit keyReleased(static_cast<QKeyEvent *>(event)->key());
        break;
    case QEvent::MouseButtonRelease:
        emit clicked();
        break;
    case QEvent::FocusOut: {
        // Only a move to another field counts, not a message box or another window taking it.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
            emit focusLost();
        break;
    }
    default:
        break;
    }
    return false;
}

} // namespace vantrel
