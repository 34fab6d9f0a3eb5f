#include "closedmenukeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>

namespace vantrel {

ClosedMenuKeys::ClosedMenuKeys(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool ClosedMenuKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto *menu = qobject_cast<QMenu *>(watched);
    if (!menu || menu->isVisible())
        return false;
    // The window the menu belongs to may not have the activation back yet; its keyboard is
    // then where it will be once it has.
    QWidget *now = QApplication::focusWidget();
    if (!now && menu->parentWidget())
        now = menu->parentWidget()->window()->focusWidget();
    if (!now || now == menu)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    QKeyEvent again(key->type(), key->key(), key->modifiers(), key->nativeScanCode(), key->nativeVirtualKey(),
                    key->nativeModifiers(), key->text(), key->isAutoRepeat(), key->count());
    QCoreApplication::sendEvent(now, &again);
    return true;
}

} // namespace vantrel
