#include "droppanel.h"

#include "fieldevents.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

namespace vantrel {

void showBelow(QWidget *panel, QWidget *field)
{
    QWidget *screen = panel->parentWidget();
    const QPoint below = field->mapTo(screen, QPoint(0, field->height()));
    const int width = qMin(qMax(field->width(), 560), screen->width() - below.x());
    const int height = qMin(240, qMax(120, screen->height() - below.y()));
    panel->setGeometry(below.x(), below.y(), width, height);
    panel->raise();
    panel->show();
}

void prepareWhileIdle(QWidget *panel)
{
    QTimer::singleShot(0, panel, [panel] {
        if (!panel->isHidden() || panel->testAttribute(Qt::WA_DontShowOnScreen))
            return;
        panel->setAttribute(Qt::WA_DontShowOnScreen);
        panel->show();
        panel->hide();
        panel->setAttribute(Qt::WA_DontShowOnScreen, false);
    });
}

void hideAfterChoice(QWidget *panel, QWidget *nextField)
{
    if (panel->isAncestorOf(QApplication::focusWidget()) || panel == QApplication::focusWidget())
        nextField->setFocus(Qt::OtherFocusReason);
    panel->hide();
}

void enterListOnDown(int key, QWidget *list)
{
    if (key == Qt::Key_Down && !list->isHidden() && list->isEnabled())
        list->setFocus(Qt::OtherFocusReason);
}

void downEntersList(FieldEvents *events, QWidget *list)
{
    QObject::connect(events, &FieldEvents::keyPressed, list, [list](int key) { enterListOnDown(key, list); });
}

void focusAfterwards(QWidget *widget)
{
    QTimer::singleShot(0, widget, [widget] { widget->setFocus(Qt::OtherFocusReason); });
}

} // namespace vantrel
