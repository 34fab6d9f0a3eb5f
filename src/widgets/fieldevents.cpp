#include "fieldevents.h"

#include "keyboardstate.h"
#include "screen.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <utility>

namespace vantrel {

FieldEvents::FieldEvents(QWidget *field) : QObject(field), m_field(field)
{
    field->installEventFilter(this);
    m_releaseCheck.setInterval(250);
    m_releaseCheck.setSingleShot(true);
    connect(&m_releaseCheck, &QTimer::timeout, this, &FieldEvents::countReleasesGoneElsewhere);
}

void FieldEvents::countReleasesGoneElsewhere()
{
    const QList<int> keys = m_pressedHere.keys();
    for (int key : keys) {
        const KeyState state = keyState(m_pressedHere.value(key));
        if (state == KeyState::Down)
            m_releaseCheck.start();
        if (state != KeyState::Up || !m_pressedHere.remove(key))
            continue;
        if (key == m_pendingPress)
            m_pendingPress = 0;
        emit keyReleased(key);
    }
}

bool FieldEvents::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        m_pressedHere.insert(key->key(), key->nativeScanCode());
        m_releaseCheck.start();
        m_pendingPress = key->key();
        emit keyPressed(key->key());
        break;
    }
    case QEvent::KeyRelease: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!key->isAutoRepeat() && m_pressedHere.remove(key->key())) {
            if (key->key() == m_pendingPress)
                m_pendingPress = 0;
            emit keyReleased(key->key());
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        emit clicked();
        break;
    case QEvent::FocusIn:
        emit focusGained();
        break;
    case QEvent::FocusOut:
        // A key held while the focus goes to another field, a box or a menu is released there,
        // or here after the focus came back from somewhere it was not pressed: neither is a
        // release in this field. The window losing the activation to nothing and getting it
        // back, or a screen's window passing the focus through itself to its field (both happen
        // as a menu closes and a screen opens), takes no key away.
        if (const QWidget *now = QApplication::focusWidget(); (now && !now->isAncestorOf(m_field))
                                                              || QApplication::activeModalWidget() || QApplication::activePopupWidget())
            m_pressedHere.clear();
        if (!QApplication::activeModalWidget())
            m_pendingPress = 0;
        if (focusStayedOnScreen())
            emit focusLost();
        break;
    default:
        break;
    }
    return false;
}

void FieldEvents::releaseKeyTakenByBox()
{
    const int key = std::exchange(m_pendingPress, 0);
    if (key == 0)
        return;
    m_pressedHere.remove(key);
    emit keyReleased(key);
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
