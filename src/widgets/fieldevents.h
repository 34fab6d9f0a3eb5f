#pragma once

#include <QObject>
#include <QHash>
#include <QTimer>

class QWidget;

namespace vantrel {

// Reports the events of one widget that the screens handle beside its own signals: a key
// pressed or released in it, a mouse click on it, the focus coming in, and the loss of focus to
// another field of the same screen. It watches the widget it is created for and lives as its
// child. The events still reach the widget.
//
// On a real desktop a key's release lands wherever the focus is by then: the Enter that picks a
// menu entry, answers a message box or chooses in a list, or the Tab that moves into the field,
// is released here although it was pressed elsewhere. keyReleased() reports only a key whose
// press this field saw while it had the focus.
class FieldEvents final : public QObject {
    Q_OBJECT
public:
    explicit FieldEvents(QWidget *field);

    // A message box opened by a key going down in this field takes that key's release on a real
    // desktop; a stand-in box in the tests does not. Called once the box is answered, the key
    // counts as released here, now and only once. Without such a key, nothing happens.
    void releaseKeyTakenByBox();

signals:
    void keyPressed(int key);
    void keyReleased(int key);
    void clicked();
    void focusGained();
    void focusLost();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Whether the focus has gone to another widget of the field's own screen (not to another
    // screen, the menu, a message box or another program).
    bool focusStayedOnScreen() const;

    // A key pressed here whose release X gave to no window of ours (it happens while a window
    // manager moves the activation as a menu closes) counts as released once X says it is up.
    void countReleasesGoneElsewhere();

    QWidget *m_field;
    QHash<int, quint32> m_pressedHere; // key -> its X key code
    // The last key pressed here, until its release or until the focus goes anywhere but a box.
    int m_pendingPress = 0;
    QTimer m_releaseCheck;
};

} // namespace vantrel
