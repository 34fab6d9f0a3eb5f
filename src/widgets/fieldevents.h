#pragma once

#include <QObject>

class QWidget;

namespace vantrel {

// Reports the events of one widget that the screens handle beside its own signals: a key
// pressed or released in it, a mouse click on it, and the loss of focus to another field of the
// window. It watches the widget it is created for and lives as its child. The events still
// reach the widget.
class FieldEvents final : public QObject {
    Q_OBJECT
public:
    explicit FieldEvents(QWidget *field);

signals:
    void keyPressed(int key);
    void keyReleased(int key);
    void clicked();
    void focusLost();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace vantrel
