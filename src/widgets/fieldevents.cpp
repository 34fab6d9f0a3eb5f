#include "fieldevents.h"

#include "screen.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace vantrel {

FieldEvents::FieldEvents(QWidget *field) : QObject(field), m_field(field)
{
    field->installEventFilter(this);
}

bool FieldEvents::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        m_pressedHere.insert(key->key());
        emit keyPressed(key->key());
        break;
    }
    case QEvent::KeyRelease: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!key->isAutoRepeat() && m_pressedHere.remove(key->key()))
            emit keyReleased(key->key());
        break;
    }
    case QEvent::MouseButtonRelease:
        emit clicked();
        break;
    case QEvent::FocusIn:
        emit focusGained();
        break;
    case QEvent::FocusOut:
        // A key held while the focus leaves is released elsewhere, or here after the focus came
        // back from somewhere it was not pressed: neither is a release in this field.
        m_pressedHere.clear();
        if (focusStayedOnScreen())
            emit focusLost();
        break;
    default:
        break;
    }
    return false;
}

bool FieldEvents::focusStayedOnScreen() const
{
    // By the time the field hears of its loss, the application already names the new owner.
    const QWidget *now = QApplication::focusWidget();
    if (!now || now == m_field)
        return false;
    const QWidget *screen = m_field;
    while (screen && !qobject_cast<const Screen *>(screen))
        screen = screen->parentWidget();
    if (!screen)
        screen = m_field->window();
    return screen->isAncestorOf(now) && now->window() == m_field->window();
}

} // namespace vantrel
