#include "uppercasefilter.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace vantrel {

bool UpperCaseFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    auto *key = static_cast<QKeyEvent *>(event);
    const QString upper = key->text().toUpper();
    if (upper == key->text() || !watched->isWidgetType())
        return false;
    auto *widget = static_cast<QWidget *>(watched);
    if (widget != m_scope && !m_scope->isAncestorOf(widget))
        return false;
    QKeyEvent replacement(key->type(), key->key(), key->modifiers(), key->nativeScanCode(), key->nativeVirtualKey(),
                          key->nativeModifiers(), upper, key->isAutoRepeat(), ushort(key->count()));
    QCoreApplication::sendEvent(watched, &replacement);
    return true;
}

} // namespace vantrel
